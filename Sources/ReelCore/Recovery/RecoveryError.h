#pragma once

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/URL.h"

#include <string>
#include <variant>

namespace ReelCore {

struct RecoveryErrorCases {
    struct NotFound {
        URL url;
        std::string description() const;
    };
    struct ReferenceRequired {
        std::string reason;
        std::string description() const;
    };
    struct ReferenceUnusable {
        std::string reason;
        std::string description() const;
    };
    struct IOFailed {
        std::string reason;
        std::string description() const;
    };
    struct Unsupported {
        std::string reason;
        std::string description() const;
    };
    struct NoRecoverableFrames {
        std::string description() const;
    };
    using Any = std::variant<NotFound, ReferenceRequired, ReferenceUnusable, IOFailed, Unsupported,
                             NoRecoverableFrames>;
};

/// Why a repair or a carve could not be done.
using RecoveryError = CaseError<RecoveryErrorCases>;

}  // namespace ReelCore
