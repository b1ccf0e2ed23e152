#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Recovery/CarveWalks.h"
#include "ReelCore/Recovery/Signatures.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace ReelCore {

namespace {

constexpr std::int64_t chunkHeaderSize = 8;

bool isText(char c) {
    return static_cast<unsigned char>(c) < 0x80 && (c < '\n' || c > '\r');
}

struct Chunk {
    bool isData;
    std::uint32_t size;
};

/// Absent where no chunk stands.
std::optional<Chunk> chunkAt(CarveGround& ground, std::int64_t offset) {
    ByteCursor header(ground.read(offset, chunkHeaderSize));
    const auto id = header.text(4);
    const auto size = header.littleEndian<std::uint32_t>();
    if (!id || !size) return std::nullopt;
    const std::string_view four = *id;
    const bool isID = isText(four[0]) && isText(four[1]) && isText(four[2]) && isText(four[3]);
    if (!isID) return std::nullopt;
    return Chunk{four == "data", *size};
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
WaveWalker::ChunksEnd WaveWalker::lastChunk(std::int64_t start, std::int64_t limit) {
    constexpr std::uint32_t largestChunk = 0x1000000;
    ChunksEnd end{start + 12, 0};
    std::int64_t chunks = 0;
    chunks_.begin(start);
    while (end.place <= limit - chunkHeaderSize) {
        if (++chunks > shortWay) {
            const std::int64_t further = chunks_.pass(end.place);
            if (further != end.place) {
                end.place = further;
                continue;
            }
        }
        const auto chunk = chunkAt(ground_, end.place);
        if (chunk && chunk->isData) end.soundSize = chunk->size;
        if (!chunk || chunk->isData || chunk->size >= largestChunk) break;
        end.place += chunkHeaderSize + chunk->size + chunk->size % 2;
    }
    chunks_.end(end.place);
    return end;
}

/// Where a run of the bytes that blank flash reads as begins; absent where none lies whole before
/// the end. What can't be read counts as sound up to the image's end, here as below. It is asked
/// from ascending places, so that one that was looked at needs no second look.
std::optional<std::int64_t> WaveWalker::blankRun(std::int64_t from, std::int64_t end) {
    const std::int64_t last = end - std::int64_t{longBlank};
    if (soundEnd_ < from) isBlank_ = false;
    soundEnd_ = std::max(soundEnd_, from);
    while (!isBlank_ && soundEnd_ <= last) {
        // What lies behind the end is looked through as well, or the next walk would go on bit by
        // bit; but it may be what can't be read.
        auto piece = read(soundEnd_, std::min(soundEnd_ + pieceSize, ground_.total()));
        if (piece.empty()) piece = read(soundEnd_, std::min(soundEnd_ + pieceSize, end));
        if (piece.empty()) return ground_.total();
        while (!isBlank_ && piece.size() >= longBlank) {
            const std::size_t skipped = skipToBlank(piece);
            isBlank_ = skipped == 0;
            soundEnd_ += static_cast<std::int64_t>(skipped);
            piece = piece.subspan(skipped);
        }
    }
    if (!isBlank_ || soundEnd_ > last) return std::nullopt;
    return soundEnd_;
}

/// Where other media next begins at or behind a place, by a signature that lies whole before the
/// end. The first page is at hand: most often it is near or nowhere.
std::optional<std::int64_t> WaveWalker::signature(std::int64_t from, std::int64_t end) {
    constexpr std::int64_t longestSignature = 16;
    auto piece = ground_.rest(from, static_cast<std::size_t>(end - from));
    if (std::ssize(piece) < std::min(end - from, longestSignature)) {
        piece = read(from, std::min(from + pieceSize, end));
    }
    for (std::int64_t at = from; at < end; piece = read(at, std::min(at + pieceSize, end))) {
        if (piece.empty()) return ground_.total();
        SignatureSearch search(piece);
        if (search.next()) return at + static_cast<std::int64_t>(search.hit().offset);
        if (at + std::ssize(piece) >= end) break;
        at += std::ssize(piece) - longestSignature + 1;
    }
    return std::nullopt;
}

/// The bytes of a range; nothing where they can't be read.
std::span<const std::byte> WaveWalker::read(std::int64_t from, std::int64_t end) {
    buffer_.resize(pieceSize);
    const auto wanted = std::span(buffer_).first(static_cast<std::size_t>(end - from));
    const auto bytes = ground_.read(from, wanted);
    if (bytes.size() < wanted.size()) return {};
    return bytes;
}

/// Where sound that was never closed stops: at blank flash, or at the beginning of other media.
std::int64_t WaveWalker::boundary(std::int64_t from) {
    constexpr std::int64_t blockSize = 0x800000;
    constexpr std::int64_t step = 0x7F0000;
    const std::int64_t total = ground_.total();
    for (std::int64_t position = from; position < total; position += step) {
        const std::int64_t end = std::min(position + blockSize, total);
        if (const auto run = blankRun(position, end)) return *run;
        if (const auto next = signature(position + 1, end)) return *next;
    }
    return total;
}

std::optional<Finding> WaveWalker::walk(std::int64_t start) {
    constexpr std::int64_t farthest = 0x100000;
    const std::int64_t total = ground_.total();
    ByteCursor riff(ground_.read(start, 12));
    riff.skip(4);
    const auto riffSize = riff.littleEndian<std::uint32_t>();
    if (!riffSize || !riff.skip(4)) return std::nullopt;
    const std::int64_t limit = std::min(total, start + farthest);
    const auto [last, soundSize] = lastChunk(start, limit);
    const std::int64_t dataEnd = soundSize > 0 ? last + chunkHeaderSize + soundSize : 0;
    const std::int64_t riffEnd = *riffSize > 0 ? start + 8 + *riffSize : 0;
    ground_.settle();
    std::int64_t end = std::max(dataEnd, riffEnd);
    if (end == 0) end = boundary(std::max(start + 44, last + chunkHeaderSize));
    return Finding{FindingKind::wave, start, std::min(total, end) - start, soundSize > 0};
}

}  // namespace ReelCore
