#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcode/TranscodeError.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/FakeTool.h"
#include "Support/Forked.h"
#include "Support/OwnMounts.h"
#include "Support/PeakMemory.h"
#include "TranscodeFixture.h"

#include <optional>

#include <sys/stat.h>
#include <unistd.h>

namespace ReelCore {

namespace {

using TestSupport::EnvironmentVariable;
using TestSupport::FakeTool;
using TestSupport::ownMountsMissing;
using TestSupport::peakMemoryInKiB;
using TestSupport::writeFile;

/// The job's failure of this kind, if that is how it ends.
template <class Case>
std::optional<Case> failureOf(const TranscodeRequest& job) {
    try {
        Transcoder().run(job, ignoreProgress);
    } catch (const TranscodeError& error) {
        if (const Case* failure = error.get<Case>()) return *failure;
    }
    return std::nullopt;
}

/// The same for ffmpeg's own failure: status and tail, -1 for any other end.
std::pair<int, std::string> ffmpegFailureOf(const TranscodeRequest& job) {
    const auto failure = failureOf<TranscodeError::FFmpegFailed>(job);
    return failure ? std::pair(failure->status, failure->tail) : std::pair(-1, std::string());
}

class TranscoderFailure : public TranscodeFixture {
protected:
    /// An executable file that is no program.
    URL text() const {
        writeFile(folder() / "text", "no program");
        std::filesystem::permissions(folder() / "text", std::filesystem::perms(0755));
        return folder() / "text";
    }
};

TEST_F(TranscoderFailure, TwentyLines_GiveTheLastEight) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "for i in $(seq 20); do echo \"line $i\" >&2; done; exit 3");

    EXPECT_EQ(ffmpegFailureOf(anyJob()),
              std::pair(3, std::string("line 13\nline 14\nline 15\nline 16\nline 17\nline 18\n"
                                       "line 19\nline 20")));
}

TEST_F(TranscoderFailure, FewLines_AreGivenAll) {
    const FakeTool ffmpeg("FFMPEG_PATH", "echo one >&2; printf two >&2; exit 1");

    EXPECT_EQ(ffmpegFailureOf(anyJob()), std::pair(1, std::string("one\ntwo")));
}

TEST_F(TranscoderFailure, EmptyLines_DoNotCount) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "for i in $(seq 10); do printf '\\n%s\\n\\n' $i >&2; done; exit 1");

    EXPECT_EQ(ffmpegFailureOf(anyJob()), std::pair(1, std::string("3\n4\n5\n6\n7\n8\n9\n10")));
}

TEST_F(TranscoderFailure, Silence_GivesAnEmptyTail) {
    const FakeTool ffmpeg("FFMPEG_PATH", "exit 255");

    EXPECT_EQ(ffmpegFailureOf(anyJob()), std::pair(255, std::string()));
}

TEST_F(TranscoderFailure, StandardOutput_IsNoPartOfTheTail) {
    const FakeTool ffmpeg("FFMPEG_PATH", "echo out; echo error >&2; exit 1");

    EXPECT_EQ(ffmpegFailureOf(anyJob()), std::pair(1, std::string("error")));
}

TEST_F(TranscoderFailure, BytesThatAreNoText_AreReplaced) {
    const FakeTool ffmpeg("FFMPEG_PATH", "printf 'bad \\377 \\303\\251\\n' >&2; exit 1");

    EXPECT_EQ(ffmpegFailureOf(anyJob()), std::pair(1, std::string("bad \xEF\xBF\xBD é")));
}

TEST_F(TranscoderFailure, GiganticLog_TakesNoMemory) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "yes 'the same complaint' | head -c 200000000 >&2; echo >&2\n"
                          "for i in $(seq 8); do echo $i >&2; done; exit 1");
    const TranscodeRequest job = anyJob();

    // In a process of its own, whose peak no other test has raised.
    const int mebibytes = TestSupport::statusOfForked([&] {
        const std::int64_t before = peakMemoryInKiB();
        const bool isAsSaid =
            ffmpegFailureOf(job) == std::pair(1, std::string("1\n2\n3\n4\n5\n6\n7\n8"));
        return isAsSaid ? static_cast<int>((peakMemoryInKiB() - before) / 1024) : 255;
    });

    EXPECT_LT(mebibytes, 32);
}

TEST_F(TranscoderFailure, EndlessLine_IsCutAtItsBeginning) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "head -c 1000000 /dev/zero | tr '\\0' x >&2; echo end >&2; exit 1");

    const auto [status, tail] = ffmpegFailureOf(anyJob());

    EXPECT_EQ(status, 1);
    EXPECT_LT(tail.size(), 1'000'000U);
    EXPECT_TRUE(tail.ends_with("xend"));
}

TEST_F(TranscoderFailure, ChildEndedByASignal_Is128AndItsNumber) {
    const FakeTool ffmpeg("FFMPEG_PATH", "echo so far >&2; kill -KILL $$");

    EXPECT_EQ(ffmpegFailureOf(anyJob()), std::pair(137, std::string("so far")));
}

TEST_F(TranscoderFailure, ProgramThatIsNone_PassesTheSystemsFailureOn) {
    const EnvironmentVariable ffmpeg("FFMPEG_PATH", text());
    TranscodeRequest job = anyJob();
    job.lut = LUT{folder() / "it's.cube"};
    writeFile(job.lut->url, "");

    try {
        Transcoder().run(job, ignoreProgress);
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.description(), "Exec format error: " + text().native());
    }
}

TEST_F(TranscoderFailure, FolderThatCannotBeMade_PassesTheSystemsFailureOn) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    TranscodeRequest job = anyJob();
    job.outputDirectory = job.input / "out";

    try {
        Transcoder().run(job, ignoreProgress);
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.description(), "Not a directory: " + job.outputDirectory.native());
    }
    EXPECT_EQ(ffmpeg.calls().size(), 0U);
}

TEST_F(TranscoderFailure, NoTemporaryFolder_FailsBeforeFFmpegStarts) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    const EnvironmentVariable variable("TMPDIR", (folder() / "nowhere").native());

    EXPECT_THROW(Transcoder().run(anyJob(), ignoreProgress), SystemError);
    EXPECT_EQ(ffmpeg.calls().size(), 0U);
}

TEST_F(TranscoderFailure, FFmpeg_IsAskedForBeforeAllElse) {
    if (const auto missing = ownMountsMissing(); !missing.empty()) GTEST_SKIP() << missing;
    const TranscodeRequest job{folder() / "missing.mov", folder() / "out",
                               TranscodePreset::proRes422, LUT{folder() / "missing.lut"},
                               std::nullopt};

    const int status = TestSupport::statusInOwnMounts([&] {
        TestSupport::hideMediaTools();
        return failureOf<TranscodeError::FFmpegNotFound>(job) && !Transcoder().isFFmpegAvailable()
                   ? 0
                   : 1;
    });

    EXPECT_EQ(status, 0);
    EXPECT_TRUE(Transcoder().isFFmpegAvailable());
    EXPECT_FALSE(FileSystem::exists(job.outputDirectory));
}

TEST_F(TranscoderFailure, NoFFprobe_FailsTheProbeButNotTheRun) {
    if (const auto missing = ownMountsMissing(); !missing.empty()) GTEST_SKIP() << missing;
    const TranscodeRequest job = anyJob();

    const int status = TestSupport::statusInOwnMounts([&] {
        TestSupport::hideMediaTools();
        const FakeTool ffmpeg("FFMPEG_PATH");
        try {
            Transcoder().probeDuration(job.input);
            return 3;
        } catch (const TranscodeError& error) {
            if (!error.is<TranscodeError::FFmpegNotFound>()) return 4;
        }
        const bool hasNoLength = Transcoder().run(job, ignoreProgress).durationSeconds == 0.0;
        return hasNoLength && ffmpeg.calls().size() == 1 ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST_F(TranscoderFailure, PipeAsInput_IsNotWaitedFor) {
    const URL pipe = folder() / "A001.mov";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const TranscodeRequest job{pipe, folder() / "out", TranscodePreset::proRes422, std::nullopt,
                               std::nullopt};

    EXPECT_TRUE(failureOf<TranscodeError::InputNotFound>(job));
}

TEST_F(TranscoderFailure, PipeAsLUT_IsNotWaitedFor) {
    TranscodeRequest job = anyJob();
    job.lut = LUT{folder() / "a.cube"};
    ASSERT_EQ(::mkfifo(job.lut->url.c_str(), 0600), 0);

    EXPECT_TRUE(failureOf<TranscodeError::LUTNotFound>(job));
}

TEST_F(TranscoderFailure, Input_IsAskedForBeforeLUTAndFolder) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    const TranscodeRequest job{folder() / "missing.mov", folder() / "out",
                               TranscodePreset::proRes422, LUT{folder() / "missing.lut"},
                               std::nullopt};

    const auto failure = failureOf<TranscodeError::InputNotFound>(job);

    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->input, job.input);
    EXPECT_FALSE(FileSystem::exists(job.outputDirectory));
    EXPECT_EQ(ffmpeg.calls().size(), 0U);
}

TEST_F(TranscoderFailure, LUT_IsAskedForBeforeTheFolder) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    TranscodeRequest job = anyJob();
    job.lut = LUT{folder() / "missing.cube"};
    EXPECT_TRUE(failureOf<TranscodeError::LUTNotFound>(job));

    writeFile(folder() / "Show.LOOK", "");
    job.lut = LUT{folder() / "Show.LOOK"};
    const auto failure = failureOf<TranscodeError::UnsupportedLUT>(job);

    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->extension, "look");
    EXPECT_FALSE(FileSystem::exists(job.outputDirectory));
    EXPECT_EQ(ffmpeg.calls().size(), 0U);
}

TEST_F(TranscoderFailure, DanglingInput_IsNotFound) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    TranscodeRequest job = anyJob();
    job.input = folder() / "link.mov";
    std::filesystem::create_symlink("nowhere.mov", job.input);

    EXPECT_TRUE(failureOf<TranscodeError::InputNotFound>(job));
}

TEST_F(TranscoderFailure, InputThatGoesAfterTheProbe_IsFFmpegsFailure) {
    const URL input = clip("A001.mov", {.seconds = 0.2});
    const FakeTool ffprobe("FFPROBE_PATH", "for last; do :; done; rm \"$last\"; echo 0.2");

    EXPECT_EQ(ffmpegFailureOf({input, folder() / "out", TranscodePreset::proRes422, {}, {}}),
              std::pair(1, input.native() + ": No such file or directory"));
}

TEST_F(TranscoderFailure, InputThatIsNoClip_IsFFmpegsFailure) {
    writeFile(folder() / "in/empty.mov", "");
    writeFile(folder() / "in/noise.mov", TestSupport::noise(100'000));

    for (const char* name : {"in", "in/empty.mov", "in/noise.mov"}) {
        const auto [status, tail] = ffmpegFailureOf(
            {folder() / name, folder() / "out", TranscodePreset::proRes422, {}, {}});
        EXPECT_EQ(status, 1) << name;
        EXPECT_NE(tail.find((folder() / name).native()), std::string::npos) << tail;
    }
}

TEST_F(TranscoderFailure, LUTThatIsNone_IsFFmpegsFailure) {
    const URL input = clip("A001.mov", {.seconds = 0.2});
    writeFile(folder() / "a.cube", "no table");

    const auto [status, tail] =
        ffmpegFailureOf({input, folder() / "out", TranscodePreset::proRes422,
                         LUT{folder() / "a.cube"}, std::nullopt});

    EXPECT_EQ(status, 1);
    EXPECT_NE(tail.find("lut3d"), std::string::npos) << tail;
}

TEST_F(TranscoderFailure, NameTooLongForItsNumber_PassesTheSystemsFailureOn) {
    const URL input = clip(std::string(251, 'a') + ".mov", {.seconds = 0.2});

    try {
        Transcoder().run({input, folder(), TranscodePreset::proRes422, {}, {}}, ignoreProgress);
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), ENAMETOOLONG);
    }
}

}  // namespace

}  // namespace ReelCore
