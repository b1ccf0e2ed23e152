#pragma once

#include "ReelCore/Recovery/CarveTypes.h"

#include <cstddef>
#include <span>
#include <vector>

namespace ReelCore {

/// The largest ProRes frame that a carve takes for one, in bytes.
inline constexpr std::int64_t largestProResFrame = 0x4000000;

/// A place where media may begin.
struct Hit {
    std::size_t offset = 0;
    FindingKind kind = FindingKind::movie;

    bool operator==(const Hit&) const = default;
};

/// Where the beginnings of media that cameras and recorders write stand in `bytes`, in ascending
/// order. What can be no beginning by the bytes around it is left out.
std::vector<Hit> signatureHits(std::span<const std::byte> bytes);

}  // namespace ReelCore
