#include "ReelCore/Recovery/ImagePages.h"

#include "ReelCore/Recovery/ImagePiece.h"

#include <algorithm>

namespace ReelCore {

namespace {

/// Spreads the pages evenly: places that are a round number of bytes apart get slots of their own.
std::size_t slotOf(std::uint64_t page) {
    return static_cast<std::size_t>(page * 0x9E3779B97F4A7C15U >> 56U);
}

}  // namespace

ImagePages::ImagePages(const File& image) : image_(image), bytes_(pageCount * pageSize) {}

std::span<const std::byte> ImagePages::read(std::int64_t offset, std::span<std::byte> into) {
    const std::int64_t within = offset % pageSize;
    const auto held = page(offset - within);
    if (within + std::ssize(into) > std::ssize(held)) return readPiece(image_, offset, into);
    return held.subspan(static_cast<std::size_t>(within), into.size());
}

std::span<const std::byte> ImagePages::page(std::int64_t offset) {
    const std::size_t slot = slotOf(static_cast<std::uint64_t>(offset / pageSize));
    const auto room = std::span(bytes_).subspan(slot * pageSize, pageSize);
    Page& held = pages_[slot];
    if (held.offset != offset) held = {offset, readPiece(image_, offset, room).size()};
    return room.first(held.size);
}

}  // namespace ReelCore
