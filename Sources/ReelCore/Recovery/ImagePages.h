#pragma once

#include "ReelCore/Platform/File.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ReelCore {

/// Reads a few bytes here and there of an image. Holds the pages that it last read, so that walks
/// that come by the same places again and again don't ask the system each time.
class ImagePages {
public:
    explicit ImagePages(const File& image);

    /// The bytes at an offset, as many as `into` takes; nothing where they can't be read.
    std::span<const std::byte> read(std::int64_t offset, std::span<std::byte> into);

private:
    static constexpr std::int64_t pageSize = 4096;
    static constexpr std::size_t pageCount = 256;

    struct Page {
        std::int64_t offset = -1;
        std::size_t size = 0;
    };

    /// A page of the image, by its own offset; absent bytes where it can't be read.
    std::span<const std::byte> page(std::int64_t offset);

    const File& image_;
    std::array<Page, pageCount> pages_;
    std::vector<std::byte> bytes_;
};

}  // namespace ReelCore
