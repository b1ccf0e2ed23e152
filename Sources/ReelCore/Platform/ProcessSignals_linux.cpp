#include "ReelCore/Platform/ProcessCleanup.h"
#include "ReelCore/Platform/ProcessSignals.h"
#include "ReelCore/Platform/SystemError.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace ReelCore {

namespace {

volatile std::sig_atomic_t toTheThread = -1;

/// Only passes the number on: hardly anything is allowed in here.
void passOn(int number) {
    const int before = errno;
    const auto byte = static_cast<unsigned char>(number);
    static_cast<void>(::write(toTheThread, &byte, 1));
    errno = before;
}

void dieOfTheNextSignal(int from) {
    unsigned char byte = 0;
    while (::read(from, &byte, 1) != 1) {
    }
    ProcessCleanup::shared().run();
    std::signal(byte, SIG_DFL);
    ::kill(::getpid(), byte);
    // The first process of a container does not die of it.
    ::_exit(128 + byte);
}

}  // namespace

void cleanUpOnSignals() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throwSystemError();
    toTheThread = ends[1];
    // Who started this program may have had it ignored, and then no child could be waited for.
    std::signal(SIGCHLD, SIG_DFL);
    std::thread([from = ends[0]] { dieOfTheNextSignal(from); }).detach();
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction action {};
        if (::sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = passOn;
        action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
        ::sigaction(number, &action, nullptr);
    }
}

}  // namespace ReelCore
