#include "ReelCore/Recovery/WAVLayout.h"

#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Sync/BWFReader.h"

#include <algorithm>
#include <array>
#include <vector>

namespace ReelCore {

namespace {

using BWFError = BWFReader::BWFError;

constexpr std::int64_t headerSize = 8;

/// The declared size of a RIFF file.
std::uint32_t riffSizeOf(const File& file) {
    std::array<std::byte, 12> bytes;
    ByteCursor cursor{std::span(bytes).first(file.readAt(0, bytes))};
    const bool isRIFF = cursor.text(4) == "RIFF";
    const auto size = cursor.littleEndian<std::uint32_t>();
    if (!isRIFF || !size || cursor.text(4) != "WAVE") throw BWFError(BWFError::NotRIFF{});
    return *size;
}

void readFormat(WAVLayout& layout, const File& file, std::int64_t offset, std::int64_t size) {
    std::array<std::byte, 64> bytes;
    const auto wanted =
        std::span(bytes).first(std::min(static_cast<std::size_t>(size), bytes.size()));
    ByteCursor cursor{wanted.first(file.readAt(offset, wanted))};
    cursor.skip(4);
    layout.sampleRate = cursor.littleEndian<std::uint32_t>().value_or(0);
    layout.blockAlign = cursor.skip(4) ? cursor.littleEndian<std::uint16_t>().value_or(0) : 0;
}

/// Where, on from `offset`, a header stands that is not all zeros. Blocks that a recorder never
/// wrote would else be walked as millions of empty chunks; a single one costs little.
std::int64_t behindEmptyChunks(const File& file, std::int64_t offset) {
    constexpr std::size_t largestBlock = 0x10000;
    std::vector<std::byte> buffer;
    for (std::size_t size = 2 * headerSize;; size = std::min(size * 4, largestBlock)) {
        offset += (file.nextStored(offset) - offset) / headerSize * headerSize;
        buffer.resize(size);
        const auto block = std::span(buffer).first(file.readAt(offset, buffer));
        const auto isSet = [](std::byte byte) { return byte != std::byte{}; };
        const std::int64_t zeros = std::ranges::find_if(block, isSet) - block.begin();
        offset += zeros / headerSize * headerSize;
        if (zeros < std::ssize(block) || zeros < headerSize) return offset;
    }
}

}  // namespace

WAVLayout WAVLayout::read(const URL& url) {
    const File file = File::openForReading(url, FileLinks::follow);
    WAVLayout layout;
    layout.riffSize = riffSizeOf(file);
    const std::int64_t fileSize = file.size();
    std::int64_t cursor = 12;
    while (cursor + headerSize <= fileSize) {
        std::array<std::byte, headerSize> bytes;
        ByteCursor header{std::span(bytes).first(file.readAt(cursor, bytes))};
        const auto id = header.text(4);
        const auto size = header.littleEndian<std::uint32_t>();
        if (!id || !size) break;
        if (*id == "fmt ") readFormat(layout, file, cursor + headerSize, *size);
        if (*id == "data") {
            layout.declaredData = *size;
            layout.dataSizeOffset = cursor + 4;
            layout.dataOffset = cursor + headerSize;
            return layout;
        }
        cursor += headerSize + *size + *size % 2;
        if (bytes == std::array<std::byte, headerSize>{}) cursor = behindEmptyChunks(file, cursor);
    }
    throw BWFError(BWFError::Unreadable{"no data chunk"});
}

}  // namespace ReelCore
