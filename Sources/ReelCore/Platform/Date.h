#pragma once

#include <chrono>

namespace ReelCore {

/// An instant, to the nanosecond that file systems keep, from the year 1678 to 2261.
using Date = std::chrono::sys_time<std::chrono::nanoseconds>;

inline Date now() {
    return std::chrono::system_clock::now();
}

}  // namespace ReelCore
