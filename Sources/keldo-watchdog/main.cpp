// Outlives the process that starts it, and cleans up behind it: see
// ReelCore/Platform/ProcessCleanup.h.

#include "ReelCore/Platform/WatchdogMessage.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace {

using ReelCore::WatchdogMessage;

struct Entries {
    std::set<pid_t> groups;
    std::set<std::string> paths;

    void take(const std::string& message) {
        if (message.empty()) return;
        const std::string what = message.substr(1);
        const auto group = static_cast<pid_t>(std::strtol(what.c_str(), nullptr, 10));
        switch (message[0]) {
            case WatchdogMessage::addChild:
                groups.insert(group);
                break;
            case WatchdogMessage::removeChild:
                groups.erase(group);
                break;
            case WatchdogMessage::addPath:
                paths.insert(what);
                break;
            case WatchdogMessage::removePath:
                paths.erase(what);
                break;
        }
    }

    /// What is gone is forgotten, so that nobody else's group of that number is meant.
    void signalGroups(int number) {
        std::erase_if(groups, [&](pid_t group) {
            return group <= 1 || (::kill(-group, number) != 0 && errno == ESRCH);
        });
    }
};

Entries heardUntilTheEnd() {
    Entries entries;
    std::array<char, WatchdogMessage::mostBytes> packet{};
    for (;;) {
        const ssize_t count = ::recv(STDIN_FILENO, packet.data(), packet.size(), 0);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return entries;
        entries.take(std::string(packet.data(), static_cast<std::size_t>(count)));
    }
}

void cleanUp(Entries entries) {
    entries.signalGroups(SIGTERM);
    entries.signalGroups(SIGCONT);
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (!entries.groups.empty() && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        entries.signalGroups(0);
    }
    entries.signalGroups(SIGKILL);
    std::error_code ignored;
    for (const std::string& path : entries.paths) std::filesystem::remove_all(path, ignored);
}

}  // namespace

int main() {
    if (const pid_t child = ::fork(); child != 0) ::_exit(child < 0 ? EXIT_FAILURE : EXIT_SUCCESS);
    // What a terminal or a session sends to the process is not meant for who cleans up behind it.
    ::setsid();
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) ::signal(number, SIG_IGN);
    // No drive is kept from being unmounted.
    if (::chdir("/") != 0) return EXIT_FAILURE;
    cleanUp(heardUntilTheEnd());
    ::_exit(EXIT_SUCCESS);
}
