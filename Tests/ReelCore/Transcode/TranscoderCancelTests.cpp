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

    /// Runs the job, cancelled once `isTime`; how long it goes on from there.
    Clock::duration timeToEnd(
        const TranscodeRequest& job, const std::function<bool()>& isTime,
        const std::function<void(const TranscodeProgress&)>& progress = ignoreProgress) const {
        std::optional<Clock::time_point> asked;
        const Transcoder transcoder([&] {
            if (!asked && isTime()) asked = Clock::now();
            return asked.has_value();
        });
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

TEST_F(TranscoderCancel, LongJob_EndsWithinASecondAndLeavesWhatIsWritten) {
    const URL input = clip("A001.mov", {.seconds = 10.0});
    const TranscodeRequest job{input, folder() / "out", TranscodePreset::h264Review, {}, 3840};
    bool isUnderWay = false;

    const auto time = timeToEnd(
        job, [&] { return isUnderWay; }, [&](const TranscodeProgress&) { isUnderWay = true; });

    EXPECT_LT(time, 1s);
    EXPECT_TRUE(FileSystem::exists(folder() / "out/A001.mp4"));
}

TEST_F(TranscoderCancel, SilentChild_EndsWithinASecond) {
    const FakeTool ffmpeg("FFMPEG_PATH", afterItsNumber(numberFile(), "exec sleep 100"));

    EXPECT_LT(timeToEnd(anyJob(), [&] { return hasStarted(); }), 1s);
    EXPECT_FALSE(isRunning());
}

TEST_F(TranscoderCancel, ChildThatIgnoresTheSignal_EndsWithinASecond) {
    const FakeTool ffmpeg("FFMPEG_PATH",
                          "trap '' TERM\n" + afterItsNumber(numberFile(), "exec sleep 100"));

    EXPECT_LT(timeToEnd(anyJob(), [&] { return hasStarted(); }), 1s);
    EXPECT_FALSE(isRunning());
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
