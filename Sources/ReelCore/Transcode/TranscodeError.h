#pragma once

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/URL.h"

#include <string>
#include <variant>

namespace ReelCore {

struct TranscodeErrorCases {
    struct InputNotFound {
        URL input;
        std::string description() const;
    };
    struct LUTNotFound {
        URL lut;
        std::string description() const;
    };
    struct UnsupportedLUT {
        std::string extension;
        std::string description() const;
    };
    struct ProbeFailed {
        std::string reason;
        std::string description() const;
    };
    struct FFmpegFailed {
        int status;
        std::string tail;  ///< The last lines of what ffmpeg said.
        std::string description() const;
    };
    struct FFmpegNotFound {
        std::string description() const;
    };
    struct Cancelled {
        std::string description() const;
    };
    using Any = std::variant<InputNotFound, LUTNotFound, UnsupportedLUT, ProbeFailed, FFmpegFailed,
                             FFmpegNotFound, Cancelled>;
};

/// Why a transcode, or the probe before it, ended without a result.
using TranscodeError = CaseError<TranscodeErrorCases>;

}  // namespace ReelCore
