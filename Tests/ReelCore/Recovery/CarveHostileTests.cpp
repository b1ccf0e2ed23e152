#include "CarveImage.h"
#include "Support/Boxes.h"
#include "Support/CountedReads.h"
#include "Support/Forked.h"
#include "Support/KLV.h"
#include "Support/PeakMemory.h"
#include "Support/RIFF.h"

#include <gtest/gtest.h>

// Images in which beginnings of media stand side by side, and each leads over the same long way. To
// go that way anew from each of them takes hours.

namespace {

using namespace ReelCore;
using namespace TestSupport;

constexpr std::int64_t mebibyte = 0x100000;

std::string repeated(std::string_view unit, std::size_t size) {
    std::string text;
    while (text.size() < size) text += unit;
    text.resize(size);
    return text;
}

/// Scans, and expects that no more was read than the image a few times over.
std::vector<Finding> scanOnce(const CarveImage& image) {
    std::vector<Finding> findings;
    const Reads reads = readsOf([&] { findings = image.scan(); });
    EXPECT_LE(reads.bytes, 8 * image.size());
    return findings;
}

TEST(CarveHostile, FrameTagsThatAllLeadIntoWideGaps_AreNoRunAndReadOnce) {
    CarveImage image(repeated(boxHeader("icpf", 3 * mebibyte), mebibyte));
    image.resize(14 * mebibyte);

    EXPECT_EQ(scanOnce(image), std::vector<Finding>());
}

TEST(CarveHostile, FrameTagsBeyondTheImage_AreNoRunAndReadOnce) {
    const CarveImage image(repeated(boxHeader("icpf", 0x4000000) + garbage(120), 4 * mebibyte));

    EXPECT_EQ(scanOnce(image), std::vector<Finding>());
}

TEST(CarveHostile, PairsOfFramesBeforeAWideGap_AreNoRunAndReadOnce) {
    const std::string firsts = repeated(boxHeader("icpf", 2 * mebibyte), mebibyte);
    const std::string seconds = repeated(boxHeader("icpf", 3 * mebibyte), mebibyte);
    CarveImage image(firsts);
    image.put(2 * mebibyte, seconds);
    image.resize(14 * mebibyte);

    EXPECT_EQ(scanOnce(image), std::vector<Finding>());
}

TEST(CarveHostile, SmallGapsBetweenFrames_AreReadOnce) {
    const std::string frame = proResFrame(2000) + garbage(60);
    const std::string frames = repeated(frame, 1000 * frame.size());

    EXPECT_EQ(
        scanOnce(CarveImage(frames + garbage(100))),
        (std::vector<Finding>{{FindingKind::orphanProRes, 0, 999 * std::ssize(frame), false}}));
}

TEST(CarveHostile, FileTypesThatLeadToTheSameLongChain_AreNoMovieAndReadOnce) {
    std::string types;
    for (std::uint32_t rest = 65'536; rest >= 16; rest -= 8) types += boxHeader("ftyp", rest);
    types.resize(65'536, '\xA5');
    const CarveImage image(types + repeated(box("free"), mebibyte) + garbage(100));

    EXPECT_EQ(scanOnce(image), std::vector<Finding>());
}

TEST(CarveHostile, FileTypesAllAlongTheChain_AreNoMovieAndReadOnce) {
    std::string inside;
    for (std::uint32_t rest = 56; rest >= 16; rest -= 8) inside += boxHeader("ftyp", rest);
    const CarveImage image(repeated(box("free", inside + garbage(8)), 64 * 16'384) + garbage(100));

    EXPECT_EQ(scanOnce(image), std::vector<Finding>());
}

TEST(CarveHostile, MovieBehindManyFileTypesThatLeadNowhere_IsFound) {
    const std::string nowhere = boxHeader("ftyp", 16) + garbage(8) + box("free") + garbage(8);
    const std::string movie = fileTypeBox() + box("free") + box("mdat", "pictures") + box("moov");
    const std::string before = repeated(nowhere, 1000 * nowhere.size());

    EXPECT_EQ(
        scanOnce(CarveImage(before + movie + garbage(9))),
        (std::vector<Finding>{{FindingKind::movie, std::ssize(before), std::ssize(movie), true}}));
}

TEST(CarveHostile, UnclosedWavesSideBySide_EndEachAtTheNextAndAreReadOnce) {
    const std::string wave = "RIFF" + littleEndian(0, 4) + "WAVE" +
                             riffChunk("fmt ", formatPayload({})) + riffHeader("data", 0) +
                             repeated("sound", 2004);
    const CarveImage image(repeated(wave, 500 * wave.size()) + repeated("rest ", 9 * mebibyte));

    const auto findings = scanOnce(image);

    ASSERT_EQ(findings.size(), 500U);
    for (std::int64_t i = 0; i < 499; ++i) {
        EXPECT_EQ(findings[static_cast<std::size_t>(i)],
                  (Finding{FindingKind::wave, i * std::ssize(wave), std::ssize(wave), false}));
    }
}

TEST(CarveHostile, WavesWithinTheChunksOfOthers_AreReadOnce) {
    const std::string wave = "RIFF" + littleEndian(4, 4) + "WAVE" + riffHeader("JUNK", 0) +
                             riffHeader("JUNK", 0) + riffHeader("JUNK", 0);
    const std::string image = repeated(wave, 10'000 * wave.size());

    EXPECT_EQ(scanOnce(CarveImage(image)).size(), 10'000U);
}

/// The most memory that a scan takes beside its findings, in MiB.
int memoryBesideFindings(const CarveImage& image) {
    return statusOfForked([&] {
        const auto findings = image.scan();
        const auto taken = static_cast<std::int64_t>(findings.size() * sizeof(Finding));
        return static_cast<int>(
            std::min<std::int64_t>(254, (peakMemoryInKiB() * 1024 - taken) / mebibyte));
    });
}

TEST(CarveHostile, ImagesFullOfFindings_TakeNoMoreMemoryBesideThem) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer takes memory of its own";
#endif
    const CarveImage waves(repeated("RIFF" + littleEndian(4, 4) + "WAVE", 100 * mebibyte));
    const CarveImage movies(repeated(box("ftyp", "any ") + box("moov"), 100 * mebibyte));

    EXPECT_LT(memoryBesideFindings(waves), 96);
    EXPECT_LT(memoryBesideFindings(movies), 96);
}

TEST(CarveHostile, FramesWithSmallGapsOverManyBlocks_AreReadOnce) {
    const CarveImage image(repeated(boxHeader("icpf", 20), 4 * mebibyte));

    const auto findings = scanOnce(image);

    // From the last frame on, whatever fits is too short for one.
    ASSERT_GE(findings.size(), 1U);
    EXPECT_EQ(findings[0].kind, FindingKind::orphanProRes);
    EXPECT_GT(findings[0].length, 4 * mebibyte - 100);
}

TEST(CarveHostile, HeaderPartitionsWithTwoTripletsEach_AreNoClipAndReadOnce) {
    const std::string two = triplet(partitionKey(2), garbage(88)) + triplet(essenceKey(), "x");
    const CarveImage image(repeated(two, 5000 * two.size()));

    EXPECT_EQ(scanOnce(image), std::vector<Finding>());
}

}  // namespace
