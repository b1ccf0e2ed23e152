#pragma once

#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Platform/URL.h"

#include <optional>

namespace ReelCore {

/// A LUT under a path that ffmpeg can read in a filter's text. ffmpeg reads that text twice and
/// takes off quotes once, so a quote, a colon or the like in a path would end it early. Such a LUT
/// gets a link with a plain name in the temporary folder, which is removed at the end.
class PlainLUT {
public:
    /// Throws SystemError where a link is needed and can't be made.
    explicit PlainLUT(const URL& lut);

    /// The LUT's own absolute path, or the link's.
    URL url() const;

private:
    URL lut_;
    std::optional<TemporaryPath> link_;
};

}  // namespace ReelCore
