#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Vision/FrameGrabber.h"
#include "ReelCore/Vision/VisionAnalyzer.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

namespace ReelCore {

/// How many people are in a clip, by frames from all over it.
struct PeopleCounter {
    /// People in a frame, and the number of frames with as many.
    using Histogram = std::map<std::int64_t, std::int64_t>;

    struct Estimate {
        std::int64_t count = 0;  ///< At least 1.
        Histogram histogram;

        bool operator==(const Estimate&) const = default;
    };

    FrameGrabber grabber;
    VisionAnalyzer vision;

    /// Looks at the middles of `samples` equal slices of the clip, at least one. Absent where no
    /// frame could be had or nobody is in any, and where the clip's length can't be learned.
    /// `isCancelled` is asked before each frame; a cancel decides on the frames before it. Blocks
    /// for as long as it takes. Never fails; its temporary folder is gone on every way out.
    std::optional<Estimate> estimate(const URL& url, std::int64_t samples, std::int64_t minFrames,
                                     const std::function<bool()>& isCancelled) const;

    /// The most people that at least `minFrames` frames show, so that one false detection does not
    /// count; where no number is seen so often, the most that any frame shows. Absent where nobody
    /// is seen.
    static std::optional<std::int64_t> count(const Histogram& histogram, std::int64_t minFrames);
};

}  // namespace ReelCore
