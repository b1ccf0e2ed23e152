#pragma once

#include "ReelCore/Recovery/CardCarver.h"
#include "ReelCore/Recovery/ClipDoctor.h"
#include "keldo-app/Support/InUse.h"
#include "keldo-app/Support/Jobs.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace keldo_app {

/// What became of the next clip of a batch, or the end of the batch.
struct OutcomeEvent {
    struct End {
        std::string trouble = {};  ///< What kept the batch from being gone through; mostly empty.
    };
    std::variant<ReelCore::RepairOutcome, End> value;
};

/// What the scan of an image tells.
struct CarveScanEvent {
    struct Found {
        std::vector<ReelCore::Finding> findings;
        std::string trouble = {};  ///< Why the image could not be read; mostly empty.
    };
    std::variant<double, Found> value;  ///< A fraction of the image, or the end.
};

/// The background work of the Recover screen. Each job starts at once and goes through its batch
/// one after the other; what it gets as its last argument is called on the main thread, unless the
/// job was dropped before: then it goes on to its end unseen. `inUse` ends with the work.
struct RecoverJobs {
    static Job<ReelCore::RecoveryScan> scan(const ReelCore::URL& folder, InUse::Token inUse,
                                            std::function<void(ReelCore::RecoveryScan)> done);

    static Job<OutcomeEvent> repair(std::vector<ReelCore::ClipReport> damaged,
                                    std::optional<ReelCore::URL> reference,
                                    const ReelCore::URL& output, InUse::Token inUse,
                                    std::function<void(OutcomeEvent)> consume);

    static Job<CarveScanEvent> scanImage(const ReelCore::URL& image,
                                         std::function<void(CarveScanEvent)> consume);

    static Job<OutcomeEvent> extract(std::vector<ReelCore::Finding> findings,
                                     const ReelCore::URL& image,
                                     std::optional<ReelCore::URL> reference,
                                     const ReelCore::URL& output, InUse::Token inUse,
                                     std::function<void(OutcomeEvent)> consume);
};

}  // namespace keldo_app
