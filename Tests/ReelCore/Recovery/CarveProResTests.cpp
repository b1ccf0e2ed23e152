#include "CarveImage.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "Support/Boxes.h"
#include "Support/FaultyFileSystem.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Found = std::optional<Finding>;

constexpr std::int64_t widestGap = 0x800000;

Found walk(const CarveImage& image, std::int64_t start = 0) {
    const File file = image.open();
    CarveGround ground(file, image.size(), [] { return false; });
    ground.begin(start);
    return ProResWalker(ground).walk(start);
}

Found walk(std::string_view bytes, std::int64_t start = 0) {
    return walk(CarveImage(bytes), start);
}

Found run(std::int64_t length) {
    return Finding{FindingKind::orphanProRes, 0, length, false};
}

std::string frames(int count, std::size_t size = 100) {
    std::string text;
    for (int i = 0; i < count; ++i) text += proResFrame(size);
    return text;
}

TEST(WalkProResRun, HundredFrames_EndWhereTheLastBegins) {
    EXPECT_EQ(walk(frames(100)), run(9900));
    EXPECT_EQ(walk(frames(100) + garbage(5000)), run(9900));
}

TEST(WalkProResRun, ThreeFrames_AreTheFewest) {
    EXPECT_EQ(walk(frames(1)), std::nullopt);
    EXPECT_EQ(walk(frames(2) + garbage(1000)), std::nullopt);
    EXPECT_EQ(walk(frames(3) + garbage(1000)), run(200));
}

TEST(WalkProResRun, SoundBetweenFrames_StaysWithinTheRun) {
    const std::string clip = frames(2) + garbage(777) + frames(1) + garbage(3) + frames(2);

    EXPECT_EQ(walk(clip + garbage(50)), run(std::ssize(clip) - 100));
}

TEST(WalkProResRun, FramesInTheMiddleOfAnImage_AreFollowedFromWhereTheyBegin) {
    EXPECT_EQ(walk(garbage(41) + frames(4), 41),
              (Finding{FindingKind::orphanProRes, 41, 300, false}));
}

TEST(WalkProResRun, GapOf8MiB_IsTheWidest) {
    CarveImage within(frames(2));
    within.put(200 + widestGap - 8, frames(2));
    CarveImage beyond(frames(3));
    beyond.put(300 + widestGap - 7, frames(3));

    EXPECT_EQ(walk(within), run(200 + widestGap - 8 + 100));
    EXPECT_EQ(walk(beyond), run(200)) << "the tag does not lie whole within 8 MiB";
}

TEST(WalkProResRun, GapsOneAfterTheOther_AreEachUpTo8MiB) {
    CarveImage image(frames(1));
    for (int i = 1; i <= 4; ++i) image.put(i * widestGap, frames(1));

    EXPECT_EQ(walk(image), run(4 * widestGap));
}

TEST(WalkProResRun, TagWithoutAValidFrame_IsPassedOverInAGap) {
    const std::string gap = "icpf" + boxHeader("icpf", 19) + boxHeader("icpf", 0x4000001) +
                            boxHeader("icpf", 60'000'000) + "icpficpf" + garbage(10);
    const std::string clip = frames(2) + gap + frames(2);

    EXPECT_EQ(walk(clip), run(std::ssize(clip) - 100));
}

TEST(WalkProResRun, TagLessThanFourBytesIntoAGap_IsPassedOver) {
    for (std::size_t before = 0; before < 4; ++before) {
        const std::string clip = frames(2) + std::string(before, '\0') + "icpf" + frames(2);

        EXPECT_EQ(walk(clip), run(std::ssize(clip) - 100)) << before;
    }
}

TEST(WalkProResRun, FrameSize_LiesBetween20And64MiB) {
    const auto last = [](std::uint32_t size) {
        CarveImage image(frames(2) + boxHeader("icpf", size));
        image.resize(200 + 0x4000002);
        return walk(image);
    };

    EXPECT_EQ(last(20), run(200));
    EXPECT_EQ(last(0x4000000), run(200));
    EXPECT_EQ(last(19), std::nullopt);
    EXPECT_EQ(last(0x4000001), std::nullopt);
    EXPECT_EQ(last(0xFFFFFFFF), std::nullopt);
}

TEST(WalkProResRun, FrameCutOffByTheImagesEnd_IsNone) {
    EXPECT_EQ(walk(frames(3)), run(200));
    EXPECT_EQ(walk(frames(3).substr(0, 299)), std::nullopt);
    EXPECT_EQ(walk(frames(4).substr(0, 350)), run(200));
}

TEST(WalkProResRun, StartThatIsNoValidFrame_FindsThoseBehindIt) {
    const std::string clip = boxHeader("icpf", 60'000'000) + garbage(500) + frames(3);

    EXPECT_EQ(walk(clip), run(std::ssize(clip) - 100));
}

TEST(WalkProResRun, FrameInsideAFrame_IsNotCounted) {
    const std::string frame = boxHeader("icpf", 8 + 300) + frames(3);

    EXPECT_EQ(walk(frame + frame), std::nullopt);
    EXPECT_EQ(walk(frame + frame + frame), run(2 * std::ssize(frame)));
}

TEST(WalkProResRun, LessThan8BytesOfImage_IsNothing) {
    EXPECT_EQ(walk(frames(1).substr(0, 7)), std::nullopt);
    EXPECT_EQ(walk(frames(3), 293), std::nullopt);
    EXPECT_EQ(walk(frames(3), 1000), std::nullopt);
    EXPECT_EQ(walk(""), std::nullopt);
}

TEST(WalkProResRun, PartThatCannotBeRead_EndsTheRun) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const CarveImage image(frames(2000, 1000));
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(image.folder(), mountPoint.path(), {.failReadAt = 524'288});
    const File file = File::openForReading(drive.path() / "card.img");

    CarveGround ground(file, image.size(), [] { return false; });
    EXPECT_EQ(ProResWalker(ground).walk(0), run(524'000));
}

TEST(CarveProRes, FramesWithoutAContainer_AreFoundButForTheLast) {
    const std::string clip = frames(100, 2000);

    EXPECT_EQ(CarveImage(garbage(500) + clip + garbage(100)).scan(),
              (std::vector<Finding>{{FindingKind::orphanProRes, 500, 198'000, false}}));
}

TEST(CarveProRes, TwoChanceTags_AreNoFinding) {
    EXPECT_EQ(CarveImage(garbage(99) + boxHeader("icpf", 5000) + garbage(20'000) +
                         boxHeader("icpf", 700) + garbage(2000))
                  .scan(),
              std::vector<Finding>());
}

TEST(CarveProRes, FramesOfAFoundMovie_AreNotFoundAgain) {
    const std::string movie = fileTypeBox() + box("mdat", frames(10)) + box("moov", "index");

    EXPECT_EQ(CarveImage(movie + garbage(10)).scan(),
              (std::vector<Finding>{{FindingKind::movie, 0, std::ssize(movie), true}}));
}

}  // namespace
