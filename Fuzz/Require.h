#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// Ends the run as a finding if an invariant does not hold.
#define REQUIRE(condition)                                           \
    do {                                                             \
        if (!(condition)) {                                          \
            std::fprintf(stderr, "does not hold: %s\n", #condition); \
            std::abort();                                            \
        }                                                            \
    } while (false)

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}
