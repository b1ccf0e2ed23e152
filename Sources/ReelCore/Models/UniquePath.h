#pragma once

#include "ReelCore/Platform/URL.h"

namespace ReelCore {

/// A location that nothing stands at: `url` itself if it is free, otherwise the first free name in
/// the same folder among the stem, a blank and a number from 2 upward, with the old extension:
/// "clip.mov", "clip 2.mov", "clip 3.mov".
URL uniqueOutputURL(const URL& url);

}  // namespace ReelCore
