#include "ReelCore/Hashing/XXH64Hasher.h"

#include <bit>
#include <cstring>

#include <fmt/format.h>

namespace ReelCore {

namespace {

constexpr std::uint64_t prime1 = 0x9E3779B185EBCA87U;
constexpr std::uint64_t prime2 = 0xC2B2AE3D27D4EB4FU;
constexpr std::uint64_t prime3 = 0x165667B19E3779F9U;
constexpr std::uint64_t prime4 = 0x85EBCA77C2B2AE63U;
constexpr std::uint64_t prime5 = 0x27D4EB2F165667C5U;

constexpr std::size_t stripeSize = 32;

template <class Word>
Word readLittleEndian(const std::byte* at) {
    static_assert(std::endian::native == std::endian::little);
    Word word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

std::uint64_t round(std::uint64_t lane, std::uint64_t word) {
    return std::rotl(lane + word * prime2, 31) * prime1;
}

std::uint64_t merge(std::uint64_t hash, std::uint64_t lane) {
    return (hash ^ round(0, lane)) * prime1 + prime4;
}

std::uint64_t mixTail(std::uint64_t hash, const std::byte* at, std::size_t left) {
    for (; left >= 8; at += 8, left -= 8) {
        hash ^= round(0, readLittleEndian<std::uint64_t>(at));
        hash = std::rotl(hash, 27) * prime1 + prime4;
    }
    if (left >= 4) {
        hash ^= readLittleEndian<std::uint32_t>(at) * prime1;
        hash = std::rotl(hash, 23) * prime2 + prime3;
        at += 4;
        left -= 4;
    }
    for (; left > 0; ++at, --left) {
        hash ^= std::to_integer<std::uint64_t>(*at) * prime5;
        hash = std::rotl(hash, 11) * prime1;
    }
    return hash;
}

std::uint64_t avalanche(std::uint64_t hash) {
    hash = (hash ^ (hash >> 33)) * prime2;
    hash = (hash ^ (hash >> 29)) * prime3;
    return hash ^ (hash >> 32);
}

}  // namespace

XXH64Hasher::XXH64Hasher(std::uint64_t seed)
    : v1_(seed + prime1 + prime2), v2_(seed + prime2), v3_(seed), v4_(seed - prime1), seed_(seed) {}

void XXH64Hasher::update(std::span<const std::byte> bytes) {
    if (bytes.empty()) return;
    totalLen_ += bytes.size();
    if (memSize_ + bytes.size() < stripeSize) {
        std::memcpy(mem_.data() + memSize_, bytes.data(), bytes.size());
        memSize_ += bytes.size();
        return;
    }

    // In locals, so that the lanes stay in registers: the bytes could alias the members.
    std::uint64_t lane1 = v1_, lane2 = v2_, lane3 = v3_, lane4 = v4_;
    const auto consume = [&](const std::byte* stripe) {
        lane1 = round(lane1, readLittleEndian<std::uint64_t>(stripe));
        lane2 = round(lane2, readLittleEndian<std::uint64_t>(stripe + 8));
        lane3 = round(lane3, readLittleEndian<std::uint64_t>(stripe + 16));
        lane4 = round(lane4, readLittleEndian<std::uint64_t>(stripe + 24));
    };
    if (memSize_ > 0) {
        const std::size_t taken = stripeSize - memSize_;
        std::memcpy(mem_.data() + memSize_, bytes.data(), taken);
        bytes = bytes.subspan(taken);
        consume(mem_.data());
        memSize_ = 0;
    }
    const std::byte* at = bytes.data();
    const std::byte* const lastStripesEnd = at + bytes.size() / stripeSize * stripeSize;
    for (; at != lastStripesEnd; at += stripeSize) consume(at);
    v1_ = lane1, v2_ = lane2, v3_ = lane3, v4_ = lane4;

    memSize_ = bytes.size() % stripeSize;
    std::memcpy(mem_.data(), at, memSize_);
}

std::uint64_t XXH64Hasher::value() const {
    std::uint64_t hash = seed_ + prime5;
    if (totalLen_ >= stripeSize) {
        hash = std::rotl(v1_, 1) + std::rotl(v2_, 7) + std::rotl(v3_, 12) + std::rotl(v4_, 18);
        for (const std::uint64_t lane : {v1_, v2_, v3_, v4_}) hash = merge(hash, lane);
    }
    return avalanche(mixTail(hash + totalLen_, mem_.data(), memSize_));
}

std::string XXH64Hasher::finalizeHex() const {
    return fmt::format("{:016x}", value());
}

}  // namespace ReelCore
