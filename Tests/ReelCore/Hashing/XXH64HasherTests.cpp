#include "ReelCore/Hashing/XXH64Hasher.h"

#include "HashOf.h"
#include "Support/FolderTree.h"

#include <random>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <xxhash.h>

namespace {

using namespace ReelCore;
using TestSupport::bytesOf;
using TestSupport::hashOf;

std::string hashOf(std::string_view text, std::uint64_t seed) {
    XXH64Hasher hasher(seed);
    return TestSupport::hashOf(hasher, text);
}

/// What the reference library says.
std::string reference(std::string_view text, std::uint64_t seed) {
    return fmt::format("{:016x}", XXH64(text.data(), text.size(), seed));
}

/// The bytes of the self-test that the algorithm was published with.
std::string publishedBytes(std::size_t count) {
    std::uint32_t state = 2654435761U;
    std::string bytes;
    for (; bytes.size() < count; state *= state) bytes += static_cast<char>(state >> 24);
    return bytes;
}

TEST(XXH64Hasher, PublishedVectors_WithBothSeeds) {
    constexpr std::uint64_t seed = 2654435761U;

    EXPECT_EQ(hashOf("", 0), "ef46db3751d8e999");
    EXPECT_EQ(hashOf("", seed), "ac75fda2929b17ef");
    EXPECT_EQ(hashOf(publishedBytes(1), 0), "4fce394cc88952d8");
    EXPECT_EQ(hashOf(publishedBytes(1), seed), "739840cb819fa723");
    EXPECT_EQ(hashOf(publishedBytes(14), 0), "cffa8db881bc3a3d");
    EXPECT_EQ(hashOf(publishedBytes(14), seed), "5b9611585efcc9cb");
    EXPECT_EQ(hashOf(publishedBytes(101), 0), "0eab543384f878ad");
    EXPECT_EQ(hashOf(publishedBytes(101), seed), "caa65939306f1e21");
}

TEST(XXH64Hasher, EveryLengthUpToFourStripes_AgreesWithTheReference) {
    const std::string bytes = TestSupport::noise(128);

    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const auto text = std::string_view(bytes).substr(0, length);
        EXPECT_EQ(hashOf(text, 0), reference(text, 0)) << length;
    }
}

TEST(XXH64Hasher, RandomLengthsSeedsAndAlignments_AgreeWithTheReference) {
    const std::string bytes = TestSupport::noise(70'000);
    std::mt19937_64 random(64);

    for (int round = 0; round < 2'000; ++round) {
        const std::size_t start = random() % 64;
        const std::size_t length = random() % (bytes.size() - start);
        const std::uint64_t seed = random();
        const auto text = std::string_view(bytes).substr(start, length);
        ASSERT_EQ(hashOf(text, seed), reference(text, seed)) << length << " from " << start;
    }
}

// 31 bytes never reach the lanes, 32 do and leave nothing over.
TEST(XXH64Hasher, StreamsAroundOneStripe_AgreeWithTheReferenceHoweverTheyAreCut) {
    for (const std::size_t length : {31U, 32U, 33U, 63U, 64U, 65U}) {
        const std::string bytes = TestSupport::noise(length);
        for (std::size_t cut = 0; cut <= length; ++cut) {
            XXH64Hasher hasher(7);
            hasher.update(bytesOf(bytes).first(cut));
            hasher.update(bytesOf(bytes).subspan(cut));
            ASSERT_EQ(hasher.finalizeHex(), reference(bytes, 7)) << cut << " of " << length;
        }
    }
}

TEST(XXH64Hasher, ValueWithLeadingZeros_StillHasSixteenDigits) {
    EXPECT_EQ(hashOf("clip 14066696", 0), "000000af8fcb7992");
}

}  // namespace
