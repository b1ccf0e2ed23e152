#include "Support/Forked.h"

#include "ReelCore/Platform/SystemError.h"

#include <cerrno>

#include <sys/wait.h>
#include <unistd.h>

namespace TestSupport {

namespace {

constexpr int died = 255;

[[noreturn]] void runAndExit(const std::function<int()>& body) noexcept {
    int status = died;
    try {
        status = body();
    } catch (...) {
        // Told by the status.
    }
    ::_exit(status);
}

}  // namespace

int statusOfForked(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child < 0) ReelCore::throwSystemError();
    if (child == 0) runAndExit(body);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) ReelCore::throwSystemError();
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : died;
}

}  // namespace TestSupport
