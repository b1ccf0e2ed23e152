#pragma once

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/URL.h"

#include <functional>
#include <map>
#include <mutex>
#include <string_view>
#include <vector>

namespace ReelCore {

/// What must not outlive this process: the children that run, and the files in the temporary
/// folder. The only thing that the library knows between two calls; who starts a child or makes
/// such a file puts it here, and nobody else has to ask.
///
/// `run` is for an end that the process comes to by itself. For all others (a crash, SIGKILL) there
/// is keldo-watchdog, a small program that is started with the first entry, is told of each, and
/// does the same once this process is gone. It is looked for in `../libexec/keldobay` seen from the
/// program's folder; where it is missing, such an end leaves all to itself.
///
/// Any thread. A forked copy of the process begins with nothing.
class ProcessCleanup {
public:
    static ProcessCleanup& shared();

    /// Starts a child, whose number `start` gives and who leads a process group, and enters it in
    /// one step: `run` finds it or comes before it. Throws SystemError: ECANCELED once `run` has
    /// begun; what `start` throws.
    int addChild(const std::function<int()>& start);

    /// Before the child is reaped, so that its number can't be somebody else's yet.
    void removeChild(int child);

    /// Before anything is made at `path`. Throws SystemError: ECANCELED once `run` has begun.
    void addPath(const URL& path);

    void removePath(const URL& path);

    /// An empty file that keeps a name for an output, once it is made: `run` removes it where it is
    /// still this one and still empty. The watchdog is not told of it: at another end it stays.
    /// Throws SystemError: ECANCELED once `run` has begun.
    void addReservation(const URL& path, const FileIdentity& identity);

    void removeReservation(const URL& path);

    /// Asks every child and what it has started itself to end (SIGTERM), waits up to three seconds
    /// for those who started them to reap them, makes the rest end (SIGKILL), and removes the
    /// files and what is left empty of the reservations. From its beginning nothing more is
    /// started. For the end of the application.
    void run();

private:
    ProcessCleanup() = default;

    void forgetWhatTheParentHad();
    void refuseIfOver() const;
    void signalAll(int number) const;
    bool hasNoChildren();

    /// Throws nothing: what can't be told is as if there were no watchdog.
    void tell(char kind, std::string_view what);
    void startWatchdog();

    std::mutex lock_;
    std::vector<int> children_;
    std::vector<URL> paths_;
    std::map<URL, FileIdentity> reservations_;
    bool isOver_ = false;
    int process_ = 0;
    int watchdog_ = -1;
};

}  // namespace ReelCore
