#include "ReelCore/Sync/Synchronizer.h"
#include "Support/Clip.h"
#include "Support/FakeTool.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/OwnMounts.h"
#include "Support/RIFF.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Names = std::vector<std::string>;

Names namesOf(const std::vector<SyncGroup>& groups) {
    Names names;
    for (const SyncGroup& group : groups) names.push_back(group.video.name());
    return names;
}

Names namesOf(const std::vector<AudioClip>& audios) {
    Names names;
    for (const AudioClip& clip : audios) names.push_back(clip.name());
    return names;
}

std::string recordingAt(std::uint64_t seconds) {
    Recording recording;
    recording.bitsPerSample = 16;
    recording.timeReference = seconds * recording.sampleRate;
    return broadcastWAV(recording);
}

/// An ffprobe for which a clip is a text file that holds its start timecode: 25 frames a second,
/// and ten seconds long.
constexpr const char* readsText = R"(for file; do :; done
case "$*" in
*r_frame_rate*) echo 25/1;;
*stream_tags*) cat "$file";;
*format=duration*) echo 10.0;;
esac)";

/// Folders of names of `length`, one in the other; deeper than a path may be long.
void makeDeepFolders(const URL& top, std::size_t length, int depth) {
    std::filesystem::create_directory(top);
    const std::string name(length, 'd');
    int folder = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < depth; ++i) {
        ASSERT_EQ(::mkdirat(folder, name.c_str(), 0755), 0);
        const int below = ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
        ::close(folder);
        folder = below;
    }
    ::close(folder);
}

class SynchronizerScanTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(SynchronizerScanTest, Scan_FolderEmptyMissingOrAFile_GivesNothing) {
    std::filesystem::create_directory(at("empty"));
    writeFile(at("clip.mov"), "");

    EXPECT_EQ(Synchronizer::scan(at("empty")), SyncResult{});
    EXPECT_EQ(Synchronizer::scan(at("missing")), SyncResult{});
    EXPECT_EQ(Synchronizer::scan(at("clip.mov")), SyncResult{});
}

TEST_F(SynchronizerScanTest, Scan_NoSound_GivesGroupsWithNone) {
    const FakeTool ffprobe("FFPROBE_PATH", readsText);
    writeTree(at(""), {{"a.mov", "10:00:00:00"}, {"b.mov", "11:00:00:00"}});

    const SyncResult result = Synchronizer::scan(at(""));

    EXPECT_EQ(namesOf(result.groups), (Names{"a.mov", "b.mov"}));
    EXPECT_EQ(result.syncedCount(), 0);
    EXPECT_TRUE(result.unmatchedAudio.empty());
}

TEST_F(SynchronizerScanTest, Scan_Extensions_AreFoundInAnyCaseAndOnlyAtTheEnd) {
    const FakeTool ffprobe("FFPROBE_PATH", readsText);
    for (const char* name : {"a.mov", "b.MP4", "c.mxf", "d.M4v", "e.avi", "f.MTS", "g.R3D",
                             "h.braw", "i.mov.tmp", "j.movx", "mov", ".mov", "k.mov.", "l.mkv"}) {
        writeFile(at(name), "10:00:00:00");
    }
    for (const char* name : {"a.wav", "b.WAV", "c.bwf", "d.Bwf", "e.wav.part", ".wav", "f.aif"}) {
        writeFile(at(name), recordingAt(43200));
    }

    const SyncResult result = Synchronizer::scan(at(""));

    EXPECT_EQ(namesOf(result.groups),
              (Names{"a.mov", "b.MP4", "c.mxf", "d.M4v", "e.avi", "f.MTS", "g.R3D", "h.braw"}));
    EXPECT_EQ(namesOf(result.unmatchedAudio), (Names{"a.wav", "b.WAV", "c.bwf", "d.Bwf"}));
}

TEST_F(SynchronizerScanTest, Scan_Clips_AreInTheOrderOfTheirTimesAndThenOfTheirPaths) {
    const FakeTool ffprobe("FFPROBE_PATH", readsText);
    writeTree(at(""), {{"a.mov", "12:00:00:00"},
                       {"b.mov", "10:00:00:00"},
                       {"c/a.mov", "10:00:00:00"},
                       {"c/b.mov", "09:00:00:00"},
                       {"d.mov", "10:00:00:00"},
                       {"1.wav", recordingAt(900)},
                       {"2.wav", recordingAt(300)},
                       {"3.wav", recordingAt(600)},
                       {"4.wav", recordingAt(300)}});

    const SyncResult result = Synchronizer::scan(at(""));

    EXPECT_EQ(namesOf(result.groups), (Names{"b.mov", "b.mov", "a.mov", "d.mov", "a.mov"}));
    EXPECT_EQ(result.groups.at(0).video.url, at("c/b.mov"));
    EXPECT_EQ(namesOf(result.unmatchedAudio), (Names{"2.wav", "4.wav", "3.wav", "1.wav"}));
}

TEST_F(SynchronizerScanTest, Scan_LeastOverlap_IsHalfASecond) {
    const FakeTool ffprobe("FFPROBE_PATH", readsText);
    Recording half;
    half.timeReference = static_cast<std::uint64_t>(36009.5 * half.sampleRate);
    Recording less = half;
    ++less.timeReference;
    writeTree(at(""), {{"clip.mov", "10:00:00:00"},
                       {"half.wav", broadcastWAV(half)},
                       {"less.wav", broadcastWAV(less)}});

    const SyncResult result = Synchronizer::scan(at(""));

    ASSERT_EQ(result.groups.size(), 1U);
    ASSERT_EQ(result.groups[0].audio.size(), 1U);
    EXPECT_EQ(result.groups[0].audio[0].clip->name(), "half.wav");
    EXPECT_EQ(namesOf(result.unmatchedAudio), Names{"less.wav"});
}

TEST_F(SynchronizerScanTest, Scan_LengthUnknown_NeverMatches) {
    const FakeTool ffprobe("FFPROBE_PATH", "case \"$*\" in *format=duration*) echo N/A;; esac");
    writeTree(at(""), {{"clip.mov", ""}, {"sound.wav", recordingAt(0)}});

    const SyncResult result = Synchronizer::scan(at(""));

    EXPECT_EQ(namesOf(result.groups), Names{"clip.mov"});
    EXPECT_EQ(result.syncedCount(), 0);
    EXPECT_EQ(namesOf(result.unmatchedAudio), Names{"sound.wav"});
}

TEST_F(SynchronizerScanTest, Scan_FFprobeThatCannotBeStarted_LeavesAllClipsOut) {
    writeTree(at("day"), {{"clip.mov", ""}, {"sound.wav", recordingAt(0)}});
    writeFile(at("ffprobe"), "no program");
    std::filesystem::permissions(at("ffprobe"), std::filesystem::perms(0755));
    const EnvironmentVariable variable("FFPROBE_PATH", at("ffprobe"));

    const SyncResult result = Synchronizer::scan(at("day"));

    EXPECT_TRUE(result.groups.empty());
    EXPECT_EQ(namesOf(result.unmatchedAudio), Names{"sound.wav"});
}

TEST_F(SynchronizerScanTest, Scan_NoFFprobeAtAll_HasNoGroupsAndAllSoundUnmatched) {
    if (const auto missing = ownMountsMissing(); !missing.empty()) GTEST_SKIP() << missing;
    ClipRecipe recipe;
    recipe.timecode = "00:00:00:00";
    makeClip(at("clip.mov"), recipe);
    writeTree(at(""), {{"a.wav", recordingAt(0)}, {"b.wav", recordingAt(5)}});
    ASSERT_EQ(Synchronizer::scan(at("")).syncedCount(), 1);

    const int status = statusInOwnMounts([&] {
        hideMediaTools();
        const SyncResult result = Synchronizer::scan(at(""));
        return result.groups.empty() && namesOf(result.unmatchedAudio) == Names{"a.wav", "b.wav"}
                   ? 0
                   : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(SynchronizerScanTest, Scan_FoldersAndFilesOfAnotherUser_AreReadAsFarAsTheyCanBe) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    ClipRecipe recipe;
    recipe.timecode = "10:00:00:00";
    makeClip(at("open.mov"), recipe);
    writeTree(at(""), {{"shut/inside.mov", ""},
                       {"shut/inside.wav", recordingAt(36000)},
                       {"locked.wav", recordingAt(36000)},
                       {"open.wav", recordingAt(36000)}});
    std::filesystem::copy_file(at("open.mov"), at("locked.mov"));
    std::filesystem::permissions(at(""), std::filesystem::perms(0755));
    for (const char* name : {"shut", "locked.mov", "locked.wav"}) {
        std::filesystem::permissions(at(name), std::filesystem::perms(0700));
    }

    const int status = statusOfForked([&] {
        constexpr uid_t somebodyElse = 12345;
        if (::setuid(somebodyElse) != 0) return 2;
        const SyncResult result = Synchronizer::scan(at(""));
        if (namesOf(result.groups) != Names{"locked.mov", "open.mov"}) return 3;
        if (result.groups[0].isSynced() || result.groups[0].video.duration != 0.0) return 4;
        if (result.groups[1].audio.size() != 1) return 5;
        return result.groups[1].audio[0].clip->name() == "open.wav" ? 0 : 6;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(SynchronizerScanTest, Scan_BrokenFolder_IsPassedOverAndTheRestIsRead) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(
        at("back"),
        {{"a.wav", recordingAt(0)}, {"bad/b.wav", recordingAt(0)}, {"day/c.wav", recordingAt(0)}});
    for (const int error : {EIO, ENOMEM, ENAMETOOLONG}) {
        const FaultyFileSystem drive(at("back"), at("drive"),
                                     {.breakListingOf = "bad", .listingError = error});

        EXPECT_EQ(namesOf(Synchronizer::scan(drive.path()).unmatchedAudio),
                  (Names{"a.wav", "c.wav"}))
            << error;
        EXPECT_EQ(Synchronizer::scan(drive.path() / "bad"), SyncResult{}) << error;
    }
}

TEST_F(SynchronizerScanTest, Scan_ListingThatBreaksOffHalfWay_GivesWhatItGave) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    for (int i = 0; i < 400; ++i) {
        writeFile(at("back/bad/" + std::to_string(1000 + i) + ".wav"), recordingAt(0));
    }
    writeFile(at("back/good/last.wav"), recordingAt(0));
    const FaultyFileSystem drive(at("back"), at("drive"),
                                 {.breakListingOf = "bad", .listedBeforeThat = 200});

    const Names names = namesOf(Synchronizer::scan(drive.path()).unmatchedAudio);

    EXPECT_EQ(names.size(), 201U);
    EXPECT_EQ(std::ranges::count(names, "last.wav"), 1);
}

TEST_F(SynchronizerScanTest, Scan_PathLongerThanTheSystemAllows_IsPassedOver) {
    writeFile(at("a.wav"), recordingAt(0));
    makeDeepFolders(at("deep"), 200, 40);
    writeFile(at("z/z.wav"), recordingAt(0));

    EXPECT_EQ(namesOf(Synchronizer::scan(at("")).unmatchedAudio), (Names{"a.wav", "z.wav"}));
}

TEST_F(SynchronizerScanTest, Scan_ProcessWithoutDescriptors_GivesNothing) {
    writeFile(at("a.wav"), recordingAt(0));

    const int status = statusOfForked([&] {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_NOFILE, &none);
        return Synchronizer::scan(at("")) == SyncResult{} ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(SynchronizerScanTest, Scan_PipesAndDevices_ArePassedOver) {
    const FakeTool ffprobe("FFPROBE_PATH", readsText);
    writeTree(at(""), {{"clip.mov", "10:00:00:00"}, {"sound.wav", recordingAt(36000)}});
    for (const char* name : {"pipe.mov", "pipe.wav"}) {
        ASSERT_EQ(::mkfifo(at(name).c_str(), 0666), 0);
    }
    std::filesystem::create_symlink("pipe.mov", at("to pipe.mov"));
    std::filesystem::create_symlink("/dev/zero", at("to device.wav"));

    const SyncResult result = Synchronizer::scan(at(""));

    EXPECT_EQ(namesOf(result.groups), Names{"clip.mov"});
    EXPECT_EQ(result.syncedCount(), 1);
    EXPECT_TRUE(result.unmatchedAudio.empty());
}
