#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Recovery/ClipDiagnosis.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

struct ClipReport {
    URL url;
    std::int64_t size = 0;  ///< In bytes, 0 where it can't be learned.
    ClipDiagnosis diagnosis;

    bool operator==(const ClipReport&) const = default;

    std::string name() const { return lastPathComponent(url); }
};

struct RecoveryScan {
    std::vector<ClipReport> reports;

    bool operator==(const RecoveryScan&) const = default;

    /// The reports on clips that can be repaired, in their order.
    std::vector<ClipReport> damaged() const;

    /// The reports on healthy clips, in their order.
    std::vector<ClipReport> healthy() const;
};

/// What became of a repair or a carve. A failure is an outcome too.
struct RepairOutcome {
    URL source;
    std::optional<URL> output;
    bool succeeded = false;
    std::string method;
    std::string detail;  ///< For people: what came back, or why nothing did.

    bool operator==(const RepairOutcome&) const = default;
};

}  // namespace ReelCore
