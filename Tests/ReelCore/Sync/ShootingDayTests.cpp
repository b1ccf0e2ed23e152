// A whole day as it comes from a set: real clips, real recordings, and all that lies about beside
// them.

#include "Support/ShootingDay.h"

#include "ReelCore/Sync/Synchronizer.h"
#include "Support/FolderTree.h"
#include "Support/Snapshot.h"

#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Lines = std::vector<std::string>;

/// Clips as "path | start | label", and below each its sound as "  path | offset | coverage".
Lines groupsOf(const SyncResult& result, const URL& folder) {
    const auto below = [&](const URL& url) { return url.lexically_relative(folder).native(); };
    Lines lines;
    for (const SyncGroup& group : result.groups) {
        const VideoClip& video = group.video;
        lines.push_back(fmt::format("{} | {:.3f} | {}", below(video.url), video.startSeconds,
                                    video.startTimecode ? video.startTimecode->formatted() : "-"));
        for (const SyncGroup::Match& match : group.audio) {
            lines.push_back(fmt::format("  {} | {:.3f} | {:.2f}", below(match.clip->url),
                                        match.audioOffset, match.coverage));
        }
    }
    return lines;
}

Lines unmatchedOf(const SyncResult& result, const URL& folder) {
    Lines lines;
    for (const AudioClip& clip : result.unmatchedAudio) {
        lines.push_back(clip.url.lexically_relative(folder).native());
    }
    return lines;
}

/// ffprobe reads the clips, and reading one is no change.
Snapshot withoutAccessDates(Snapshot snapshot) {
    for (auto& [path, trace] : snapshot) trace.accessed = {};
    return snapshot;
}

}  // namespace

TEST(ShootingDay, Scan_Day_FindsTheSoundOfEveryClipAndChangesNothing) {
    const TemporaryFolder day;
    makeShootingDay(day.path());
    addOddEntries(day.path(), "A001/CLIPS/A001C001.mov", "SOUND/LONELY.wav");
    const Snapshot before = withoutAccessDates(snapshotOf(day.path()));

    const SyncResult result = Synchronizer::scan(day.path());

    EXPECT_EQ(groupsOf(result, day.path()),
              (Lines{"F001/F0001.avi | 0.000 | -",
                     "  SOUND/NOTIME.wav | 0.000 | 1.00",
                     "F001/F0002.mts | 0.000 | -",
                     "  SOUND/NOTIME.wav | 0.000 | 1.00",
                     "F001/F0003.m4v | 0.000 | -",
                     "  SOUND/NOTIME.wav | 0.000 | 0.60",
                     "ODD/broken.mov | 0.000 | -",
                     "ODD/circle.mov | 0.000 | -",
                     "ODD/empty.mov | 0.000 | -",
                     "ODD/folder.mov | 0.000 | -",
                     "ODD/noise.mp4 | 0.000 | -",
                     "NIGHT/N0002.mov | 0.480 | 00:00:00:12",
                     "  SOUND/NOTIME.wav | 0.480 | 0.36",
                     "A001/CLIPS/A001C001.mov | 36000.000 | 10:00:00:00",
                     "  SOUND/T001.WAV | 5.000 | 1.00",
                     "  SOUND/Mix & Träger/0001.wav | 0.000 | 1.00",
                     "ODD/to clip.mov | 36000.000 | 10:00:00:00",
                     "  SOUND/T001.WAV | 5.000 | 1.00",
                     "  SOUND/Mix & Träger/0001.wav | 0.000 | 1.00",
                     "B001/B001C001.mov | 36000.501 | 10:00:00:12",
                     "  SOUND/T001.WAV | 5.501 | 1.00",
                     "  SOUND/Mix & Träger/0001.wav | 0.501 | 1.00",
                     "A001/CLIPS/A001C002.MOV | 36010.480 | 10:00:10:12",
                     "  SOUND/T001.WAV | 15.480 | 1.00",
                     "  SOUND/Mix & Träger/0001.wav | 10.480 | 0.76",
                     "A001/CLIPS/A001C003 Söhne & Co.mov | 36020.000 | 10:00:20:00",
                     "  SOUND/T002-1.wav | 1.000 | 0.62",
                     "  SOUND/T002-2.wav | -1.250 | 0.38",
                     "B001/B001C002.mov | 36021.000 | 10:00:21:00",
                     "  SOUND/T002-2.wav | -0.250 | 0.88",
                     "A001/.hidden/.A001C004.mov | 36030.000 | 10:00:30:00",
                     "A001/CLIPS/A001C005\nagain.mov | 36040.000 | 10:00:40:00",
                     "A001/CLIPS/A001C006 \xFF\xFE.mov | 36050.000 | 10:00:50:00",
                     "C001/C0001.MXF | 36600.000 | 10:10:00;00",
                     "C001/C0002.mxf | 36630.000 | 10:10:30:00",
                     "D001/D0001.MP4 | 39660.067 | 11:01:00;02",
                     "  SOUND/D.wav | 0.067 | 1.00",
                     "D001/D0002.mp4 | 39720.067 | 11:02:00;04",
                     "  SOUND/D.wav | 60.067 | 1.00",
                     "D001/D0003.mp4 | 39780.500 | 11:03:00:25",
                     "  SOUND/D.wav | 120.500 | 0.75",
                     "E001/E0001.mov | 50400.000 | 14:00:00:00",
                     "E001/E0002.mov | 50402.500 | 14:00:02:15",
                     "F001/F0004.R3D | 54000.000 | 15:00:00:00",
                     "F001/F0005.braw | 54010.000 | 15:00:10:00",
                     "NIGHT/N0001.mov | 86399.000 | 23:59:59:00",
                     "  SOUND/NIGHT.WAV | 1.000 | 1.00"}));
    EXPECT_EQ(unmatchedOf(result, day.path()),
              (Lines{"SOUND/NEARMISS.BWF", "ODD/to recording.wav", "SOUND/LONELY.wav"}));
    EXPECT_EQ(result.syncedCount(), 14);
    EXPECT_EQ(withoutAccessDates(snapshotOf(day.path())), before);
}

TEST(ShootingDay, Scan_ShortDay_FindsItsSound) {
    const TemporaryFolder day;
    makeShortDay(day.path());

    const SyncResult result = Synchronizer::scan(day.path());

    EXPECT_EQ(
        groupsOf(result, day.path()),
        (Lines{"A001/CLIPS/A001C001.mov | 36000.000 | 10:00:00:00",
               "  SOUND/T001.WAV | 5.000 | 1.00", "  SOUND/Mix & Träger/0001.wav | 0.000 | 1.00",
               "E001/E0002.mov | 50402.500 | 14:00:02:15"}));
    EXPECT_EQ(unmatchedOf(result, day.path()), Lines{"SOUND/LONELY.wav"});
}
