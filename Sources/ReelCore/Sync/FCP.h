#pragma once

#include "ReelCore/Transcribe/FrameRate.h"

#include <string>

namespace ReelCore {

/// Times as FCPXML writes them: seconds as fractions of whole numbers, on frame boundaries.
struct FCP {
    /// The length of a frame, such as "1001/30000s"; "1/0s" for a rate that counts none.
    static std::string frameDurationString(const FrameRate& rate);

    /// Seconds, moved to the nearest frame: "12s" or "12012/24000s", not reduced. Throws
    /// OutOfRange where the time is no number or too large; a rate that counts no frames a second
    /// is a fatal fault.
    static std::string time(double seconds, const FrameRate& rate);
};

}  // namespace ReelCore
