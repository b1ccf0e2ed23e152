#pragma once

#include "ReelCore/Platform/ByteCursor.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace ReelCore {

/// The tag that stands in every ProRes frame (SMPTE RDD 36), behind four bytes of its size.
inline constexpr std::string_view proResTag = "icpf";

/// The size that the head of a frame tells, whatever it is; absent where no frame begins.
inline std::optional<std::int64_t> proResFrameSize(std::span<const std::byte> head) {
    ByteCursor cursor(head);
    const auto size = cursor.bigEndian<std::uint32_t>();
    if (cursor.text(proResTag.size()) != proResTag) return std::nullopt;
    return size;
}

/// The fewest bytes that a frame has.
inline constexpr std::int64_t smallestProResFrame = 20;

}  // namespace ReelCore
