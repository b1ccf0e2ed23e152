#include "ReelCore/Recovery/Signatures.h"

#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Platform/BytePairs.h"
#include "ReelCore/Recovery/MXFScan.h"
#include "ReelCore/Recovery/ProResFrame.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace ReelCore {

namespace {

using Bytes = std::span<const std::byte>;

/// The size that stands in front of a box type or a frame tag, and where.
struct Head {
    std::size_t offset;
    std::int64_t size;
};

std::optional<Head> headBefore(Bytes bytes, std::size_t match) {
    constexpr std::size_t sizeField = 4;
    if (match < sizeField) return std::nullopt;
    ByteCursor cursor(bytes.subspan(match - sizeField));
    return Head{match - sizeField, cursor.bigEndian<std::uint32_t>().value_or(0)};
}

std::optional<Hit> movieAt(Bytes bytes, std::size_t match) {
    const auto head = headBefore(bytes, match);
    if (!head || head->size < 12 || head->size > 65'536) return std::nullopt;
    return Hit{head->offset, FindingKind::movie};
}

std::optional<Hit> frameAt(Bytes bytes, std::size_t match) {
    const auto head = headBefore(bytes, match);
    if (!head || head->size < smallestProResFrame || head->size > largestProResFrame) {
        return std::nullopt;
    }
    return Hit{head->offset, FindingKind::orphanProRes};
}

std::optional<Hit> mxfAt(Bytes bytes, std::size_t match) {
    if (!MXFScan::isPartitionKey(bytes, match, MXFScan::PartitionKind::header)) return std::nullopt;
    return Hit{match, FindingKind::mxf};
}

std::optional<Hit> waveAt(Bytes bytes, std::size_t match) {
    ByteCursor cursor(bytes.subspan(match));
    if (!cursor.skip(8) || cursor.text(4) != "WAVE") return std::nullopt;
    return Hit{match, FindingKind::wave};
}

/// What one of the signatures begins with says which it may be.
std::optional<Hit> hitAt(Bytes bytes, std::size_t match) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()) + match,
                                bytes.size() - match);
    if (text.starts_with("ftyp")) return movieAt(bytes, match);
    if (text.starts_with(proResTag)) return frameAt(bytes, match);
    if (text.starts_with("RIFF")) return waveAt(bytes, match);
    return mxfAt(bytes, match);
}

/// What signatures begin with.
constexpr std::array<BytePair, 4> beginnings{
    {{'f', 't'},
     {'i', 'c'},
     {'R', 'I'},
     {MXFScan::partitionPrefix[0], MXFScan::partitionPrefix[1]}}};

}  // namespace

std::vector<Hit> signatureHits(Bytes bytes) {
    std::vector<Hit> hits;
    for (std::size_t block = 0; block < bytes.size(); block += bytePairBlock) {
        block = findBytePair(bytes, block, beginnings);
        const std::size_t end = std::min(block + bytePairBlock, bytes.size());
        for (std::size_t match = block; match < end; ++match) {
            if (const auto hit = hitAt(bytes, match)) hits.push_back(*hit);
        }
    }
    std::ranges::stable_sort(hits, {}, &Hit::offset);
    return hits;
}

}  // namespace ReelCore
