#pragma once

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/URL.h"

#include <string>
#include <variant>

namespace ReelCore {

struct TranscribeErrorCases {
    struct InputNotFound {
        URL input;
        std::string description() const;
    };
    struct ExtractionFailed {
        std::string reason;
        std::string description() const;
    };
    struct WhisperFailed {
        int status;
        std::string tail;
        std::string description() const;
    };
    struct ParseFailed {
        std::string reason;
        std::string description() const;
    };
    struct WhisperNotFound {
        std::string description() const;
    };
    struct ModelNotFound {
        std::string description() const;
    };
    struct FFmpegNotFound {
        std::string description() const;
    };
    struct NoSpeakers {
        std::string description() const;
    };
    struct Cancelled {
        std::string description() const;
    };
    using Any = std::variant<InputNotFound, ExtractionFailed, WhisperFailed, ParseFailed,
                             WhisperNotFound, ModelNotFound, FFmpegNotFound, NoSpeakers, Cancelled>;
};

/// Why a transcript, or one of the small services on ffmpeg and ffprobe, ended without a result.
using TranscribeError = CaseError<TranscribeErrorCases>;

}  // namespace ReelCore
