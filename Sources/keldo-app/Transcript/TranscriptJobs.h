#pragma once

#include "ReelCore/Transcribe/Transcript.h"
#include "keldo-app/Support/CancellationFlag.h"
#include "keldo-app/Support/InUse.h"
#include "keldo-app/Support/Jobs.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace keldo_app {

/// What a run tells the screen on its way and at its end.
struct TranscriptUIEvent {
    struct Progress {
        std::string phase;
        std::optional<std::string> speaker;
    };
    struct Finished {
        ReelCore::Transcript transcript;
        ReelCore::URL document;
    };
    struct Failed {
        std::string description;
    };

    std::variant<Progress, Finished, Failed> value;
};

struct TranscriptJobs {
    /// Makes the transcript and its document. `consume` is called on the main thread, unless the
    /// job was dropped before: then it goes on to its end unseen. `inUse` ends with the work.
    static Job<TranscriptUIEvent> run(ReelCore::TranscribeRequest request,
                                      std::shared_ptr<const CancellationFlag> cancel,
                                      InUse::Token inUse,
                                      std::function<void(TranscriptUIEvent)> consume);
};

}  // namespace keldo_app
