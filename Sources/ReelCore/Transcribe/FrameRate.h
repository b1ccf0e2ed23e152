#pragma once

#include <cstdint>
#include <string_view>

namespace ReelCore {

/// A rate in which frames are counted: one of those that sets work in, or any other. A plain value.
class FrameRate {
public:
    static const FrameRate fps24;
    static const FrameRate fps25;
    static const FrameRate fps30;
    static const FrameRate fps23_976;
    static const FrameRate fps29_97;
    static const FrameRate fps29_97df;
    static const FrameRate fps59_94;
    static const FrameRate fps59_94df;
    static constexpr FrameRate other(std::int64_t nominal, double real) {
        return {Kind::other, nominal, real, 0};
    }

    /// Reads what ffprobe prints for a rate: "30000/1001", "25/1" or a bare decimal. What is no
    /// number, is divided by zero, is not finite or is beyond 64 bits is 24. A true 60 counts as
    /// 59.94. Never a drop-frame rate: a rate alone does not tell.
    static FrameRate fromFFmpeg(std::string_view text);

    /// Frames that a second of timecode counts.
    constexpr std::int64_t nominal() const { return nominal_; }

    /// Frames that pass in a second of the clock.
    constexpr double real() const { return real_; }

    /// True for 1 to 100,000 frames a second: labels and lengths of frames at any other rate are
    /// fatal faults, or near it.
    constexpr bool isCountable() const { return nominal_ >= 1 && nominal_ <= 100'000; }

    /// True if labels are left out so that timecode keeps to the clock (SMPTE ST 12-1).
    constexpr bool isDrop() const { return dropFramesPerMinute_ != 0; }

    /// The labels left out at the start of each minute but every tenth.
    constexpr int dropFramesPerMinute() const { return dropFramesPerMinute_; }

    /// The rate of the same speed that drops labels; itself where there is none.
    FrameRate dropFrameVariant() const;

    /// What stands before the frames of a label: ";" where labels are dropped, else ":".
    constexpr char separator() const { return isDrop() ? ';' : ':'; }

    bool operator==(const FrameRate&) const = default;

private:
    enum class Kind {
        fps24,
        fps25,
        fps30,
        fps23_976,
        fps29_97,
        fps29_97df,
        fps59_94,
        fps59_94df,
        other
    };

    constexpr FrameRate(Kind kind, std::int64_t nominal, double real, int dropFramesPerMinute)
        : kind_(kind), nominal_(nominal), real_(real), dropFramesPerMinute_(dropFramesPerMinute) {}

    Kind kind_;
    std::int64_t nominal_;
    double real_;
    int dropFramesPerMinute_;
};

inline constexpr FrameRate FrameRate::fps24{Kind::fps24, 24, 24.0, 0};
inline constexpr FrameRate FrameRate::fps25{Kind::fps25, 25, 25.0, 0};
inline constexpr FrameRate FrameRate::fps30{Kind::fps30, 30, 30.0, 0};
inline constexpr FrameRate FrameRate::fps23_976{Kind::fps23_976, 24, 24000.0 / 1001.0, 0};
inline constexpr FrameRate FrameRate::fps29_97{Kind::fps29_97, 30, 30000.0 / 1001.0, 0};
inline constexpr FrameRate FrameRate::fps29_97df{Kind::fps29_97df, 30, 30000.0 / 1001.0, 2};
inline constexpr FrameRate FrameRate::fps59_94{Kind::fps59_94, 60, 60000.0 / 1001.0, 0};
inline constexpr FrameRate FrameRate::fps59_94df{Kind::fps59_94df, 60, 60000.0 / 1001.0, 4};

}  // namespace ReelCore
