#pragma once

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace ReelCore {

/// A stretch of time in which one voice is heard, in seconds from the beginning of the sound.
struct DiarizedTurn {
    double startSeconds = 0.0;
    double endSeconds = 0.0;
    std::string speaker;  ///< "Speaker 1" is the first who is heard.

    bool operator==(const DiarizedTurn&) const = default;
};

struct DiarizationOptions {
    std::optional<std::int64_t> numSpeakers;  ///< Absent: the threshold decides.
    double threshold = 0.5;                   ///< How unlike two voices of one speaker may be.

    bool operator==(const DiarizationOptions&) const = default;
};

struct DiarizeErrorCases {
    struct SherpaNotInstalled {
        std::string reason;
        std::string description() const;
    };
    struct InputNotFound {
        URL input;
        std::string description() const;
    };
    struct Failed {
        int status;
        std::string tail;
        std::string description() const;
    };
    struct PythonNotFound {
        std::string description() const;
    };
    struct ModelsMissing {
        std::string description() const;
    };
    using Any =
        std::variant<SherpaNotInstalled, InputNotFound, Failed, PythonNotFound, ModelsMissing>;
};

/// Why voices could not be told apart.
using DiarizeError = CaseError<DiarizeErrorCases>;

}  // namespace ReelCore
