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

/// A pair of bytes as a number, in whatever order this processor reads them.
std::uint16_t pairAt(const void* bytes) {
    std::uint16_t pair;
    std::memcpy(&pair, bytes, sizeof(pair));
    return pair;
}

/// Every signature begins with four bytes of its own, and so, wherever it stands, one of their
/// three pairs stands at a place that can be divided by three: the others need no look.
constexpr std::size_t stride = 3;
using Pairs = std::array<bool, 0x10000>;

Pairs telltalePairs() {
    Pairs pairs{};
    const auto* prefix = reinterpret_cast<const char*>(MXFScan::partitionPrefix.data());
    for (const std::string_view begin :
         {std::string_view("ftyp"), proResTag, std::string_view("RIFF"), {prefix, 4}}) {
        for (std::size_t i = 0; i < stride; ++i) pairs[pairAt(begin.data() + i)] = true;
    }
    return pairs;
}

constexpr std::size_t blockSize = 8 * stride;

/// The first block, counted on from `from`, in which a telltale pair stands, or which is the last;
/// a block ends where the next begins. A branch for each block, none within.
std::size_t findBlock(Bytes bytes, std::size_t from) {
    static const Pairs pairs = telltalePairs();
    const auto isTelltale = [](const std::byte* at) { return int{pairs[pairAt(at)]}; };
    while (bytes.size() - from > blockSize) {
        const std::byte* at = bytes.data() + from;
        const int found = isTelltale(at) | isTelltale(at + 3) | isTelltale(at + 6) |
                          isTelltale(at + 9) | isTelltale(at + 12) | isTelltale(at + 15) |
                          isTelltale(at + 18) | isTelltale(at + 21);
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
    while (at_ < bytes_.size()) {
        if (at_ == known_) {
            const std::size_t block = findBlock(bytes_, known_);
            // It may begin with the last pair of a signature.
            at_ = std::max(at_, block - std::min(block, stride - 1));
            known_ = std::min(block + blockSize, bytes_.size());
        }
        while (at_ < known_) {
            if (take(at_++)) return true;
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
