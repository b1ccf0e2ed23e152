#include "ReelCore/Recovery/CarveGround.h"

#include "CarveImage.h"
#include "ReelCore/Recovery/Shortcuts.h"
#include "Support/Boxes.h"
#include "Support/CarveModel.h"
#include "Support/CountedReads.h"
#include "Support/KLV.h"
#include "Support/RIFF.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

constexpr std::int64_t mebibyte = 0x100000;

/// Header partitions side by side whose lengths lead to places all over the image, where nothing
/// stands.
std::string partitionsThatLeadFar(std::size_t count, std::uint32_t far) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) {
        const auto length = static_cast<std::uint32_t>(i * 2'654'435'761U % far);
        bytes += partitionKey(2) + '\x84' + bigEndian(5 * mebibyte + length, 4);
    }
    return bytes;
}

/// Walks that read until they are cut off, each of half of what the one before left.
void useUp(CarveGround& ground) {
    for (int walk = 0; walk < 40; ++walk) {
        ground.begin(0);
        while (!ground.isCutOff()) ground.read(0, 16);
    }
}

TEST(CarveGround, FloodOfBeginningsThatLeadFar_IsFollowedAsFarAsTheCreditGoes) {
    CarveImage image(partitionsThatLeadFar(400'000, 20 * mebibyte));
    image.resize(64 * mebibyte);

    std::vector<Finding> findings;
    const Reads reads = readsOf([&] { findings = image.scan(); });

    EXPECT_EQ(findings, std::vector<Finding>());
    // Each takes a page; for all of them that would be 1.6 GB.
    EXPECT_GT(reads.bytes, 4 * 64 * mebibyte);
    EXPECT_LT(reads.bytes, 12 * 64 * mebibyte);
}

TEST(CarveGround, ClipsBehindAFloodThatTookTheCredit_AreFound) {
    const std::string flood = partitionsThatLeadFar(300'000, 20 * mebibyte);
    const std::string movie = fileTypeBox() + box("free") + box("wide") + box("mdat", "pictures");
    const std::string mxf = mxfClip(garbage(300));
    CarveImage image(flood + movie + partitionsThatLeadFar(1000, mebibyte) + mxf);
    image.resize(64 * mebibyte);

    const auto findings = image.scan();

    const auto at = std::ssize(flood);
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0], (Finding{FindingKind::movie, at, std::ssize(movie), false}));
    EXPECT_EQ(findings[1].offset, at + std::ssize(movie) + 21'000);
    EXPECT_EQ(findings[1].length, std::ssize(mxf));
}

TEST(CarveGround, WalkWithoutCredit_ReadsNearItsBeginningAndIsCutOffElsewhere) {
    const CarveImage image(std::string(2 * mebibyte, 'x'));
    const File file = image.open();
    CarveGround ground(file, image.size(), [] { return false; });
    useUp(ground);

    ground.begin(0);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(ground.read(4096 * i, 16).size(), 16U) << i;
    EXPECT_FALSE(ground.isCutOff());
    EXPECT_EQ(ground.read(mebibyte, 16).size(), 0U);
    EXPECT_TRUE(ground.isCutOff());
    EXPECT_EQ(ground.read(0, 16).size(), 0U) << "what is cut off reads no more";
}

TEST(CarveGround, WalkThatIsSureOfAFinding_IsNotCutOff) {
    const CarveImage image(std::string(2 * mebibyte, 'x'));
    const File file = image.open();
    CarveGround ground(file, image.size(), [] { return false; });
    ground.settle();

    for (int i = 0; i < 10'000'000; ++i) ground.read(i % mebibyte, 8);

    EXPECT_FALSE(ground.isCutOff());
}

TEST(CarveGround, BytesThatAreGoneBy_BringInCredit) {
    const CarveImage image(std::string(2 * mebibyte, 'x'));
    const File file = image.open();
    CarveGround ground(file, image.size(), [] { return false; });
    useUp(ground);

    ground.begin(mebibyte);

    EXPECT_EQ(ground.read(0, 16).size(), 16U);
    EXPECT_FALSE(ground.isCutOff());
}

TEST(CarveGround, ScanCancelledDuringAWalk_EndsItAndFindsNothing) {
    const std::string free = box("free");
    std::string chain = fileTypeBox();
    while (std::ssize(chain) < 48 * mebibyte) chain += free;
    const CarveImage image(chain + box("mdat", "pictures"));
    const auto start = std::chrono::steady_clock::now();
    int asked = 0;

    const auto findings = CardCarver::scan(image.path(), [&] {
        // A slow reader, so that the walk takes longer than half a second.
        if (++asked == 1) std::this_thread::sleep_for(std::chrono::milliseconds(600));
        return asked == 2;
    });

    EXPECT_EQ(findings, std::vector<Finding>());
    EXPECT_EQ(asked, 2);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(CarveGround, ScanCancelledDuringAWAV_FindsNothing) {
    // Chunks beyond what the scan holds, so that each is read by itself.
    const std::string chunk = riffChunk("bext", std::string(200'000, 'b'));
    const std::string wave = "RIFF" + littleEndian(0, 4) + "WAVE" + chunk + chunk +
                             riffChunk("data", std::string(mebibyte, 's'));
    const CarveImage image(wave);
    int asked = 0;

    const auto findings = CardCarver::scan(image.path(), [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(600));
        return ++asked == 3;
    });

    EXPECT_EQ(findings, std::vector<Finding>());
}

TEST(Shortcuts, WalkThatComesToWhereAnotherWas_GoesOnWhereThatEnded) {
    Shortcuts ways(mebibyte, 3);
    ways.begin(0);
    for (std::int64_t place = 100; place < 10'000; place += 100) EXPECT_EQ(ways.pass(place), place);
    ways.end(10'000);

    ways.begin(50);

    EXPECT_EQ(ways.pass(350), 350) << "nobody was there";
    EXPECT_EQ(ways.pass(500), 10'000);
}

TEST(Shortcuts, LongWay_IsKeptInEvenSteps) {
    constexpr std::int64_t end = 1'000'000 * 64;
    Shortcuts ways(end, 3);
    ways.begin(0);
    for (std::int64_t place = 64; place < end; place += 64) ways.pass(place);
    ways.end(end);

    int known = 0;
    for (std::int64_t near = 64; near < end - 1'000'000; near += 1'000'000) {
        ways.begin(0);
        std::int64_t steps = 0;
        for (std::int64_t at = near / 64 * 64; at < end; at = std::max(at + 64, ways.pass(at))) {
            ++steps;
        }
        known += steps < 200 ? 1 : 0;
    }
    EXPECT_GT(known, 50) << "of 63";
}

TEST(Shortcuts, SlotThatTwoPlacesNeed_IsTheNearerOnes) {
    Shortcuts ways(4096, 3);
    std::int64_t kept = 0;
    ways.begin(0);
    for (std::int64_t place = 64; place < 16 * mebibyte; place += 64) ways.pass(place);
    ways.end(16 * mebibyte);

    for (std::int64_t place = 64; place < 4096; place += 64) {
        ways.begin(0);
        kept += ways.pass(place) == 16 * mebibyte ? 1 : 0;
    }

    EXPECT_GT(kept, 0);
}

}  // namespace
