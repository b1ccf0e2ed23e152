#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>
#include <vector>

namespace ReelCore {

/// One run of an external program, started with an explicit argument list and never through a
/// shell. The child inherits nothing but the environment, the working directory and its three
/// standard streams.
struct ChildProcess {
    struct Outcome {
        /// The exit status; for a child that a signal ended, 128 and the signal's number.
        int status = 0;
        /// All that the child wrote to standard output and standard error, in the order written.
        std::string output;
    };

    /// Runs `program` (a path) with `arguments` and an empty standard input, and waits until it
    /// has closed its output and ended; there is no time limit. Throws SystemError if the program
    /// can't be started, or if the system does not tell how it ended: then it may have succeeded or
    /// not.
    static Outcome run(const URL& program, const std::vector<std::string>& arguments);

    /// Ends every child that any thread is still waiting for. For the end of the application: what
    /// a dropped job started must not outlive it.
    static void endAll();
};

}  // namespace ReelCore
