#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/CarveTypes.h"

#include <cstdint>
#include <optional>

namespace ReelCore {

/// Each follows media from where it begins in an image of `total` bytes to where it ends; absent
/// where no such media begins. What can't be read ends it.
std::optional<Finding> walkMovie(const File& image, std::int64_t start, std::int64_t total);
std::optional<Finding> walkMXF(const File& image, std::int64_t start, std::int64_t total);
std::optional<Finding> walkProResRun(const File& image, std::int64_t start, std::int64_t total);
std::optional<Finding> walkWave(const File& image, std::int64_t start, std::int64_t total);

}  // namespace ReelCore
