#pragma once

#include "ReelCore/Platform/File.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace ReelCore {

/// The bytes of an image at an offset, as many as `into` takes; nothing where they can't be read.
std::span<const std::byte> readPiece(const File& image, std::int64_t offset,
                                     std::span<std::byte> into);

}  // namespace ReelCore
