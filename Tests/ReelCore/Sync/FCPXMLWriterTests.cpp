#include "ReelCore/Sync/FCPXMLWriter.h"

#include "EditorialSamples.h"
#include "ReelCore/Platform/Arithmetic.h"
#include "Support/EditorialReaders.h"
#include "Support/FolderTree.h"

#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

std::string documentOf(const std::vector<SyncGroup>& groups) {
    return FCPXMLWriter::fcpxml({groups, {}}, "Day 1", "keldobay");
}

int occurrences(const std::string& text, const std::string& part) {
    int count = 0;
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(FCPXMLWriter, EmptyResult_IsAnEmptyTimelineOfTwentyFourFrames) {
    EXPECT_EQ(FCPXMLWriter::fcpxml({}, "Day 1", "Film"),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE fcpxml>
<fcpxml version="1.9">
    <resources>
        <format id="r1" name="FFVideoFormat" frameDuration="1/24s" width="1920" height="1080"/>
    </resources>
    <library>
        <event name="Film">
            <project name="Day 1">
                <sequence format="r1" duration="0s" tcStart="0s" tcFormat="NDF" audioLayout="stereo" audioRate="48k">
                    <spine>
                </spine>
                </sequence>
            </project>
        </event>
    </library>
</fcpxml>)");
}

TEST(FCPXMLWriter, RecordingsWithoutPicture_AreNoPartOfTheTimeline) {
    const SyncResult silentDay{{}, {sound("/day/T1.wav", 60)}};

    EXPECT_EQ(FCPXMLWriter::fcpxml(silentDay, "P", "E"), FCPXMLWriter::fcpxml({}, "P", "E"));
}

TEST(FCPXMLWriter, ClipsWithAndWithoutSound_LieEndToEndInTheFormatOfTheFirst) {
    VideoClip first = picture("/day/A001/A&B.mov", 2.002, FrameRate::fps23_976);
    first.width = 4096;
    first.height = 2160;
    const VideoClip mute = picture("/day/A001/C2.mov", 1.001, FrameRate::fps25);
    const VideoClip lengthy = picture("/day/A001/C3.mov", 1001, FrameRate::fps59_94df);
    const VideoClip last = picture("/day/A001/C4.mov", 2.002, FrameRate::fps23_976);
    const AudioClip shared = sound("/day/SOUND/T1.wav", 60.06);
    const AudioClip other = sound("/day/SOUND/T2.wav", 30.03);

    const std::string document = documentOf({pair(first, shared, 10.01),
                                             {mute, {}},
                                             {lengthy, {{other, 3, 0.5}, {shared, -5.0, 0.9}}},
                                             pair(last, other, 0.5005)});

    EXPECT_EQ(document, R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE fcpxml>
<fcpxml version="1.9">
    <resources>
        <format id="r1" name="FFVideoFormat" frameDuration="1001/24000s" width="4096" height="2160"/>
        <asset id="r2" name="A&amp;B.mov" start="0s" duration="48048/24000s" format="r1" hasVideo="1">
            <media-rep kind="original-media" src="file:///day/A001/A%26B.mov"/>
        </asset>
        <asset id="r3" name="T1.wav" start="0s" duration="1441440/24000s" format="r1" hasAudio="1" audioSources="1" audioChannels="2" audioRate="48000">
            <media-rep kind="original-media" src="file:///day/SOUND/T1.wav"/>
        </asset>
        <asset id="r4" name="C2.mov" start="0s" duration="24024/24000s" format="r1" hasVideo="1">
            <media-rep kind="original-media" src="file:///day/A001/C2.mov"/>
        </asset>
        <asset id="r5" name="C3.mov" start="0s" duration="1001s" format="r1" hasVideo="1">
            <media-rep kind="original-media" src="file:///day/A001/C3.mov"/>
        </asset>
        <asset id="r6" name="C4.mov" start="0s" duration="48048/24000s" format="r1" hasVideo="1">
            <media-rep kind="original-media" src="file:///day/A001/C4.mov"/>
        </asset>
        <asset id="r7" name="T2.wav" start="0s" duration="720720/24000s" format="r1" hasAudio="1" audioSources="1" audioChannels="2" audioRate="48000">
            <media-rep kind="original-media" src="file:///day/SOUND/T2.wav"/>
        </asset>
    </resources>
    <library>
        <event name="keldobay">
            <project name="Day 1">
                <sequence format="r1" duration="24144120/24000s" tcStart="0s" tcFormat="NDF" audioLayout="stereo" audioRate="48k">
                    <spine>
            <asset-clip ref="r2" offset="0s" name="A&amp;B.mov" duration="48048/24000s" format="r1" tcFormat="NDF">
                <audio ref="r3" lane="-1" offset="0s" duration="48048/24000s" start="240240/24000s" role="dialogue"/>
            </asset-clip>
                <asset-clip ref="r4" offset="48048/24000s" name="C2.mov" duration="24024/24000s" format="r1" tcFormat="NDF"/>
            <asset-clip ref="r5" offset="72072/24000s" name="C3.mov" duration="1001s" format="r1" tcFormat="NDF">
                <audio ref="r3" lane="-1" offset="0s" duration="1001s" start="0s" role="dialogue"/>
            </asset-clip>
            <asset-clip ref="r6" offset="24096072/24000s" name="C4.mov" duration="48048/24000s" format="r1" tcFormat="NDF">
                <audio ref="r7" lane="-1" offset="0s" duration="48048/24000s" start="12012/24000s" role="dialogue"/>
            </asset-clip>
                </spine>
                </sequence>
            </project>
        </event>
    </library>
</fcpxml>)");
}

TEST(FCPXMLWriter, OneWAVUnderTwoClips_IsOneAssetThatBothReferTo) {
    const AudioClip shared = sound("/day/T1.wav", 60);

    const std::string document = documentOf(
        {pair(picture("/day/C1.mov", 10), shared), pair(picture("/day/C2.mov", 10), shared)});

    EXPECT_EQ(occurrences(document, "<asset "), 3);
    EXPECT_EQ(occurrences(document, R"(<asset id="r3" name="T1.wav")"), 1);
    EXPECT_EQ(occurrences(document, R"(<audio ref="r3")"), 2);
    EXPECT_EQ(occurrences(document, R"(<asset id="r4" name="C2.mov")"), 1);
}

TEST(FCPXMLWriter, OneClipInTwoGroups_IsOneAssetWithTwoPlaces) {
    const std::string document =
        documentOf({{picture("/day/C1.mov", 10), {}}, {picture("/day/C1.mov", 10), {}}});

    EXPECT_EQ(occurrences(document, "<asset "), 1);
    EXPECT_EQ(occurrences(document, R"(<asset-clip ref="r2" offset="0s")"), 1);
    EXPECT_EQ(occurrences(document, R"(<asset-clip ref="r2" offset="10s")"), 1);
}

TEST(FCPXMLWriter, FilesOfOneNameInTwoFolders_AreTwoAssets) {
    const std::string document =
        documentOf({{picture("/day/A/C1.mov", 10), {}}, {picture("/day/B/C1.mov", 10), {}}});

    EXPECT_EQ(occurrences(document, R"(<asset id="r2" name="C1.mov")"), 1);
    EXPECT_EQ(occurrences(document, R"(<asset id="r3" name="C1.mov")"), 1);
}

TEST(FCPXMLWriter, SeveralMatches_OnlyTheBestReachesTheTimeline) {
    const std::string document =
        documentOf({{picture("/day/C1.mov", 10),
                     {{sound("/day/half.wav", 5), 1, 0.5}, {sound("/day/whole.wav", 60), 2, 1.0}}},
                    {picture("/day/C2.mov", 10),
                     {{sound("/day/one.wav", 60), 3, 1.0}, {sound("/day/two.wav", 60), 4, 1.0}}}});

    EXPECT_EQ(occurrences(document, "<audio "), 2);
    EXPECT_EQ(occurrences(document, "whole.wav"), 2);
    EXPECT_EQ(occurrences(document, "one.wav"), 2);
    EXPECT_EQ(document.find("half.wav"), document.npos);
    EXPECT_EQ(document.find("two.wav"), document.npos);
}

TEST(FCPXMLWriter, RecorderThatRolledLate_StartsAtItsBeginning) {
    const std::string document =
        documentOf({pair(picture("/day/C1.mov", 10), sound("/day/T1.wav", 60), -5.0),
                    pair(picture("/day/C2.mov", 10), sound("/day/T2.wav", 60), -0.001),
                    pair(picture("/day/C3.mov", 10), sound("/day/T3.wav", 60), -0.0)});

    EXPECT_EQ(occurrences(document, R"(start="0s" role="dialogue")"), 3);
    EXPECT_EQ(document.find("\"-5"), document.npos);
}

TEST(FCPXMLWriter, SoundShorterThanThePicture_HasThePicturesLengthAllTheSame) {
    const std::string document =
        documentOf({pair(picture("/day/C1.mov", 10), sound("/day/T1.wav", 4))});

    EXPECT_EQ(occurrences(document, R"(<audio ref="r3" lane="-1" offset="0s" duration="10s")"), 1);
    EXPECT_EQ(occurrences(document, R"(name="T1.wav" start="0s" duration="4s")"), 1);
}

TEST(FCPXMLWriter, TimecodeFormat_IsDropWhereTheFirstClipDropsLabels) {
    const auto formatsOf = [](FrameRate first, FrameRate second) {
        const std::string document = documentOf(
            {{picture("/day/C1.mov", 10, first), {}}, {picture("/day/C2.mov", 10, second), {}}});
        return std::pair(occurrences(document, R"(tcFormat="DF")"),
                         occurrences(document, R"(tcFormat="NDF")"));
    };

    for (const FrameRate& drop : {FrameRate::fps29_97df, FrameRate::fps59_94df}) {
        EXPECT_EQ(formatsOf(drop, FrameRate::fps25), std::pair(3, 0));
        EXPECT_EQ(formatsOf(FrameRate::fps25, drop), std::pair(0, 3));
    }
    for (const FrameRate& even :
         {FrameRate::fps24, FrameRate::fps30, FrameRate::fps23_976, FrameRate::fps29_97,
          FrameRate::fps59_94, FrameRate::other(50, 50.0)}) {
        EXPECT_EQ(formatsOf(even, FrameRate::fps29_97df), std::pair(0, 3));
    }
}

struct FrameLength {
    FrameRate rate;
    double seconds;
};

class FCPXMLWriterOfRate : public testing::TestWithParam<FrameLength> {};

// The lengths lie between two frames on purpose, and the second clip's own rate does not count.
TEST_P(FCPXMLWriterOfRate, EveryTime_LandsOnAFrame) {
    const auto [rate, frame] = GetParam();
    const SyncResult result{{pair(picture("/day/C1.mov", 10.3 * frame, rate),
                                  sound("/day/T1.wav", 99.6 * frame), 7.6 * frame),
                             {picture("/day/C2.mov", 5.4 * frame, FrameRate::fps24), {}}},
                            {}};
    const TemporaryFolder folder;

    const URL timeline = FCPXMLWriter::write(result, folder.path() / "day.fcpxml", "Day 1");

    EXPECT_EQ(
        timesInFrames(timeline),
        (std::vector<std::string>{
            "asset.start 0", "asset.duration 10", "asset.start 0", "asset.duration 100",
            "asset.start 0", "asset.duration 5", "sequence.tcStart 0", "sequence.duration 16",
            "asset-clip.offset 0", "asset-clip.duration 10", "audio.offset 0", "audio.start 8",
            "audio.duration 10", "asset-clip.offset 10", "asset-clip.duration 5"}));
}

INSTANTIATE_TEST_SUITE_P(AllRates, FCPXMLWriterOfRate,
                         testing::Values(FrameLength{FrameRate::fps24, 1.0 / 24},
                                         FrameLength{FrameRate::fps25, 1.0 / 25},
                                         FrameLength{FrameRate::fps30, 1.0 / 30},
                                         FrameLength{FrameRate::fps23_976, 1001.0 / 24000},
                                         FrameLength{FrameRate::fps29_97, 1001.0 / 30000},
                                         FrameLength{FrameRate::fps29_97df, 1001.0 / 30000},
                                         FrameLength{FrameRate::fps59_94, 1001.0 / 60000},
                                         FrameLength{FrameRate::fps59_94df, 1001.0 / 60000},
                                         FrameLength{FrameRate::other(50, 50.0), 1.0 / 50},
                                         FrameLength{FrameRate::other(48, 48000.0 / 1001.0),
                                                     1.0 / 48}));

TEST(FCPXMLWriter, TimesThatAreNoNumbers_AreRefused) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    const VideoClip clip = picture("/day/C1.mov", 10);

    EXPECT_THROW(documentOf({{picture("/day/C1.mov", none), {}}}), OutOfRange);
    EXPECT_THROW(documentOf({{picture("/day/C1.mov", 1e300), {}}}), OutOfRange);
    EXPECT_THROW(documentOf({pair(clip, sound("/day/T1.wav", endless))}), OutOfRange);
    EXPECT_THROW(documentOf({pair(clip, sound("/day/T1.wav", 1), endless)}), OutOfRange);
}

}  // namespace
