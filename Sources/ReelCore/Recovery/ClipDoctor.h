#pragma once

#include "ReelCore/Recovery/RecoveryTypes.h"

#include <array>
#include <optional>
#include <string_view>

namespace ReelCore {

/// Tells what is wrong with clips, by their structure alone, and repairs what can be repaired. A
/// damaged file is only ever read: every repair is a new file. No state; any thread; nothing can be
/// cancelled. Diagnosis reads headers only, whatever the size of a clip.
struct ClipDoctor {
    /// Lower-case file extensions.
    static constexpr std::array<std::string_view, 3> movieExtensions{"mov", "mp4", "m4v"};
    static constexpr std::array<std::string_view, 2> waveExtensions{"wav", "bwf"};
    static constexpr std::array<std::string_view, 1> mxfExtensions{"mxf"};

    /// Diagnoses every clip below a folder, hidden ones included, in the order of their paths. What
    /// SourceScanner ignores is left out; a folder that can't be listed has nothing in it.
    static RecoveryScan scan(const URL& directory);

    /// Never fails: every problem is an Unreadable with its reason.
    static ClipDiagnosis diagnose(const URL& url);

    /// Writes the repaired clip into `outputDir`, which is made, under a name that is free. A clip
    /// without an index needs a healthy `reference` from the same camera. Never fails: every
    /// failure is an outcome that says so, and may leave a partial file behind.
    static RepairOutcome repair(const ClipReport& report, const std::optional<URL>& reference,
                                const URL& outputDir);
};

}  // namespace ReelCore
