#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/ImagePiece.h"
#include "ReelCore/Recovery/Signatures.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace ReelCore {

namespace {

/// Where a run of the bytes that blank flash reads as begins; absent where there is none.
std::optional<std::size_t> blankRun(std::span<const std::byte> block) {
    constexpr std::size_t longEnough = 4096;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
        if (block[i] != block[begin]) begin = i;
        const bool isBlank = block[i] == std::byte{0x00} || block[i] == std::byte{0xFF};
        if (isBlank && i - begin + 1 == longEnough) return begin;
    }
    return std::nullopt;
}

/// Where sound that was never closed stops: at blank flash, or at the beginning of other media.
std::int64_t boundary(const File& image, std::int64_t from, std::int64_t total) {
    constexpr std::int64_t step = 0x7F0000;
    std::vector<std::byte> buffer(0x800000);
    for (std::int64_t position = from; position < total; position += step) {
        const auto block = readPiece(image, position, buffer);
        if (block.empty()) break;
        if (const auto run = blankRun(block)) return position + static_cast<std::int64_t>(*run);
        const std::vector<Hit> hits = signatureHits(block);
        const auto next =
            std::ranges::find_if(hits, [](const Hit& hit) { return hit.offset >= 1; });
        if (next != hits.end()) return position + static_cast<std::int64_t>(next->offset);
    }
    return total;
}

bool isChunkID(std::string_view id) {
    return std::ranges::all_of(
        id, [](char c) { return static_cast<unsigned char>(c) < 0x80 && (c < '\n' || c > '\r'); });
}

/// What the chunks at the beginning of a WAV file tell.
struct Chunks {
    std::optional<std::int64_t> dataEnd;
    std::int64_t lastHeader;  ///< Where the walk stopped.
};

Chunks walkChunks(const File& image, std::int64_t start, std::int64_t total) {
    constexpr std::int64_t farthest = 0x100000;
    constexpr std::int64_t largestChunk = 0x1000000;
    const std::int64_t limit = std::min(total, start + farthest);
    Chunks result{std::nullopt, start + 12};
    for (std::int64_t& cursor = result.lastHeader; cursor + 8 <= limit;) {
        std::array<std::byte, 8> bytes;
        ByteCursor header(readPiece(image, cursor, bytes));
        const auto id = header.text(4);
        const auto size = header.littleEndian<std::uint32_t>();
        if (!id || !size || !isChunkID(*id)) break;
        if (*id == "data") {
            if (*size > 0) result.dataEnd = cursor + 8 + *size;
            break;
        }
        if (*size >= largestChunk) break;
        cursor += 8 + *size + *size % 2;
    }
    return result;
}

}  // namespace

std::optional<Finding> walkWave(const File& image, std::int64_t start, std::int64_t total) {
    std::array<std::byte, 12> bytes;
    ByteCursor riff(readPiece(image, start, bytes));
    riff.skip(4);
    const auto riffSize = riff.littleEndian<std::uint32_t>();
    if (!riffSize || !riff.skip(4)) return std::nullopt;
    const Chunks chunks = walkChunks(image, start, total);
    const std::int64_t riffEnd = *riffSize > 0 ? start + 8 + *riffSize : 0;
    std::int64_t end = std::max(chunks.dataEnd.value_or(0), riffEnd);
    if (end == 0) end = boundary(image, std::max(start + 44, chunks.lastHeader + 8), total);
    return Finding{FindingKind::wave, start, std::min(total, end) - start,
                   chunks.dataEnd.has_value()};
}

}  // namespace ReelCore
