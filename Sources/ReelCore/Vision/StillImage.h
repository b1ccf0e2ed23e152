#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ReelCore {

/// A picture in memory: rows from top to bottom without gaps, three bytes a pixel in the order
/// blue, green, red.
struct StillImage {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::vector<std::uint8_t> pixels;

    bool operator==(const StillImage&) const = default;
};

}  // namespace ReelCore
