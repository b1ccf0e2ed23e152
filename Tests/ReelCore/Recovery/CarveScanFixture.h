#pragma once

#include "CarveImage.h"
#include "Support/Boxes.h"

#include <string>
#include <vector>

namespace TestSupport {

using Findings = std::vector<ReelCore::Finding>;

inline constexpr std::int64_t mebibyte = 0x100000;

/// What a scan searches at once, and how far on the next begins.
inline constexpr std::int64_t carveChunk = 0x2000000;
inline constexpr std::int64_t carveStep = 0x1FF0000;

inline std::string movie(std::size_t media = 50) {
    return fileTypeBox() + box("mdat", garbage(media)) + box("moov", "index");
}

inline ReelCore::Finding found(ReelCore::FindingKind kind, std::int64_t offset, std::size_t length,
                               bool complete = true) {
    return {kind, offset, static_cast<std::int64_t>(length), complete};
}

}  // namespace TestSupport
