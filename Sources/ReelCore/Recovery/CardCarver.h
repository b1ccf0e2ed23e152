#pragma once

#include "ReelCore/Recovery/CarveTypes.h"
#include "ReelCore/Recovery/RecoveryTypes.h"

#include <functional>
#include <optional>
#include <vector>

namespace ReelCore {

/// Brings media back from the raw image of a card whose file system is gone: finds each clip by its
/// own bytes and cuts it out. The image is only ever read. No state; any thread.
struct CardCarver {
    using Finding = ReelCore::Finding;
    using FindingKind = ReelCore::FindingKind;
    using CarveProgress = ReelCore::CarveProgress;

    /// Goes over the whole image and returns what it finds in the order of the image. Takes below
    /// 16 MiB beside up to 2^24 findings. `isCancelled` is asked, and `progress` called, on this
    /// thread, once for each 32 MiB; `isCancelled` also within, where half a second has passed. A
    /// cancelled scan returns what was found so far. In an image that is made to be hard,
    /// beginnings may be passed over: see CarveGround. Throws RecoveryError: NotFound, or IOFailed
    /// for an empty image; SystemError where the image can't be read on.
    static std::vector<Finding> scan(
        const URL& image, const std::function<bool()>& isCancelled = [] { return false; },
        const std::function<void(const CarveProgress&)>& progress = [](const CarveProgress&) {});

    /// Cuts a finding out to "carved_INDEX" in `outputDir`, which is made, in place of what has
    /// that name; a clip that is not healthy is repaired as ClipDoctor does it, with a healthy
    /// `reference` from the same camera, and the raw piece removed. Never fails: every failure is
    /// an outcome that says so. A block of 8 MiB that can't be read whole is left out. Numbers
    /// in the index of a clip that can't be reckoned with are fatal faults.
    static RepairOutcome extract(const Finding& finding, const URL& image, const URL& outputDir,
                                 const std::optional<URL>& reference, std::int64_t index);
};

}  // namespace ReelCore
