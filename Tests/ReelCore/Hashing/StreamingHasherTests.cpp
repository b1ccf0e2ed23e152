// What every algorithm promises, whatever it computes.

#include "HashOf.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <algorithm>
#include <functional>
#include <random>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using TestSupport::bytesOf;
using TestSupport::hashOf;

class EveryAlgorithm : public testing::TestWithParam<HashAlgorithm> {
protected:
    const HashAlgorithm algorithm = GetParam();
};

INSTANTIATE_TEST_SUITE_P(StreamingHasher, EveryAlgorithm,
                         testing::ValuesIn(allCases<HashAlgorithm>().begin(),
                                           allCases<HashAlgorithm>().end()),
                         [](const auto& one) { return std::string(rawValue(one.param)); });

std::string hashInChunks(HashAlgorithm algorithm, std::string_view text,
                         const std::function<std::size_t()>& nextSize) {
    const auto hasher = makeHasher(algorithm);
    for (auto rest = bytesOf(text); !rest.empty();) {
        const std::size_t size = std::min(nextSize(), rest.size());
        hasher->update(rest.first(size));
        rest = rest.subspan(size);
    }
    return hasher->finalizeHex();
}

TEST_P(EveryAlgorithm, ChunksOfOneSize_GiveTheHashOfOneCall) {
    const std::string text = TestSupport::noise(10'007);
    const std::string whole = hashOf(algorithm, text);

    for (const std::size_t size : {1U, 31U, 32U, 33U, 4096U}) {
        EXPECT_EQ(hashInChunks(algorithm, text, [&] { return size; }), whole) << size;
    }
}

TEST_P(EveryAlgorithm, ChunksOfRandomSizes_GiveTheHashOfOneCall) {
    const std::string text = TestSupport::noise(20'011);
    const std::string whole = hashOf(algorithm, text);
    std::mt19937 random(5);

    for (int round = 0; round < 200; ++round) {
        EXPECT_EQ(hashInChunks(algorithm, text, [&] { return random() % 100; }), whole) << round;
    }
}

TEST_P(EveryAlgorithm, EmptyAndAbsentViews_CountForNothing) {
    const auto hasher = makeHasher(algorithm);

    hasher->update({});
    hasher->update(bytesOf("reel"));
    hasher->update(bytesOf(""));
    hasher->update(std::span<const std::byte>(static_cast<const std::byte*>(nullptr), 0));

    EXPECT_EQ(hasher->finalizeHex(), hashOf(algorithm, "reel"));
}

TEST_P(EveryAlgorithm, FinalizedTwice_GivesTheSameTextAndTheStreamMayGoOn) {
    const auto hasher = makeHasher(algorithm);
    const std::string text = TestSupport::noise(77);
    hasher->update(bytesOf(text).first(40));

    const std::string first = hasher->finalizeHex();
    const std::string second = hasher->finalizeHex();
    hasher->update(bytesOf(text).subspan(40));

    EXPECT_EQ(first, hashOf(algorithm, std::string_view(text).substr(0, 40)));
    EXPECT_EQ(second, first);
    EXPECT_EQ(hasher->finalizeHex(), hashOf(algorithm, text));
}

TEST_P(EveryAlgorithm, TwoHashers_DoNotShareAnything) {
    const auto one = makeHasher(algorithm);
    const auto other = makeHasher(algorithm);

    one->update(bytesOf("left"));
    other->update(bytesOf("right"));

    EXPECT_EQ(one->finalizeHex(), hashOf(algorithm, "left"));
    EXPECT_EQ(other->finalizeHex(), hashOf(algorithm, "right"));
}

TEST_P(EveryAlgorithm, Result_IsLowercaseHexadecimalOfTheFullLength) {
    const std::size_t digits = algorithm == HashAlgorithm::xxhash64 ? 16
                               : algorithm == HashAlgorithm::md5    ? 32
                                                                    : 64;
    // Among a thousand results every algorithm has some that begin with a zero.
    int leadingZeros = 0;
    for (int i = 0; i < 1'000; ++i) {
        const std::string hash = hashOf(algorithm, std::to_string(i));
        EXPECT_EQ(hash.size(), digits);
        EXPECT_EQ(hash.find_first_not_of("0123456789abcdef"), hash.npos) << hash;
        leadingZeros += hash.front() == '0';
    }
    EXPECT_GT(leadingZeros, 0);
}

TEST_P(EveryAlgorithm, RealFiles_HaveTheHashOfTheSystemsOwnTool) {
    const TestSupport::TemporaryFolder folder;
    const std::string path = folder.path() / "clip.mov";
    for (const std::size_t size : {0U, 1U, 31U, 32U, 4'096U, 5'000'011U}) {
        const std::string text = TestSupport::noise(size, static_cast<unsigned>(size));
        TestSupport::writeFile(path, text);

        const std::string said = algorithm == HashAlgorithm::xxhash64
                                     ? TestSupport::outputOf("xxhsum", {"-q", "-H1", path})
                                 : algorithm == HashAlgorithm::md5
                                     ? TestSupport::outputOf("md5sum", {path})
                                     : TestSupport::outputOf("sha256sum", {path});

        EXPECT_EQ(hashOf(algorithm, text), said.substr(0, said.find(' '))) << size;
    }
}

}  // namespace
