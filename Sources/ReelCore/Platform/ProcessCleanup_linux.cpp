#include "ReelCore/Platform/ProcessCleanup.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/WatchdogMessage.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace ReelCore {

namespace {

/// Starts the watchdog with `socket` as its standard input. It goes on as nobody's child: what is
/// waited for here ends at once.
bool spawnWatchdog(int socket) {
    std::error_code failure;
    const URL self = std::filesystem::read_symlink("/proc/self/exe", failure);
    const URL program = self.parent_path().parent_path() / "libexec/keldobay" / "keldo-watchdog";
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, socket, STDIN_FILENO);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        ::posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    }
    ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    std::array<char*, 2> arguments{const_cast<char*>(program.c_str()), nullptr};
    pid_t child = 0;
    const int refused =
        ::posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure || refused != 0) return false;
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return true;
}

}  // namespace

ProcessCleanup& ProcessCleanup::shared() {
    // Never destroyed: a job that was dropped may use it to the last.
    static ProcessCleanup& cleanup = *new ProcessCleanup;
    return cleanup;
}

int ProcessCleanup::addChild(const std::function<int()>& start) {
    const std::lock_guard guard(lock_);
    forgetWhatTheParentHad();
    refuseIfOver();
    // First the room: a child that has no place on the list would run on unseen.
    children_.reserve(children_.size() + 1);
    children_.push_back(start());
    tell(WatchdogMessage::addChild, std::to_string(children_.back()));
    return children_.back();
}

void ProcessCleanup::removeChild(int child) {
    const std::lock_guard guard(lock_);
    if (std::erase(children_, child) == 0) return;
    // Nobody asks any more for what it has started itself.
    if (isOver_) ::kill(-child, SIGKILL);
    tell(WatchdogMessage::removeChild, std::to_string(child));
}

void ProcessCleanup::addPath(const URL& path) {
    const std::lock_guard guard(lock_);
    forgetWhatTheParentHad();
    refuseIfOver();
    paths_.push_back(path);
    tell(WatchdogMessage::addPath, path.native());
}

void ProcessCleanup::removePath(const URL& path) {
    const std::lock_guard guard(lock_);
    if (std::erase(paths_, path) != 0) tell(WatchdogMessage::removePath, path.native());
}

void ProcessCleanup::addReservation(const URL& path, const FileIdentity& identity) {
    const std::lock_guard guard(lock_);
    forgetWhatTheParentHad();
    refuseIfOver();
    reservations_.insert_or_assign(path, identity);
}

void ProcessCleanup::removeReservation(const URL& path) {
    const std::lock_guard guard(lock_);
    reservations_.erase(path);
}

void ProcessCleanup::run() {
    {
        const std::lock_guard guard(lock_);
        forgetWhatTheParentHad();
        isOver_ = true;
        signalAll(SIGTERM);
        signalAll(SIGCONT);
    }
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (!hasNoChildren() && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    const std::lock_guard guard(lock_);
    signalAll(SIGKILL);
    std::error_code ignored;
    for (const URL& path : paths_) std::filesystem::remove_all(path, ignored);
    for (const auto& [path, identity] : reservations_) FileSystem::removeIfEmpty(path, identity);
}

void ProcessCleanup::forgetWhatTheParentHad() {
    if (process_ == ::getpid()) return;
    process_ = ::getpid();
    if (watchdog_ >= 0) ::close(watchdog_);
    watchdog_ = -1;
    children_.clear();
    paths_.clear();
    reservations_.clear();
    isOver_ = false;
}

void ProcessCleanup::refuseIfOver() const {
    if (isOver_) throw SystemError(ECANCELED);
}

void ProcessCleanup::signalAll(int number) const {
    for (const int child : children_) ::kill(-child, number);
}

bool ProcessCleanup::hasNoChildren() {
    const std::lock_guard guard(lock_);
    return children_.empty();
}

void ProcessCleanup::tell(char kind, std::string_view what) {
    if (watchdog_ < 0) return startWatchdog();
    const std::string message = kind + std::string(what);
    if (::send(watchdog_, message.data(), message.size(), MSG_NOSIGNAL) >= 0) return;
    if (errno != EPIPE && errno != ECONNRESET) return;
    // Somebody has ended the watchdog: a new one is told all.
    ::close(watchdog_);
    watchdog_ = -1;
    startWatchdog();
}

void ProcessCleanup::startWatchdog() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return;
    const bool isStarted = spawnWatchdog(ends[1]);
    ::close(ends[1]);
    if (!isStarted) {
        ::close(ends[0]);
        return;
    }
    watchdog_ = ends[0];
    // A watchdog that somebody has stopped must not stop this program.
    const timeval second{1, 0};
    ::setsockopt(watchdog_, SOL_SOCKET, SO_SNDTIMEO, &second, sizeof second);
    const auto send = [&](const std::string& message) {
        ::send(watchdog_, message.data(), message.size(), MSG_NOSIGNAL);
    };
    for (const int child : children_) send(WatchdogMessage::addChild + std::to_string(child));
    for (const URL& path : paths_) send(WatchdogMessage::addPath + path.native());
}

}  // namespace ReelCore
