#pragma once

#include "ReelCore/CardFormat/CardFormatter.h"
#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "keldo-app/Offload/OffloadEvent.h"
#include "keldo-app/Support/CancellationFlag.h"
#include "keldo-app/Support/Job.h"

#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace keldo_app {

/// The background work of the Offload screen. Each job starts at once; what it gets as its last
/// argument is called on the main thread, unless the job was dropped before.
struct OffloadJobs {
    using ScanResult = std::optional<ReelCore::SourceScanner::ScanResult>;
    using URLs = std::vector<ReelCore::URL>;
    using Result = std::shared_ptr<const ReelCore::OffloadResult>;

    /// Scans a source; a scan that fails gives nothing.
    static Job<ScanResult> scan(const ReelCore::URL& source, std::function<void(ScanResult)> done);

    /// Runs an offload. Of the progress events that have come since the main thread last looked,
    /// only the latest is handed on.
    static Job<OffloadEvent> offload(const ReelCore::OffloadRequest& request,
                                     std::shared_ptr<CancellationFlag> cancelFlag,
                                     std::function<void(OffloadEvent)> consume);

    /// Writes the PDF and the CSV report of an offload; a failure gives no files.
    static Job<URLs> report(Result result, const ReelCore::URL& folder,
                            std::function<void(const URLs&)> done);

    /// Erases the card of an offload, and gives a text that begins with "✓" or "✗". A card
    /// that is no longer as it was proved, or whose copies have gone, is not erased.
    static Job<QString> format(const ReelCore::CardFormatter::FormatPlan& plan,
                               const ReelCore::CardFormatter::FormatGate& gate, Result result,
                               std::function<void(const QString&)> done);
};

}  // namespace keldo_app
