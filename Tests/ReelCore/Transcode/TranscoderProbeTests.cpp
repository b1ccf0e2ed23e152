#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Transcode/TranscodeError.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/FakeTool.h"
#include "TranscodeFixture.h"

#include <optional>

namespace ReelCore {

namespace {

using TestSupport::FakeTool;
using TestSupport::writeFile;

class TranscoderProbe : public TranscodeFixture {};

/// The text of the failure, if there is one.
std::optional<std::string> failureOf(const URL& url) {
    try {
        Transcoder().probeDuration(url);
        return std::nullopt;
    } catch (const TranscodeError& error) {
        EXPECT_TRUE(error.is<TranscodeError::ProbeFailed>());
        return error.description();
    }
}

TEST_F(TranscoderProbe, Clip_HasItsLength) {
    EXPECT_NEAR(Transcoder().probeDuration(clip("A001.mov", {.seconds = 1.4})), 1.4, 0.001);
}

TEST_F(TranscoderProbe, FFprobe_IsAskedForTheLengthAlone) {
    const FakeTool ffprobe("FFPROBE_PATH", "echo 2.5");

    EXPECT_EQ(Transcoder().probeDuration("/in/A001.mov"), 2.5);

    EXPECT_EQ(ffprobe.calls(), (std::vector<std::vector<std::string>>{
                                   {"-v", "error", "-show_entries", "format=duration", "-of",
                                    "default=nokey=1:noprint_wrappers=1", "/in/A001.mov"}}));
}

TEST_F(TranscoderProbe, WhiteSpaceAroundTheNumber_IsTakenOff) {
    const FakeTool ffprobe("FFPROBE_PATH", "printf '\\n \\t2.5\\r\\n\\n'");

    EXPECT_EQ(Transcoder().probeDuration("/in/A001.mov"), 2.5);
}

TEST_F(TranscoderProbe, Status_IsNotLookedAt) {
    const FakeTool ffprobe("FFPROBE_PATH", "echo 2.5; echo noise >&2; exit 1");

    EXPECT_EQ(Transcoder().probeDuration("/in/A001.mov"), 2.5);
}

TEST_F(TranscoderProbe, AnswerThatIsNoNumber_FailsWithTheFilesName) {
    for (const char* answer : {"N/A", "", "2.5 s", "2.5\\n3.5", "\\377"}) {
        const FakeTool ffprobe("FFPROBE_PATH", std::string("printf '") + answer + "'");
        EXPECT_EQ(failureOf("/in/A001.mov"), "ffprobe failed: no duration for A001.mov") << answer;
    }
}

TEST_F(TranscoderProbe, LengthWithoutAnEnd_IsNoNumber) {
    for (const char* answer : {"inf", "-inf", "INFINITY", "nan", "-nan", "1e400", "-1e400"}) {
        const FakeTool ffprobe("FFPROBE_PATH", std::string("echo ") + answer);
        EXPECT_EQ(failureOf("/in/A001.mov"), "ffprobe failed: no duration for A001.mov") << answer;
    }
}

TEST_F(TranscoderProbe, LengthWithoutAnEnd_LeavesTheLengthUnknownAndRuns) {
    const FakeTool ffmpeg("FFMPEG_PATH", "printf 'out_time_us=1000000\\nprogress=end\\n'");
    for (const char* answer : {"inf", "nan", "1e400"}) {
        const FakeTool ffprobe("FFPROBE_PATH", std::string("echo ") + answer);
        std::vector<TranscodeProgress> reports;

        const TranscodeResult result = Transcoder().run(
            anyJob(), [&](const TranscodeProgress& report) { reports.push_back(report); });

        EXPECT_EQ(result.durationSeconds, 0.0) << answer;
        EXPECT_EQ(reports, (std::vector<TranscodeProgress>{{0.0, 1.0, 0.0, {}, {}}})) << answer;
    }
}

TEST_F(TranscoderProbe, FileThatIsNoClip_Fails) {
    writeFile(folder() / "empty.mov", "");
    writeFile(folder() / "noise.mov", TestSupport::noise(100'000));

    EXPECT_EQ(failureOf(folder() / "empty.mov"), "ffprobe failed: no duration for empty.mov");
    EXPECT_EQ(failureOf(folder() / "noise.mov"), "ffprobe failed: no duration for noise.mov");
    EXPECT_EQ(failureOf(folder() / "missing.mov"), "ffprobe failed: no duration for missing.mov");
    EXPECT_EQ(failureOf(temporary()), "ffprobe failed: no duration for temporary");
}

TEST_F(TranscoderProbe, ProgramThatIsNone_PassesTheSystemsFailureOn) {
    writeFile(folder() / "text", "no program");
    std::filesystem::permissions(folder() / "text", std::filesystem::perms(0755));
    const TestSupport::EnvironmentVariable ffprobe("FFPROBE_PATH", folder() / "text");

    try {
        Transcoder().probeDuration("/in/A001.mov");
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.description(), "Exec format error: " + (folder() / "text").native());
    }
}

TEST_F(TranscoderProbe, ProgramThatIsNone_LeavesTheLengthUnknownAndRuns) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    writeFile(folder() / "text", "no program");
    std::filesystem::permissions(folder() / "text", std::filesystem::perms(0755));
    const TestSupport::EnvironmentVariable ffprobe("FFPROBE_PATH", folder() / "text");

    EXPECT_EQ(Transcoder().run(anyJob(), ignoreProgress).durationSeconds, 0.0);
    EXPECT_EQ(ffmpeg.calls().size(), 1U);
}

}  // namespace

}  // namespace ReelCore
