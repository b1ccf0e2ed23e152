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

constexpr std::int64_t chunkHeaderSize = 8;

bool isChunkID(std::string_view id) {
    return std::ranges::all_of(
        id, [](char c) { return static_cast<unsigned char>(c) < 0x80 && (c < '\n' || c > '\r'); });
}

struct Chunk {
    bool isData;
    std::uint32_t size;
};

/// Absent where no chunk stands.
std::optional<Chunk> chunkAt(ImagePages& pages, std::int64_t offset) {
    std::array<std::byte, chunkHeaderSize> bytes;
    ByteCursor header(pages.read(offset, bytes));
    const auto id = header.text(4);
    const auto size = header.littleEndian<std::uint32_t>();
    if (!id || !size || !isChunkID(*id)) return std::nullopt;
    return Chunk{*id == "data", *size};
}

constexpr std::size_t longBlank = 4096;

/// Where the bytes may next be blank flash for long enough: at the first of `bytes` if they are,
/// and never before what is returned.
std::size_t skipToBlank(std::span<const std::byte> bytes) {
    const std::byte last = bytes[longBlank - 1];
    if (last != std::byte{0x00} && last != std::byte{0xFF}) return longBlank;
    std::size_t first = longBlank - 1;
    while (first > 0 && bytes[first - 1] == last) --first;
    return first;
}

}  // namespace

/// Where the chunks from the beginning of a file on end: at sound, at what can be no chunk or one
/// too large, or behind the limit.
std::int64_t WaveWalker::lastChunk(std::int64_t start, std::int64_t limit) {
    constexpr std::uint32_t largestChunk = 0x1000000;
    constexpr std::size_t manyShortcuts = 0x100000;
    if (shortcuts_.size() > manyShortcuts) {
        std::erase_if(shortcuts_, [&](const auto& one) { return one.first < start; });
    }
    std::vector<std::int64_t> passed;
    std::int64_t cursor = start + 12;
    while (cursor <= limit - chunkHeaderSize) {
        const auto shortcut = shortcuts_.find(cursor);
        if (shortcut != shortcuts_.end()) {
            passed.push_back(cursor);
            cursor = shortcut->second;
            continue;
        }
        const auto chunk = chunkAt(pages_, cursor);
        if (!chunk || chunk->isData || chunk->size >= largestChunk) break;
        passed.push_back(cursor);
        cursor += chunkHeaderSize + chunk->size + chunk->size % 2;
    }
    for (const std::int64_t chunk : passed) shortcuts_[chunk] = cursor;
    return cursor;
}

/// Where a run of the bytes that blank flash reads as begins; absent where none lies whole before
/// the end. What can't be read counts as sound up to the image's end, here as below.
std::optional<std::int64_t> WaveWalker::blankRun(std::int64_t from, std::int64_t end) {
    constexpr std::size_t pieceSize = 0x40000;
    buffer_.resize(pieceSize);
    std::int64_t at = written_.endAround(from);
    std::optional<std::int64_t> run;
    while (!run && at <= end - std::int64_t{longBlank}) {
        const auto wanted = std::min(pieceSize, static_cast<std::size_t>(end - at));
        auto piece = readPiece(image_, at, std::span(buffer_).first(wanted));
        if (piece.size() < wanted) return total_;
        while (!run && piece.size() >= longBlank) {
            const std::size_t skipped = skipToBlank(piece);
            if (skipped == 0) run = at;
            at += static_cast<std::int64_t>(skipped);
            piece = piece.subspan(skipped);
        }
    }
    written_.add(from, at);
    return run;
}

/// Where other media next begins at or behind a place, by a signature that lies whole before the
/// end. Read by pieces that grow: most often it is near or nowhere.
std::optional<std::int64_t> WaveWalker::signature(std::int64_t from, std::int64_t end) {
    constexpr std::size_t smallestPiece = 128;
    constexpr std::size_t largestPiece = 0x40000;
    constexpr std::int64_t longestSignature = 16;
    buffer_.resize(largestPiece);
    std::size_t size = smallestPiece;
    for (std::int64_t at = from; at < end; size = std::min(4 * size, largestPiece)) {
        const auto wanted = std::min(size, static_cast<std::size_t>(end - at));
        const auto piece = readPiece(image_, at, std::span(buffer_).first(wanted));
        if (piece.size() < wanted) return total_;
        const std::vector<Hit> hits = signatureHits(piece);
        if (!hits.empty()) return at + static_cast<std::int64_t>(hits.front().offset);
        if (std::ssize(piece) < longestSignature) break;
        at += std::ssize(piece) - longestSignature + 1;
    }
    return std::nullopt;
}

/// Where sound that was never closed stops: at blank flash, or at the beginning of other media.
std::int64_t WaveWalker::boundary(std::int64_t from) {
    constexpr std::int64_t blockSize = 0x800000;
    constexpr std::int64_t step = 0x7F0000;
    for (std::int64_t position = from; position < total_; position += step) {
        const std::int64_t end = std::min(position + blockSize, total_);
        if (const auto run = blankRun(position, end)) return *run;
        if (const auto next = signature(position + 1, end)) return *next;
    }
    return total_;
}

std::optional<Finding> WaveWalker::walk(std::int64_t start) {
    constexpr std::int64_t farthest = 0x100000;
    written_.forgetBefore(start);
    std::array<std::byte, 12> bytes;
    ByteCursor riff(pages_.read(start, bytes));
    riff.skip(4);
    const auto riffSize = riff.littleEndian<std::uint32_t>();
    if (!riffSize || !riff.skip(4)) return std::nullopt;
    const std::int64_t limit = std::min(total_, start + farthest);
    const std::int64_t last = lastChunk(start, limit);
    const auto chunk =
        last <= limit - chunkHeaderSize ? chunkAt(pages_, last) : std::optional<Chunk>();
    const bool hasData = chunk && chunk->isData && chunk->size > 0;
    const std::int64_t dataEnd = hasData ? last + chunkHeaderSize + chunk->size : 0;
    const std::int64_t riffEnd = *riffSize > 0 ? start + 8 + *riffSize : 0;
    std::int64_t end = std::max(dataEnd, riffEnd);
    if (end == 0) end = boundary(std::max(start + 44, last + chunkHeaderSize));
    return Finding{FindingKind::wave, start, std::min(total_, end) - start, hasData};
}

}  // namespace ReelCore
