#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>
#include <vector>

namespace ReelCore {

/// Whole runs of external programs, by path and explicit argument list and never through a shell;
/// RunningChild is for those that are watched on their way. Each run waits, without a time limit,
/// until the program has closed the stream that is read and has ended, and throws SystemError if
/// it can't be started, or if the system does not tell how it ended: then it may have succeeded or
/// not. A stream that is not read goes nowhere, so that no child waits for ever to be heard.
struct ChildProcess {
    struct Outcome {
        /// The exit status; for a child that a signal ended, 128 and the signal's number.
        int status = 0;
        /// What the child wrote, in the order written.
        std::string output;
    };

    /// Reads standard output and standard error together.
    static Outcome run(const URL& program, const std::vector<std::string>& arguments);

    /// Reads standard output.
    static Outcome readOutput(const URL& program, const std::vector<std::string>& arguments);

    /// Reads standard error, of which the last 256 KiB are kept, from the beginning of a UTF-8
    /// character on: a child may complain for hours.
    static Outcome readError(const URL& program, const std::vector<std::string>& arguments);

    /// Reads neither, and gives the exit status.
    static int status(const URL& program, const std::vector<std::string>& arguments);
};

}  // namespace ReelCore
