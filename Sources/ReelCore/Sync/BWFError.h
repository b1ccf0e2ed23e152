#pragma once

#include "ReelCore/Platform/Error.h"

#include <string>
#include <variant>

namespace ReelCore {

struct BWFErrorCases {
    struct Unreadable {
        std::string reason;
        std::string description() const { return "Could not read WAV: " + reason; }
    };
    struct NotRIFF {
        std::string description() const { return "Not a RIFF/WAVE file."; }
    };
    using Any = std::variant<Unreadable, NotRIFF>;
};

}  // namespace ReelCore
