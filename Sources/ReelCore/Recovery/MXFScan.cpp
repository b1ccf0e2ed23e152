#include "ReelCore/Recovery/MXFScan.h"

#include "ReelCore/Recovery/ImagePiece.h"

#include <cstring>

namespace ReelCore {

namespace {

constexpr std::size_t keySize = 16;

bool beginsWith(std::span<const std::byte> data, std::span<const std::uint8_t> prefix) {
    return data.size() >= prefix.size() &&
           std::memcmp(data.data(), prefix.data(), prefix.size()) == 0;
}

}  // namespace

bool MXFScan::isPartitionKey(std::span<const std::byte> data, std::size_t at,
                             std::optional<PartitionKind> kind) {
    if (at > data.size() || data.size() - at < keySize) return false;
    const auto key = data.subspan(at);
    if (!beginsWith(key, partitionPrefix)) return false;
    const auto found = static_cast<PartitionKind>(key[partitionPrefix.size()]);
    if (kind) return found == *kind;
    return found == PartitionKind::header || found == PartitionKind::body ||
           found == PartitionKind::footer;
}

std::optional<MXFScan::BERLength> MXFScan::berLength(std::span<const std::byte> data,
                                                     std::size_t at) {
    if (at >= data.size()) return std::nullopt;
    const auto first = std::to_integer<std::uint8_t>(data[at]);
    if (first < 0x80) return BERLength{first, 1};
    const std::size_t count = first & 0x7FU;
    if (count == 0 || count > 8 || data.size() - at - 1 < count) return std::nullopt;
    std::uint64_t length = 0;
    for (const std::byte one : data.subspan(at + 1, count)) {
        length = length << 8U | std::to_integer<std::uint64_t>(one);
    }
    if (length >> 63U != 0) return std::nullopt;
    return BERLength{static_cast<std::int64_t>(length), static_cast<std::int64_t>(count) + 1};
}

std::optional<MXFScan::Walk> MXFScan::walk(const File& file, std::int64_t at, std::int64_t limit) {
    std::array<std::byte, 32> buffer;
    const auto read = [&](std::int64_t offset) { return readPiece(file, offset, buffer); };
    return walk(Reader(read), at, limit);
}

std::optional<MXFScan::Walk> MXFScan::walk(const Reader& read, std::int64_t at,
                                           std::int64_t limit) {
    constexpr std::int64_t smallestTriplet = keySize + 1;
    constexpr std::int64_t fewestTriplets = 3;
    Walk result;
    std::int64_t position = at;
    while (position <= limit - smallestTriplet) {
        const auto bytes = read(position);
        if (bytes.size() < smallestTriplet) break;
        if (!beginsWith(bytes, std::span(partitionPrefix).first(4))) break;
        if (result.klvCount > 0 && isPartitionKey(bytes, 0, PartitionKind::header)) break;
        const bool isFooter = isPartitionKey(bytes, 0, PartitionKind::footer);
        result.sawFooter = result.sawFooter || isFooter;
        const auto length = berLength(bytes, keySize);
        if (!length) break;
        const std::int64_t head = static_cast<std::int64_t>(keySize) + length->size;
        if (length->length > limit - position - head) break;
        position += head + length->length;
        ++result.klvCount;
    }
    result.length = position - at;
    if (result.klvCount < fewestTriplets) return std::nullopt;
    return result;
}

}  // namespace ReelCore
