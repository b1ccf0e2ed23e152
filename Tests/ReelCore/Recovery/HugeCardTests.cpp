#include "CarveImage.h"
#include "RealMedia.h"
#include "Support/Clip.h"
#include "Support/Forked.h"
#include "Support/Tool.h"

#include <algorithm>

#include <gtest/gtest.h>
#include <sys/resource.h>

namespace ReelCore {

namespace {

using namespace TestSupport;

constexpr std::int64_t gibibyte = 1 << 30U;

/// The image of a card of 64 GiB, of which only the clips take room on the disk.
class HugeCard : public testing::Test {
protected:
    HugeCard() {
        makeClip(movie_, {.seconds = 0.5});
        makeClip(mxf_, {.video = {"-c:v", "mpeg2video"}});
        image_.resize(64 * gibibyte);
        put(movie_, 0);
        put(mxf_, 100'000'003);
        put(mxf_, 5 * gibibyte + 12345);
        // Across the border of two chunks, and across what the second has in common with the first.
        put(movie_, 500 * 0x1FF0000LL - 6);
        put(movie_, 900 * 0x1FF0000LL + 0xFFFD);
        put(mxf_, 40 * gibibyte);
        put(movie_, 64 * gibibyte - sizeOf(movie_));
    }

    static std::int64_t sizeOf(const URL& file) {
        return static_cast<std::int64_t>(std::filesystem::file_size(file));
    }

    CarveImage image_;
    std::vector<Finding> expected_;

private:
    void put(const URL& clip, std::int64_t offset) {
        image_.put(offset, readFile(clip));
        expected_.push_back(wholeFinding(clip, offset));
    }

    TemporaryFolder folder_;
    const URL movie_ = folder_.path() / "CLIP.MOV";
    const URL mxf_ = folder_.path() / "CLIP.MXF";
};

std::vector<CarveProgress> toldOf(const URL& image) {
    std::vector<CarveProgress> told;
    CardCarver::scan(
        image, [] { return false; },
        [&](const CarveProgress& progress) { told.push_back(progress); });
    return told;
}

/// In MiB.
long peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

}  // namespace

TEST_F(HugeCard, Scan_FindsClipsFarApart) {
    std::ranges::sort(expected_, {}, &Finding::offset);

    EXPECT_EQ(image_.scan(), expected_);
}

TEST_F(HugeCard, Scan_TellsTheSameOfACopyWithoutHoles) {
    const URL copy = image_.folder() / "copy.img";
    image_.resize(5 * gibibyte / 32);
    outputOf("cp", {"--sparse=never", image_.path().native(), copy.native()});

    EXPECT_EQ(toldOf(image_.path()), toldOf(copy));
    EXPECT_EQ(CardCarver::scan(image_.path()), CardCarver::scan(copy));
}

TEST_F(HugeCard, Scan_TakesNoMoreMemoryThanOfASmallOne) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer takes memory of its own";
#endif
    const int peak = statusOfForked([this] {
        const auto found = image_.scan().size();
        return found == expected_.size() ? static_cast<int>(std::min(peakMemory(), 254L)) : 255;
    });

    EXPECT_LT(peak, 96);
}

}  // namespace ReelCore
