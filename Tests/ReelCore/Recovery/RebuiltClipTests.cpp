#include "ProResTake.h"
#include "ReelCore/Recovery/MP4Scan.h"
#include "ReelCore/Recovery/MoovRebuilder.h"
#include "Support/Boxes.h"
#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <algorithm>
#include <sstream>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::DecodedTake;
using TestSupport::IndexPlace;
using TestSupport::Piece;
using TestSupport::readFile;
using TestSupport::TakeContent;
using TestSupport::TakeKind;
using TestSupport::TakeLayout;

std::vector<TakeKind> allKinds() {
    return {
        {"ProxyAt24WithStereo", "proxy", "apco", "24"},
        {"LTAt25WithMonoOf24Bits", "lt", "apcs", "25", 20, 1, 24},
        {"StandardAt2997WithEightChannels", "standard", "apcn", "30000/1001", 20, 8, 24},
        {"HQAt30WithThreeChannels", "hq", "apch", "30", 20, 3, 16},
        {"FourAt48WithFourChannels", "4444", "ap4h", "48", 20, 4, 24},
        {"FourXQAt50WithFiveChannels", "4444xq", "ap4x", "50", 20, 5, 16},
        {"HQAt60WithSixChannels", "hq", "apch", "60", 20, 6, 24},
        {"StandardAt2398WithSevenChannels", "standard", "apcn", "24000/1001", 20, 7, 16},
        {"FourAt25WithMono", "4444", "ap4h", "25", 20, 1, 16},
        {"LTAt50WithoutSound", "lt", "apcs", "50", 20, 0},
        {"HDHQAt2398", "hq", "apch", "24000/1001", 5, 2, 24, "1920x1080"},
        {"UHDStandardAt25", "standard", "apcn", "25", 3, 2, 16, "3840x2160"},
    };
}

/// A take on a card whose power is cut, and a healthy take of the same kind.
class CutTake {
public:
    explicit CutTake(TakeKind kind, IndexPlace index = IndexPlace::end) : kind_(std::move(kind)) {
        recordTake(path("original.mov"), kind_, TakeContent::shot, index);
        recordTake(path("reference.mov"), kind_, TakeContent::reference);
        layout_ = TestSupport::layoutOf(path("original.mov"));
        original_ = TestSupport::decoded(path("original.mov"), kind_);
        bytes_ = readFile(path("original.mov"));
        for (const TopLevelBox& box : MP4Scan::topLevel(path("original.mov")).boxes) {
            if (box.type == "mdat") media_ = {box.payloadOffset(), box.declaredPayload};
        }
    }

    const TakeKind& kind() const { return kind_; }
    const TakeLayout& layout() const { return layout_; }
    Piece media() const { return media_; }

    /// The original up to a byte.
    std::string upTo(std::int64_t end) const {
        return bytes_.substr(0, static_cast<std::size_t>(end));
    }

    /// The same with another header of 16 bytes in front of the media: ffmpeg keeps room for one.
    std::string upTo(std::int64_t end, const std::string& header) const {
        return upTo(end).replace(static_cast<std::size_t>(media_.offset) - 16, 16, header);
    }

    /// Rebuilds what is left of the take, and expects all to be back that stood in front of `end`:
    /// each whole frame and each whole sample, and then `silence` samples.
    void expectBack(const std::string& left, std::int64_t end, std::int64_t silence = 0) const {
        TestSupport::writeFile(path("damaged.mov"), left);
        expectBackWith(path("reference.mov"), end, silence);
    }

    /// The same where the take is its own reference.
    void expectBackByItself(const std::string& left, std::int64_t end) const {
        TestSupport::writeFile(path("damaged.mov"), left);
        expectBackWith(path("damaged.mov"), end, 0);
    }

private:
    URL path(const std::string& name) const { return folder_.path() / name; }

    std::size_t framesBefore(std::int64_t end) const {
        const auto isWhole = [&](const Piece& frame) { return frame.end() <= end; };
        return static_cast<std::size_t>(std::ranges::count_if(layout_.frames, isWhole));
    }

    std::int64_t samplesBefore(std::int64_t end) const {
        if (kind_.channels == 0) return 0;
        std::int64_t bytes = 0;
        for (const Piece& piece : layout_.sound) {
            bytes += std::clamp<std::int64_t>(end - piece.offset, 0, piece.size);
        }
        return bytes / kind_.bytesPerAudioFrame();
    }

    void expectBackWith(const URL& reference, std::int64_t end, std::int64_t silence) const {
        const URL output = path("rebuilt.mov");
        const std::size_t frames = framesBefore(end);
        const std::int64_t samples = samplesBefore(end);

        const auto stats = MoovRebuilder::rebuild(path("damaged.mov"), reference, output);

        ASSERT_GT(frames, 0U);
        EXPECT_EQ(stats.videoFrames, static_cast<std::int64_t>(frames));
        EXPECT_DOUBLE_EQ(stats.audioSeconds, static_cast<double>(samples + silence) / 48'000);
        expectDecoded(TestSupport::decoded(output, kind_), frames, samples, silence);
        expectAccepted(output, frames, samples + silence);
    }

    void expectDecoded(const DecodedTake& rebuilt, std::size_t frames, std::int64_t samples,
                       std::int64_t silence) const {
        const auto bytesOf = [&](std::int64_t count) {
            return static_cast<std::size_t>(count * kind_.channels * 4);
        };
        const auto expected = original_.frames.begin();
        EXPECT_EQ(rebuilt.complaints, "");
        EXPECT_EQ(rebuilt.frames, std::vector<std::string>(
                                      expected, expected + static_cast<std::ptrdiff_t>(frames)));
        EXPECT_EQ(rebuilt.sound.size(), bytesOf(samples + silence));
        EXPECT_TRUE(rebuilt.sound.starts_with(original_.sound.substr(0, bytesOf(samples))));
        EXPECT_TRUE(rebuilt.sound.ends_with(std::string(bytesOf(silence), '\0')));
    }

    /// Programs that we did not write see the right codec, counts and lengths.
    void expectAccepted(const URL& output, std::size_t frames, std::int64_t samples) const {
        const double milliseconds = static_cast<double>(frames) / kind_.framesASecond() * 1000;
        std::istringstream probed(
            TestSupport::probed(output, "stream=codec_tag_string,duration,nb_frames", "v:0"));
        std::string codec;
        double duration = 0.0;
        std::size_t count = 0;
        probed >> codec >> duration >> count;
        EXPECT_EQ(codec, kind_.codec);
        EXPECT_NEAR(duration * 1000, milliseconds, 0.01);
        EXPECT_EQ(count, frames);

        const TestSupport::MediaInfo info = TestSupport::mediaInfo(output);
        EXPECT_EQ(info.truncated, "");
        EXPECT_EQ(info.codec, "ProRes " + kind_.codec);
        EXPECT_EQ(info.frames, std::to_string(frames));
        EXPECT_NEAR(info.duration, milliseconds, 1.0);
        EXPECT_EQ(info.sound,
                  kind_.channels == 0 ? "" : fmt::format("{} x {}", kind_.channels, kind_.bits));
        EXPECT_NEAR(info.soundDuration, static_cast<double>(samples) / 48, 1.0);
    }

    TestSupport::TemporaryFolder folder_;
    TakeKind kind_;
    TakeLayout layout_;
    DecodedTake original_;
    std::string bytes_;
    Piece media_;
};

class RebuiltKind : public testing::TestWithParam<TakeKind> {
protected:
    void SetUp() override {
        if (!TestSupport::hasTool("mediainfo")) GTEST_SKIP() << "needs mediainfo";
    }
};

std::string nameOf(const testing::TestParamInfo<TakeKind>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Take, RebuiltKind, testing::ValuesIn(allKinds()), nameOf);

/// The ways to lose power, each for a take with sound and one without.
class RebuiltCut : public RebuiltKind {};

INSTANTIATE_TEST_SUITE_P(Take, RebuiltCut,
                         testing::Values(TakeKind{"WithStereo", "hq", "apch", "25", 20, 2, 24},
                                         TakeKind{"WithoutSound", "proxy", "apco", "24", 20, 0}),
                         nameOf);

}  // namespace

TEST_P(RebuiltKind, IndexNeverWrittenOrLastFrameCut_BringsBackAllThatIsWhole) {
    const CutTake take(GetParam());
    const std::int64_t end = take.media().end();
    const Piece last = take.layout().frames.back();

    take.expectBack(take.upTo(end, TestSupport::box("wide") + TestSupport::boxHeader("mdat", 0)),
                    end);
    take.expectBack(take.upTo(last.offset + last.size / 2), last.offset);
}

TEST_P(RebuiltCut, IndexGoneBehindWholeMedia_BringsBackEverything) {
    const CutTake take(GetParam());

    take.expectBack(take.upTo(take.media().end()), take.media().end());
}

TEST_P(RebuiltCut, PlaceholderSizes_BringBackEverything) {
    const CutTake take(GetParam());
    const std::int64_t end = take.media().end();
    const auto narrow = [](std::uint32_t size) {
        return TestSupport::box("wide") + TestSupport::boxHeader("mdat", size);
    };

    take.expectBack(take.upTo(end, narrow(0xFFFFFFFF)), end);
    take.expectBack(take.upTo(end, TestSupport::wideBoxHeader("mdat", 0x7FFFFFFFFFFFFFF)), end);
}

TEST_P(RebuiltCut, CutOneByteBeforeTheLastFramesEnd_LosesThatFrameAlone) {
    const CutTake take(GetParam());
    const Piece last = take.layout().frames.back();

    take.expectBack(take.upTo(last.end() - 1), last.offset);
}

TEST_P(RebuiltCut, CutRightBehindAFrame_KeepsIt) {
    const CutTake take(GetParam());
    const Piece frame = take.layout().frames.at(7);

    take.expectBack(take.upTo(frame.end()), frame.end());
}

TEST_P(RebuiltCut, ZerosBehindTheMedia_AreSilenceOrNothing) {
    const CutTake take(GetParam());
    constexpr std::int64_t zeros = 1'000'001;
    const std::int64_t end = take.media().end();
    const std::int64_t silence =
        take.kind().channels == 0 ? 0 : zeros / take.kind().bytesPerAudioFrame();

    take.expectBack(take.upTo(end, TestSupport::box("wide") + TestSupport::boxHeader("mdat", 0)) +
                        std::string(zeros, '\0'),
                    end, silence);
}

TEST_P(RebuiltCut, IndexInFrontAndEndMissing_IsRebuiltByItself) {
    const CutTake take(GetParam(), IndexPlace::front);
    const Piece frame = take.layout().frames.at(14);

    take.expectBackByItself(take.upTo(frame.end() - 100), frame.offset);
}

TEST(RebuiltClip, CutWithinSound_KeepsItsWholeSamples) {
    if (!TestSupport::hasTool("mediainfo")) GTEST_SKIP() << "needs mediainfo";
    const CutTake take({"", "hq", "apch", "25", 20, 2, 24});
    const Piece sound = take.layout().sound.back();
    const std::int64_t end = sound.offset + sound.size / 2 + 1;

    take.expectBack(take.upTo(end), end);
}

}  // namespace ReelCore
