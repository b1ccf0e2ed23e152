#include "ReelCore/Transcribe/Timecode.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

/// Counts labels as a generator does: one after the other, leaving out those that are dropped.
class Counter {
public:
    explicit Counter(FrameRate rate) : rate_(rate) {}

    const Timecode::Components& label() const { return label_; }

    void next() {
        if (++label_.f < rate_.nominal()) return;
        label_.f = 0;
        if (++label_.s < 60) return;
        label_.s = 0;
        if (++label_.m == 60) {
            label_.m = 0;
            ++label_.h;
        }
        if (label_.m % 10 != 0) label_.f = rate_.dropFramesPerMinute();
    }

private:
    FrameRate rate_;
    Timecode::Components label_;
};

/// One comparison a frame, not an expectation each: there are millions.
bool agree(std::int64_t frame, const Timecode::Components& label, FrameRate rate) {
    return Timecode(frame, rate).components() == label &&
           Timecode(label.h, label.m, label.s, label.f, rate).frameNumber == frame;
}

/// Every frame of the day, from 00:00:00:00 to the last before 24:00:00:00.
void expectWholeDay(FrameRate rate, std::int64_t framesOfADay) {
    Counter counter(rate);
    for (std::int64_t frame = 0; frame < framesOfADay; ++frame) {
        ASSERT_TRUE(agree(frame, counter.label(), rate)) << frame;
        counter.next();
    }
    EXPECT_EQ(counter.label(), (Timecode::Components{24, 0, 0, 0}));
}

/// The labels that ffmpeg itself writes over its pictures, one each.
std::vector<std::string> labelsOfFFmpeg(const std::string& rate, const std::string& first,
                                        int frames) {
    const TemporaryFolder folder;
    const std::string clip = (folder.path() / "clip.m2v").native();
    outputOf("ffmpeg", {"-nostdin", "-v", "error", "-f", "lavfi", "-i", "color=s=16x16:r=" + rate,
                        "-frames:v", std::to_string(frames), "-c:v", "mpeg2video", "-g", "1",
                        "-timecode", first, clip});
    std::istringstream output(
        outputOf("ffprobe", {"-v", "error", "-flags", "low_delay", "-show_entries",
                             "frame_side_data=timecode", "-of", "default=nk=1:nw=1", clip}));
    std::vector<std::string> labels;
    for (std::string line; std::getline(output, line);) {
        if (!line.empty()) labels.push_back(line);
    }
    return labels;
}

/// Compares `minutes` minutes from a label on with what ffmpeg counts.
void expectAsFFmpegCounts(FrameRate rate, const std::string& text, const std::string& first,
                          int minutes) {
    const int count = static_cast<int>(rate.nominal()) * 60 * minutes;
    const std::vector<std::string> labels = labelsOfFFmpeg(text, first, count);
    ASSERT_EQ(std::ssize(labels), count);

    std::int64_t frame = Timecode::parse(first, rate).value().frameNumber;
    for (const std::string& label : labels) {
        ASSERT_EQ(Timecode(frame, rate).formatted(), label) << frame;
        ASSERT_EQ(Timecode::parse(label, rate), Timecode(frame, rate)) << label;
        ++frame;
    }
}

}  // namespace

TEST(TimecodeDay, EveryFrame_WholeRates) {
    expectWholeDay(FrameRate::fps24, 86400 * 24);
    expectWholeDay(FrameRate::fps25, 86400 * 25);
    expectWholeDay(FrameRate::fps30, 86400 * 30);
}

TEST(TimecodeDay, EveryFrame_DropFrameRates_KeepToTheClock) {
    expectWholeDay(FrameRate::fps29_97df, 2589408);
    expectWholeDay(FrameRate::fps59_94df, 5178816);
}

TEST(TimecodeDay, EveryFrame_FractionalRatesWithoutDrop) {
    expectWholeDay(FrameRate::fps23_976, 86400 * 24);
    expectWholeDay(FrameRate::fps29_97, 86400 * 30);
    expectWholeDay(FrameRate::fps59_94, 86400 * 60);
}

TEST(TimecodeDay, EveryFrame_OtherRates) {
    expectWholeDay(FrameRate::other(48, 48000.0 / 1001.0), 86400 * 48);
    expectWholeDay(FrameRate::other(50, 50.0), 86400 * 50);
}

TEST(TimecodeDay, TextOfRandomFrames_ReadsBackAsTheSame) {
    std::mt19937_64 random(20260314);
    for (const FrameRate rate :
         {FrameRate::fps24, FrameRate::fps25, FrameRate::fps30, FrameRate::fps23_976,
          FrameRate::fps29_97, FrameRate::fps29_97df, FrameRate::fps59_94, FrameRate::fps59_94df,
          FrameRate::other(120, 120.0)}) {
        std::uniform_int_distribution<std::int64_t> anyOfFourDays(0, 4 * 86400 * rate.nominal());
        for (int i = 0; i < 20000; ++i) {
            const Timecode timecode(anyOfFourDays(random), rate);
            ASSERT_EQ(Timecode::parse(timecode.formatted(), rate), timecode)
                << timecode.formatted();
        }
    }
}

TEST(TimecodeDay, DropFrameLabels_AreThoseOfFFmpeg_29_97) {
    expectAsFFmpegCounts(FrameRate::fps29_97df, "30000/1001", "00:00:00;00", 21);
    expectAsFFmpegCounts(FrameRate::fps29_97df, "30000/1001", "09:58:30;00", 13);
    expectAsFFmpegCounts(FrameRate::fps29_97df, "30000/1001", "23:49:00;02", 10);
}

TEST(TimecodeDay, DropFrameLabels_AreThoseOfFFmpeg_59_94) {
    expectAsFFmpegCounts(FrameRate::fps59_94df, "60000/1001", "00:00:00;00", 11);
    expectAsFFmpegCounts(FrameRate::fps59_94df, "60000/1001", "09:58:30;00", 5);
    expectAsFFmpegCounts(FrameRate::fps59_94df, "60000/1001", "23:49:00;04", 10);
}
