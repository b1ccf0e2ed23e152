#include "CarveImage.h"
#include "MemoryCard.h"
#include "RealMedia.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using namespace TestSupport;

/// Writes a clip of 3 s, or as much of it as goes into so many bytes: there the system kills what
/// writes it.
void record(const URL& clip, std::int64_t mostBytes) {
    runTool("prlimit",
            {"--core=0", "--fsize=" + std::to_string(mostBytes), "ffmpeg", "-nostdin", "-v",
             "error", "-f", "lavfi", "-i", "testsrc2=size=128x72:rate=25:duration=3", "-f", "lavfi",
             "-i", "aevalsrc=sin(2000*t)|sin(3000*t):s=48000:d=3", "-c:v", "prores_ks", "-c:a",
             "pcm_s16le", clip.native()});
}

/// A card with a whole clip and one that was being written when the power went.
class PowerCut : public testing::Test {
protected:
    void SetUp() override {
        if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
        record(take_, 1 << 30U);
        record(last_, 333'333);
        card_ = makeExt4Card();
        card_->add(take_);
        card_->add(last_);
        takeAt_ = card_->layoutOf("TAKE.MOV");
        lastAt_ = card_->layoutOf("LAST.MOV");
        card_->die();
        ASSERT_FALSE(card_->isReadable());
        ASSERT_EQ(lastAt_.size(), 1U);
        ASSERT_LT(takeAt_.front().offset, lastAt_.front().offset);
    }

    /// How many pictures were written whole.
    std::ptrdiff_t written() const {
        const auto pictures = picturesOf(take_);
        return std::ranges::count_if(pictures, [this](const Stretch& picture) {
            return picture.end() <= lastAt_.front().length;
        });
    }

    URL image() const { return card_->image(); }

    TemporaryFolder folder_;
    const URL take_ = folder_.path() / "TAKE.MOV";
    const URL last_ = folder_.path() / "LAST.MOV";
    std::vector<Stretch> takeAt_;
    std::vector<Stretch> lastAt_;

private:
    std::unique_ptr<MemoryCard> card_;
};

}  // namespace

TEST_F(PowerCut, LastClip_PlaysWithTheFirstAsItsReference) {
    const std::int64_t total = static_cast<std::int64_t>(std::filesystem::file_size(image()));
    const std::int64_t begin = lastAt_.front().offset;
    // Its media was never told to end and so goes on to the end of the card.
    const Finding open{FindingKind::movie, begin, total - begin, false};

    const auto findings = CardCarver::scan(image());
    ASSERT_EQ(findings, (std::vector{wholeFinding(take_, takeAt_.front().offset), open}));
    const URL out = folder_.path() / "out";
    const auto alone = CardCarver::extract(findings[1], image(), out, std::nullopt, 1);
    const auto take = CardCarver::extract(findings[0], image(), out, std::nullopt, 2);
    const auto last = CardCarver::extract(findings[1], image(), out, take.output, 3);

    EXPECT_FALSE(alone.succeeded);
    EXPECT_EQ(alone.detail, open.label() +
                                " — A healthy reference clip from the same camera is required: "
                                "pick a healthy clip from the same camera");
    ASSERT_TRUE(take.output && last.succeeded && last.output) << last.detail;
    EXPECT_EQ(last.method, "carve + moov rebuild");
    const auto pictures = pictureSums(*last.output);
    const auto expected = pictureSums(take_);
    ASSERT_GE(written(), 10);
    ASSERT_LT(written(), std::ssize(expected));
    // Of a picture that was cut off, the rest is what the card held there.
    ASSERT_GE(std::ssize(pictures), written());
    ASSERT_LE(std::ssize(pictures), written() + 1);
    EXPECT_TRUE(std::equal(expected.begin(), expected.begin() + written(), pictures.begin()));
    const std::string sound = samplesOf(*last.output);
    const auto soundWritten = static_cast<std::size_t>(written() - 3) * 48000 / 25 * 4;
    EXPECT_TRUE(sound.substr(0, soundWritten) == samplesOf(take_).substr(0, soundWritten));
}

}  // namespace ReelCore
