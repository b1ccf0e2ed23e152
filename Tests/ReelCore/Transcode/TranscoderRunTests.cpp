#include "ReelCore/Platform/Date.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "Support/FakeTool.h"
#include "Support/Tool.h"
#include "TranscodeFixture.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace ReelCore {

namespace {

using TestSupport::FakeTool;
using TestSupport::probed;
using TestSupport::readFile;
using TestSupport::writeFile;

/// The average colour of a clip's first picture, red, green and blue from 0 to 255.
std::array<int, 3> averageColour(const URL& clip) {
    const std::string bytes = TestSupport::outputOf(
        "ffmpeg", {"-nostdin", "-v", "error", "-i", clip.native(), "-frames:v", "1", "-vf",
                   "scale=1:1:flags=area", "-f", "rawvideo", "-pix_fmt", "rgb24", "-"});
    std::array<int, 3> colour{-1, -1, -1};
    if (bytes.size() == colour.size()) {
        std::ranges::transform(bytes, colour.begin(),
                               [](char byte) { return static_cast<unsigned char>(byte); });
    }
    return colour;
}

bool isNear(const std::array<int, 3>& colour, const std::array<int, 3>& expected) {
    return std::ranges::equal(colour, expected, [](int a, int b) { return std::abs(a - b) <= 8; });
}

struct PresetResult {
    const TranscodePreset& preset;
    std::string video;  ///< Codec, profile and pixel format, each on its line.
    std::string audio;
};

class TranscoderPreset : public TranscodeFixture,
                         public ::testing::WithParamInterface<PresetResult> {};

TEST_P(TranscoderPreset, Run_GivesItsCodecsSizeLengthAndTheLUTsColour) {
    const URL input = clip("in/A001.mov", {.size = "320x180"});
    writeFile(folder() / "green.cube", flatCube("0.2 0.8 0.2"));
    const TranscodeRequest request{input, folder() / "out", GetParam().preset,
                                   LUT{folder() / "green.cube"}, 256};

    const TranscodeResult result = Transcoder().run(request, ignoreProgress);

    const URL& output = result.outputURL;
    EXPECT_EQ(output, folder() / "out" / ("A001." + GetParam().preset.container));
    EXPECT_EQ(probed(output, "stream=codec_name,profile,pix_fmt", "v"), GetParam().video);
    EXPECT_EQ(probed(output, "stream=codec_name", "a"), GetParam().audio);
    EXPECT_EQ(probed(output, "stream=width,height", "v"), "256\n144");
    EXPECT_NEAR(std::stod(probed(output, "format=duration")), 1.0, 0.03);
    EXPECT_FALSE(isNear(averageColour(input), {51, 204, 51}));
    EXPECT_TRUE(isNear(averageColour(output), {51, 204, 51}));
}

INSTANTIATE_TEST_SUITE_P(
    All, TranscoderPreset,
    ::testing::Values(
        PresetResult{TranscodePreset::proResProxy, "prores\nProxy\nyuv422p10le", "pcm_s16le"},
        PresetResult{TranscodePreset::proRes422, "prores\nStandard\nyuv422p10le", "pcm_s16le"},
        PresetResult{TranscodePreset::proRes422HQ, "prores\nHQ\nyuv422p10le", "pcm_s16le"},
        PresetResult{TranscodePreset::dnxhrLB, "dnxhd\nDNXHR LB\nyuv422p", "pcm_s16le"},
        PresetResult{TranscodePreset::dnxhrHQ, "dnxhd\nDNXHR HQ\nyuv422p", "pcm_s16le"},
        PresetResult{TranscodePreset::h264Review, "h264\nHigh\nyuv420p", "aac"}),
    [](const auto& instance) { return instance.param.preset.id; });

class TranscoderRun : public TranscodeFixture {};

TEST_F(TranscoderRun, NoLUTAndNoSize_KeepPictureAndSize) {
    const URL input = clip("A001.mov");

    const auto result = Transcoder().run(
        {input, folder() / "out", TranscodePreset::proRes422, {}, {}}, ignoreProgress);

    EXPECT_EQ(probed(result.outputURL, "stream=width,height", "v"), "128\n72");
    EXPECT_TRUE(isNear(averageColour(result.outputURL), averageColour(input)));
}

TEST_F(TranscoderRun, UprightPicture_GetsTheSizeAsItsHeight) {
    const URL input = clip("A001.mov", {.size = "72x128", .seconds = 0.2});

    const auto result = Transcoder().run(
        {input, folder() / "out", TranscodePreset::proRes422, {}, 64}, ignoreProgress);

    EXPECT_EQ(probed(result.outputURL, "stream=width,height", "v"), "36\n64");
}

TEST_F(TranscoderRun, SizeAboveTheInputs_ScalesUpToEvenNumbers) {
    const URL input = clip("A001.mov", {.size = "100x100", .seconds = 0.2});

    const auto result = Transcoder().run(
        {input, folder() / "out", TranscodePreset::h264Review, {}, 151}, ignoreProgress);

    EXPECT_EQ(probed(result.outputURL, "stream=width,height", "v"), "150\n150");
}

TEST_F(TranscoderRun, LUTsOfBothKinds_InUpperCaseToo_AreApplied) {
    const URL input = clip("A001.mov", {.seconds = 0.2});
    std::string table = "0 512 1023\n";
    for (int i = 0; i < 17 * 17 * 17; ++i) table += "0 0 4095\n";
    writeFile(folder() / "Blue.3DL", table);
    writeFile(folder() / "Blue.CUBE", flatCube("0 0 1"));

    for (const char* name : {"Blue.3DL", "Blue.CUBE"}) {
        const auto result = Transcoder().run({input, folder() / "out", TranscodePreset::proRes422,
                                              LUT{folder() / name}, std::nullopt},
                                             ignoreProgress);
        EXPECT_TRUE(isNear(averageColour(result.outputURL), {0, 0, 255})) << name;
    }
}

TEST_F(TranscoderRun, ClipWithoutSound_GivesAClipWithoutSound) {
    const URL input = clip("A001.mov", {.seconds = 0.2, .channels = {}});

    const auto result = Transcoder().run(
        {input, folder() / "out", TranscodePreset::proRes422, {}, {}}, ignoreProgress);

    EXPECT_EQ(probed(result.outputURL, "stream=codec_type"), "video");
}

TEST_F(TranscoderRun, ClipWithoutAPicture_GivesItsSound) {
    const URL input = folder() / "A001.wav";
    TestSupport::outputOf(
        "ffmpeg", {"-nostdin", "-v", "error", "-f", "lavfi", "-i", "sine=d=0.5", input.native()});

    const auto result = Transcoder().run(
        {input, folder() / "out", TranscodePreset::proRes422, {}, {}}, ignoreProgress);

    EXPECT_EQ(probed(result.outputURL, "stream=codec_name"), "pcm_s16le");
}

TEST_F(TranscoderRun, Progress_RisesAndEndsAtOne) {
    const URL input = clip("A001.mov", {.seconds = 2.0});
    std::vector<TranscodeProgress> reports;

    Transcoder().run({input, folder() / "out", TranscodePreset::h264Review, {}, 640},
                     [&](const TranscodeProgress& progress) { reports.push_back(progress); });

    ASSERT_FALSE(reports.empty());
    EXPECT_TRUE(std::ranges::is_sorted(reports, {}, &TranscodeProgress::fractionComplete));
    EXPECT_GE(reports.front().fractionComplete, 0.0);
    EXPECT_EQ(reports.back().fractionComplete, 1.0);
    EXPECT_NEAR(reports.back().currentSeconds, 2.0, 0.05);
    EXPECT_TRUE(reports.back().fps);
    ASSERT_TRUE(reports.back().speed);
    EXPECT_TRUE(reports.back().speed->ends_with("x"));
    for (const TranscodeProgress& report : reports) EXPECT_EQ(report.totalSeconds, 2.0);
}

TEST_F(TranscoderRun, Result_HoldsTheRequestTheLengthAndTheTimes) {
    const URL input = clip("A001.mov", {.seconds = 0.6});
    const TranscodeRequest request{input, folder() / "out", TranscodePreset::proRes422, {}, 64};
    const Date before = now();

    const TranscodeResult result = Transcoder().run(request, ignoreProgress);

    EXPECT_EQ(result.request.input, request.input);
    EXPECT_EQ(result.request.outputDirectory, request.outputDirectory);
    EXPECT_EQ(result.request.preset, request.preset);
    EXPECT_EQ(result.request.scaleLongEdge, request.scaleLongEdge);
    EXPECT_NEAR(result.durationSeconds, 0.6, 0.001);
    EXPECT_LE(before, result.startedAt);
    EXPECT_LE(result.startedAt, result.finishedAt);
    EXPECT_LE(result.finishedAt, now());
}

TEST_F(TranscoderRun, OutputFolder_IsMadeWithItsIntermediates) {
    FakeTool ffmpeg("FFMPEG_PATH");
    TranscodeRequest job = anyJob();
    job.outputDirectory = folder() / "a/b/c";

    Transcoder().run(job, ignoreProgress);

    EXPECT_TRUE(FileSystem::isFolder(folder() / "a/b/c"));
}

TEST_F(TranscoderRun, SecondRunToTheSameFolder_TakesTheNextNameAndLeavesTheFirst) {
    const URL input = clip("A001.mov", {.seconds = 0.2});
    const TranscodeRequest request{input, folder() / "out", TranscodePreset::proRes422, {}, {}};
    const Transcoder transcoder;

    const URL first = transcoder.run(request, ignoreProgress).outputURL;
    const std::string before = readFile(first);
    const URL second = transcoder.run(request, ignoreProgress).outputURL;

    EXPECT_EQ(first, folder() / "out/A001.mov");
    EXPECT_EQ(second, folder() / "out/A001 2.mov");
    EXPECT_EQ(readFile(first), before);
    EXPECT_EQ(probed(second, "stream=codec_name", "v"), "prores");
}

TEST_F(TranscoderRun, OutputIntoTheInputsFolder_LeavesTheInput) {
    const URL input = clip("A001.mov", {.seconds = 0.2});
    const std::string before = readFile(input);

    const auto result =
        Transcoder().run({input, folder(), TranscodePreset::proResProxy, {}, {}}, ignoreProgress);

    EXPECT_EQ(result.outputURL, folder() / "A001 2.mov");
    EXPECT_EQ(readFile(input), before);
}

TEST_F(TranscoderRun, NamesTakenByAFolderAndADanglingLink_AreLeftAlone) {
    const URL input = clip("A001.mov", {.seconds = 0.2});
    std::filesystem::create_directories(folder() / "out/A001.mov");
    std::filesystem::create_symlink(folder() / "elsewhere.mov", folder() / "out/A001 2.mov");

    const auto result = Transcoder().run(
        {input, folder() / "out", TranscodePreset::proRes422, {}, {}}, ignoreProgress);

    EXPECT_EQ(result.outputURL, folder() / "out/A001 3.mov");
    EXPECT_FALSE(FileSystem::exists(folder() / "elsewhere.mov"));
    EXPECT_TRUE(std::filesystem::is_empty(folder() / "out/A001.mov"));
}

TEST_F(TranscoderRun, FFmpeg_IsCalledOnceWithTheArgumentsForTheFreeName) {
    const FakeTool ffmpeg("FFMPEG_PATH");
    TranscodeRequest job = anyJob();
    writeFile(folder() / "a.cube", "");
    writeFile(folder() / "out/A001.mov", "taken");
    job.lut = LUT{folder() / "a.cube"};
    job.scaleLongEdge = 1280;

    Transcoder().run(job, ignoreProgress);

    EXPECT_EQ(ffmpeg.calls(), (std::vector<std::vector<std::string>>{
                                  Transcoder::arguments(job, folder() / "out/A001 2.mov")}));
}

TEST_F(TranscoderRun, RunsOfOneTranscoder_KnowNothingOfEachOther) {
    const FakeTool ffprobe("FFPROBE_PATH", "echo 10");
    const TranscodeRequest job = anyJob();
    const Transcoder transcoder;
    std::vector<TranscodeProgress> reports;
    const auto progress = [&](const TranscodeProgress& report) { reports.push_back(report); };

    {
        const FakeTool ffmpeg("FFMPEG_PATH", "printf 'out_time_us=5000000\\nprogress=end\\n'");
        transcoder.run(job, progress);
    }
    {
        const FakeTool ffmpeg("FFMPEG_PATH", "printf 'fps=25\\nprogress=end\\n'");
        transcoder.run(job, progress);
    }

    EXPECT_EQ(reports, (std::vector<TranscodeProgress>{{0.5, 5.0, 10.0, std::nullopt, std::nullopt},
                                                       {0.0, 0.0, 10.0, 25.0, std::nullopt}}));
}

TEST_F(TranscoderRun, StreamOfReports_IsReadToItsEndPastNoise) {
    const FakeTool ffprobe("FFPROBE_PATH", "echo 10");
    const FakeTool ffmpeg(
        "FFMPEG_PATH",
        "printf 'noise\\nfps=\\377\\nout_time_us=1000000\\nprogress=continue\\n'\n"
        "sleep 0.3\n"
        "printf 'out_time_us=20000000\\nspeed=N/A\\nprogress=end\\n'\n"
        "printf 'unfinished'");
    std::vector<double> fractions;

    Transcoder().run(anyJob(), [&](const TranscodeProgress& progress) {
        fractions.push_back(progress.fractionComplete);
        EXPECT_EQ(progress.fps, std::nullopt);
        EXPECT_EQ(progress.speed, std::nullopt);
    });

    EXPECT_EQ(fractions, (std::vector<double>{0.1, 1.0}));
}

TEST_F(TranscoderRun, UnknownLength_KeepsTheFractionAtZeroAndRuns) {
    const URL input = clip("A001.mov", {.seconds = 0.4});
    const FakeTool ffprobe("FFPROBE_PATH", "echo N/A");
    std::vector<TranscodeProgress> reports;

    const auto result =
        Transcoder().run({input, folder() / "out", TranscodePreset::proRes422, {}, {}},
                         [&](const TranscodeProgress& report) { reports.push_back(report); });

    EXPECT_EQ(result.durationSeconds, 0.0);
    EXPECT_EQ(probed(result.outputURL, "stream=codec_name", "v"), "prores");
    ASSERT_FALSE(reports.empty());
    EXPECT_GT(reports.back().currentSeconds, 0.0);
    for (const TranscodeProgress& report : reports) {
        EXPECT_EQ(report.fractionComplete, 0.0);
        EXPECT_EQ(report.totalSeconds, 0.0);
    }
}

}  // namespace

}  // namespace ReelCore
