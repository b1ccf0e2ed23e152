#pragma once

#include "ReelCore/Transcode/TranscodeTypes.h"
#include "keldo-app/Support/CancellationFlag.h"
#include "keldo-app/Support/InUse.h"
#include "keldo-app/Support/Jobs.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace keldo_app {

/// What a batch tells the screen while it runs and when it ends.
struct TranscodeEvent {
    struct Progress {
        std::size_t fileIndex = 0;
        ReelCore::TranscodeProgress progress;
    };
    struct FileFinished {
        std::size_t fileIndex = 0;
        ReelCore::URL url;  ///< The name that was asked for, also where a free one was taken.
    };
    struct FileFailed {
        std::size_t fileIndex = 0;
        std::string description;
    };
    struct AllDone {
        std::string trouble = {};  ///< What kept the batch from being gone through; mostly empty.
    };

    std::variant<Progress, FileFinished, FileFailed, AllDone> value;
};

/// How a person ends a batch: first asked, then at once.
struct TranscodeFlags {
    CancellationFlag cancel;
    CancellationFlag endNow;  ///< Does not wait until the clip under way is closed.
};

struct TranscodeJobs {
    /// Runs the requests one after the other until all are done or the batch is cancelled; a clip
    /// that fails stops nothing. `consume` is called on the main thread, unless the job was dropped
    /// before: then it goes on to its end unseen. `inUse` ends with the work.
    static Job<TranscodeEvent> run(std::vector<ReelCore::TranscodeRequest> requests,
                                   std::shared_ptr<const TranscodeFlags> flags, InUse::Token inUse,
                                   std::function<void(TranscodeEvent)> consume);
};

}  // namespace keldo_app
