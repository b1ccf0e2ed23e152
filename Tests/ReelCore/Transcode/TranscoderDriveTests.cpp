#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcode/TranscodeError.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/FakeTool.h"
#include "Support/FaultyFileSystem.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"
#include "TranscodeFixture.h"

#include <fstream>

namespace ReelCore {

namespace {

using TestSupport::EnvironmentVariable;
using TestSupport::FakeTool;
using TestSupport::FaultyFileSystem;
using TestSupport::LoopMount;

/// How ffmpeg failed: its status, its last lines and the last of them; -1 and nothing if it did
/// not.
struct Failure {
    int status = -1;
    std::string tail;
    std::string lastLine;
};

Failure failureOf(const TranscodeRequest& job) {
    try {
        Transcoder().run(job, ignoreProgress);
    } catch (const TranscodeError& error) {
        if (const auto* failed = error.get<TranscodeError::FFmpegFailed>()) {
            return {failed->status, failed->tail,
                    failed->tail.substr(failed->tail.rfind('\n') + 1)};
        }
    }
    return {};
}

/// Fills the drive and then gives so many bytes back.
void fillBut(const LoopMount& drive, std::uintmax_t bytes) {
    const URL filler = drive.path() / "filler";
    std::ofstream file(filler, std::ios::binary);
    const std::string block(4096, 'x');
    while (file.write(block.data(), 4096).flush()) {
    }
    file.close();
    TestSupport::outputOf("sync", {"-f", drive.path().native()});
    std::filesystem::resize_file(filler, std::filesystem::file_size(filler) - bytes);
    TestSupport::outputOf("sync", {"-f", drive.path().native()});
}

class TranscoderDrive : public TranscodeFixture {
protected:
    void SetUp() override {
        if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
        if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    }
};

TEST_F(TranscodeFixture, FailedDriveBeforeManyOtherComplaints_IsFailureAllTheSame) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "echo '/out/A.mov: No space left on device' >&2\n"
                          "yes 'another complaint' | head -c 3000000 >&2");

    EXPECT_EQ(failureOf(anyJob()).status, 0);
}

TEST_F(TranscoderDrive, DriveThatRunsFull_Fails) {
    const URL input = clip("A001.mov", {.size = "320x180", .seconds = 2.0});
    const LoopMount drive("ext4", 8);
    fillBut(drive, 1'000'000);

    const Failure failure = failureOf({input, drive.path(), TranscodePreset::proRes422HQ, {}, 640});

    EXPECT_NE(failure.status, -1);
    EXPECT_TRUE(failure.lastLine.ends_with("No space left on device")) << failure.lastLine;
}

TEST_F(TranscoderDrive, DriveThatRunsFullAtTheVeryEnd_Fails) {
    const URL input = clip("A001.mov", {.size = "320x180"});
    const TranscodeRequest job{input, folder() / "out", TranscodePreset::h264Review, {}, {}};
    const auto size = std::filesystem::file_size(Transcoder().run(job, ignoreProgress).outputURL);
    const LoopMount drive("ext4", 8);
    fillBut(drive, size - 4096);
    TranscodeRequest tooLarge = job;
    tooLarge.outputDirectory = drive.path();

    const Failure failure = failureOf(tooLarge);

    EXPECT_NE(failure.status, -1) << "ffmpeg alone would call it a success";
    EXPECT_TRUE(failure.lastLine.ends_with("No space left on device")) << failure.lastLine;
}

TEST_F(TranscoderDrive, DriveThatRunsFullUnderTheLogAsWell_FailsAndSaysWhy) {
    const FakeTool ffmpeg(
        "FFMPEG_PATH",
        "for output; do :; done\n"
        "for i in 1 2 3; do cat /dev/zero >>\"$output\"; sync -f \"$output\"; done 2>/dev/null\n"
        "seq -f 'one of a thousand complaints: %g' 1000 >&2\n"
        "echo 'Error closing file: No space left on device' >&2");
    const LoopMount drive("ext4", 8);
    TranscodeRequest job = anyJob();
    job.outputDirectory = drive.path() / "out";
    const EnvironmentVariable variable("TMPDIR", drive.path().native());

    const Failure failure = failureOf(job);

    EXPECT_EQ(failure.status, 0);
    EXPECT_EQ(failure.lastLine, "Error closing file: No space left on device");
}

TEST_F(TranscoderDrive, NoRoomForALog_FailsBeforeFFmpegStarts) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    const LoopMount drive("ext4", 8);
    fillBut(drive, 8'192);
    const EnvironmentVariable variable("TMPDIR", drive.path().native());

    try {
        Transcoder().run(anyJob(), ignoreProgress);
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), ENOSPC);
    }
    EXPECT_EQ(ffmpeg.calls().size(), 0U);
    for (const std::string& name : FileSystem::names(drive.path())) {
        EXPECT_FALSE(name.starts_with("keldo-ffmpeg-")) << name;
    }
}

TEST_F(TranscoderDrive, ReadOnlyDrive_PassesTheSystemsFailureOnBeforeFFmpegStarts) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    LoopMount drive("ext4", 8);
    drive.makeReadOnly();
    TranscodeRequest job = anyJob();
    job.outputDirectory = drive.path();

    try {
        Transcoder().run(job, ignoreProgress);
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.description(),
                  "Read-only file system: " + (drive.path() / "A001.mov").native());
    }
    EXPECT_TRUE(ffmpeg.calls().empty());
}

TEST_F(TranscoderDrive, FolderOnAReadOnlyDrive_PassesTheSystemsFailureOn) {
    LoopMount drive("ext4", 8);
    drive.makeReadOnly();
    TranscodeRequest job = anyJob();
    job.outputDirectory = drive.path() / "out";

    try {
        Transcoder().run(job, ignoreProgress);
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.description(), "Read-only file system: " + job.outputDirectory.native());
    }
}

TEST_F(TranscoderDrive, CardThatGoesWhileItIsRead_Fails) {
    const URL input = clip("card/A001.mov", {.size = "320x180", .seconds = 4.0});
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(input));
    const FakeTool ffprobe("FFPROBE_PATH", "echo 4");
    const FaultyFileSystem card(folder() / "card", folder() / "mounted",
                                {.vanishAfterReading = size / 2});

    const Failure failure = failureOf(
        {card.path() / "A001.mov", folder() / "out", TranscodePreset::h264Review, {}, {}});

    EXPECT_EQ(failure.status, 0) << "ffmpeg alone calls it a success";
    // The first of a read that begins later, the second of one that was under way.
    EXPECT_TRUE(failure.lastLine.ends_with(": Transport endpoint is not connected") ||
                failure.lastLine.ends_with(": Software caused connection abort"))
        << failure.lastLine;
}

TEST_F(TranscoderDrive, ClipThatCannotBeReadToItsEnd_Fails) {
    const URL input =
        clip("card/A001.mxf",
             {.size = "320x180", .seconds = 4.0, .video = {"-c:v", "mpeg2video", "-q:v", "2"}});
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(input));
    const FaultyFileSystem card(folder() / "card", folder() / "mounted", {.failReadAt = size / 2});

    const Failure failure = failureOf(
        {card.path() / "A001.mxf", folder() / "out", TranscodePreset::h264Review, {}, {}});

    EXPECT_EQ(failure.status, 0) << "ffmpeg alone calls it a success";
}

/// What a device, a file system or a network may answer to who reads or writes an open file.
constexpr int failuresOfDrives[]{
    EIO,       ENXIO,         ENODEV,      ENOMEDIUM,    EMEDIUMTYPE,  EREMOTEIO,    ENODATA,
    EILSEQ,    ETIME,         EBADE,       EREMCHG,      EBUSY,        ENOLINK,      ECANCELED,
    EPROTO,    ESHUTDOWN,     ENOSTR,      ENOSR,        ECOMM,        ETOOMANYREFS, EOVERFLOW,
    ENOSPC,    EDQUOT,        EFBIG,       EROFS,        EUCLEAN,      EBADMSG,      EBADF,
    EACCES,    ESTALE,        ENOTCONN,    ECONNABORTED, ETIMEDOUT,    ECONNRESET,   ECONNREFUSED,
    EHOSTDOWN, EHOSTUNREACH,  ENETDOWN,    ENETUNREACH,  ENETRESET,    ENONET,       EPIPE,
    ENOBUFS,   EADDRNOTAVAIL, EKEYEXPIRED, EKEYREVOKED,  EKEYREJECTED, ENOKEY,
};

TEST_F(TranscoderDrive, EachFailureThatADriveCanTell_FailsThoughFFmpegCallsItASuccess) {
    const URL input =
        clip("card/A001.mxf",
             {.size = "160x96", .seconds = 2.0, .video = {"-c:v", "mpeg2video", "-q:v", "2"}});
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(input));
    for (const int code : failuresOfDrives) {
        const FaultyFileSystem card(folder() / "card", folder() / "mounted",
                                    {.readError = code, .failReadAt = size / 2});

        const Failure failure = failureOf(
            {card.path() / "A001.mxf", folder() / "out", TranscodePreset::proRes422, {}, {}});

        const std::string sentence = SystemError(code).sentence();
        EXPECT_EQ(failure.status, 0) << sentence << ": ffmpeg alone calls it a success";
        EXPECT_NE(failure.tail.find(": " + sentence + "\n"), std::string::npos) << failure.tail;
    }
}

TEST_F(TranscoderDrive, DamagedClip_IsTranscodedAsFarAsItGoes) {
    const URL input =
        clip("A001.mov", {.size = "320x180", .seconds = 2.0, .more = {"-movflags", "faststart"}});
    std::filesystem::resize_file(input, std::filesystem::file_size(input) / 2);

    const auto result = Transcoder().run(
        {input, folder() / "out", TranscodePreset::proRes422, {}, {}}, ignoreProgress);

    const double seconds = std::stod(TestSupport::probed(result.outputURL, "format=duration"));
    EXPECT_GT(seconds, 0.5);
    EXPECT_LT(seconds, 1.5);
}

TEST_F(TranscoderDrive, ComplaintsOfAnotherKind_AreNoFailure) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "echo 'Error while decoding stream #0:0: Invalid data found' >&2");

    EXPECT_NO_THROW(Transcoder().run(anyJob(), ignoreProgress));
}

}  // namespace

}  // namespace ReelCore
