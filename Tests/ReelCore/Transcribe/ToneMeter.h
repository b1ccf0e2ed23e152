#pragma once

#include "ReelCore/Platform/URL.h"

#include <vector>

namespace ReelCore {

/// Which of the tones 2000, 3000 to 7000 Hz a WAV file of one channel, 16 kHz and 16 bits holds
/// clearly. Throws std::runtime_error where there is no sound in it.
std::vector<int> tonesIn(const URL& file);

}  // namespace ReelCore
