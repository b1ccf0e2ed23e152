#include "ReelCore/Recovery/BoxHeader.h"

#include "ReelCore/Platform/ByteCursor.h"

#include <algorithm>

namespace ReelCore {

std::optional<std::string> boxType(std::string_view bytes) {
    const auto isASCII = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (!std::ranges::all_of(bytes, isASCII)) return std::nullopt;
    return std::string(bytes);
}

std::optional<BoxHeader> BoxHeader::read(std::span<const std::byte> bytes) {
    ByteCursor cursor(bytes);
    const auto size = cursor.bigEndian<std::uint32_t>();
    const auto type = cursor.text(4);
    if (!size || !type) return std::nullopt;
    if (*size != 1) return BoxHeader{*size, 8, boxType(*type)};
    const auto largeSize = cursor.bigEndian<std::uint64_t>();
    if (!largeSize) return std::nullopt;
    return BoxHeader{*largeSize, 16, boxType(*type)};
}

}  // namespace ReelCore
