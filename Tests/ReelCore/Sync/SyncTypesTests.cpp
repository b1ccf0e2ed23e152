#include "ReelCore/Sync/SyncTypes.h"

#include "ReelCore/Sync/Synchronizer.h"

#include <gtest/gtest.h>

using namespace ReelCore;

namespace {

SyncGroup::Match matchOf(const URL& url, double coverage) {
    AudioClip clip;
    clip.url = url;
    return {clip, 0.0, coverage};
}

SyncGroup groupOf(const std::vector<SyncGroup::Match>& matches) {
    SyncGroup group;
    group.audio = matches;
    return group;
}

}  // namespace

TEST(SyncTypes, Name_OfClips_IsTheLastPartOfThePathWithItsExtension) {
    VideoClip video;
    AudioClip audio;
    video.url = "/day/A001/A001C001 & more.MOV";
    audio.url = "/day/SOUND/T001.tar.wav";

    EXPECT_EQ(video.name(), "A001C001 & more.MOV");
    EXPECT_EQ(audio.name(), "T001.tar.wav");
}

TEST(SyncTypes, EndSeconds_OfClips_IsTheStartAndTheDuration) {
    VideoClip video;
    AudioClip audio;
    video.startSeconds = 100.25;
    video.duration = 60.5;
    audio.startSeconds = 86399.0;
    audio.duration = 2.0;

    EXPECT_EQ(video.endSeconds(), 160.75);
    EXPECT_EQ(audio.endSeconds(), 86401.0);
}

TEST(SyncTypes, Best_NoMatches_IsNoneAndNotSynced) {
    const SyncGroup group = groupOf({});

    EXPECT_EQ(group.best(), std::nullopt);
    EXPECT_FALSE(group.isSynced());
}

TEST(SyncTypes, Best_HighestCoverageNotInFront_IsFound) {
    const SyncGroup group = groupOf({matchOf("a", 0.2), matchOf("b", 0.9), matchOf("c", 0.5)});

    ASSERT_TRUE(group.best().has_value());
    EXPECT_EQ(group.best()->clip->url, "b");
    EXPECT_TRUE(group.isSynced());
}

TEST(SyncTypes, Best_EqualCoverage_IsTheFirst) {
    const SyncGroup group =
        groupOf({matchOf("a", 0.5), matchOf("b", 1.0), matchOf("c", 1.0), matchOf("d", 1.0)});

    ASSERT_TRUE(group.best().has_value());
    EXPECT_EQ(group.best()->clip->url, "b");
}

TEST(SyncTypes, Best_CoverageOfZero_StillCounts) {
    const SyncGroup group = groupOf({matchOf("a", 0.0), matchOf("b", 0.0)});

    ASSERT_TRUE(group.best().has_value());
    EXPECT_EQ(group.best()->clip->url, "a");
}

TEST(SyncTypes, SyncedCount_SomeGroupsWithSound_CountsThose) {
    SyncResult result;
    EXPECT_EQ(result.syncedCount(), 0);

    result.groups = {groupOf({matchOf("a", 1.0)}), groupOf({}),
                     groupOf({matchOf("a", 1.0), matchOf("b", 0.5)})};
    EXPECT_EQ(result.syncedCount(), 2);
}

TEST(SyncTypes, Equality_AnyFieldDiffers_IsNotEqual) {
    const VideoClip video{"a.mov", 1.0, 2.0, FrameRate::fps25, Timecode(25, FrameRate::fps25),
                          1,       2};
    VideoClip other = video;
    EXPECT_EQ(video, other);
    other.height = 3;
    EXPECT_NE(video, other);

    const AudioClip audio{"a.wav", 1.0, 2.0, 48000.0, "1", "2", "3", "4", {"Boom"}};
    AudioClip another = audio;
    EXPECT_EQ(audio, another);
    another.trackNames = {"Boom", "Lav"};
    EXPECT_NE(audio, another);
}

TEST(SyncTypes, Extensions_OfClips_AreThose) {
    EXPECT_EQ(
        Synchronizer::videoExtensions,
        (std::array<std::string_view, 8>{"mov", "mp4", "mxf", "m4v", "avi", "mts", "r3d", "braw"}));
    EXPECT_EQ(Synchronizer::audioExtensions, (std::array<std::string_view, 2>{"wav", "bwf"}));
}
