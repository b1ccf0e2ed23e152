#include "ReelCore/Transcode/TranscodeError.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/FakeTool.h"
#include "TranscodeFixture.h"

#include <array>
#include <atomic>
#include <set>
#include <thread>

namespace ReelCore {

namespace {

class TranscoderThreads : public TranscodeFixture {};

TEST_F(TranscoderThreads, FlagSetByAnotherThread_CancelsTheRun) {
    const TestSupport::FakeTool ffmpeg("FFMPEG_PATH", "echo progress=continue; exec sleep 100");
    const TranscodeRequest job = anyJob();
    std::atomic<bool> isUnderWay = false;
    std::atomic<bool> flag = false;
    const Transcoder transcoder([&] { return flag.load(); });
    std::jthread canceller([&] {
        isUnderWay.wait(false);
        flag = true;
    });

    try {
        transcoder.run(job, [&](const TranscodeProgress&) {
            isUnderWay = true;
            isUnderWay.notify_one();
        });
        ADD_FAILURE() << "not cancelled";
    } catch (const TranscodeError& error) {
        EXPECT_TRUE(error.is<TranscodeError::Cancelled>());
    }
}

TEST_F(TranscoderThreads, JobsOfTwoThreads_RunBesideEachOtherOnOneTranscoder) {
    const TestSupport::FakeTool ffprobe("FFPROBE_PATH", "echo 2");
    const TestSupport::FakeTool ffmpeg("FFMPEG_PATH",
                                       "printf 'out_time_us=1000000\\nprogress=end\\n'");
    const TranscodeRequest job = anyJob();
    const Transcoder transcoder;
    std::atomic<int> halves = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 2; ++i) {
            threads.emplace_back([&] {
                for (int run = 0; run < 5; ++run) {
                    transcoder.run(job, [&](const TranscodeProgress& progress) {
                        if (progress.fractionComplete == 0.5) ++halves;
                    });
                }
            });
        }
    }

    EXPECT_EQ(halves, 10);
}

TEST_F(TranscoderThreads, JobsOfTwoThreadsIntoOneFolder_EachHaveANameOfTheirOwn) {
    const TestSupport::FakeTool ffprobe("FFPROBE_PATH", "echo 2");
    const TestSupport::FakeTool ffmpeg(
        "FFMPEG_PATH", "for last; do :; done; sleep 0.1; printf '%s' \"$last\" >\"$last\"");
    const TranscodeRequest job = anyJob();
    constexpr int runs = 5;
    std::array<std::vector<URL>, 2> outputs;
    {
        std::vector<std::jthread> threads;
        for (std::vector<URL>& own : outputs) {
            threads.emplace_back([&] {
                for (int run = 0; run < runs; ++run) {
                    own.push_back(Transcoder().run(job, ignoreProgress).outputURL);
                }
            });
        }
    }

    std::set<URL> names;
    for (const std::vector<URL>& own : outputs) names.insert(own.begin(), own.end());
    EXPECT_EQ(names.size(), 2U * runs);
    for (const URL& name : names) EXPECT_EQ(TestSupport::readFile(name), name.native());
}

}  // namespace

}  // namespace ReelCore
