#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace ReelCore {

/// Two bytes, one behind the other.
struct BytePair {
    unsigned char first;
    unsigned char second;
};

inline constexpr std::size_t bytePairBlock = 64;

/// The first block of 64 bytes, counted on from `from`, in which any of the pairs begins, or which
/// is the last or less than whole, about which nothing is told; the end of `bytes` if `from` lies
/// there. Uses what the processor has for many bytes at a time.
std::size_t findBytePair(std::span<const std::byte> bytes, std::size_t from,
                         const std::array<BytePair, 4>& pairs);

}  // namespace ReelCore
