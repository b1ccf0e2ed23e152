#pragma once

#include "ReelCore/Recovery/CarveTypes.h"

#include <algorithm>
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

/// Finds where the beginnings of media that cameras and recorders write stand in `bytes`, one after
/// the other in ascending order. What can be no beginning by the bytes around it is left out.
class SignatureSearch {
public:
    explicit SignatureSearch(std::span<const std::byte> bytes) : bytes_(bytes) {}

    /// False where there is no more.
    bool next();

    /// Goes on at a place, behind all it came to.
    void skipTo(std::size_t place) {
        from_ = place;
        at_ = std::max(at_, place);
    }

    /// The one that `next` came to.
    const Hit& hit() const { return hit_; }

private:
    bool take(std::size_t match);

    std::span<const std::byte> bytes_;
    std::size_t from_ = 0;   ///< What begins before it is left out.
    std::size_t at_ = 0;     ///< The next pair to be looked at.
    std::size_t known_ = 0;  ///< Up to here each pair needs a look.
    Hit hit_;
};

/// All of them.
std::vector<Hit> signatureHits(std::span<const std::byte> bytes);

}  // namespace ReelCore
