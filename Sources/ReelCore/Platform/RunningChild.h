#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/URL.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
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
/// through a shell. It inherits nothing but the environment, the working folder and the streams
/// named; the standard input is empty unless told otherwise. One thread at a time.
///
/// The child leads a process group of its own: what a terminal sends to this program (Ctrl-C) does
/// not reach it.
///
/// The child outlives neither this object (left without `wait`, as by an exception, it is ended)
/// nor this process (see ProcessCleanup).
class RunningChild {
public:
    struct Streams {
        ChildStream output = ChildStream::nowhere();
        ChildStream error = ChildStream::nowhere();
        int input = -1;  ///< A descriptor that is to be the standard input; -1 for an empty one.
    };

    struct Surroundings {
        URL workingFolder = {};                               ///< Empty for this process's own.
        std::map<std::string, std::string> environment = {};  ///< Beside this process's own.
        /// Leaves the processor and the drives to others who want them, and so does what it starts
        /// itself. Where the system does not grant that, it runs as others do.
        bool yields = false;
    };

    /// Throws SystemError if `program` (a path) can't be started or the working folder is missing,
    /// and ECANCELED once the process is coming to its end.
    RunningChild(const URL& program, const std::vector<std::string>& arguments,
                 const Streams& streams);
    RunningChild(const URL& program, const std::vector<std::string>& arguments,
                 const Streams& streams, const Surroundings& surroundings);
    ~RunningChild();
    RunningChild(const RunningChild&) = delete;
    RunningChild& operator=(const RunningChild&) = delete;

    /// Waits up to `patience` for the child to write and reads what is there, at most `into`: 0 at
    /// the end of the stream, as after `end`; absent if nothing came. Throws SystemError if the
    /// stream can't be read.
    std::optional<std::size_t> read(std::span<char> into, std::chrono::milliseconds patience);

    /// Reads to the end of the stream.
    std::string readAll();

    /// Reads to the end of the stream and holds nothing: `take` gets each piece as it comes.
    void readAll(const std::function<void(std::string_view)>& take);

    /// Asks the child and what it has started itself to end (SIGTERM), and comes back at once: most
    /// programs close their files first. Does nothing to a child that has been waited for.
    void askToEnd();

    /// Makes the child and what it has started itself end (SIGKILL), whatever they are at. Does
    /// nothing to a child that has been waited for.
    void kill();

    /// Waits up to `patience` until the child has ended and nobody has the stream any more, and
    /// drops what comes on it, so that the child does not wait to be heard. False if that took too
    /// long. `wait` tells how it ended.
    bool waitForEnd(std::chrono::milliseconds patience);

    /// Asks, waits up to three seconds and kills; then the stream is at its end.
    void end();

    /// Waits for the child's end and gives its exit status, for a child that a signal ended 128 and
    /// the signal's number. Throws SystemError if the system does not tell, as where the process
    /// ignores the signal of that, or after `end` or another `wait`.
    int wait();

private:
    class Pipe;

    bool dropWhatComes();
    bool hasEnded() const;
    std::optional<int> reap();

    std::unique_ptr<Pipe> pipe_;
    int number_;
    bool isReaped_ = false;
};

}  // namespace ReelCore
