#include "ReelCore/Recovery/Signatures.h"

#include "ReelCore/Platform/ByteCursor.h"
#include "ReelCore/Recovery/MXFScan.h"
#include "ReelCore/Recovery/ProResFrame.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace ReelCore {

namespace {

using Bytes = std::span<const std::byte>;

/// True if a size within limits stands in front of a box type or a frame tag.
bool isSizedBefore(Bytes bytes, std::size_t match, std::int64_t least, std::int64_t most) {
    if (match < 4) return false;
    const auto size = ByteCursor(bytes.subspan(match - 4)).bigEndian<std::uint32_t>().value_or(0);
    return size >= least && size <= most;
}

bool isWaveAt(Bytes bytes, std::size_t match) {
    ByteCursor cursor(bytes.subspan(match));
    return cursor.skip(8) && cursor.text(4) == "WAVE";
}

/// Most of a pair of bytes as a number, in whatever order this processor reads them: few enough
/// for a table that stays in the nearest cache.
constexpr std::size_t pairCount = 0x2000;
std::size_t pairAt(const void* bytes) {
    std::uint16_t pair;
    std::memcpy(&pair, bytes, sizeof(pair));
    return pair % pairCount;
}

/// Every signature begins with four bytes of its own, and so, wherever it stands, one of their
/// three pairs stands at a place that can be divided by three: the others need no look. Which of
/// the three a pair is, from 1 on; 0 where it is none.
constexpr std::size_t stride = 3;
using Pairs = std::array<std::uint8_t, pairCount>;

Pairs telltalePairs() {
    Pairs pairs{};
    const auto* prefix = reinterpret_cast<const char*>(MXFScan::partitionPrefix.data());
    for (const std::string_view begin :
         {std::string_view("ftyp"), proResTag, std::string_view("RIFF"), {prefix, 4}}) {
        for (std::uint8_t i = 0; i < stride; ++i) pairs[pairAt(begin.data() + i)] = i + 1;
    }
    return pairs;
}

const Pairs telltales = telltalePairs();

constexpr std::size_t blockSize = 8 * stride;

/// The first block, counted on from `from`, in which a telltale pair stands, or which is the last;
/// a block ends where the next begins. A branch for each block, none within.
std::size_t findBlock(Bytes bytes, std::size_t from) {
    const auto look = [](const std::byte* at) { return unsigned{telltales[pairAt(at)]}; };
    while (bytes.size() - from > blockSize) {
        const std::byte* at = bytes.data() + from;
        const unsigned found = look(at) | look(at + 3) | look(at + 6) | look(at + 9) |
                               look(at + 12) | look(at + 15) | look(at + 18) | look(at + 21);
        if (found != 0) break;
        from += blockSize;
    }
    return from;
}

}  // namespace

/// What one of the signatures begins with says which it may be.
bool SignatureSearch::take(std::size_t match) {
    const std::string_view text(reinterpret_cast<const char*>(bytes_.data()) + match,
                                bytes_.size() - match);
    switch (text.front()) {
        case 'f':
            hit_ = {match - 4, FindingKind::movie};
            return text.starts_with("ftyp") && isSizedBefore(bytes_, match, 12, 65'536);
        case 'i':
            hit_ = {match - 4, FindingKind::orphanProRes};
            return text.starts_with(proResTag) &&
                   isSizedBefore(bytes_, match, smallestProResFrame, largestProResFrame);
        case 'R':
            hit_ = {match, FindingKind::wave};
            return text.starts_with("RIFF") && isWaveAt(bytes_, match);
        case MXFScan::partitionPrefix.front():
            hit_ = {match, FindingKind::mxf};
            return MXFScan::isPartitionKey(bytes_, match, MXFScan::PartitionKind::header);
        default:
            return false;
    }
}

bool SignatureSearch::next() {
    while (at_ + 1 < bytes_.size()) {
        if (at_ >= known_) {
            at_ = findBlock(bytes_, at_);
            known_ = std::min(at_ + blockSize, bytes_.size() - 1);
        }
        while (at_ < known_) {
            const std::size_t pair = at_;
            const std::size_t which = telltales[pairAt(bytes_.data() + pair)];
            at_ += stride;
            if (which != 0 && pair + 1 >= from_ + which && take(pair + 1 - which)) return true;
        }
    }
    return false;
}

std::vector<Hit> signatureHits(Bytes bytes) {
    std::vector<Hit> hits;
    SignatureSearch search(bytes);
    while (search.next()) hits.push_back(search.hit());
    return hits;
}

}  // namespace ReelCore
