#include "../ViewModelFixture.h"
#include "Support/Clip.h"
#include "Support/RIFF.h"
#include "Support/Tool.h"
#include "keldo-app/Sync/SyncViewModel.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <tuple>
#include <vector>

using keldo_app::SyncViewModel;
using ReelCore::URL;
using TestSupport::outputOf;
using TestSupport::probed;

namespace {

/// A camera and the time of day of its first frame, by the clock and without its rounding.
struct Camera {
    std::string name;
    std::string clip;
    std::string rate;
    std::string timecode;
    double start;  ///< In seconds since midnight.
    std::vector<std::string> video = TestSupport::ClipRecipe().video;
    std::vector<std::string> audio = TestSupport::ClipRecipe().audio;
};

std::ostream& operator<<(std::ostream& stream, const Camera& camera) {
    return stream << camera.name;
}

constexpr double tenOClock = 36000;
constexpr double pictureLength = 3;

const Camera pal{"25", "A001.mov", "25", "10:00:00:07", tenOClock + 7 / 25.0};
const Camera film{"23_976", "B001.mov", "24000/1001", "10:00:00:11",
                  tenOClock + 11 * 1001 / 24000.0};
const Camera ntscDrop{"29_97DropFrame", "C001.mov", "30000/1001", "10:01:00;17",
                      tenOClock + 60 + 17 * 1001 / 30000.0};
const Camera longGroups{"LongGroupsOfPictures",
                        "D001.MP4",
                        "24000/1001",
                        "10:00:00:11",
                        tenOClock + 11 * 1001 / 24000.0,
                        {"-c:v", "libx264", "-bf", "2", "-g", "12", "-pix_fmt", "yuv420p"},
                        {"-c:a", "aac"}};

/// Silence with one sample at full scale, `click` samples from the start.
std::string clickTrack(const TestSupport::Recording& recording, std::size_t click) {
    std::string file = TestSupport::broadcastWAV(recording);
    const std::size_t sound = file.find("data") + 8;
    return file.replace(sound + click * 3, 3, "\xFF\xFF\x7F");
}

/// The samples of a clip's one sound channel, from its first one on, whenever that is heard.
std::vector<int> samples(const URL& clip, const URL& scratch) {
    outputOf("ffmpeg", {"-y", "-v", "error", "-i", clip.native(), "-map", "0:a", "-f", "s16le",
                        scratch.native()});
    const std::string bytes = TestSupport::readFile(scratch);
    std::vector<int> samples;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        samples.push_back(static_cast<signed char>(bytes[i + 1]) * 256 + low);
    }
    return samples;
}

/// The sums of a clip's coded pictures, one line each.
std::vector<std::string> pictures(const URL& clip) {
    std::istringstream lines(outputOf("ffmpeg", {"-v", "error", "-i", clip.native(), "-map", "0:v",
                                                 "-c", "copy", "-f", "framemd5", "-"}));
    std::vector<std::string> sums;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('#')) sums.push_back(line);
    }
    return sums;
}

class MuxTests : public ViewModelFixture<SyncViewModel> {
protected:
    /// Makes the day's two files, with a click `clickAt` seconds after the picture's first frame or
    /// at the next sample.
    void makeDay(const Camera& camera, std::uint32_t sampleRate, double recorderStart,
                 double recorderLength, double clickAt) {
        camera_ = camera;
        rate_ = sampleRate;
        madeFolder("Day");
        TestSupport::makeClip(picture(), {.rate = camera.rate,
                                          .seconds = pictureLength,
                                          .timecode = camera.timecode,
                                          .video = camera.video,
                                          .audio = camera.audio});
        const double inRecording = camera.start - recorderStart + clickAt;
        const auto click = static_cast<std::size_t>(std::ceil(inRecording * sampleRate - 1e-6));
        expected_ = static_cast<double>(click) - (camera.start - recorderStart) * sampleRate;
        TestSupport::writeFile(
            place("Day/T001.WAV"),
            clickTrack({.sampleRate = sampleRate,
                        .seconds = recorderLength,
                        .timeReference = static_cast<std::uint64_t>(recorderStart) * sampleRate},
                       click));
    }

    URL mux() {
        choose(&SyncViewModel::chooseMediaDir, place("Day"));
        model_.scan();
        EXPECT_TRUE(waitForStage(Stage::results));
        choose(&SyncViewModel::chooseOutput, madeFolder("Out"));
        model_.mux();
        EXPECT_TRUE(waitForStage(Stage::results));
        EXPECT_EQ(model_.muxStatus(), "Created 1 of 1 synced clip in Out.");
        return place("Out") / (picture().stem().native() + "_synced.mov");
    }

    URL picture() const { return place("Day/" + camera_.clip); }

    /// How many samples after its place the click is heard, counted from the first frame.
    double clickIsLate(const URL& clip) const {
        const auto sound = samples(clip, place("sound"));
        const auto isLoud = [](int sample) { return std::abs(sample) > 16384; };
        EXPECT_EQ(std::ranges::count_if(sound, isLoud), 1);
        EXPECT_EQ(probed(clip, "stream=time_base", "a:0"), "1/" + std::to_string(rate_));
        EXPECT_EQ(probed(clip, "stream=start_pts", "v:0"), "0");
        const double start = std::stod(probed(clip, "stream=start_pts", "a:0"));
        const auto click = std::ranges::find_if(sound, isLoud) - sound.begin();
        return start + static_cast<double>(click) - expected_;
    }

    Camera camera_;
    std::uint32_t rate_ = 0;
    double expected_ = 0;  ///< Where the click belongs, in samples from the first frame.
};

class MuxAlignment : public MuxTests,
                     public testing::WithParamInterface<std::tuple<Camera, std::uint32_t>> {
protected:
    const Camera& camera() const { return std::get<0>(GetParam()); }
    std::uint32_t rate() const { return std::get<1>(GetParam()); }
    double wholeSecond() const { return std::floor(camera().start); }
};

INSTANTIATE_TEST_SUITE_P(Cameras, MuxAlignment,
                         testing::Combine(testing::Values(pal, film, ntscDrop, longGroups),
                                          testing::Values(48000U, 96000U)),
                         [](const auto& tested) {
                             return std::get<0>(tested.param).name + "At" +
                                    std::to_string(std::get<1>(tested.param));
                         });

}  // namespace

TEST_P(MuxAlignment, RecorderThatRolledFirst_IsHeardToTheSample) {
    makeDay(camera(), rate(), wholeSecond() - 5, 12, 1);
    const URL made = mux();
    EXPECT_NEAR(clickIsLate(made), 0, 1);
    EXPECT_EQ(pictures(made), pictures(picture()));
}

// How long the sound waits for its start is written in whole milliseconds, the unit of a movie that
// ffmpeg writes unless it is told another: cut, so that the sound comes early by less than one.
TEST_P(MuxAlignment, RecorderThatRolledLater_IsHeardToTheMillisecond) {
    makeDay(camera(), rate(), wholeSecond() + 1, 6, 2);
    const URL made = mux();
    const double late = clickIsLate(made);
    EXPECT_LE(late, 1);
    EXPECT_GE(late, -1 - rate() / 1000.0);
    EXPECT_EQ(pictures(made), pictures(picture()));
}

TEST_F(MuxTests, RecorderThatRolledLaterByWholeMilliseconds_IsHeardToTheSample) {
    makeDay(pal, 48000, tenOClock + 1, 6, 2);
    EXPECT_NEAR(clickIsLate(mux()), 0, 1);
}

// The clip ends with whichever ends first, sound or picture.
TEST_F(MuxTests, RecordingThatEndsFirst_CutsThePictureWhereItEnds) {
    makeDay(pal, 48000, tenOClock - 5, 6.28, 0.5);
    const URL made = mux();
    EXPECT_NEAR(clickIsLate(made), 0, 1);
    const auto kept = pictures(made);
    const auto all = pictures(picture());
    ASSERT_LT(kept.size(), all.size());
    EXPECT_GE(kept.size(), 25U) << "one second is heard";
    EXPECT_TRUE(std::ranges::equal(kept, std::span(all).first(kept.size())));
    EXPECT_EQ(model_.muxShortened(), "1 clip ends where its sound ends, before the picture does.");
}

/// A clip is told of as shortened where pictures are missing in it, and only there.
class MuxEnd : public MuxTests,
               public testing::WithParamInterface<std::tuple<Camera, double, double>> {};

INSTANTIATE_TEST_SUITE_P(Ends, MuxEnd,
                         testing::Combine(testing::Values(pal, longGroups),
                                          testing::Values(-5.0, 1.0),
                                          testing::Values(-0.5, -0.06, 0.5)));

TEST_P(MuxEnd, IsToldOfWherePicturesAreMissing) {
    const auto& [camera, rolls, after] = GetParam();
    const double start = std::floor(camera.start) + rolls;
    makeDay(camera, 48000, start, camera.start + pictureLength + after - start, 1.5);
    const auto kept = pictures(mux());
    const bool isWhole = kept.size() == pictures(picture()).size();
    EXPECT_EQ(model_.muxShortened().isEmpty(), isWhole) << kept.size();
}
