#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/URL.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ReelCore {

/// Where an output stream of a child goes.
class ChildStream {
public:
    static ChildStream nowhere() { return ChildStream(Kind::nowhere, -1); }

    /// To this process. Where both streams go there, they come together in the order written.
    static ChildStream pipe() { return ChildStream(Kind::pipe, -1); }

    /// On into a file that is open for writing.
    static ChildStream file(const File& file) { return ChildStream(Kind::file, file.descriptor()); }

private:
    friend class RunningChild;
    enum class Kind { nowhere, pipe, file };

    ChildStream(Kind kind, int descriptor) : kind_(kind), descriptor_(descriptor) {}

    Kind kind_;
    int descriptor_;
};

/// An external program that runs beside this one, started with an explicit argument list and never
/// through a shell. It inherits nothing but the environment, the working folder, an empty standard
/// input and the two streams named. One thread at a time.
///
/// The child leads a process group of its own: what a terminal sends to this program (Ctrl-C) does
/// not reach it.
///
/// The child never outlives this object: left without `wait`, as by an exception, it is ended.
class RunningChild {
public:
    struct Streams {
        ChildStream output = ChildStream::nowhere();
        ChildStream error = ChildStream::nowhere();
    };

    /// Throws SystemError if `program` (a path) can't be started.
    RunningChild(const URL& program, const std::vector<std::string>& arguments,
                 const Streams& streams);
    ~RunningChild();
    RunningChild(const RunningChild&) = delete;
    RunningChild& operator=(const RunningChild&) = delete;

    /// Waits up to `patience` for the child to write and reads what is there, at most `into`: 0 at
    /// the end of the stream, as after `end`; absent if nothing came. Throws SystemError if the
    /// stream can't be read.
    std::optional<std::size_t> read(std::span<char> into, std::chrono::milliseconds patience);

    /// Reads to the end of the stream.
    std::string readAll();

    /// Closes the stream, asks the child and what it has started itself to end (SIGTERM), and makes
    /// them end (SIGKILL) once the child has ended or half a second has passed. Does nothing to a
    /// child that has been waited for.
    void end();

    /// Waits for the child's end and gives its exit status, for a child that a signal ended 128 and
    /// the signal's number. Throws SystemError if the system does not tell, as where the process
    /// ignores the signal of that, or after `end` or another `wait`.
    int wait();

    /// Asks every child of this process that runs, and what it has started itself, to end
    /// (SIGTERM). Any thread.
    static void endAll();

private:
    class Pipe;

    /// Returns early where the child has ended.
    void waitForEnd(std::chrono::milliseconds time) const;
    std::optional<int> reap();

    std::unique_ptr<Pipe> pipe_;
    int number_;
    bool isReaped_ = false;
};

}  // namespace ReelCore
