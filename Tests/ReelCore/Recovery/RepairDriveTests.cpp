// Repairs whose drives, on either side, do not do as they should.

#include "DoctorFixture.h"
#include "ReelCore/Platform/FileSystem.h"
#include "Support/FakeTool.h"
#include "Support/FaultyFileSystem.h"
#include "Support/Forked.h"
#include "Support/LoopMount.h"
#include "Support/SparseFile.h"
#include "Support/Tool.h"

#include <cerrno>

#include <sys/resource.h>

namespace ReelCore {

namespace {

using namespace TestSupport;

constexpr std::int64_t mebibyte = std::int64_t{1} << 20U;

class RepairDrive : public DoctorFixture {
protected:
    /// Frames of ProRes of 8 MiB in total, with no index.
    URL neverClosed() const {
        const std::string frame = boxHeader("icpf", mebibyte) + std::string(mebibyte - 8, 'x');
        std::string media;
        for (int i = 0; i < 8; ++i) media += frame;
        return file("card/A001.mov", fileTypeBox() + box("mdat", media));
    }

    /// A clip of more than 3 MiB of ProRes behind its own index, cut off within the last frames.
    URL cutMovie() const {
        const std::string whole =
            made("large.mov", {.size = "1280x720",
                               .seconds = 0.8,
                               .video = {"-c:v", "prores_ks", "-profile:v", "3"},
                               .more = {"-movflags", "+faststart"}});
        EXPECT_GT(std::ssize(whole), 3 * mebibyte);
        return file("card/A001.mov", whole.substr(0, whole.size() - 100));
    }

    URL staleWave() const { return file("card/R001.wav", staleRecording(60.0)); }

    URL reference() const { return file("reference.mov", cameraClip(0.2)); }

    static RepairOutcome failure(const URL& clip, const std::string& detail) {
        return {clip, std::nullopt, false, "repair", detail};
    }
};

TEST_F(RepairDrive, DriveThatRunsFull_FailsEachOfTheSystemsOwnRepairs) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 4);
    const URL movie = neverClosed();
    const URL recording = staleWave();
    const std::string content = readFile(movie);

    const RepairOutcome rebuilt = repairedInto(drive.path() / "1", movie, reference());
    std::filesystem::remove_all(drive.path() / "1");
    const RepairOutcome fixed = repairedInto(drive.path() / "2", recording);

    EXPECT_EQ(rebuilt, failure(movie, "No space left on device"));
    EXPECT_EQ(fixed, failure(recording, "No space left on device"));
    EXPECT_TRUE(readFile(movie) == content);
    EXPECT_TRUE(readFile(recording) == staleRecording(60.0));
}

TEST_F(RepairDrive, DriveThatRunsFullInAnIndexRebuild_FailsTheRemuxBehindItToo) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 2);
    const URL movie = cutMovie();
    const std::string content = readFile(movie);
    ASSERT_EQ(repaired(movie).method, "index rebuild") << "with room it is one";

    const RepairOutcome outcome = repairedInto(drive.path(), movie);

    EXPECT_EQ(outcome, failure(movie, outcome.detail));
    EXPECT_TRUE(outcome.detail.starts_with("I/O failed: remux failed: ")) << outcome.detail;
    EXPECT_TRUE(readFile(movie) == content);
}

TEST_F(RepairDrive, DriveThatRunsFullInARemux_IsAFailure) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const std::string whole =
        made("h264.mp4", {.size = "640x360",
                          .seconds = 8.0,
                          .video = {"-c:v", "libx264", "-preset", "ultrafast", "-qp", "4"},
                          .channels = {},
                          .audio = {},
                          .more = {"-movflags", "+faststart"}});
    ASSERT_GT(std::ssize(whole), 3 * mebibyte);
    const URL clip = file("A001.mp4", whole.substr(0, whole.size() - 1000));
    const LoopMount drive("ext4", 2);

    const RepairOutcome outcome = repairedInto(drive.path(), clip);

    EXPECT_EQ(outcome, failure(clip, outcome.detail));
    EXPECT_TRUE(outcome.detail.starts_with("I/O failed: remux failed: ")) << outcome.detail;
}

TEST_F(RepairDrive, DriveThatRunsFullAtTheEndOfARemux_IsAFailureThoughFFmpegCallsItASuccess) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    const std::string whole = h264Clip();
    const URL clip = file("A001.mp4", whole.substr(0, whole.size() / 2));
    const FaultyFileSystem::Faults full{.writeError = ENOSPC, .failWriteAfter = 1000};
    const FaultyFileSystem ours(folder() / "backing 1", folder() / "mounted 1", full);
    const FaultyFileSystem other(folder() / "backing 2", folder() / "mounted 2", full);

    const RepairOutcome outcome = repairedInto(ours.path(), clip);
    const int status =
        runTool("ffmpeg", {"-nostdin", "-i", clip, "-c", "copy", other.path() / "A.mov"}).status;

    EXPECT_EQ(status, 0);
    EXPECT_EQ(outcome, failure(clip, outcome.detail));
    EXPECT_TRUE(outcome.detail.starts_with("I/O failed: remux failed: ")) << outcome.detail;
    EXPECT_NE(outcome.detail.find(": No space left on device"), std::string::npos)
        << outcome.detail;
}

TEST_F(RepairDrive, FileInPlaceOfTheOutputFolder_IsAFailure) {
    const URL clip = file("R001.wav", staleRecording(0.1));
    const URL taken = file("taken", "x");

    EXPECT_EQ(repairedInto(taken, clip), failure(clip, "Not a directory: " + taken.native()));
    EXPECT_EQ(repairedInto(taken / "below", clip),
              failure(clip, "Not a directory: " + (taken / "below").native()));
    EXPECT_EQ(readFile(taken), "x");
}

TEST_F(RepairDrive, OutputFolderThatCannotBeMade_FailsEveryRow) {
    const URL taken = file("taken", "x");
    const URL clip = file("A001.mov", box("mdat", "media"));

    for (const ClipDiagnosis& diagnosis : {missingIndexOf(5), truncatedTo(9, 5), staleSizes(0, 5),
                                           unreadable("empty file"), healthy}) {
        EXPECT_EQ(ClipDoctor::repair({clip, 0, diagnosis}, std::nullopt, taken),
                  failure(clip, "Not a directory: " + taken.native()))
            << diagnosis.label();
    }
}

TEST_F(RepairDrive, OutputOnAReadOnlyDrive_IsAFailure) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount drive("ext4", 4);
    std::filesystem::create_directory(drive.path() / "there");
    drive.makeReadOnly();
    const URL clip = file("R001.wav", staleRecording(0.1));
    const URL made = drive.path() / "new";
    const URL written = drive.path() / "there/R001_repaired.wav";

    EXPECT_EQ(repairedInto(made, clip), failure(clip, "Read-only file system: " + made.native()));
    EXPECT_EQ(repairedInto(drive.path() / "there", clip),
              failure(clip, "Read-only file system: " + written.native()));
}

TEST_F(RepairDrive, NameThatIsTooLong_IsAFailure) {
    const std::string stem(250, 'x');
    const URL clip = file(stem + ".wav", staleRecording(0.1));

    EXPECT_EQ(repaired(clip).detail,
              "File name too long: " + (output() / (stem + "_repaired.wav")).native());
}

TEST_F(RepairDrive, SourceThatHasGoneSinceTheScan_IsAFailure) {
    const URL healthyClip = reference();
    const URL gone = folder() / "gone.mov";
    const auto outcomeOf = [&](const ClipDiagnosis& diagnosis) {
        return ClipDoctor::repair({gone, 9, diagnosis}, healthyClip, output());
    };

    EXPECT_EQ(outcomeOf(missingIndexOf(5)), failure(gone, "Not found: " + gone.native()));
    EXPECT_EQ(outcomeOf(staleSizes(0, 5)),
              failure(gone, "No such file or directory: " + gone.native()));
    const std::string remuxed = outcomeOf(truncatedTo(9, 5)).detail;
    EXPECT_TRUE(remuxed.starts_with("I/O failed: remux failed: ")) << remuxed;
    EXPECT_TRUE(remuxed.ends_with("No such file or directory")) << remuxed;
    EXPECT_TRUE(FileSystem::names(output()).empty());
}

TEST_F(RepairDrive, SourceThatCannotBeReadHalfWay_FailsEachOfTheSystemsOwnRepairs) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    neverClosed();
    staleWave();
    const FaultyFileSystem card(folder() / "card", folder() / "mounted",
                                {.failReadAt = 4 * mebibyte});

    const RepairOutcome rebuilt = repaired(card.path() / "A001.mov", reference());
    const RepairOutcome fixed = repaired(card.path() / "R001.wav");

    EXPECT_EQ(rebuilt, failure(card.path() / "A001.mov", "Input/output error"));
    EXPECT_EQ(fixed, failure(card.path() / "R001.wav", "Input/output error"));
}

TEST_F(RepairDrive, CardThatGoesDuringARemux_IsAFailure) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    const std::string whole =
        made("movie.mxf",
             {.size = "320x180", .seconds = 4.0, .video = {"-c:v", "mpeg2video", "-q:v", "2"}});
    file("card/C0001.mxf", whole.substr(0, whole.size() - 1000));
    const FaultyFileSystem card(folder() / "card", folder() / "mounted",
                                {.vanishAfterReading = std::ssize(whole) / 2});
    const ClipReport report{card.path() / "C0001.mxf", 0, truncatedTo(2, 1)};

    const RepairOutcome outcome = ClipDoctor::repair(report, std::nullopt, output());

    EXPECT_EQ(outcome, failure(report.url, outcome.detail));
    EXPECT_TRUE(outcome.detail.starts_with("I/O failed: remux failed: ")) << outcome.detail;
}

TEST_F(RepairDrive, DriveThatRefusesLate_IsAFailureOfEveryKindOfRepair) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    const URL movie = neverClosed();
    const URL recording = staleWave();
    const std::string whole = h264Clip();
    const URL remuxed = file("A001.mp4", whole.substr(0, whole.size() / 2));
    const URL healthyClip = reference();
    std::filesystem::create_directories(folder() / "backing");
    const FaultyFileSystem drive(folder() / "backing", folder() / "mounted",
                                 {.failWriteAt = 0, .writeLate = true});

    const RepairOutcome rebuilt = repairedInto(drive.path() / "1", movie, healthyClip);
    const RepairOutcome fixed = repairedInto(drive.path() / "2", recording);
    const RepairOutcome copied = repairedInto(drive.path() / "3", remuxed);

    EXPECT_EQ(rebuilt, failure(movie, rebuilt.detail));
    EXPECT_EQ(fixed, failure(recording, fixed.detail));
    EXPECT_EQ(copied, failure(remuxed, copied.detail));
}

TEST_F(RepairDrive, NameThatDoesNotReachTheDrive_IsAFailure) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    const URL recording = staleWave();
    std::filesystem::create_directories(folder() / "backing");
    const FaultyFileSystem drive(folder() / "backing", folder() / "mounted",
                                 {.folderFlushError = EIO});

    const RepairOutcome fixed = repairedInto(drive.path(), recording);

    EXPECT_EQ(fixed, failure(recording, fixed.detail));
    EXPECT_NE(fixed.detail.find("Input/output error"), std::string::npos) << fixed.detail;
}

TEST_F(RepairDrive, IndexThatNoMemoryHolds_IsAFailureAndNotACrash) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer needs more room itself";
#endif
    constexpr std::int64_t size = 300 * mebibyte;
    const URL clip = file("A001.mov", box("mdat", proResFrame(100)));
    const URL huge = folder() / "huge.mov";
    writeSparse(huge, {{0, boxHeader("moov", static_cast<std::uint32_t>(size))}}, size);

    const int status = statusOfForked([&] {
        const rlimit room{240 * mebibyte, 240 * mebibyte};
        if (::setrlimit(RLIMIT_AS, &room) != 0) return 101;
        return repaired(clip, huge) == failure(clip, "Not enough memory for the index of the clip.")
                   ? 0
                   : 1;
    });

    EXPECT_EQ(status, 0);
}

}  // namespace

}  // namespace ReelCore
