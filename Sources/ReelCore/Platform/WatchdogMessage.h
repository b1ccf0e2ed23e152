#pragma once

#include <cstddef>

namespace ReelCore {

/// What a process tells keldo-watchdog on its standard input, a socket of packets: one of these
/// letters, then the number of a process group in decimal or a path. The end of the socket is the
/// end of the process.
struct WatchdogMessage {
    static constexpr char addChild = 'C';
    static constexpr char removeChild = 'c';
    static constexpr char addPath = 'P';
    static constexpr char removePath = 'p';

    static constexpr std::size_t mostBytes = 8192;
};

}  // namespace ReelCore
