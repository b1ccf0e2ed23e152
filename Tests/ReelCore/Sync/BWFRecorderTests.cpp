// Broadcast WAVs as a program that we did not write makes them.

#include "BWFFixture.h"
#include "Support/Tool.h"

#include <tuple>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Layout = std::tuple<int, std::string, int>;  // Sample rate, codec, channels.

class BWFRecorderTest : public BWFTest, public testing::WithParamInterface<Layout> {
protected:
    void SetUp() override {
        if (!hasTool("ffmpeg")) GTEST_SKIP() << "needs ffmpeg";
    }

    URL record(const Layout& layout, double seconds, std::uint64_t timeReference) const {
        const auto& [rate, codec, channels] = layout;
        outputOf("ffmpeg", {"-v", "error", "-f", "lavfi", "-i",
                            "sine=sample_rate=" + std::to_string(rate) +
                                ":duration=" + std::to_string(seconds),
                            "-ac", std::to_string(channels), "-c:a", codec, "-write_bext", "1",
                            "-metadata", "time_reference=" + std::to_string(timeReference),
                            "-metadata", "description=scene 12", at("recorded.wav").native()});
        return at("recorded.wav");
    }
};

std::string nameOf(const testing::TestParamInfo<Layout>& info) {
    const auto& [rate, codec, channels] = info.param;
    return std::to_string(rate) + "_" + codec + "_" + std::to_string(channels) + "ch";
}

}  // namespace

TEST_P(BWFRecorderTest, Read_BroadcastWAVFromFFmpeg_TellsTimeAndLength) {
    const auto rate = static_cast<std::uint64_t>(std::get<0>(GetParam()));
    const URL recorded = record(GetParam(), 1.5, rate * (23 * 3600 + 59 * 60 + 59) + rate / 2);

    const AudioClip clip = BWFReader::read(recorded);

    EXPECT_EQ(clip.sampleRate, static_cast<double>(rate));
    EXPECT_EQ(clip.startSeconds, 86399.5);
    EXPECT_EQ(clip.duration, 1.5);
    EXPECT_EQ(clip.scene, std::nullopt);
    EXPECT_TRUE(clip.trackNames.empty());
}

INSTANTIATE_TEST_SUITE_P(Layouts, BWFRecorderTest,
                         testing::Combine(testing::Values(48000, 96000),
                                          testing::Values("pcm_s16le", "pcm_s24le"),
                                          testing::Values(1, 2, 6, 8)),
                         nameOf);

TEST_F(BWFTest, Read_RF64FromFFmpeg_IsNotRIFF) {
    if (!hasTool("ffmpeg")) GTEST_SKIP() << "needs ffmpeg";
    outputOf("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=duration=0.1", "-rf64", "always",
                        at("recorded.wav").native()});
    ASSERT_TRUE(readFile(at("recorded.wav")).starts_with("RF64"));

    EXPECT_THROW(BWFReader::read(at("recorded.wav")), BWFReader::BWFError);
}
