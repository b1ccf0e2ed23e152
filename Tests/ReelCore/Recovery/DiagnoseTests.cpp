#include "DoctorFixture.h"
#include "Support/Forked.h"

#include <limits>

#include <sys/resource.h>
#include <sys/stat.h>

namespace ReelCore {

namespace {

using namespace TestSupport;

long peakMemoryInKiB() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

class Diagnose : public DoctorFixture {
protected:
    ClipDiagnosis diagnosisOf(const std::string& name, std::string_view content) const {
        return ClipDoctor::diagnose(file(name, content));
    }
};

TEST_F(Diagnose, FileOfNoBytes_IsEmpty) {
    for (const char* name : {"a.mov", "a.mp4", "a.m4v", "a.wav", "a.bwf", "a.mxf", "a.txt", "a"}) {
        EXPECT_EQ(diagnosisOf(name, ""), unreadable("empty file")) << name;
    }
}

TEST_F(Diagnose, MissingFile_IsEmpty) {
    EXPECT_EQ(ClipDoctor::diagnose(folder() / "a.mov"), unreadable("empty file"));
}

TEST_F(Diagnose, Pipe_IsEmptyAndNeverOpened) {
    ASSERT_EQ(::mkfifo((folder() / "a.mov").c_str(), 0600), 0);

    EXPECT_EQ(ClipDoctor::diagnose(folder() / "a.mov"), unreadable("empty file"));
}

TEST_F(Diagnose, DanglingLink_IsEmpty) {
    std::filesystem::create_symlink("nowhere.mov", folder() / "a.mov");

    EXPECT_EQ(ClipDoctor::diagnose(folder() / "a.mov"), unreadable("empty file"));
}

TEST_F(Diagnose, LinkToAClip_IsJudgedByTheClip) {
    const std::string clip = mxfClip("essence");
    std::filesystem::create_symlink(file("clip", clip), folder() / "a.mxf");

    EXPECT_EQ(ClipDoctor::diagnose(folder() / "a.mxf"), healthy);
}

TEST_F(Diagnose, FoldersNamedLikeClips_FailTheirChecks) {
    for (const char* name : {"a.mov", "a.wav", "a.mxf", "a.txt"}) {
        std::filesystem::create_directory(folder() / name);
    }

    EXPECT_EQ(ClipDoctor::diagnose(folder() / "a.mov"), unreadable("no QuickTime/MP4 structure"));
    EXPECT_EQ(ClipDoctor::diagnose(folder() / "a.wav"), unreadable("not a RIFF/WAVE"));
    EXPECT_EQ(ClipDoctor::diagnose(folder() / "a.mxf"), unreadable("no MXF header partition"));
    EXPECT_EQ(ClipDoctor::diagnose(folder() / "a.txt"), unreadable("unsupported type .txt"));
}

// One box after another of eight bytes each, to which any file may have been damaged.
TEST_F(Diagnose, MovieOfMillionsOfBoxes_TakesNoMemoryOfTheirNumber) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer takes memory of its own";
#endif
    std::string boxes;
    for (int i = 0; i < 500'000; ++i) boxes += boxHeader("free", 8);
    const URL clip = file("a.mov", boxes + box("mdat", "media"));
    boxes = {};

    const int status = statusOfForked([&] {
        const long before = peakMemoryInKiB();
        if (ClipDoctor::diagnose(clip) != missingIndexOf(5)) return 1;
        return peakMemoryInKiB() - before < 8192 ? 0 : 2;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(Diagnose, UnknownExtension_IsNamedInLowerCase) {
    EXPECT_EQ(diagnosisOf("a.R3D", wholeMovie()), unreadable("unsupported type .r3d"));
    EXPECT_EQ(diagnosisOf("a.mov.txt", wholeMovie()), unreadable("unsupported type .txt"));
    EXPECT_EQ(diagnosisOf("clip", wholeMovie()), unreadable("unsupported type ."));
    EXPECT_EQ(diagnosisOf(".mov", wholeMovie()), unreadable("unsupported type ."));
}

TEST_F(Diagnose, ExtensionInCapitals_IsTakenInLowerCase) {
    EXPECT_EQ(diagnosisOf("a.MOV", wholeMovie()), healthy);
    EXPECT_EQ(diagnosisOf("a.Mp4", wholeMovie()), healthy);
    EXPECT_EQ(diagnosisOf("a.M4V", wholeMovie()), healthy);
    EXPECT_EQ(diagnosisOf("a.WAV", broadcastWAV({})), healthy);
    EXPECT_EQ(diagnosisOf("a.Bwf", broadcastWAV({})), healthy);
    EXPECT_EQ(diagnosisOf("a.MXF", mxfClip("essence")), healthy);
}

TEST_F(Diagnose, Movie_WhoseBoxesFit_IsHealthyHoweverWrongTheyAreInside) {
    EXPECT_EQ(diagnosisOf("a.mov", wholeMovie()), healthy);
    EXPECT_EQ(diagnosisOf("a.mp4", box("moov")), healthy);
}

TEST_F(Diagnose, Movie_WithBytesBehindItsBoxes_IsHealthy) {
    EXPECT_EQ(diagnosisOf("a.mov", wholeMovie() + std::string(20, '\xFF')), healthy);
}

TEST_F(Diagnose, Movie_WhoseMediaRunsToTheEndOfTheFile_IsHealthy) {
    const std::string clip = box("moov", "any") + boxHeader("mdat", 0) + "media";

    EXPECT_EQ(diagnosisOf("a.mov", clip), healthy);
}

TEST_F(Diagnose, Movie_WhoseMediaRunsPastTheEndOfTheFile_IsTruncated) {
    const std::string clip = box("moov", "any") + boxHeader("mdat", 1000) + "media";

    EXPECT_EQ(diagnosisOf("a.mov", clip), truncatedTo(1011, 24));
}

TEST_F(Diagnose, Movie_ThatLacksItsLastByte_IsTruncated) {
    std::string clip = wholeMovie();
    clip.pop_back();

    EXPECT_EQ(diagnosisOf("a.mov", clip), truncatedTo(std::ssize(clip) + 1, std::ssize(clip)));
}

TEST_F(Diagnose, Movie_CutOffWithinItsIndex_IsTruncated) {
    const std::string clip = box("mdat", "media") + boxHeader("moov", 500) + "half";

    EXPECT_EQ(diagnosisOf("a.mov", clip), truncatedTo(513, 25));
}

TEST_F(Diagnose, Movie_WhoseMediaIsDeclaredWith64Bits_IsTruncatedToThat) {
    const std::string clip = box("moov") + wideBoxHeader("mdat", 5'000'000'000) + "media";

    EXPECT_EQ(diagnosisOf("a.mov", clip), truncatedTo(5'000'000'008, 29));
}

TEST_F(Diagnose, Movie_WhoseDeclaredSizeExceedsAllNumbers_IsTruncatedToTheLargest) {
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    const std::string clip = box("moov") + wideBoxHeader("mdat", largest) + "media";

    EXPECT_EQ(diagnosisOf("a.mov", clip), truncatedTo(largest, 29));
}

TEST_F(Diagnose, Movie_WithoutIndex_CountsItsMedia) {
    EXPECT_EQ(diagnosisOf("a.mov", fileTypeBox() + box("mdat", "media")), missingIndexOf(5));
    EXPECT_EQ(diagnosisOf("a.mov", fileTypeBox() + wideBox("mdat", "media")), missingIndexOf(5));
}

TEST_F(Diagnose, Movie_WithoutIndex_CountsItsFirstMediaOnly) {
    const std::string clip = box("mdat", "media") + box("mdat", "more media");

    EXPECT_EQ(diagnosisOf("a.mov", clip), missingIndexOf(5));
}

TEST_F(Diagnose, Movie_WithoutIndexWhoseMediaRunsToTheEnd_CountsAllBehindTheHeader) {
    const std::string clip = fileTypeBox() + boxHeader("mdat", 0) + "media and all the rest";

    EXPECT_EQ(diagnosisOf("a.mov", clip), missingIndexOf(22));
}

TEST_F(Diagnose, Movie_WithoutIndexWhoseMediaIsDeclaredTooLarge_CountsWhatTheFileHolds) {
    EXPECT_EQ(diagnosisOf("a.mov", boxHeader("mdat", 1000) + "media"), missingIndexOf(5));
    EXPECT_EQ(diagnosisOf("a.mov", wideBoxHeader("mdat", 1U << 30U) + "media"), missingIndexOf(5));
}

TEST_F(Diagnose, Movie_OfNoMedia_IsUnreadable) {
    EXPECT_EQ(diagnosisOf("a.mov", fileTypeBox() + box("mdat")), unreadable("mdat empty"));
    EXPECT_EQ(diagnosisOf("a.mov", boxHeader("mdat", 0)), unreadable("mdat empty"));
    EXPECT_EQ(diagnosisOf("a.mov", boxHeader("mdat", 1000)), unreadable("mdat empty"));
    EXPECT_EQ(diagnosisOf("a.mov", wideBox("mdat")), unreadable("mdat empty"));
}

TEST_F(Diagnose, Movie_WhoseFirstMediaIsEmpty_IsUnreadableWhateverFollows) {
    EXPECT_EQ(diagnosisOf("a.mov", box("mdat") + box("mdat", "media")), unreadable("mdat empty"));
}

TEST_F(Diagnose, Movie_OfAFileTypeOnly_HasNeitherIndexNorMedia) {
    EXPECT_EQ(diagnosisOf("a.mov", fileTypeBox()), unreadable("no moov and no mdat"));
}

TEST_F(Diagnose, Movie_OfZeros_HasNeitherIndexNorMedia) {
    EXPECT_EQ(diagnosisOf("a.mov", std::string(4096, '\0')), unreadable("no moov and no mdat"));
}

TEST_F(Diagnose, Movie_WithoutASingleBox_HasNoStructure) {
    EXPECT_EQ(diagnosisOf("a.mov", "1234567"), unreadable("no QuickTime/MP4 structure"));
    EXPECT_EQ(diagnosisOf("a.mp4", std::string(64, '\xFF')),
              unreadable("no QuickTime/MP4 structure"));
    EXPECT_EQ(diagnosisOf("a.m4v", boxHeader("moov", 5) + "media"),
              unreadable("no QuickTime/MP4 structure"));
}

TEST_F(Diagnose, Movie_WhoseIndexStandsBehindDamage_IsNotLookedForThere) {
    const std::string clip = box("mdat", "media") + boxHeader("free", 5) + box("moov");

    EXPECT_EQ(diagnosisOf("a.mov", clip), missingIndexOf(5));
}

TEST_F(Diagnose, Wave_WithRightSizes_IsHealthy) {
    EXPECT_EQ(diagnosisOf("a.wav", broadcastWAV({})), healthy);
    EXPECT_EQ(diagnosisOf("a.wav", riffFile(riffChunk("data", ""))), healthy);
}

TEST_F(Diagnose, Wave_WhoseDataSizeWasNeverWritten_IsStale) {
    const std::string beginning = riffChunk("fmt ", formatPayload({}));

    EXPECT_EQ(diagnosisOf("a.wav", riffFile(beginning + riffHeader("data", 0) + "sounds")),
              staleSizes(0, 6));
    EXPECT_EQ(diagnosisOf("a.wav", riffFile(beginning + riffHeader("data", 0xFFFFFFFF) + "sounds")),
              staleSizes(0xFFFFFFFF, 6));
}

TEST_F(Diagnose, Wave_WhoseRIFFSizeAloneIsWrong_IsStaleWithTwoEqualNumbers) {
    std::string clip = broadcastWAV({.seconds = 0.01});
    clip.replace(4, 4, littleEndian(36, 4));

    EXPECT_EQ(diagnosisOf("a.wav", clip), staleSizes(1440, 1440));
}

TEST_F(Diagnose, Wave_OfAnOddSizeWithItsPadByte_IsStale) {
    EXPECT_EQ(diagnosisOf("a.wav", riffFile(riffChunk("data", "odd"))), staleSizes(3, 4));
}

TEST_F(Diagnose, Wave_WithAChunkBehindItsSound_IsStale) {
    EXPECT_EQ(
        diagnosisOf("a.wav", riffFile(riffChunk("data", "even") + riffChunk("iXML", "slate!"))),
        staleSizes(4, 18));
}

TEST_F(Diagnose, Wave_CutOffBehindTheHeadOfItsSound_IsStale) {
    EXPECT_EQ(diagnosisOf("a.wav", riffFile(riffHeader("data", 600))), staleSizes(600, 0));
}

TEST_F(Diagnose, Wave_ThatIsNone_IsUnreadable) {
    for (const std::string& content :
         {std::string("RIFF"), "RIFF" + littleEndian(100, 4) + "AVI " + riffChunk("data", "x"),
          "RF64" + littleEndian(0xFFFFFFFF, 4) + "WAVE" + riffChunk("data", "x"), noise(500),
          riffFile(riffChunk("fmt ", formatPayload({}))), riffFile(riffHeader("bext", 600))}) {
        EXPECT_EQ(diagnosisOf("a.wav", content), unreadable("not a RIFF/WAVE"));
    }
}

TEST_F(Diagnose, MXF_FromHeaderToFooter_IsHealthy) {
    EXPECT_EQ(diagnosisOf("a.mxf", mxfClip("essence")), healthy);
}

TEST_F(Diagnose, MXF_WithoutAFooter_IsTruncatedThoughAllItsTripletsAreWhole) {
    const std::string clip =
        triplet(partitionKey(2), "pack") + triplet(essenceKey(), "1") + triplet(essenceKey(), "2");

    EXPECT_EQ(diagnosisOf("a.mxf", clip), truncatedTo(std::ssize(clip), std::ssize(clip)));
}

TEST_F(Diagnose, MXF_CutOffWithinATriplet_IsTruncatedToTheLastWholeOne) {
    const std::string whole =
        triplet(partitionKey(2), "pack") + triplet(essenceKey(), "1") + triplet(essenceKey(), "2");
    const std::string clip = whole + essenceKey() + berLength(1000) + "3";

    EXPECT_EQ(diagnosisOf("a.mxf", clip), truncatedTo(std::ssize(clip), std::ssize(whole)));
}

TEST_F(Diagnose, MXF_WithBytesBehindItsFooter_IsTruncated) {
    const std::string clip = mxfClip("essence");

    EXPECT_EQ(diagnosisOf("a.mxf", clip + "behind"),
              truncatedTo(std::ssize(clip) + 6, std::ssize(clip)));
}

TEST_F(Diagnose, MXF_WhoseFooterIsFollowedByMoreTriplets_IsHealthy) {
    EXPECT_EQ(diagnosisOf("a.mxf", mxfClip("essence") + triplet(essenceKey(), "index")), healthy);
}

TEST_F(Diagnose, MXF_ThatBeginsOtherwise_HasNoHeaderPartition) {
    const ClipDiagnosis expected = unreadable("no MXF header partition");

    EXPECT_EQ(diagnosisOf("a.mxf", partitionKey(2).substr(0, 15)), expected);
    EXPECT_EQ(diagnosisOf("a.mxf", noise(500)), expected);
    EXPECT_EQ(diagnosisOf("a.mxf", triplet(partitionKey(3), "body") + mxfClip("x")), expected);
    EXPECT_EQ(diagnosisOf("a.mxf", triplet(partitionKey(4), "footer") + mxfClip("x")), expected);
    EXPECT_EQ(diagnosisOf("a.mxf", triplet(essenceKey(), "essence") + mxfClip("x")), expected);
}

TEST_F(Diagnose, MXF_OfFewerThanThreeTriplets_IsUnwalkable) {
    const ClipDiagnosis expected = unreadable("MXF structure unwalkable");

    EXPECT_EQ(diagnosisOf("a.mxf", partitionKey(2)), expected);
    EXPECT_EQ(diagnosisOf("a.mxf", triplet(partitionKey(2), "p") + triplet(essenceKey(), "1")),
              expected);
}

TEST_F(Diagnose, RealClips_AreHealthyUntilTheyAreCut) {
    const std::string camera = cameraClip();
    const std::string indexed = indexedClip();
    const std::string mxf = mxfMovie();
    const auto half = [](const std::string& clip) { return clip.substr(0, clip.size() / 2); };

    EXPECT_EQ(diagnosisOf("a.mov", camera), healthy);
    EXPECT_EQ(diagnosisOf("a.mov", indexed), healthy);
    EXPECT_EQ(diagnosisOf("a.mp4", h264Clip()), healthy);
    EXPECT_EQ(diagnosisOf("a.mxf", mxf), healthy);
    EXPECT_TRUE(diagnosisOf("a.mov", half(camera)).is<ClipDiagnosis::MissingIndex>());
    EXPECT_EQ(diagnosisOf("a.mov", half(indexed)),
              truncatedTo(std::ssize(indexed), std::ssize(indexed) / 2));
    EXPECT_TRUE(diagnosisOf("a.mxf", half(mxf)).is<ClipDiagnosis::Truncated>());
}

}  // namespace

}  // namespace ReelCore
