#pragma once

#include "ReelCore/Platform/URL.h"

namespace Tour {

/// Makes a small camera card at `folder`: three clips with sound by ffmpeg, a recorder's Broadcast
/// WAV, and a sidecar for each. Throws std::runtime_error if ffmpeg can't make them.
void makeSampleCard(const ReelCore::URL& folder);

}  // namespace Tour
