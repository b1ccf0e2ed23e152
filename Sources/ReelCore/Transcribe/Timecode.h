#pragma once

#include "ReelCore/Transcribe/FrameRate.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ReelCore {

/// A position in frames at a rate, and its label (SMPTE ST 12-1). A plain value. The frame number
/// counts the frames that really elapsed since 00:00:00:00, so dropped labels are not in it; it may
/// be negative, and nothing wraps at 24 hours. A position beyond 64 bits is OutOfRange, thrown by
/// what would make one; labels at a nominal rate of 0 are a fatal fault.
struct Timecode {
    struct Components {
        std::int64_t h = 0;
        std::int64_t m = 0;
        std::int64_t s = 0;
        std::int64_t f = 0;

        bool operator==(const Components&) const = default;
    };

    Timecode(std::int64_t frameNumber, FrameRate rate);

    /// From the fields of a label. None is checked for its range: 75 minutes are 1 hour and 15.
    Timecode(std::int64_t hours, std::int64_t minutes, std::int64_t seconds, std::int64_t frames,
             FrameRate rate);

    /// Reads a label: four whole numbers with ":", ";" or "." between them. A ";" anywhere stands
    /// for the drop-frame variant of `rate`. Absent for any other text, and beyond 64 bits.
    static std::optional<Timecode> parse(std::string_view text, FrameRate rate);

    /// The frame number by its other name.
    std::int64_t frames() const { return frameNumber; }

    /// The fields of the label; all take the sign of the frame number.
    Components components() const;

    /// The label: "01:00:00:00", with ";" before the frames where labels are dropped.
    std::string formatted() const;

    /// Moved on by seconds of the clock, to the nearest frame.
    Timecode adding(double seconds) const;

    bool operator==(const Timecode&) const = default;

    std::int64_t frameNumber;
    FrameRate rate;
};

}  // namespace ReelCore
