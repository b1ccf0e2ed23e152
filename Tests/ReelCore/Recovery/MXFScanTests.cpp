#include "ReelCore/Recovery/MXFScan.h"

#include "Support/Boxes.h"
#include "Support/FolderTree.h"
#include "Support/KLV.h"

#include <limits>

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Kind = MXFScan::PartitionKind;
using BER = MXFScan::BERLength;

constexpr std::int64_t farAway = std::numeric_limits<std::int64_t>::max();

std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

std::optional<BER> berOf(std::string_view text, std::size_t at = 0) {
    return MXFScan::berLength(bytesOf(text), at);
}

bool isKey(std::string_view text, std::size_t at, std::optional<Kind> kind) {
    return MXFScan::isPartitionKey(bytesOf(text), at, kind);
}

class MXFScanTest : public testing::Test {
protected:
    std::optional<MXFScan::Walk> walk(std::string_view bytes, std::int64_t at = 0,
                                      std::optional<std::int64_t> limit = {}) const {
        const URL url = folder_.path() / "clip.mxf";
        writeFile(url, bytes);
        return MXFScan::walk(File::openForReading(url), at, limit.value_or(std::ssize(bytes)));
    }

    /// What a walk makes of three triplets in front of `behind`.
    std::optional<MXFScan::Walk> walkWithThreeInFront(std::string_view behind) const {
        return walk(three + std::string(behind));
    }

    const std::string one = triplet(essenceKey(), "picture");
    const std::string three = one + one + one;
    const MXFScan::Walk threeAlone{std::ssize(three), false, 3};

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST(MXFScanKey, Prefix_IsThatOfAPartitionPack) {
    const std::array<std::uint8_t, 13> prefix{0x06, 0x0E, 0x2B, 0x34, 0x02, 0x05, 0x01,
                                              0x01, 0x0D, 0x01, 0x02, 0x01, 0x01};

    EXPECT_EQ(MXFScan::partitionPrefix, prefix);
    EXPECT_EQ(static_cast<int>(Kind::header), 0x02);
    EXPECT_EQ(static_cast<int>(Kind::body), 0x03);
    EXPECT_EQ(static_cast<int>(Kind::footer), 0x04);
}

TEST(MXFScanKey, Kind_HasToBeThatOne) {
    for (const int kind : {2, 3, 4}) {
        for (const Kind wanted : {Kind::header, Kind::body, Kind::footer}) {
            EXPECT_EQ(isKey(partitionKey(kind), 0, wanted), static_cast<int>(wanted) == kind);
        }
    }
}

TEST(MXFScanKey, NoKind_AnyOfTheThreeWillDo) {
    for (const int kind : {0, 1, 2, 3, 4, 5, 0xFF}) {
        EXPECT_EQ(isKey(partitionKey(kind), 0, std::nullopt), kind >= 2 && kind <= 4) << kind;
    }
}

TEST(MXFScanKey, EachByteOfThePrefix_Counts) {
    for (std::size_t i = 0; i < 13; ++i) {
        std::string key = partitionKey(2);
        key[i] = static_cast<char>(key[i] ^ 1);

        EXPECT_FALSE(isKey(key, 0, Kind::header)) << i;
        EXPECT_FALSE(isKey(key, 0, std::nullopt)) << i;
    }
}

TEST(MXFScanKey, LastTwoBytes_AreOfNoAccountButMustBeThere) {
    const std::string prefix = partitionKey(2).substr(0, 14);

    EXPECT_TRUE(isKey(prefix + "xy", 0, Kind::header));
    EXPECT_FALSE(isKey(prefix + "x", 0, Kind::header));
    EXPECT_FALSE(isKey(prefix, 0, Kind::header));
}

TEST(MXFScanKey, Position_IsLookedAtAndNoOther) {
    const std::string data = "abc" + partitionKey(3);

    EXPECT_TRUE(isKey(data, 3, Kind::body));
    for (const std::size_t at : {0U, 2U, 4U, 19U, 20U}) EXPECT_FALSE(isKey(data, at, Kind::body));
    EXPECT_FALSE(isKey(data, std::numeric_limits<std::size_t>::max(), std::nullopt));
}

TEST(MXFScanLength, ShortForm_IsTheLengthItself) {
    for (const int length : {0, 1, 126, 127}) {
        EXPECT_EQ(berOf(std::string(1, static_cast<char>(length))), (BER{length, 1}));
    }
}

TEST(MXFScanLength, LongForm_IsAsManyBytesAsTheFirstSays) {
    for (int count = 1; count <= 8; ++count) {
        EXPECT_EQ(berOf(berLength(0x42, count)), (BER{0x42, count + 1})) << count;
    }
    EXPECT_EQ(berOf("\x83\x01\x02\xFF"), (BER{0x0102FF, 4}));
    EXPECT_EQ(berOf("\x84\xFF\xFF\xFF\xFF"), (BER{0xFFFFFFFF, 5}));
}

TEST(MXFScanLength, LongForm_Of8Bytes_CountsUpTo2To63) {
    EXPECT_EQ(berOf(berLength(farAway, 8)), (BER{farAway, 9}));
    EXPECT_EQ(berOf(berLength(0x8000000000000000, 8)), std::nullopt);
    EXPECT_EQ(berOf(berLength(~0UL, 8)), std::nullopt);
}

TEST(MXFScanLength, IndefiniteFormOrMoreThan8Bytes_IsNone) {
    EXPECT_EQ(berOf("\x80" + std::string(20, '\0')), std::nullopt);
    EXPECT_EQ(berOf("\x89" + std::string(20, '\0')), std::nullopt);
    EXPECT_EQ(berOf("\xFF" + std::string(200, '\0')), std::nullopt);
}

TEST(MXFScanLength, CutOffOrBehindTheEnd_IsNone) {
    EXPECT_EQ(berOf(""), std::nullopt);
    EXPECT_EQ(berOf("\x83\x01\x02"), std::nullopt);
    EXPECT_EQ(berOf("abc", 3), std::nullopt);
    EXPECT_EQ(berOf("abc", std::numeric_limits<std::size_t>::max()), std::nullopt);
}

TEST(MXFScanLength, Position_IsWhereItIsRead) {
    EXPECT_EQ(berOf("ab\x82\x01\x02", 2), (BER{0x0102, 3}));
    EXPECT_EQ(berOf("abc", 2), (BER{'c', 1}));
}

TEST_F(MXFScanTest, Walk_WholeClip_ReachesItsEndAndSeesTheFooter) {
    const std::string clip = mxfClip("picture");

    EXPECT_EQ(walk(clip), (MXFScan::Walk{std::ssize(clip), true, 3}));
}

TEST_F(MXFScanTest, Walk_FewerThanThreeTriplets_IsNone) {
    EXPECT_EQ(walk(""), std::nullopt);
    EXPECT_EQ(walk(one), std::nullopt);
    EXPECT_EQ(walk(one + one + "garbage that is no triplet at all"), std::nullopt);
    EXPECT_EQ(walk(three), threeAlone);
}

TEST_F(MXFScanTest, Walk_Garbage_EndsIt) {
    EXPECT_EQ(walkWithThreeInFront("garbage that is no triplet at all"), threeAlone);
}

TEST_F(MXFScanTest, Walk_Key_IsKnownByItsFirstFourBytes) {
    const std::string odd = triplet(std::string("\x06\x0E\x2B\x34", 4) + "any twelve..", "value");
    for (std::size_t i = 0; i < 4; ++i) {
        std::string other = odd;
        other[i] = static_cast<char>(other[i] ^ 1);

        EXPECT_EQ(walkWithThreeInFront(other), threeAlone) << i;
    }
    EXPECT_EQ(walkWithThreeInFront(odd), (MXFScan::Walk{std::ssize(three + odd), false, 4}));
}

TEST_F(MXFScanTest, Walk_LengthThatIsNone_EndsItBeforeThatTriplet) {
    const std::string value(200, '\0');
    for (const std::string& length :
         {std::string("\x80"), std::string("\x89"), berLength(0x8000000000000000, 8)}) {
        EXPECT_EQ(walkWithThreeInFront(essenceKey() + length + value), threeAlone);
        EXPECT_EQ(walk(one + one + essenceKey() + length + value + one), std::nullopt);
    }
}

TEST_F(MXFScanTest, Walk_LengthOfAnyForm_IsFollowed) {
    const std::string lengths = essenceKey() + std::string(1, '\0') + essenceKey() + "\x7F" +
                                std::string(127, 'x') + essenceKey() + berLength(300, 4) +
                                std::string(300, 'x') + essenceKey() + berLength(1, 8) + "x";

    EXPECT_EQ(walk(lengths), (MXFScan::Walk{std::ssize(lengths), false, 4}));
}

TEST_F(MXFScanTest, Walk_TripletAcrossTheLimit_EndsItAtItsStart) {
    const std::int64_t end = std::ssize(three + one);

    EXPECT_EQ(walk(three + one, 0, end), (MXFScan::Walk{end, false, 4}));
    EXPECT_EQ(walk(three + one, 0, end - 1), threeAlone);
    EXPECT_EQ(walkWithThreeInFront(one.substr(0, one.size() - 1)), threeAlone);
}

TEST_F(MXFScanTest, Walk_LargestLength_EndsItAtItsStart) {
    const std::string huge = essenceKey() + berLength(farAway, 8) + "x";

    EXPECT_EQ(walk(three + huge, 0, farAway), threeAlone);
}

TEST_F(MXFScanTest, Walk_FewerThan17BytesBeforeTheLimit_EndIt) {
    const std::string smallest = essenceKey() + std::string(1, '\0');

    EXPECT_EQ(walkWithThreeInFront(smallest.substr(0, 16)), threeAlone);
    EXPECT_EQ(walkWithThreeInFront(smallest),
              (MXFScan::Walk{std::ssize(three + smallest), false, 4}));
    EXPECT_EQ(walk(three, 0, 16), std::nullopt);
    EXPECT_EQ(walk(three, 0, 0), std::nullopt);
}

TEST_F(MXFScanTest, Walk_FileThatEndsBeforeTheLimit_EndsIt) {
    EXPECT_EQ(walk(three + one.substr(0, 16), 0, 1'000'000), threeAlone);
    EXPECT_EQ(walk(three, 1'000'000, 2'000'000), std::nullopt);
}

TEST_F(MXFScanTest, Walk_FromTheMiddle_CountsFromThere) {
    const std::string image = "something else" + mxfClip("picture") + "and more of it";

    EXPECT_EQ(walk(image, 14), (MXFScan::Walk{std::ssize(mxfClip("picture")), true, 3}));
}

TEST_F(MXFScanTest, Walk_TwoClipsOneAfterTheOther_EndsAtTheSecond) {
    const std::string first = mxfClip("first");

    EXPECT_EQ(walk(first + mxfClip("second")), (MXFScan::Walk{std::ssize(first), true, 3}));
    EXPECT_EQ(walk(first + mxfClip("second"), std::ssize(first)),
              (MXFScan::Walk{std::ssize(mxfClip("second")), true, 3}));
}

TEST_F(MXFScanTest, Walk_FooterAmongTheTriplets_IsSeenAndPassed) {
    const std::string clip = one + triplet(partitionKey(4), "footer") + one + one;

    EXPECT_EQ(walk(clip), (MXFScan::Walk{std::ssize(clip), true, 4}));
}

TEST_F(MXFScanTest, Walk_FooterThatIsCutOff_IsSeenAllTheSame) {
    const std::string footer = triplet(partitionKey(4), std::string(88, '\0'));

    EXPECT_EQ(walkWithThreeInFront(footer.substr(0, 40)),
              (MXFScan::Walk{std::ssize(three), true, 3}));
}

TEST_F(MXFScanTest, Walk_BodyPartitions_AreTripletsLikeAnyOther) {
    const std::string clip = triplet(partitionKey(2), "") + triplet(partitionKey(3), "") + one +
                             triplet(partitionKey(3), "") + one;

    EXPECT_EQ(walk(clip), (MXFScan::Walk{std::ssize(clip), false, 5}));
}
