#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>

namespace ReelCore {

/// A look-up table file for colour, by name only: ffmpeg reads what is in it.
struct LUT {
    URL url;

    bool operator==(const LUT&) const = default;

    /// The file's name without its extension.
    std::string name() const;

    /// Throws TranscodeError: LUTNotFound where no file stands, or a pipe or a device, on which
    /// ffmpeg would wait; UnsupportedLUT where its extension is neither "cube" nor "3dl", in upper
    /// or lower case.
    void validate() const;
};

}  // namespace ReelCore
