#pragma once

#include "ReelCore/Platform/Arithmetic.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace ReelCore {

/// Appends a number with its highest byte first.
template <std::unsigned_integral Number>
void appendBigEndian(std::vector<std::byte>& bytes, Number number) {
    for (std::size_t shift = sizeof(Number) * 8; shift > 0; shift -= 8) {
        bytes.push_back(static_cast<std::byte>(number >> (shift - 8) & 0xFFU));
    }
}

/// The number in 32 bits. Throws OutOfRange where it does not fit.
inline std::uint32_t exact32(std::int64_t number) {
    if (number < 0 || number > std::numeric_limits<std::uint32_t>::max()) throw OutOfRange();
    return static_cast<std::uint32_t>(number);
}

}  // namespace ReelCore
