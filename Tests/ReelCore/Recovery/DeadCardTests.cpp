#include "CarveImage.h"
#include "DayCard.h"
#include "RealMedia.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using namespace TestSupport;

struct CardType {
    std::string name;
    std::unique_ptr<MemoryCard> (*make)();
    std::string (*whatIsMissing)();  ///< To make one on this machine; empty for nothing.
};

void PrintTo(const CardType& type, std::ostream* out) {
    *out << type.name;
}

const CardType ext4{"ext4", makeExt4Card, []() -> std::string {
                        return LoopMount::isAvailable() ? "" : "needs root and loop devices";
                    }};
const CardType fat32{"FAT32", makeFATCard,
                     []() -> std::string { return hasTool("mcopy") ? "" : "needs mtools"; }};

class DeadCard : public testing::TestWithParam<CardType> {
protected:
    void SetUp() override {
        const std::string missing = GetParam().whatIsMissing();
        if (!missing.empty()) GTEST_SKIP() << missing;
        card_ = std::make_unique<DayCard>(GetParam().make());
        ASSERT_EQ(card_->flaw(), "");
    }

    const DayCard& card() const { return *card_; }

    Finding whole(const std::string& name) const {
        return wholeFinding(card().clip(name), card().layout(name).front().offset);
    }

    /// The walk believes its head, and goes to where the index would be if the rest followed.
    Finding splitMovie() const {
        const std::string bytes = readFile(card().clip(card().splitMovie));
        const auto index = static_cast<std::int64_t>(bytes.rfind("moov")) - 4;
        return {FindingKind::movie, card().layout(card().splitMovie).front().offset, index, false};
    }

    /// The chain of triplets breaks behind the one that the split goes through.
    Finding splitMXF() const {
        const Stretch head = card().layout(card().splitMXF).front();
        const std::string bytes = readFile(card().clip(card().splitMXF));
        return {FindingKind::mxf, head.offset, tripletsBeyond(bytes, head.length), false};
    }

    /// From the first frame to where the last begins, as that may have been cut short.
    Finding orphans() const {
        const auto frames = card().framesLeft();
        const std::int64_t begin = frames.front().offset;
        return {FindingKind::orphanProRes, begin, frames.back().offset - begin, false};
    }

    RepairOutcome extract(const Finding& finding, const std::optional<URL>& reference = {}) const {
        return CardCarver::extract(finding, card().image(), folder_.path(), reference, 1);
    }

private:
    TemporaryFolder folder_;
    std::unique_ptr<DayCard> card_;
};

}  // namespace

TEST_P(DeadCard, Scan_FindsEveryWholeClipAndWhatIsLeftOfTheOthers) {
    std::vector<Finding> expected{splitMovie(), splitMXF(), orphans()};
    for (const std::string& name : card().whole) expected.push_back(whole(name));
    std::ranges::sort(expected, {}, &Finding::offset);

    EXPECT_EQ(CardCarver::scan(card().image()), expected);
}

TEST_P(DeadCard, Extract_WholeClip_ComesBackByteForByte) {
    for (const std::string& name : card().whole) {
        const RepairOutcome outcome = extract(whole(name));

        EXPECT_EQ(outcome.method, "carve") << name;
        EXPECT_EQ(outcome.detail, whole(name).label() + " — intact") << name;
        ASSERT_TRUE(outcome.succeeded && outcome.output) << name;
        EXPECT_EQ(sha256Of(*outcome.output), sha256Of(card().clip(name))) << name;
    }
}

TEST_P(DeadCard, Extract_DamagedClip_ComesBackAsFarAsItCanBeRead) {
    const RepairOutcome beheaded = extract(orphans(), card().clip("REEL1.MOV"));
    const RepairOutcome mxf = extract(splitMXF());
    const RepairOutcome movie = extract(splitMovie(), card().clip("REEL3.MP4"));

    // All frames that are left but the last.
    EXPECT_EQ(beheaded.method, "carve + moov rebuild");
    ASSERT_TRUE(beheaded.succeeded && beheaded.output) << beheaded.detail;
    const auto frames = pictureSums(card().clip(card().beheaded));
    EXPECT_EQ(pictureSums(*beheaded.output),
              std::vector(frames.end() - std::ssize(card().framesLeft()), frames.end() - 1));

    // All pictures before the split; the one that it goes through shows as it may.
    EXPECT_EQ(mxf.method, "carve + remux");
    ASSERT_TRUE(mxf.succeeded && mxf.output) << mxf.detail;
    const std::int64_t before = card().layout(card().splitMXF).front().length;
    const auto pictures = picturesOf(card().clip(card().splitMXF));
    const auto readable =
        std::ranges::count_if(pictures, [&](const Stretch& one) { return one.end() <= before; });
    const auto sums = pictureSums(card().clip(card().splitMXF));
    const auto carvedSums = pictureSums(*mxf.output);
    ASSERT_GE(readable, 3);
    ASSERT_GE(std::ssize(carvedSums), readable);
    EXPECT_TRUE(std::equal(sums.begin(), sums.begin() + readable, carvedSums.begin()));

    // No rebuild covers H.264; what was carved stays.
    EXPECT_EQ(movie.method, "carve + repair");
    EXPECT_FALSE(movie.succeeded);
    ASSERT_EQ(movie.output.value_or("").filename(), "carved_001.mov");
    const std::string head = readFile(card().clip(card().splitMovie));
    const std::int64_t length = card().layout(card().splitMovie).front().length;
    EXPECT_TRUE(standsAt(*movie.output, 0, cut(head, {0, length})));
}

INSTANTIATE_TEST_SUITE_P(FileSystems, DeadCard, testing::Values(ext4, fat32),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace ReelCore
