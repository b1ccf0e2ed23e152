#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace TestSupport {

/// Images made of what media begins with, in disorder: boxes, triplets, chunks, frames and blank
/// flash whose sizes lead to each other, into each other, or beyond the end. The same for the same
/// seed, everywhere.
class HostileImage {
public:
    explicit HostileImage(std::uint64_t seed) : random_(seed) {}

    std::string make(std::size_t size) {
        std::string image;
        widest_ = 1U << (4 + below(16));
        const std::uint32_t kinds = below(5);
        while (image.size() < size) {
            const std::uint32_t one = kinds == 4 ? below(5) : below(8) == 0 ? below(5) : kinds;
            image += one == 0   ? box()
                     : one == 1 ? triplet()
                     : one == 2 ? wave()
                     : one == 3 ? frame()
                                : filling();
        }
        image.resize(size);
        return image;
    }

private:
    std::uint32_t below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(random_() % limit);
    }

    std::uint32_t length(std::uint32_t least) {
        switch (below(8)) {
            case 0:
                return below(least + 2);
            case 1:
                return 1U << below(32);
            case 2:
            case 3:
                return least + below(widest_) / 8 * 8;
            default:
                return least + below(24);
        }
    }

    static std::string bytes(std::uint64_t number, int count, bool bigFirst) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            const int shift = 8 * (bigFirst ? count - 1 - i : i);
            text += static_cast<char>(number >> shift & 0xFFU);
        }
        return text;
    }

    std::string box() {
        static constexpr std::string_view types[] = {"ftyp", "ftyp", "free", "free", "wide", "uuid",
                                                     "skip", "moof", "moov", "mdat", "junk"};
        // Index and media are rare, so that ways are long.
        const std::string type(types[below(below(6) == 0 ? 11 : 8)]);
        if (below(24) == 0) return bytes(1, 4, true) + type + bytes(length(16), 8, true);
        const std::uint32_t size = length(8);
        return bytes(size, 4, true) + type +
               std::string(below(2) == 0 ? 0 : std::min(size, 40U), 'b');
    }

    std::string triplet() {
        std::string key("\x06\x0E\x2B\x34\x02\x05\x01\x01\x0D\x01\x02\x01\x01", 13);
        key += static_cast<char>(2 + below(4));
        key += "kk";
        if (below(4) == 0) key[5] = 'e';
        const std::uint32_t size = length(0);
        if (below(3) == 0) return key + '\x84' + bytes(size, 4, true);
        if (below(20) == 0) return key + static_cast<char>(0x80 + below(12)) + bytes(size, 8, true);
        return key + static_cast<char>(size % 128) +
               std::string(below(2) == 0 ? 0 : size % 128, 'v');
    }

    std::string wave() {
        std::string text = "RIFF" + bytes(below(2) == 0 ? 0 : length(4), 4, false) + "WAVE";
        for (std::uint32_t chunks = below(5); chunks > 0; --chunks) {
            const std::uint32_t size = below(3) == 0 ? 0 : length(0);
            text += below(6) == 0 ? "data" : below(12) == 0 ? "a\nbc" : "JUNK";
            text +=
                bytes(size, 4, false) + std::string(below(2) == 0 ? 0 : std::min(size, 30U), 's');
        }
        return text;
    }

    std::string frame() {
        const std::uint32_t size = length(20);
        return bytes(size, 4, true) + "icpf" +
               std::string(below(2) == 0 ? 0 : std::min(size, 40U), 'p');
    }

    std::string filling() {
        const char one = below(3) == 0 ? 'x' : below(2) == 0 ? '\0' : '\xFF';
        return std::string(below(16) == 0 ? below(9000) : below(60), one);
    }

    std::mt19937_64 random_;
    std::uint32_t widest_ = 16;
};

}  // namespace TestSupport
