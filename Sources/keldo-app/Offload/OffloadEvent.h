#pragma once

#include "ReelCore/Offload/OffloadTypes.h"

#include <memory>
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

}  // namespace keldo_app
