#pragma once

#include "ReelCore/Platform/RunningChild.h"

#include <cerrno>
#include <chrono>
#include <string>

#include <sys/types.h>
#include <sys/wait.h>

namespace ReelCore {

constexpr std::chrono::milliseconds longEnough(60'000);

/// A shell script as a child, heard on its output unless the test says otherwise.
class Shell : public RunningChild {
public:
    explicit Shell(const std::string& script,
                   const Streams& streams = {.output = ChildStream::pipe()})
        : RunningChild("/bin/sh", {"-c", script}, streams) {}

    std::string readLine() {
        std::string line;
        char byte = 0;
        while (read({&byte, 1}, longEnough) == 1U && byte != '\n') line += byte;
        return line;
    }

    /// The number of a process that the script tells in a line.
    pid_t readNumber() { return std::stoi(readLine()); }
};

inline bool hasNoChildren() {
    return ::waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD;
}

}  // namespace ReelCore
