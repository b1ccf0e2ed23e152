#include "CarveImage.h"
#include "Support/Boxes.h"
#include "Support/Clip.h"
#include "Support/Tool.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

const std::vector<std::string> h264{"-c:v", "libx264", "-pix_fmt", "yuv420p"};
const std::vector<std::string> mpeg2{"-c:v", "mpeg2video"};

std::string sha256(const URL& file) {
    return outputOf("sha256sum", {file}).substr(0, 64);
}

/// A hash of every frame of the picture, decoded.
std::string frameHashes(const URL& clip) {
    return outputOf("ffmpeg", {"-nostdin", "-v", "error", "-i", clip, "-map", "0:v", "-c:v",
                               "rawvideo", "-f", "framemd5", "-"});
}

/// The hashes without times, one a line.
std::vector<std::string> pictureHashes(const URL& clip) {
    std::vector<std::string> hashes;
    std::istringstream lines(frameHashes(clip));
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("#")) hashes.push_back(line.substr(line.rfind(' ') + 1));
    }
    return hashes;
}

/// Clips as cameras and recorders write them, made once.
class CarveClips : public testing::Test {
protected:
    static void SetUpTestSuite() {
        clips_ = new TemporaryFolder;
        makeClip(clip("prores.mov"), {});
        makeClip(clip("fast.mov"), {.more = {"-movflags", "+faststart"}});
        makeClip(clip("h264.mp4"), {.video = h264, .audio = {"-c:a", "aac"}});
        makeClip(clip("fast.mp4"),
                 {.video = h264, .audio = {"-c:a", "aac"}, .more = {"-movflags", "+faststart"}});
        makeClip(clip("clip.mxf"), {.size = "720x576", .seconds = 0.4, .video = mpeg2});
        outputOf("ffmpeg", {"-nostdin", "-v", "error", "-i", clip("prores.mov"), "-map", "0:a",
                            clip("sound.wav")});
    }
    static void TearDownTestSuite() { delete clips_; }

    static URL clip(const std::string& name) { return clips_->path() / name; }
    static std::string bytes(const std::string& name) { return readFile(clip(name)); }

    URL output() const { return folder_.path(); }

    std::vector<RepairOutcome> carve(const CarveImage& image,
                                     const std::optional<URL>& reference = {}) const {
        std::vector<RepairOutcome> outcomes;
        for (const Finding& finding : image.scan()) {
            outcomes.push_back(CardCarver::extract(finding, image.path(), output(), reference,
                                                   std::ssize(outcomes) + 1));
        }
        return outcomes;
    }

    void expectIntact(const RepairOutcome& outcome, const std::string& name) const {
        EXPECT_TRUE(outcome.succeeded) << name << ": " << outcome.detail;
        EXPECT_EQ(outcome.method, "carve") << name << ": " << outcome.detail;
        ASSERT_TRUE(outcome.output.has_value());
        EXPECT_EQ(sha256(*outcome.output), sha256(clip(name))) << name;
    }

private:
    static inline TemporaryFolder* clips_ = nullptr;
    TemporaryFolder folder_;
};

const std::vector<std::string> all{"prores.mov", "fast.mov", "h264.mp4",
                                   "fast.mp4",   "clip.mxf", "sound.wav"};

TEST_F(CarveClips, BetweenGarbage_ComeBackByteForByte) {
    std::string card = noise(12'345, 9);
    for (const std::string& name : all) card += bytes(name) + noise(54'321, 10);

    const auto outcomes = carve(CarveImage(card));

    ASSERT_EQ(outcomes.size(), all.size());
    for (std::size_t i = 0; i < all.size(); ++i) expectIntact(outcomes[i], all[i]);
}

TEST_F(CarveClips, BackToBack_ComeBackByteForByte) {
    std::string card;
    for (const std::string& name : all) card += bytes(name);

    const auto outcomes = carve(CarveImage(card));

    ASSERT_EQ(outcomes.size(), all.size());
    for (std::size_t i = 0; i < all.size(); ++i) expectIntact(outcomes[i], all[i]);
}

TEST_F(CarveClips, BackToBackTheOtherWayRound_ComeBackByteForByte) {
    std::string card;
    for (auto name = all.rbegin(); name != all.rend(); ++name) card += bytes(*name);

    const auto outcomes = carve(CarveImage(card));

    ASSERT_EQ(outcomes.size(), all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        expectIntact(outcomes[i], all[all.size() - 1 - i]);
    }
}

TEST_F(CarveClips, OnAFormattedCard_ComeBackByteForByte) {
    CarveImage image;
    std::int64_t at = 0x10000;
    for (const std::string& name : all) {
        image.put(at, bytes(name));
        at = (at + std::ssize(bytes(name)) + 0x3FFFF) / 0x40000 * 0x40000;
    }
    image.resize(0x4000000);

    const auto outcomes = carve(image);

    ASSERT_EQ(outcomes.size(), all.size());
    for (std::size_t i = 0; i < all.size(); ++i) expectIntact(outcomes[i], all[i]);
}

TEST_F(CarveClips, ProResCutOffBeforeItsIndex_IsRebuiltByAReference) {
    const std::string whole = bytes("prores.mov");
    const auto frames = pictureHashes(clip("prores.mov"));

    const auto outcomes =
        carve(CarveImage(noise(5000) + whole.substr(0, whole.size() * 2 / 3)), clip("prores.mov"));

    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_TRUE(outcomes[0].succeeded) << outcomes[0].detail;
    EXPECT_EQ(outcomes[0].method, "carve + moov rebuild");
    const auto recovered = pictureHashes(*outcomes[0].output);
    ASSERT_GT(recovered.size(), frames.size() / 2);
    EXPECT_EQ(recovered, std::vector(frames.begin(), frames.begin() + std::ssize(recovered)));
    EXPECT_EQ(readTree(output()).size(), 1U) << "the raw file is gone";
}

TEST_F(CarveClips, ProResCutOffBehindItsIndex_IsRebuiltByItself) {
    const std::string whole = bytes("fast.mov");
    const auto frames = pictureHashes(clip("fast.mov"));

    const auto outcomes = carve(CarveImage(noise(5000) + whole.substr(0, whole.size() * 2 / 3)));

    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_TRUE(outcomes[0].succeeded) << outcomes[0].detail;
    EXPECT_EQ(outcomes[0].method, "carve + index rebuild");
    const auto recovered = pictureHashes(*outcomes[0].output);
    ASSERT_GT(recovered.size(), frames.size() / 3);
    EXPECT_EQ(recovered, std::vector(frames.begin(), frames.begin() + std::ssize(recovered)));
}

TEST_F(CarveClips, OrphanProRes_PlaysWithAReference) {
    const std::string whole = bytes("prores.mov");
    const auto first = whole.find("icpf") - 4;
    const auto frames = pictureHashes(clip("prores.mov"));

    const auto outcomes = carve(CarveImage(garbage(7000) + whole.substr(first)), clip("fast.mov"));

    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_TRUE(outcomes[0].succeeded) << outcomes[0].detail;
    EXPECT_EQ(outcomes[0].method, "carve + moov rebuild");
    EXPECT_TRUE(outcomes[0].detail.starts_with("headerless ProRes run @ ")) << outcomes[0].detail;
    EXPECT_EQ(pictureHashes(*outcomes[0].output), std::vector(frames.begin(), frames.end() - 1))
        << "all frames but the last";
    EXPECT_EQ(readTree(output()).size(), 1U) << "the raw file is gone";
}

TEST_F(CarveClips, H264CutOffBeforeItsIndex_IsKeptAsCutOut) {
    const std::string cut = bytes("h264.mp4").substr(0, bytes("h264.mp4").size() / 2);

    const auto outcomes = carve(CarveImage(cut), clip("h264.mp4"));

    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_FALSE(outcomes[0].succeeded);
    EXPECT_EQ(outcomes[0].output, output() / "carved_001.mov");
    EXPECT_TRUE(readFile(output() / "carved_001.mov") == cut);
}

TEST_F(CarveClips, MXFCutOffByTheImagesEnd_IsRewrittenUpToThere) {
    const std::string whole = bytes("clip.mxf");

    const auto outcomes = carve(CarveImage(noise(99) + whole.substr(0, whole.size() * 2 / 3)));

    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_TRUE(outcomes[0].succeeded) << outcomes[0].detail;
    EXPECT_EQ(outcomes[0].method, "carve + remux");
    EXPECT_GE(pictureHashes(*outcomes[0].output).size(), 4U);
}

TEST_F(CarveClips, WaveCutOffByTheImagesEnd_GetsItsSizesAndAllItsSound) {
    const std::string cut = bytes("sound.wav").substr(0, 100'078);

    const auto outcomes = carve(CarveImage(noise(99) + cut));

    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_TRUE(outcomes[0].succeeded) << outcomes[0].detail;
    EXPECT_EQ(outcomes[0].method, "carve + WAV size fix");
    EXPECT_EQ(probed(*outcomes[0].output, "stream=codec_name"), "pcm_s16le");
    EXPECT_EQ(readFile(*outcomes[0].output).substr(78), cut.substr(78));
}

}  // namespace
