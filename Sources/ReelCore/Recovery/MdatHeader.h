#pragma once

#include "ReelCore/Recovery/MP4Box.h"

#include <cstdint>

namespace ReelCore {

/// The 16 bytes in front of `payload` bytes of media: an "mdat" whose size is written with 64 bits.
MP4Box::Bytes mdatHeader(std::int64_t payload);

}  // namespace ReelCore
