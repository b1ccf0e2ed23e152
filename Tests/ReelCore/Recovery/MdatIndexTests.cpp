#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/MoovRebuilder.h"
#include "Support/Boxes.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::bigEndian;
using TestSupport::FaultyFileSystem;
using TestSupport::noise;
using TestSupport::proResFrame;
using TestSupport::TemporaryFolder;

constexpr std::int64_t stereo = 4;

/// Bytes in which nothing looks like a frame.
std::string sound(std::size_t size) {
    return std::string(size, 's');
}

/// The head of a frame of a size that nothing stands behind.
std::string frameHead(std::uint32_t size) {
    return bigEndian(size, 4) + "icpf";
}

/// What both ways of indexing find in media, which is the same. In the file other frames stand in
/// front of the media and behind it.
MdatIndex indexOf(const std::string& media, std::int64_t bytesPerAudioFrame) {
    const TemporaryFolder folder;
    const URL path = folder.path() / "A001.MOV";
    const std::string before = proResFrame(25);
    TestSupport::writeFile(path, before + media + proResFrame(30));

    const MdatIndex inMemory =
        MoovRebuilder::indexMdat(std::as_bytes(std::span(media)), bytesPerAudioFrame);
    const MdatIndex inFile = MoovRebuilder::indexMdat(
        File::openForReading(path), std::ssize(before), std::ssize(media), bytesPerAudioFrame);

    EXPECT_EQ(inFile.videoSamples, inMemory.videoSamples);
    EXPECT_EQ(inFile.audioChunks, inMemory.audioChunks);
    EXPECT_EQ(inFile.referencedEnd, inMemory.referencedEnd);
    return inMemory;
}

}  // namespace

TEST(MdatIndex, EmptyMedia_IsEmpty) {
    EXPECT_EQ(indexOf("", stereo), (MdatIndex{{}, {}, 0}));
}

TEST(MdatIndex, FramesWithoutGaps_HaveNoSound) {
    const MdatIndex index = indexOf(proResFrame(100) + proResFrame(20) + proResFrame(50), stereo);

    EXPECT_EQ(index, (MdatIndex{{{0, 100}, {100, 20}, {120, 50}}, {}, 170}));
}

TEST(MdatIndex, BytesBetweenFrames_AreSound) {
    const MdatIndex index =
        indexOf(proResFrame(100) + sound(40) + proResFrame(60) + sound(8), stereo);

    EXPECT_EQ(index, (MdatIndex{{{0, 100}, {140, 60}}, {{100, 40}, {200, 8}}, 208}));
}

TEST(MdatIndex, BytesBeforeFirstFrame_AreSound) {
    EXPECT_EQ(indexOf(sound(12) + proResFrame(30), stereo), (MdatIndex{{{12, 30}}, {{0, 12}}, 42}));
}

TEST(MdatIndex, GapWithoutAudioTrack_IsSteppedOver) {
    const MdatIndex index = indexOf(sound(9) + proResFrame(30) + sound(50) + proResFrame(30), 0);

    EXPECT_EQ(index, (MdatIndex{{{9, 30}, {89, 30}}, {}, 119}));
}

TEST(MdatIndex, NegativeBytesPerAudioFrame_IsNoSound) {
    EXPECT_EQ(indexOf(proResFrame(30) + sound(8), -1), (MdatIndex{{{0, 30}}, {}, 30}));
}

TEST(MdatIndex, GapOfSevenBytesAtSixABeat_YieldsSixAndStepsOverTheSeventh) {
    EXPECT_EQ(indexOf(proResFrame(30) + sound(7) + proResFrame(30), 6),
              (MdatIndex{{{0, 30}, {37, 30}}, {{30, 6}}, 67}));
    EXPECT_EQ(indexOf(proResFrame(30) + sound(7), 6), (MdatIndex{{{0, 30}}, {{30, 6}}, 36}));
}

TEST(MdatIndex, GapShorterThanASample_IsNoSound) {
    EXPECT_EQ(indexOf(proResFrame(30) + sound(5) + proResFrame(30), 6),
              (MdatIndex{{{0, 30}, {35, 30}}, {}, 65}));
}

TEST(MdatIndex, ZerosAfterLastFrame_AreSoundInWholeSamplesOrDropped) {
    const std::string media = proResFrame(30) + std::string(1001, '\0');

    EXPECT_EQ(indexOf(media, stereo), (MdatIndex{{{0, 30}}, {{30, 1000}}, 1030}));
    EXPECT_EQ(indexOf(media, 0), (MdatIndex{{{0, 30}}, {}, 30}));
}

TEST(MdatIndex, MediaWithoutFrames_IsOneRunOfSound) {
    EXPECT_EQ(indexOf(sound(1000), stereo), (MdatIndex{{}, {{0, 1000}}, 1000}));
    EXPECT_EQ(indexOf(sound(1000), 0), (MdatIndex{{}, {}, 0}));
}

TEST(MdatIndex, FewerBytesThanAHead_AreSound) {
    EXPECT_EQ(indexOf(std::string("\0\0\0\x14icp", 7), 1), (MdatIndex{{}, {{0, 7}}, 7}));
}

TEST(MdatIndex, SizeOfNineteen_IsNoFrame) {
    const std::string media = frameHead(19) + sound(12) + proResFrame(20);

    EXPECT_EQ(indexOf(media, stereo), (MdatIndex{{{20, 20}}, {{0, 20}}, 40}));
}

TEST(MdatIndex, SizeOfTwentyThatFits_IsAFrame) {
    EXPECT_EQ(indexOf(frameHead(20) + sound(12), stereo), (MdatIndex{{{0, 20}}, {}, 20}));
}

TEST(MdatIndex, FrameThatEndsWithTheMedia_IsWhole) {
    EXPECT_EQ(indexOf(sound(4) + proResFrame(77), stereo), (MdatIndex{{{4, 77}}, {{0, 4}}, 81}));
}

TEST(MdatIndex, FrameCutBehindAFrame_EndsTheIndexAtItsStart) {
    const std::string media = sound(40) + proResFrame(60) + proResFrame(80).substr(0, 79);

    EXPECT_EQ(indexOf(media, stereo), (MdatIndex{{{40, 60}}, {{0, 40}}, 100}));
}

TEST(MdatIndex, FrameCutBehindSound_EndsTheIndexAtItsStartAndTheSoundStands) {
    for (const std::size_t left : {std::size_t{8}, std::size_t{20}, std::size_t{79}}) {
        const std::string media = proResFrame(60) + sound(40) + proResFrame(80).substr(0, left);

        EXPECT_EQ(indexOf(media, stereo), (MdatIndex{{{0, 60}}, {{60, 40}}, 100})) << left;
    }
}

TEST(MdatIndex, FrameCutInItsHead_CannotBeToldFromSound) {
    const std::string media = proResFrame(60) + sound(40) + proResFrame(80).substr(0, 7);

    EXPECT_EQ(indexOf(media, 1), (MdatIndex{{{0, 60}}, {{60, 47}}, 107}));
}

TEST(MdatIndex, NothingButACutFrame_IsEmpty) {
    EXPECT_EQ(indexOf(proResFrame(80).substr(0, 79), stereo), (MdatIndex{{}, {}, 0}));
}

TEST(MdatIndex, SizeThatRunsOverTheEndAtOnceBehindAFrame_EndsTheIndexThoughFramesFollow) {
    const std::string media = proResFrame(30) + frameHead(0xFFFFFFFF) + proResFrame(40);

    EXPECT_EQ(indexOf(media, stereo), (MdatIndex{{{0, 30}}, {}, 30}));
}

TEST(MdatIndex, TagByChanceInSound_IsSteppedOver) {
    for (const std::uint32_t size : {0U, 7U, 19U, 5000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        const std::string media =
            proResFrame(30) + sound(16) + frameHead(size) + sound(16) + proResFrame(40) + sound(4);

        EXPECT_EQ(indexOf(media, stereo),
                  (MdatIndex{{{0, 30}, {70, 40}}, {{30, 40}, {110, 4}}, 114}))
            << size;
    }
}

TEST(MdatIndex, TagByChanceWithTooSmallASizeInTheLastSound_IsSteppedOver) {
    const std::string media = proResFrame(30) + sound(16) + frameHead(19) + sound(16);

    EXPECT_EQ(indexOf(media, stereo), (MdatIndex{{{0, 30}}, {{30, 40}}, 70}));
}

TEST(MdatIndex, TagsThatOverlapTheHeadOfAFrame_HideItNot) {
    const std::string media = proResFrame(30) + sound(6) + "icpf" + proResFrame(40);

    EXPECT_EQ(indexOf(media, 2), (MdatIndex{{{0, 30}, {40, 40}}, {{30, 10}}, 80}));
}

TEST(MdatIndex, ChunksOfSoundInARow_AreOneRun) {
    EXPECT_EQ(indexOf(proResFrame(30) + sound(400) + sound(200) + proResFrame(30), stereo),
              (MdatIndex{{{0, 30}, {630, 30}}, {{30, 600}}, 660}));
}

TEST(MdatIndex, FrameAtTheBorderOfPieces_IsFound) {
    // Pieces of 16 KiB, 64 KiB, 256 KiB and so on up to 4 MiB are read on the way through a gap.
    for (const std::size_t border : {16'384U, 81'920U, 344'064U, 1'392'640U, 5'586'944U}) {
        for (std::size_t gap = border - 14; gap <= border + 6; ++gap) {
            const std::string media = sound(gap) + proResFrame(40);

            const auto at = static_cast<std::int64_t>(gap);
            ASSERT_EQ(MoovRebuilder::indexMdat(std::as_bytes(std::span(media)), 1),
                      (MdatIndex{{{at, 40}}, {{0, at}}, at + 40}))
                << gap;
            ASSERT_EQ(indexOf(media, 1).videoSamples.size(), 1U) << gap;
        }
    }
}

TEST(MdatIndex, ManyFramesSmallerThanAPiece_AreAllFound) {
    std::string media;
    for (unsigned i = 0; i < 2000; ++i) media += proResFrame(20 + i % 97, i) + noise(i % 7, i);

    const MdatIndex index = indexOf(media, 1);

    EXPECT_EQ(index.videoSamples.size(), 2000U);
    EXPECT_EQ(index.referencedEnd, std::ssize(media));
}

TEST(MdatIndex, LengthBeyondTheFile_EndsWithWhatIsThere) {
    const TemporaryFolder folder;
    const URL path = folder.path() / "A001.MOV";
    TestSupport::writeFile(path, proResFrame(100) + proResFrame(50));

    const MdatIndex index = MoovRebuilder::indexMdat(File::openForReading(path), 0, 100'000, 0);

    EXPECT_EQ(index, (MdatIndex{{{0, 100}, {100, 50}}, {}, 150}));
}

TEST(MdatIndex, HeadThatCannotBeRead_IsPassedOn) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    constexpr std::int64_t second = 2 << 20U;
    const TemporaryFolder folder;
    TestSupport::writeFile(folder.path() / "card/A001.MOV",
                           proResFrame(second) + proResFrame(1'000'000));
    const FaultyFileSystem card(folder.path() / "card", folder.path() / "mount",
                                {.failReadAt = second});
    const File file = File::openForReading(card.path() / "A001.MOV");

    EXPECT_THROW(static_cast<void>(MoovRebuilder::indexMdat(file, 0, 3'000'000, stereo)),
                 SystemError);
}

TEST(MdatIndex, SoundThatCannotBeRead_IsPassedOn) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    constexpr std::int64_t unreadable = 4 << 20U;
    const TemporaryFolder folder;
    TestSupport::writeFile(folder.path() / "card/A001.MOV",
                           proResFrame(100) + sound(6'000'000) + proResFrame(100));
    const FaultyFileSystem card(folder.path() / "card", folder.path() / "mount",
                                {.failReadAt = unreadable});
    const File file = File::openForReading(card.path() / "A001.MOV");

    EXPECT_THROW(static_cast<void>(MoovRebuilder::indexMdat(file, 0, 6'000'200, stereo)),
                 SystemError);
}

}  // namespace ReelCore
