#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace ReelCore {

/// What a file holds; absent if that is more than `most` bytes. Links are followed. Throws
/// SystemError where it can't be read.
std::optional<std::vector<std::byte>> bytesOfFile(const URL& file, std::int64_t most);

}  // namespace ReelCore
