#include "ReelCore/Hashing/HashAlgorithm.h"

#include "HashOf.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using TestSupport::hashOf;

TEST(HashAlgorithm, AllCases_StandInTheOrderOfTheMenu) {
    const auto cases = allCases<HashAlgorithm>();

    EXPECT_EQ(std::vector(cases.begin(), cases.end()),
              (std::vector{HashAlgorithm::xxhash64, HashAlgorithm::md5, HashAlgorithm::sha256}));
}

TEST(HashAlgorithm, RawValueAndTag_AreTheSameText) {
    EXPECT_EQ(rawValue(HashAlgorithm::xxhash64), "xxhash64");
    EXPECT_EQ(rawValue(HashAlgorithm::md5), "md5");
    EXPECT_EQ(rawValue(HashAlgorithm::sha256), "sha256");
    for (const HashAlgorithm one : allCases<HashAlgorithm>()) EXPECT_EQ(mhlTag(one), rawValue(one));
}

TEST(HashAlgorithm, FromRawValue_TakesExactTextsOnly) {
    for (const HashAlgorithm one : allCases<HashAlgorithm>()) {
        EXPECT_EQ(fromRawValue<HashAlgorithm>(rawValue(one)), one);
    }
    for (const char* other : {"", "MD5", "Sha256", "xxhash", "xxhash64 ", " md5", "sha-256"}) {
        EXPECT_EQ(fromRawValue<HashAlgorithm>(other), std::nullopt) << other;
    }
}

TEST(HashAlgorithm, MakeHasher_HashesTheEmptyStreamWithSeedZero) {
    EXPECT_EQ(hashOf(HashAlgorithm::xxhash64, ""), "ef46db3751d8e999");
    EXPECT_EQ(hashOf(HashAlgorithm::md5, ""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(hashOf(HashAlgorithm::sha256, ""),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(HashAlgorithm, MakeHasher_GivesAFreshHasherEachTime) {
    for (const HashAlgorithm one : allCases<HashAlgorithm>()) {
        const auto used = makeHasher(one);
        used->update(TestSupport::bytesOf("yesterday's card"));

        EXPECT_EQ(makeHasher(one)->finalizeHex(), hashOf(one, "")) << rawValue(one);
    }
}

}  // namespace
