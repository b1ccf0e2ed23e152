#include "ReelCore/Sync/Synchronizer.h"
#include "Support/Forked.h"
#include "Support/PeakMemory.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace ReelCore;

namespace {

VideoClip video(double from, double to, const URL& url = "clip.mov") {
    VideoClip clip;
    clip.url = url;
    clip.startSeconds = from;
    clip.duration = to - from;
    return clip;
}

AudioClip audio(double from, double to, const URL& url = "sound.wav") {
    AudioClip clip;
    clip.url = url;
    clip.startSeconds = from;
    clip.duration = to - from;
    return clip;
}

using Videos = std::vector<VideoClip>;
using Audios = std::vector<AudioClip>;
using Names = std::vector<std::string>;

SyncResult matchOf(const Videos& videos, const Audios& audios, double minOverlap = 0.5) {
    return Synchronizer::match(videos, audios, minOverlap);
}

Names namesOf(const SyncGroup& group) {
    Names names;
    for (const SyncGroup::Match& match : group.audio) names.push_back(match.clip->name());
    return names;
}

Names namesOf(const Audios& audios) {
    Names names;
    for (const AudioClip& clip : audios) names.push_back(clip.name());
    return names;
}

}  // namespace

TEST(Match, Pair_RecorderRolledFirst_IsCoveredWholeAtAPositiveOffset) {
    const AudioClip sound = audio(90, 200);
    const VideoClip picture = video(100, 160);

    const SyncResult result = matchOf({picture}, {sound});

    const SyncGroup expected{picture, {{sound, 10.0, 1.0}}};
    EXPECT_EQ(result, (SyncResult{{expected}, {}}));
    EXPECT_EQ(result.syncedCount(), 1);
}

TEST(Match, Pair_CameraRolledFirst_IsCoveredInPartAtANegativeOffset) {
    const SyncResult result = matchOf({video(100, 160)}, {audio(130, 400)});

    ASSERT_EQ(result.groups.at(0).audio.size(), 1U);
    EXPECT_EQ(result.groups[0].audio[0].audioOffset, -30.0);
    EXPECT_EQ(result.groups[0].audio[0].coverage, 0.5);
}

TEST(Match, Pair_SoundWithinThePicture_IsCoveredByItsShare) {
    const SyncResult result = matchOf({video(100, 160)}, {audio(110, 125)});

    ASSERT_EQ(result.groups.at(0).audio.size(), 1U);
    EXPECT_EQ(result.groups[0].audio[0].audioOffset, -10.0);
    EXPECT_EQ(result.groups[0].audio[0].coverage, 0.25);
}

TEST(Match, Overlap_OfExactlyTheLeast_IsAMatch) {
    const SyncResult atTheEnd = matchOf({video(100, 160)}, {audio(159.5, 200)});
    const SyncResult atTheStart = matchOf({video(100, 160)}, {audio(50, 100.5)});

    EXPECT_EQ(atTheEnd.syncedCount(), 1);
    EXPECT_EQ(atTheStart.syncedCount(), 1);
    EXPECT_TRUE(atTheEnd.unmatchedAudio.empty());
}

TEST(Match, Overlap_OfLess_IsNoneAndLeavesTheSoundUnmatched) {
    const AudioClip sound = audio(159.51, 200);

    const SyncResult result = matchOf({video(100, 160)}, {sound});

    EXPECT_EQ(result.groups.at(0).audio.size(), 0U);
    EXPECT_EQ(result.unmatchedAudio, Audios{sound});
    EXPECT_EQ(result.syncedCount(), 0);
}

TEST(Match, Overlap_TooShortForOneClipButNotForAnother_IsNotUnmatched) {
    const SyncResult result = matchOf({video(100, 160), video(160, 200)}, {audio(159.51, 200)});

    EXPECT_TRUE(result.groups.at(0).audio.empty());
    EXPECT_EQ(result.groups.at(1).audio.size(), 1U);
    EXPECT_TRUE(result.unmatchedAudio.empty());
}

TEST(Match, Apart_ByHours_IsNoMatch) {
    EXPECT_EQ(matchOf({video(100, 160)}, {audio(7200, 7300)}).syncedCount(), 0);
    EXPECT_EQ(matchOf({video(7200, 7300)}, {audio(100, 160)}).syncedCount(), 0);
}

TEST(Match, LeastOverlapOfZero_TouchingIsAMatchAndAGapIsNot) {
    const SyncResult result =
        matchOf({video(100, 160)}, {audio(160, 200, "touches"), audio(160.01, 200, "gap")}, 0.0);

    EXPECT_EQ(namesOf(result.groups.at(0)), Names{"touches"});
    EXPECT_EQ(result.groups[0].audio[0].coverage, 0.0);
    EXPECT_EQ(namesOf(result.unmatchedAudio), Names{"gap"});
}

TEST(Match, LeastOverlapBelowZero_BridgesAGapWithNegativeCoverage) {
    const SyncResult result =
        matchOf({video(100, 110)}, {audio(111, 120, "near"), audio(113, 120, "far")}, -2.0);

    EXPECT_EQ(namesOf(result.groups.at(0)), Names{"near"});
    EXPECT_DOUBLE_EQ(result.groups[0].audio[0].coverage, -0.1);
    EXPECT_EQ(namesOf(result.unmatchedAudio), Names{"far"});
}

TEST(Match, LeastOverlapLongerThanThePicture_NeverMatches) {
    EXPECT_EQ(matchOf({video(100, 160)}, {audio(0, 1000)}, 60.5).syncedCount(), 0);
}

TEST(Match, PictureOfNoLength_HasNoMatchAtTheUsualLeast) {
    const SyncResult result = matchOf({video(100, 100)}, {audio(90, 200)});

    ASSERT_EQ(result.groups.size(), 1U);
    EXPECT_TRUE(result.groups[0].audio.empty());
    EXPECT_EQ(result.unmatchedAudio.size(), 1U);
}

TEST(Match, PictureOfNoLength_MatchedAllTheSameIsCoveredByNothing) {
    const SyncResult result = matchOf({video(100, 100)}, {audio(90, 200)}, 0.0);

    ASSERT_EQ(result.groups.at(0).audio.size(), 1U);
    EXPECT_EQ(result.groups[0].audio[0].coverage, 0.0);
    EXPECT_EQ(result.groups[0].audio[0].audioOffset, 10.0);
}

TEST(Match, PictureOfNegativeLength_IsCoveredByNothing) {
    const SyncResult result = matchOf({video(100, 90)}, {audio(0, 200)}, -20.0);

    ASSERT_EQ(result.groups.at(0).audio.size(), 1U);
    EXPECT_EQ(result.groups[0].audio[0].coverage, 0.0);
}

TEST(Match, Coverage_OverlapRoundedAboveTheLength_IsNoMoreThanOne) {
    // The end is rounded so that what lies between is longer than the duration given.
    VideoClip picture = video(0, 0);
    picture.startSeconds = 36000.1;
    picture.duration = 2.002;
    const double overlap = picture.endSeconds() - picture.startSeconds;
    ASSERT_GT(overlap, picture.duration);

    const SyncResult result = matchOf({picture}, {audio(0, 86400)});

    EXPECT_EQ(result.groups.at(0).audio.at(0).coverage, 1.0);
}

TEST(Match, OneSoundUnderTwoPictures_IsInBothGroupsAndNotUnmatched) {
    const SyncResult result =
        matchOf({video(100, 160, "1"), video(200, 260, "2")}, {audio(0, 300)});

    EXPECT_EQ(namesOf(result.groups.at(0)), Names{"sound.wav"});
    EXPECT_EQ(namesOf(result.groups.at(1)), Names{"sound.wav"});
    EXPECT_EQ(result.groups[1].audio[0].audioOffset, 200.0);
    EXPECT_TRUE(result.unmatchedAudio.empty());
    EXPECT_EQ(result.syncedCount(), 2);
}

TEST(Match, TwoSoundsThatCoverAll_AreBothKeptInTheirOrderAndTheFirstIsBest) {
    const SyncResult result =
        matchOf({video(100, 160)}, {audio(95, 200, "second.wav"), audio(90, 200, "first.wav")});

    EXPECT_EQ(namesOf(result.groups.at(0)), (Names{"second.wav", "first.wav"}));
    EXPECT_EQ(result.groups[0].best(), result.groups[0].audio[0]);
}

TEST(Match, ManySounds_ComeByCoverageAndThenInTheirOrder) {
    const Audios sounds{audio(100, 130, "half 1"),  audio(90, 200, "whole 1"),
                        audio(130, 145, "quarter"), audio(130, 160, "half 2"),
                        audio(100, 160, "whole 2"), audio(115, 145, "half 3")};

    const SyncResult result = matchOf({video(100, 160)}, sounds);

    EXPECT_EQ(namesOf(result.groups.at(0)),
              (Names{"whole 1", "whole 2", "half 1", "half 2", "half 3", "quarter"}));
}

TEST(Match, HundredsOfEqualCoverage_StayInTheirOrder) {
    Audios sounds;
    Names names;
    for (int i = 0; i < 300; ++i) {
        names.push_back("sound " + std::to_string(i));
        sounds.push_back(audio(0, 1000 - i, names.back()));
    }

    EXPECT_EQ(namesOf(matchOf({video(100, 160)}, sounds).groups.at(0)), names);
}

TEST(Match, Groups_StandInTheOrderGivenAlsoWithoutSound) {
    const SyncResult result = matchOf(
        {video(300, 310, "c"), video(100, 110, "a"), video(200, 210, "b")}, {audio(200, 210)});

    ASSERT_EQ(result.groups.size(), 3U);
    EXPECT_EQ(result.groups[0].video.name(), "c");
    EXPECT_EQ(result.groups[1].video.name(), "a");
    EXPECT_EQ(result.groups[2].video.name(), "b");
    EXPECT_FALSE(result.groups[0].isSynced() || result.groups[1].isSynced());
    EXPECT_EQ(result.syncedCount(), 1);
}

TEST(Match, Unmatched_StandInTheOrderGiven) {
    const SyncResult result =
        matchOf({video(100, 160)}, {audio(900, 910, "z"), audio(100, 160, "used"),
                                    audio(500, 510, "y"), audio(700, 710, "x")});

    EXPECT_EQ(namesOf(result.unmatchedAudio), (Names{"z", "y", "x"}));
}

TEST(Match, Sounds_AreTakenOverWithAllTheyTell) {
    AudioClip sound = audio(90, 200);
    sound.sampleRate = 96000.0;
    sound.scene = "12A";
    sound.take = "3";
    sound.trackNames = {"Boom", "Lav"};
    AudioClip lonely = sound;
    lonely.startSeconds = 5000.0;

    const SyncResult result = matchOf({video(100, 160)}, {sound, lonely});

    EXPECT_EQ(result.groups.at(0).audio.at(0).clip, sound);
    EXPECT_EQ(result.unmatchedAudio, Audios{lonely});
}

TEST(Match, Midnight_IsNotWrapped) {
    const SyncResult result = matchOf({video(86395, 86405, "before"), video(2, 8, "after")},
                                      {audio(86390, 86410, "across"), audio(0, 10, "early")});

    EXPECT_EQ(namesOf(result.groups.at(0)), Names{"across"});
    EXPECT_EQ(namesOf(result.groups.at(1)), Names{"early"});
}

TEST(Match, HoursAbove23_AreNotFoldedBack) {
    const double hour = 3600.0;

    EXPECT_EQ(matchOf({video(25 * hour, 25 * hour + 60)}, {audio(hour, hour + 60)}).syncedCount(),
              0);
}

TEST(Match, NoTimes_SitAtMidnightTogether) {
    EXPECT_EQ(matchOf({video(0, 60)}, {audio(0, 90)}).syncedCount(), 1);
}

// Recordings without a time all sit at midnight, under every clip that has none either.
TEST(Match, ThousandsWithoutTimes_HoldEachRecordingOnce) {
    constexpr int count = 2000;
    Audios sounds(count, audio(0, 90, "/Volumes/DAY/SOUND/251121/an untimed recording.wav"));
    for (AudioClip& sound : sounds) sound.trackNames = {"MixL", "MixR", "Boom", "Lav 1", "Lav 2"};
    const Videos pictures(count, video(0, 60));

    const int mebibytes = TestSupport::statusOfForked([&] {
        const std::int64_t before = TestSupport::peakMemoryInKiB();
        const SyncResult result = matchOf(pictures, sounds);
        if (result.groups.back().audio.size() != std::size_t{count}) return 255;
        return static_cast<int>(
            std::min<std::int64_t>(254, (TestSupport::peakMemoryInKiB() - before) / 1024));
    });

    // A recording for each match would take more than 2 GiB.
    EXPECT_LT(mebibytes, 240);
}

TEST(Match, NothingGiven_GivesNothing) {
    EXPECT_EQ(matchOf({}, {}), SyncResult{});
}

TEST(Match, NoSound_GivesGroupsWithNone) {
    const SyncResult result = matchOf({video(0, 60), video(0, 60)}, {});

    EXPECT_EQ(result.groups.size(), 2U);
    EXPECT_EQ(result.syncedCount(), 0);
    EXPECT_TRUE(result.unmatchedAudio.empty());
}

TEST(Match, NoPicture_LeavesAllSoundUnmatched) {
    const Audios sounds{audio(10, 20, "b"), audio(0, 5, "a")};

    EXPECT_EQ(matchOf({}, sounds), (SyncResult{{}, sounds}));
}
