#include "CarveImage.h"
#include "RealMedia.h"
#include "Support/Clip.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using namespace TestSupport;

/// Clips on a raw image with something in place of a part of one. Where a drive could not be read,
/// the tool that made the image has left zeros.
class ScarredCard : public testing::Test {
protected:
    static constexpr std::int64_t first = 1'000'000;
    static constexpr std::int64_t second = 2'000'000;
    static constexpr std::int64_t third = 3'000'000;

    ScarredCard() {
        makeClip(before_, {.seconds = 0.5});
        makeClip(clip_, {.seconds = 2, .video = {"-c:v", "prores_ks", "-profile:v", "3"}});
        makeClip(mxf_, {.video = {"-c:v", "mpeg2video", "-q:v", "2"}});
        makeClip(after_, {.seconds = 0.5, .more = {"-movflags", "+faststart"}});
        image_.put(0, garbage(16'000'000));
        image_.put(first, readFile(before_));
        image_.put(third, readFile(after_));
    }

    /// Puts a clip between the others.
    void put(const URL& clip) { image_.put(second, readFile(clip)); }

    void scar(std::int64_t offset, std::string_view bytes) { image_.put(second + offset, bytes); }

    Finding before() const { return wholeFinding(before_, first); }
    Finding after() const { return wholeFinding(after_, third); }

    RepairOutcome extract(const Finding& finding) const {
        return CardCarver::extract(finding, image_.path(), folder_.path() / "out", before_, 1);
    }

    void expectNeighboursUnharmed() const {
        EXPECT_EQ(sha256Of(extract(before()).output.value()), sha256Of(before_));
        EXPECT_EQ(sha256Of(extract(after()).output.value()), sha256Of(after_));
    }

    static std::int64_t sizeOf(const URL& file) {
        return static_cast<std::int64_t>(std::filesystem::file_size(file));
    }

    TemporaryFolder folder_;
    const URL before_ = folder_.path() / "BEFORE.MOV";
    const URL clip_ = folder_.path() / "CLIP.MOV";
    const URL mxf_ = folder_.path() / "CLIP.MXF";
    const URL after_ = folder_.path() / "AFTER.MOV";
    CarveImage image_;
};

/// A file with a part replaced.
std::string scarred(const URL& file, std::int64_t offset, std::string_view bytes) {
    std::string content = readFile(file);
    return content.replace(static_cast<std::size_t>(offset), bytes.size(), bytes);
}

}  // namespace

TEST_F(ScarredCard, UnreadableStretchInAMovie_ComesBackAsZerosAmongAllElse) {
    const std::string zeros(65536, '\0');
    put(clip_);
    scar(200'000, zeros);

    const auto findings = image_.scan();
    ASSERT_EQ(findings, (std::vector{before(), wholeFinding(clip_, second), after()}));
    const RepairOutcome outcome = extract(findings[1]);

    EXPECT_EQ(outcome.method, "carve");
    EXPECT_TRUE(readFile(outcome.output.value()) == scarred(clip_, 200'000, zeros));
    expectNeighboursUnharmed();
}

TEST_F(ScarredCard, UnreadableStretchInAPictureOfAnMXF_ComesBackAsZerosAmongAllElse) {
    const Stretch picture = picturesOf(mxf_).at(10);
    const std::string zeros(512, '\0');
    ASSERT_GT(picture.length, 1024);
    put(mxf_);
    scar(picture.offset + 400, zeros);

    const auto findings = image_.scan();
    ASSERT_EQ(findings, (std::vector{before(), wholeFinding(mxf_, second), after()}));
    const RepairOutcome outcome = extract(findings[1]);

    EXPECT_EQ(outcome.method, "carve");
    EXPECT_TRUE(readFile(outcome.output.value()) == scarred(mxf_, picture.offset + 400, zeros));
    expectNeighboursUnharmed();
}

TEST_F(ScarredCard, UnreadableStretchAcrossTripletsOfAnMXF_EndsItThere) {
    const Stretch picture = picturesOf(mxf_).at(10);
    const std::int64_t broken = tripletsBeyond(readFile(mxf_), picture.offset + picture.length / 2);
    put(mxf_);
    scar(broken, std::string(512, '\0'));

    const auto findings = image_.scan();
    ASSERT_EQ(findings,
              (std::vector{before(), {FindingKind::mxf, second, broken, false}, after()}));
    const RepairOutcome outcome = extract(findings[1]);

    EXPECT_EQ(outcome.method, "carve + remux");
    ASSERT_TRUE(outcome.succeeded) << outcome.detail;
    const auto sums = pictureSums(*outcome.output);
    const auto expected = pictureSums(mxf_);
    ASSERT_GE(sums.size(), 10U);
    EXPECT_TRUE(std::equal(expected.begin(), expected.begin() + 10, sums.begin()));
    expectNeighboursUnharmed();
}

/// The structure is all that a carve goes by: it takes the clip for intact, and steps over what
/// stands within its extent, though that is a clip too. It comes out inside of the other.
TEST_F(ScarredCard, ClipOverwrittenInItsMiddleByAnother_ComesBackInItsLengthWithTheOtherInside) {
    const std::string other = readFile(before_);
    const std::int64_t at = 100'000;
    put(clip_);
    scar(at, other);
    ASSERT_LT(at + std::ssize(other), sizeOf(clip_) * 3 / 4);

    const auto findings = image_.scan();
    ASSERT_EQ(findings, (std::vector{before(), wholeFinding(clip_, second), after()}));
    const RepairOutcome outcome = extract(findings[1]);

    EXPECT_EQ(outcome.method, "carve");
    EXPECT_TRUE(readFile(outcome.output.value()) == scarred(clip_, at, other));
    expectNeighboursUnharmed();
}

/// Without its index, it is believed up to where its media is said to end.
TEST_F(ScarredCard, MovieWhoseIndexIsLost_ComesBackByAReference) {
    const auto index = static_cast<std::int64_t>(readFile(clip_).rfind("moov")) - 4;
    const Finding finding{FindingKind::movie, second, index, false};
    put(clip_);
    scar(index, std::string(static_cast<std::size_t>(sizeOf(clip_) - index), '\0'));

    ASSERT_EQ(image_.scan(), (std::vector{before(), finding, after()}));
    const RepairOutcome outcome = extract(finding);

    EXPECT_EQ(outcome.method, "carve + moov rebuild");
    ASSERT_TRUE(outcome.succeeded) << outcome.detail;
    EXPECT_EQ(pictureSums(*outcome.output), pictureSums(clip_));
    EXPECT_TRUE(samplesOf(*outcome.output) == samplesOf(clip_));
    expectNeighboursUnharmed();
}

/// A run of frames goes on over whatever lies between two of them, up to 8 MiB: so also to those of
/// the next clip, which is then not found by itself.
TEST_F(ScarredCard, MovieWhoseHeadIsLost_IsARunThatGoesOnIntoTheNextClip) {
    put(clip_);
    scar(0, std::string(4096, '\0'));
    const auto frames = picturesOf(clip_);
    const auto lost =
        std::ranges::find_if(frames, [](const Stretch& one) { return one.offset >= 4096; });
    const std::int64_t begin = second + lost->offset;
    const std::int64_t end = third + picturesOf(after_).back().offset;

    EXPECT_EQ(image_.scan(),
              (std::vector{before(), {FindingKind::orphanProRes, begin, end - begin, false}}));
}

TEST_F(ScarredCard, MovieWhoseHeadIsLostFarFromTheNextClip_IsARunUpToItsLastFrame) {
    const std::int64_t far = 12'000'000;
    image_.put(third, garbage(readFile(after_).size()));
    image_.put(far, readFile(after_));
    put(clip_);
    scar(0, std::string(4096, '\0'));
    const auto frames = picturesOf(clip_);
    const auto lost =
        std::ranges::find_if(frames, [](const Stretch& one) { return one.offset >= 4096; });
    const std::int64_t length = frames.back().offset - lost->offset;

    EXPECT_EQ(image_.scan(),
              (std::vector{before(),
                           {FindingKind::orphanProRes, second + lost->offset, length, false},
                           wholeFinding(after_, far)}));
}

}  // namespace ReelCore
