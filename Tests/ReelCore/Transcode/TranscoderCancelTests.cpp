#include "ReelCore/Transcode/TranscodeError.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/FakeTool.h"
#include "TranscodeFixture.h"

#include <chrono>
#include <stdexcept>

#include <gmock/gmock.h>

namespace ReelCore {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;
using TestSupport::FakeTool;

/// A tool's script that puts down its number before it does the rest.
std::string afterItsNumber(const URL& file, const std::string& rest) {
    return "echo $$ >'" + file.native() + "'\n" + rest;
}

class TranscoderCancel : public TranscodeFixture {
protected:
    URL numberFile() const { return folder() / "number"; }

    bool hasStarted() const {
        return FileSystem::exists(numberFile()) && !TestSupport::readFile(numberFile()).empty();
    }

    bool isRunning() const {
        const std::string number = TestSupport::readFile(numberFile());
        return FileSystem::exists("/proc/" + number.substr(0, number.find('\n')));
    }

    /// Runs the job, cancelled once `isTime`, and again once `isTimeToKill`; how long it goes on
    /// from the first of the two.
    Clock::duration timeToEnd(
        const TranscodeRequest& job, const std::function<bool()>& isTime,
        const std::function<void(const TranscodeProgress&)>& progress = ignoreProgress,
        const std::function<bool()>& isTimeToKill = [] { return false; }) const {
        std::optional<Clock::time_point> asked;
        const Transcoder transcoder(
            [&] {
                if (!asked && isTime()) asked = Clock::now();
                return asked.has_value();
            },
            isTimeToKill);
        try {
            transcoder.run(job, progress);
        } catch (const TranscodeError& error) {
            EXPECT_EQ(error.description(), "Transcode cancelled.");
            if (asked && error.is<TranscodeError::Cancelled>()) return Clock::now() - *asked;
        }
        ADD_FAILURE() << "not cancelled";
        return Clock::duration::max();
    }
};

/// ffmpeg holds back some forty frames of H.264 until the end.
TEST_F(TranscoderCancel, OnePress_LeavesAClipThatCanBePlayed) {
    const URL input = clip("A001.mov", {.seconds = 20.0, .channels = {}, .audio = {}});
    const TranscodeRequest job{input, folder() / "out", TranscodePreset::h264Review, {}, 1280};
    double reached = 0.0;

    timeToEnd(
        job, [&] { return reached > 0.0; },
        [&](const TranscodeProgress& progress) { reached = progress.currentSeconds; });

    const URL output = folder() / "out/A001.mp4";
    const std::string duration = TestSupport::probed(output, "format=duration");
    ASSERT_NE(duration, "");
    EXPECT_GE(std::stod(duration), reached);
    EXPECT_LT(std::stod(duration), 19.9);
}

TEST_F(TranscoderCancel, OnePress_LeavesAllTheTimeThatClosingAClipTakes) {
    const URL closed = folder() / "closed";
    const FakeTool ffmpeg(
        "FFMPEG_PATH",
        afterItsNumber(numberFile(), "trap 'sleep 1.5; echo index >" + closed.native() +
                                         "; exit 255' TERM\n"
                                         "while :; do sleep 0.01; done"));

    const auto time = timeToEnd(anyJob(), [&] { return hasStarted(); });

    EXPECT_GE(time, 1500ms);
    EXPECT_TRUE(FileSystem::exists(closed));
}

TEST_F(TranscoderCancel, SecondPress_EndsFFmpegThoughItIsStillClosingTheClip) {
    const URL closed = folder() / "closed";
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "trap 'sleep 100; echo index >" + closed.native() + "' TERM\n" +
                              afterItsNumber(numberFile(), "while :; do sleep 0.01; done"));

    const auto time = timeToEnd(
        anyJob(), [&] { return hasStarted(); }, ignoreProgress, [] { return true; });

    EXPECT_LT(time, 1s);
    EXPECT_FALSE(isRunning());
    EXPECT_FALSE(FileSystem::exists(closed));
}

TEST_F(TranscoderCancel, SilentChild_EndsWithinASecond) {
    const FakeTool ffmpeg("FFMPEG_PATH", afterItsNumber(numberFile(), "exec sleep 100"));

    EXPECT_LT(timeToEnd(anyJob(), [&] { return hasStarted(); }), 1s);
    EXPECT_FALSE(isRunning());
}

TEST_F(TranscoderCancel, ChildThatIgnoresTheSignal_HasAllTheTimeUntilTheSecondPress) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "trap '' TERM\n" + afterItsNumber(numberFile(), "exec sleep 100"));
    const auto patience = 1500ms;
    std::optional<Clock::time_point> begin;

    const auto time = timeToEnd(
        anyJob(),
        [&] {
            if (hasStarted()) begin = Clock::now();
            return begin.has_value();
        },
        ignoreProgress, [&] { return Clock::now() - *begin > patience; });

    EXPECT_GE(time, patience);
    EXPECT_LT(time, patience + 1s);
    EXPECT_FALSE(isRunning());
}

TEST_F(TranscoderCancel, BeforeTheFirstPress_TheSecondIsNotAskedFor) {
    const FakeTool ffmpeg("FFMPEG_PATH", "sleep 0.3");
    bool isAsked = false;
    const Transcoder transcoder([] { return false; }, [&] { return isAsked = true; });

    EXPECT_NO_THROW(transcoder.run(anyJob(), ignoreProgress));
    EXPECT_FALSE(isAsked);
}

TEST_F(TranscoderCancel, ChildThatNeverStopsWriting_EndsWithinASecond) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          afterItsNumber(numberFile(), "exec yes progress=continue"));
    int reports = 0;

    const auto time = timeToEnd(
        anyJob(), [&] { return reports > 10'000; }, [&](const TranscodeProgress&) { ++reports; });

    EXPECT_LT(time, 1s);
    EXPECT_FALSE(isRunning());
}

TEST_F(TranscoderCancel, BeforeAnything_IsCancelledAllTheSame) {
    const FakeTool ffmpeg("FFMPEG_PATH", "exec sleep 100");

    EXPECT_LT(timeToEnd(anyJob(), [] { return true; }), 1s);
}

TEST_F(TranscoderCancel, AfterTheLastReport_IsTooLateOnceTheStreamHasEnded) {
    const URL tooLate = folder() / "too late";
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "exec >&-; sleep 0.5; touch '" + tooLate.native() + "'; sleep 0.3");
    const Transcoder transcoder([&] { return FileSystem::exists(tooLate); });

    EXPECT_NO_THROW(transcoder.run(anyJob(), ignoreProgress));
    EXPECT_TRUE(FileSystem::exists(tooLate));
}

TEST_F(TranscoderCancel, NextRun_IsNotCancelledByThePast) {
    const FakeTool ffmpeg("FFMPEG_PATH", "sleep 0.2");
    bool isCancelled = true;
    const Transcoder transcoder([&] { return isCancelled; });
    EXPECT_THROW(transcoder.run(anyJob(), ignoreProgress), TranscodeError);

    isCancelled = false;

    EXPECT_NO_THROW(transcoder.run(anyJob(), ignoreProgress));
}

TEST_F(TranscoderCancel, LinkToALUT_GoesWithTheJob) {
    const FakeTool ffmpeg("FFMPEG_PATH", afterItsNumber(numberFile(), "exec sleep 100"));
    TranscodeRequest job = anyJob();
    job.lut = LUT{folder() / "it's.cube"};
    TestSupport::writeFile(job.lut->url, "");
    std::vector<std::string> beside;

    timeToEnd(job, [&] {
        beside = leftBehind();
        return hasStarted();
    });

    const std::string uuid = "[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}";
    EXPECT_THAT(beside, UnorderedElementsAre(MatchesRegex("keldo-ffmpeg-" + uuid + "\\.log"),
                                             MatchesRegex("keldo-lut-" + uuid + "\\.cube")));
    EXPECT_EQ(leftBehind(), std::vector<std::string>{});
    EXPECT_TRUE(std::filesystem::is_regular_file(job.lut->url));
}

TEST_F(TranscoderCancel, ProgressThatThrows_EndsTheChildAndPassesOn) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          afterItsNumber(numberFile(), "echo progress=continue; exec sleep 100"));
    TranscodeRequest job = anyJob();
    job.lut = LUT{folder() / "it's.cube"};
    TestSupport::writeFile(job.lut->url, "");

    EXPECT_THROW(
        Transcoder().run(job, [](const TranscodeProgress&) { throw std::runtime_error("enough"); }),
        std::runtime_error);
    EXPECT_FALSE(isRunning());
}

}  // namespace

}  // namespace ReelCore
