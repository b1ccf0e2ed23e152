#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Vision/FrameGrabber.h"
#include "ReelCore/Vision/VisionAnalyzer.h"
#include "ReelCore/Vision/VisionTypes.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace ReelCore {

/// Reads the slate that is held before the lens at the beginning of a take.
struct SlateReader {
    FrameGrabber grabber;
    VisionAnalyzer vision;

    /// What the slate says in that frame, of `samples` in the first `headSeconds`, which gives the
    /// most fields, of equals the earliest; absent where none gives any. Fields of two frames are
    /// never mixed. Frames that can't be had or read are passed over, as are those behind the
    /// clip's end. `isCancelled` is asked before each frame; what was found before a cancel is the
    /// answer. Blocks for as long as it takes. Throws TranscribeError::FFmpegNotFound, and
    /// SystemError where no temporary folder can be made; that is gone on every way out.
    std::optional<SlateInfo> read(const URL& url, double headSeconds, std::int64_t samples,
                                  const std::function<bool()>& isCancelled) const;
};

}  // namespace ReelCore
