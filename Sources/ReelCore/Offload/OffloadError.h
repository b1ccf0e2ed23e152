#pragma once

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/URL.h"

#include <string>
#include <variant>

namespace ReelCore {

struct OffloadErrorCases {
    struct SourceNotFound {
        URL source;
        std::string description() const;
    };
    struct DestinationNotWritable {
        URL destination;
        std::string reason = {};  ///< A sentence beside the description; may be empty.
        std::string description() const;
    };
    struct ReadFailed {
        std::string fileName;
        std::string underlying;
        std::string description() const;
    };
    struct WriteFailed {
        URL target;
        std::string underlying;
        std::string description() const;
    };
    struct NoDestinations {
        std::string description() const;
    };
    struct Cancelled {
        std::string description() const;
    };
    using Any = std::variant<SourceNotFound, DestinationNotWritable, ReadFailed, WriteFailed,
                             NoDestinations, Cancelled>;
};

/// Why an offload or a scan ended without a result.
using OffloadError = CaseError<OffloadErrorCases>;

}  // namespace ReelCore
