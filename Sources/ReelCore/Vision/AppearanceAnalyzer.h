#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcribe/Timecode.h"
#include "ReelCore/Transcribe/TranscriptTypes.h"
#include "ReelCore/Vision/FrameGrabber.h"
#include "ReelCore/Vision/VisionAnalyzer.h"
#include "ReelCore/Vision/VisionTypes.h"

#include <functional>
#include <optional>
#include <span>
#include <string>

namespace ReelCore {

/// Describes who is in the picture while a speaker talks.
struct AppearanceAnalyzer {
    FrameGrabber grabber;
    VisionAnalyzer vision;

    bool isAvailable() const { return grabber.isAvailable(); }

    /// Looks at one frame: the middle of the speaker's longest line, of equals the first.
    /// `startTimecode` is that of second 0 of the clip. Absent for a speaker without a line, where
    /// no frame can be had, and where `isCancelled`, which is asked once, says so. Blocks until
    /// done. Never fails; its temporary folder is gone on every way out.
    std::optional<AppearanceHint> analyze(const URL& url, const std::string& speaker,
                                          std::span<const TranscriptSegment> segments,
                                          const Timecode& startTimecode,
                                          const std::function<bool()>& isCancelled) const;
};

}  // namespace ReelCore
