#pragma once

#include "ReelCore/Sync/SyncTypes.h"
#include "keldo-app/Support/InUse.h"
#include "keldo-app/Support/Jobs.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace keldo_app {

/// How far a mux is, and its end.
struct MuxEvent {
    struct Progress {
        std::int64_t done = 0;  ///< Clips dealt with, whatever became of them.
    };
    struct End {
        std::int64_t created = 0;
        std::int64_t total = 0;
        std::int64_t shortened = 0;  ///< Of the created, those that lack pictures at their end.
    };
    std::variant<Progress, End> value;
};

/// The background work of the Sync screen. Each job starts at once; what it gets as its last
/// argument is called on the main thread, unless the job was dropped before: then it goes on to its
/// end unseen. `inUse` ends with the work.
struct SyncJobs {
    using Result = std::shared_ptr<const ReelCore::SyncResult>;
    using URLs = std::vector<ReelCore::URL>;

    /// Groups a day's media; null where the scan fails.
    static Job<Result> scan(const ReelCore::URL& folder, InUse::Token inUse,
                            std::function<void(Result)> done);

    /// Writes `day`.fcpxml and `day`.ale into a folder and gives those that could be written.
    static Job<URLs> exportEditorial(Result result, const ReelCore::URL& folder,
                                     const std::string& day, std::function<void(URLs)> done);

    /// Writes a clip for each group with sound: the picture as it is, the best recording aligned to
    /// its first frame. The clip ends with whichever of the two ends first. Sound that begins after
    /// the picture comes up to a millisecond early, any other is at its sample. A clip that ffmpeg
    /// fails at is counted out and stops nothing.
    static Job<MuxEvent> mux(Result result, const ReelCore::URL& output,
                             const ReelCore::URL& ffmpeg, InUse::Token inUse,
                             std::function<void(MuxEvent)> consume);
};

}  // namespace keldo_app
