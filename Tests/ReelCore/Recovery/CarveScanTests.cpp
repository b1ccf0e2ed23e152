#include "CarveScanFixture.h"
#include "Support/KLV.h"
#include "Support/RIFF.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

TEST(CarveScan, ClipsOfEveryKind_ComeInTheOrderOfTheImage) {
    const std::string wave = broadcastWAV({.seconds = 0.05});
    const std::string mxf = mxfClip(garbage(300));
    const std::string frames = proResFrame(100) + proResFrame(90) + proResFrame(80);
    const std::string clips = garbage(10) + frames + garbage(10) + wave + mxf + movie();

    EXPECT_EQ(CarveImage(clips + garbage(10)).scan(),
              (Findings{found(FindingKind::orphanProRes, 10, 190, false),
                        found(FindingKind::wave, 290, wave.size()),
                        found(FindingKind::mxf, 290 + std::ssize(wave), mxf.size()),
                        found(FindingKind::movie, 290 + std::ssize(wave + mxf), movie().size())}));
}

TEST(CarveScan, TwoMoviesBackToBack_AreTwoCompleteFindings) {
    EXPECT_EQ(CarveImage(movie() + movie(70)).scan(),
              (Findings{found(FindingKind::movie, 0, movie().size()),
                        found(FindingKind::movie, std::ssize(movie()), movie(70).size())}));
}

TEST(CarveScan, ImageOfASingleClip_IsFoundWhole) {
    EXPECT_EQ(CarveImage(movie()).scan(), (Findings{found(FindingKind::movie, 0, movie().size())}));
}

TEST(CarveScan, NothingFound_IsAnEmptyList) {
    EXPECT_EQ(CarveImage("x").scan(), Findings());
    EXPECT_EQ(CarveImage(noise(100'000)).scan(), Findings());
}

TEST(CarveScan, SignaturesInsideAFoundClip_AreSteppedOver) {
    const std::string inside = movie() + broadcastWAV({.seconds = 0.01}) + mxfClip("essence") +
                               proResFrame(50) + proResFrame(50) + proResFrame(50);
    const std::string outer = fileTypeBox() + box("mdat", inside) + box("moov");

    EXPECT_EQ(CarveImage(outer + movie()).scan(),
              (Findings{found(FindingKind::movie, 0, outer.size()),
                        found(FindingKind::movie, std::ssize(outer), movie().size())}));
}

TEST(CarveScan, SignatureWithoutAClip_LeavesWhatIsInsideToBeFound) {
    const std::string lone = boxHeader("ftyp", 4096) + garbage(40) + movie();

    EXPECT_EQ(CarveImage(lone + garbage(9000)).scan(),
              (Findings{found(FindingKind::movie, 48, movie().size())}));
}

TEST(CarveScan, LastFrameOfARun_IsSearchedAgain) {
    const std::string last = bigEndian(8 + movie().size(), 4) + "icpf" + movie();
    const std::string run = proResFrame(100) + proResFrame(100) + last;

    EXPECT_EQ(CarveImage(run + garbage(100)).scan(),
              (Findings{found(FindingKind::orphanProRes, 0, 200, false),
                        found(FindingKind::movie, 208, movie().size())}));
}

TEST(CarveScan, ClipAcrossThePiecesOfAChunk_IsFoundWhereverItBegins) {
    const std::string mxf = mxfClip(garbage(300));
    const std::string wave = broadcastWAV({.seconds = 0.01});
    for (std::int64_t before = 0; before <= 33; ++before) {
        CarveImage image;
        image.put(0x40000 - before, mxf);
        image.put(0x80000 - before, wave);
        image.put(0xC0000 - before, movie());
        ASSERT_EQ(image.scan(),
                  (Findings{found(FindingKind::mxf, 0x40000 - before, mxf.size()),
                            found(FindingKind::wave, 0x80000 - before, wave.size()),
                            found(FindingKind::movie, 0xC0000 - before, movie().size())}))
            << before;
    }
}

/// How many bytes before a border a clip begins.
class CarveBorder : public testing::TestWithParam<int> {};

TEST_P(CarveBorder, ClipsAroundTheBordersOfChunks_AreEachFoundOnce) {
    const std::string mxf = mxfClip(garbage(300));
    const std::string wave = broadcastWAV({.seconds = 0.01});
    const std::int64_t before = GetParam();
    CarveImage image;
    image.put(carveStep - before, movie());
    image.put(carveChunk - before, mxf);
    image.put(2 * carveStep - before, wave);
    image.put(carveStep + carveChunk - before, movie());
    image.put(carveStep + carveChunk + 4096, "x");

    EXPECT_EQ(
        image.scan(),
        (Findings{found(FindingKind::movie, carveStep - before, movie().size()),
                  found(FindingKind::mxf, carveChunk - before, mxf.size()),
                  found(FindingKind::wave, 2 * carveStep - before, wave.size()),
                  found(FindingKind::movie, carveStep + carveChunk - before, movie().size())}));
}

INSTANTIATE_TEST_SUITE_P(BytesBefore, CarveBorder, testing::Values(0, 3, 4, 9, 15));

TEST(CarveScan, HitTwiceInTheOverlap_IsFoundOnce) {
    CarveImage image;
    image.put(carveStep + 0x8000, movie());
    image.put(carveStep + 0x9000, movie(70));
    image.resize(carveChunk + mebibyte);

    EXPECT_EQ(image.scan(),
              (Findings{found(FindingKind::movie, carveStep + 0x8000, movie().size()),
                        found(FindingKind::movie, carveStep + 0x9000, movie(70).size())}));
}

TEST(CarveScan, HitTwiceInTheOverlapWithoutAClip_IsNone) {
    CarveImage image;
    image.put(carveStep + 0x8000, fileTypeBox() + garbage(20));
    image.resize(carveChunk + mebibyte);

    EXPECT_EQ(image.scan(), Findings());
}

TEST(CarveScan, ClipLargerThanAChunk_IsSteppedOver) {
    CarveImage image(fileTypeBox() + boxHeader("mdat", 3 * carveChunk));
    const std::int64_t end = std::ssize(fileTypeBox()) + 3 * carveChunk;
    image.put(end, box("moov", "index") + movie());
    image.put(carveChunk, movie());

    const std::int64_t length = end + std::ssize(box("moov", "index"));
    EXPECT_EQ(image.scan(), (Findings{{FindingKind::movie, 0, length, true},
                                      found(FindingKind::movie, length, movie().size())}));
}

TEST(CarveScan, SparseCardOfATerabyte_WithOneClipOverAll_TakesNoTime) {
    constexpr std::int64_t terabyte = 0x10000000000;
    CarveImage image(fileTypeBox() + box("moov") + wideBoxHeader("mdat", terabyte));
    image.resize(terabyte);

    EXPECT_EQ(image.scan(), (Findings{{FindingKind::movie, 0, terabyte, false}}));
}

}  // namespace
