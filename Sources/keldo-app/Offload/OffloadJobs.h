#pragma once

#include "ReelCore/CardFormat/CardFormatter.h"
#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "keldo-app/Support/CancellationFlag.h"
#include "keldo-app/Support/InUse.h"
#include "keldo-app/Support/Jobs.h"

#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace keldo_app {

/// What an offload tells the screen while it runs and when it ends.
struct OffloadEvent {
    struct Progress {
        ReelCore::OffloadProgress progress;
    };
    struct Finished {
        std::shared_ptr<const ReelCore::OffloadResult> result;  ///< Never null.
    };
    struct Failed {
        std::string description;
        std::string reason = {};  ///< What there is to add to it; may be empty.
    };

    std::variant<Progress, Finished, Failed> value;
};

/// The background work of the Offload screen. Each job starts at once; what it gets as its last
/// argument is called on the main thread, unless the job was dropped before. `inUse` ends with the
/// work, whether anybody still sees it or not.
struct OffloadJobs {
    using ScanResult = std::optional<ReelCore::SourceScanner::ScanResult>;
    using Result = std::shared_ptr<const ReelCore::OffloadResult>;

    /// Scans a source; a scan that fails gives nothing.
    static Job<ScanResult> scan(const ReelCore::URL& source, std::function<void(ScanResult)> done);

    /// Runs an offload.
    static Job<OffloadEvent> offload(const ReelCore::OffloadRequest& request, InUse::Token inUse,
                                     std::shared_ptr<CancellationFlag> cancelFlag,
                                     std::function<void(OffloadEvent)> consume);

    /// Erases the card of an offload, and gives a text that begins with "✓" or "✗". A card
    /// that is no longer as it was proved, or whose copies have gone, is not erased.
    static Job<QString> format(const ReelCore::CardFormatter::FormatPlan& plan,
                               const ReelCore::CardFormatter::FormatGate& gate, Result result,
                               InUse::Token inUse, std::function<void(QString)> done);
};

}  // namespace keldo_app
