#pragma once

#include <cstdint>
#include <source_location>
#include <string_view>

namespace ReelCore {

/// Ends the process with one line on standard error that says what and where. For faults that no
/// caller can answer for: arithmetic overflow, impossible conversions, a system that lacks its
/// foundations. Never an exception, so that no catch can go on from a wrong number.
[[noreturn]] void fatal(std::string_view what,
                        std::source_location where = std::source_location::current());

/// The sum, or a fatal fault on overflow.
inline std::int64_t checkedAdd(std::int64_t left, std::int64_t right,
                               std::source_location where = std::source_location::current()) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(left, right, &sum)) fatal("arithmetic overflow", where);
    return sum;
}

}  // namespace ReelCore
