#include "ReelCore/Platform/BytePairs.h"

#include <algorithm>

namespace ReelCore {

namespace {

using Pairs = std::array<BytePair, 4>;

/// Without a branch within a block, so that the compiler can make it a few wide instructions.
[[gnu::always_inline]] inline std::size_t search(const unsigned char* bytes, std::size_t size,
                                                 std::size_t from, const Pairs& pairs) {
    const auto [a, b, c, d] = pairs;
    for (; from < size && size - from > bytePairBlock; from += bytePairBlock) {
        unsigned char found = 0;
        for (std::size_t i = from; i < from + bytePairBlock; ++i) {
            const unsigned char first = bytes[i];
            const unsigned char second = bytes[i + 1];
            const int any = ((first == a.first) & (second == a.second)) |
                            ((first == b.first) & (second == b.second)) |
                            ((first == c.first) & (second == c.second)) |
                            ((first == d.first) & (second == d.second));
            found = static_cast<unsigned char>(found | any);
        }
        if (found != 0) return from;
    }
    return std::min(from, size);
}

#ifdef __x86_64__

[[gnu::target("avx2")]] std::size_t searchWide(const unsigned char* bytes, std::size_t size,
                                               std::size_t from, const Pairs& pairs) {
    return search(bytes, size, from, pairs);
}

bool isWide() {
    static const bool answer = __builtin_cpu_supports("avx2") != 0;
    return answer;
}

#endif

}  // namespace

std::size_t findBytePair(std::span<const std::byte> bytes, std::size_t from, const Pairs& pairs) {
    const auto* begin = reinterpret_cast<const unsigned char*>(bytes.data());
#ifdef __x86_64__
    if (isWide()) return searchWide(begin, bytes.size(), from, pairs);
#endif
    return search(begin, bytes.size(), from, pairs);
}

}  // namespace ReelCore
