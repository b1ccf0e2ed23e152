#include "ReelCore/Recovery/MoovRebuilder.h"

#include "RebuildFixture.h"
#include "Support/SparseFile.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::box;
using TestSupport::boxHeader;
using TestSupport::fileTypeBox;
using TestSupport::moovBox;
using TestSupport::noise;
using TestSupport::proResFrame;
using TestSupport::readFile;
using TestSupport::stereoSound;
using TestSupport::TrackRecipe;
using TestSupport::wideBox;
using TestSupport::wideBoxHeader;

/// The n-th 64-bit offset of the first chunk table in a "moov".
std::size_t chunkOffset(const std::string& moov, std::size_t n) {
    return bigEndianNumber(moov.substr(moov.find("co64") + 12 + 8 * n, 8));
}

}  // namespace

TEST(MoovRebuilder, Formats_AreSixOfVideoAndNineOfSound) {
    EXPECT_EQ(MoovRebuilder::proResTypes,
              (std::array<std::string_view, 6>{"apch", "apcn", "apcs", "apco", "ap4h", "ap4x"}));
    EXPECT_EQ(MoovRebuilder::pcmTypes,
              (std::array<std::string_view, 9>{"sowt", "twos", "lpcm", "in24", "in32", "fl32",
                                               "fl64", "NONE", "raw "}));
}

TEST(MoovRebuilder, Summary_CountsFramesAndSeconds) {
    EXPECT_EQ((MoovRebuilder::Stats{250, 9.96, 10.04}.summary()),
              "recovered 250 frames (10.0s video, 10.0s audio)");
    EXPECT_EQ((MoovRebuilder::Stats{1, 0.0, 0.04}.summary()),
              "recovered 1 frames (0.0s video, 0.0s audio)");
}

TEST_F(MoovRebuilderFiles, Output_IsFileTypeThenWideMediaThenIndex) {
    const std::string media = someMedia();
    const URL clip = damaged(fileTypeBox() + box("wide") + boxHeader("mdat", 0) + media);

    const auto boxes = rebuilt(clip, referenceOf({{}, stereoSound}));

    ASSERT_EQ(boxes.size(), 3U);
    EXPECT_EQ(boxes[0], fileTypeBox());
    EXPECT_EQ(boxes[1], wideBox("mdat", media));
    EXPECT_EQ(boxes[2].substr(4, 4), "moov");
}

TEST_F(MoovRebuilderFiles, Offsets_AreThePlacesInTheOutput) {
    const URL clip = damaged(fileTypeBox() + box("free", noise(99)) + boxHeader("mdat", 0) +
                             proResFrame(100, 1) + sound(400) + proResFrame(60, 2));

    const auto boxes = rebuilt(clip, referenceOf({{}, stereoSound}));

    const std::string file = readFile(output());
    EXPECT_EQ(file.substr(chunkOffset(boxes.at(2), 0), 100), proResFrame(100, 1));
    EXPECT_EQ(file.substr(chunkOffset(boxes.at(2), 1), 60), proResFrame(60, 2));
}

TEST_F(MoovRebuilderFiles, Stats_TellFramesAndSeconds) {
    const URL clip = damaged(boxHeader("mdat", 0) + someMedia());

    const auto stats = MoovRebuilder::rebuild(clip, referenceOf({{}, stereoSound}), output());

    EXPECT_EQ(stats, (MoovRebuilder::Stats{2, 200.0 / 48'000, 0.08}));
}

TEST_F(MoovRebuilderFiles, MediaOfEveryHeader_IsReadAsFarAsTheFileHoldsIt) {
    const std::string media = proResFrame(100) + proResFrame(50);
    const std::vector<std::string> headers{
        boxHeader("mdat", 0),
        boxHeader("mdat", 158),
        boxHeader("mdat", 0xFFFFFFFF),
        wideBoxHeader("mdat", 166),
        wideBoxHeader("mdat", 0x4000000000000000),
    };
    for (const std::string& header : headers) {
        const auto boxes = rebuilt(damaged(header + media), referenceOf({{}}));

        EXPECT_EQ(boxes.at(1), wideBox("mdat", media)) << testing::PrintToString(header);
    }
}

TEST_F(MoovRebuilderFiles, MediaBoxThatEndsBeforeTheFile_IsReadToItsEnd) {
    const URL clip = damaged(box("mdat", proResFrame(100)) + box("free", proResFrame(50)));

    EXPECT_EQ(rebuilt(clip, referenceOf({{}})).at(1), wideBox("mdat", proResFrame(100)));
}

TEST_F(MoovRebuilderFiles, SecondMediaBox_IsLeftBehind) {
    const URL clip = damaged(box("mdat", proResFrame(100)) + box("mdat", proResFrame(50)));

    EXPECT_EQ(MoovRebuilder::rebuild(clip, referenceOf({{}}), output()).videoFrames, 1);
}

TEST_F(MoovRebuilderFiles, FrameCutOff_IsNotWritten) {
    const std::string whole = proResFrame(100) + sound(400);
    const URL clip = damaged(boxHeader("mdat", 0) + whole + proResFrame(60).substr(0, 59));

    const auto boxes = rebuilt(clip, referenceOf({{}, stereoSound}));

    EXPECT_EQ(boxes.at(1), wideBox("mdat", whole));
}

TEST_F(MoovRebuilderFiles, MediaOfMoreThanABlock_IsCopiedWhole) {
    const std::string media = proResFrame(9'000'000) + sound(4000) + proResFrame(8'388'608);
    const URL clip = damaged(boxHeader("mdat", 0) + media);

    EXPECT_TRUE(rebuilt(clip, referenceOf({{}, stereoSound})).at(1) == wideBox("mdat", media));
}

TEST_F(MoovRebuilderFiles, FileTypeOfTheDamagedClip_IsTaken) {
    const std::string other = box("ftyp", "qt  1234");
    const URL clip = damaged(other + boxHeader("mdat", 0) + someMedia());

    EXPECT_EQ(rebuilt(clip, referenceOf({{}})).at(0), other);
}

TEST_F(MoovRebuilderFiles, FileTypeWithWideHeader_IsTakenAsItStands) {
    const std::string wide = wideBox("ftyp", "qt  1234");
    const URL clip = damaged(wide + boxHeader("mdat", 0) + someMedia());

    EXPECT_EQ(rebuilt(clip, referenceOf({{}})).at(0), wide);
}

TEST_F(MoovRebuilderFiles, DamagedClipWithoutFileType_TakesTheReferences) {
    const URL clip = damaged(boxHeader("mdat", 0) + someMedia());

    EXPECT_EQ(rebuilt(clip, referenceOf({{}})).at(0), fileTypeBox());
}

TEST_F(MoovRebuilderFiles, FileTypeOfAnySize_IsTakenAsItStands) {
    const std::string large = box("ftyp", "qt  " + noise(3 << 20U));
    const URL clip = damaged(large + boxHeader("mdat", 0) + proResFrame(100));

    const auto boxes = rebuilt(clip, referenceOf({{}}));

    EXPECT_TRUE(boxes.at(0) == large);
    EXPECT_EQ(boxes.at(1), wideBox("mdat", proResFrame(100)));
    EXPECT_EQ(chunkOffset(boxes.at(2), 0), large.size() + 16);
}

TEST_F(MoovRebuilderFiles, FileTypeThatClaimsMoreThanAFileCanHold_IsNotTaken) {
    const URL clip = damaged(boxHeader("mdat", 116) + sound(8) + proResFrame(100) +
                             wideBoxHeader("ftyp", 0x7FFFFFFFFFFFFFFF));

    EXPECT_EQ(rebuilt(clip, referenceOf({{}})).at(0), fileTypeBox());
}

TEST_F(MoovRebuilderFiles, IndexOfAnySize_IsReadWhole) {
    const std::int64_t gap = 280 << 20U;
    const std::string track = TestSupport::TrackBoxes().trak();
    const std::string front = TestSupport::movieHeader(0, 600);
    const std::int64_t size = 8 + std::ssize(front) + gap + std::ssize(track);
    const URL healthy = folder() / "healthy.mov";
    TestSupport::writeSparse(healthy,
                             {{0, boxHeader("moov", static_cast<std::uint32_t>(size)) + front +
                                      boxHeader("edts", static_cast<std::uint32_t>(gap))},
                              {size - std::ssize(track), track}},
                             size);
    const URL clip = damaged(boxHeader("mdat", 0) + proResFrame(100));

    EXPECT_EQ(MoovRebuilder::rebuild(clip, healthy, output()).videoFrames, 1);
}

TEST_F(MoovRebuilderFiles, FileTypeThatIsCut_IsNotTaken) {
    const URL clip =
        damaged(box("mdat", proResFrame(100)) + boxHeader("ftyp", 21) + "qt  12345678");

    EXPECT_EQ(rebuilt(clip, referenceOf({{}})).at(0), fileTypeBox());
}

TEST_F(MoovRebuilderFiles, NoFileTypeAnywhere_BeginsWithTheMedia) {
    const URL clip = damaged(boxHeader("mdat", 0) + proResFrame(100));

    const auto boxes = rebuilt(clip, reference(moovBox({{}})));

    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(boxes[0], wideBox("mdat", proResFrame(100)));
    EXPECT_EQ(chunkOffset(boxes[1], 0), 16U);
}

TEST_F(MoovRebuilderFiles, ClipCutBehindItsIndex_IsItsOwnReference) {
    const URL clip = damaged(fileTypeBox() + moovBox({{}, stereoSound}) +
                             boxHeader("mdat", 1'000'000) + someMedia());

    const auto boxes = rebuilt(clip, clip);

    ASSERT_EQ(boxes.size(), 3U);
    EXPECT_EQ(boxes[1], wideBox("mdat", someMedia()));
    EXPECT_EQ(chunkOffset(boxes[2], 1), fileTypeBox().size() + 16 + 500);
}

TEST_F(MoovRebuilderFiles, SoundWithSizesOfItsOwn_IsPassedOverForTheNextTrack) {
    TrackRecipe sized = stereoSound;
    sized.format = "mp4a";
    sized.sampleSize = 0;
    TrackRecipe other = stereoSound;
    other.sampleSize = 8;
    const URL clip = damaged(boxHeader("mdat", 0) + someMedia());

    const auto first =
        MoovRebuilder::rebuild(clip, referenceOf({sized, {}, stereoSound, other}), output());
    const auto none = MoovRebuilder::rebuild(clip, referenceOf({sized, {}}), output());

    EXPECT_EQ(first.audioSeconds, 200.0 / 48'000);
    EXPECT_EQ(none, (MoovRebuilder::Stats{2, 0.0, 0.08}));
}

TEST_F(MoovRebuilderFiles, EveryProResAndPCMFormat_IsCovered) {
    const URL clip = damaged(boxHeader("mdat", 0) + someMedia());
    for (const std::string_view video : MoovRebuilder::proResTypes) {
        EXPECT_EQ(failureOf(clip, referenceOf({{.format = std::string(video)}})), "no failure");
    }
    for (const std::string_view audio : MoovRebuilder::pcmTypes) {
        TrackRecipe track = stereoSound;
        track.format = audio;
        EXPECT_EQ(failureOf(clip, referenceOf({{}, track})), "no failure") << audio;
    }
}

}  // namespace ReelCore
