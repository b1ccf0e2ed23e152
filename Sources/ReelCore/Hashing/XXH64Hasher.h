#pragma once

#include "ReelCore/Hashing/StreamingHasher.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace ReelCore {

/// XXH64 as published (xxHash fast digest algorithm, version 0.1.1), in its canonical text form:
/// 16 digits, the most significant first. Whole 32-byte stripes are hashed in the caller's buffer;
/// only the ends of a chunk are copied.
class XXH64Hasher final : public StreamingHasher {
public:
    explicit XXH64Hasher(std::uint64_t seed);

    XXH64Hasher(const XXH64Hasher&) = delete;
    XXH64Hasher& operator=(const XXH64Hasher&) = delete;

    void update(std::span<const std::byte> bytes) override;
    std::string finalizeHex() const override;

private:
    std::uint64_t value() const;

    std::uint64_t v1_;
    std::uint64_t v2_;
    std::uint64_t v3_;
    std::uint64_t v4_;
    std::array<std::byte, 32> mem_{};
    std::size_t memSize_ = 0;
    std::uint64_t totalLen_ = 0;
    std::uint64_t seed_;
};

}  // namespace ReelCore
