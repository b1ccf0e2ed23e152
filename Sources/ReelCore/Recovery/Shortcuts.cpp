#include "ReelCore/Recovery/Shortcuts.h"

#include <algorithm>
#include <bit>

namespace ReelCore {

namespace {

std::size_t slotCountFor(std::int64_t places) {
    constexpr std::int64_t fewest = 512;
    constexpr std::int64_t most = 0x40000;
    return std::bit_ceil(static_cast<std::size_t>(std::clamp(places, fewest, most)));
}

}  // namespace

Shortcuts::Shortcuts(std::int64_t imageSize, int grainBits)
    : grainBits_(grainBits), slotCount_(slotCountFor(imageSize >> grainBits)), ends_(mostWays) {}

void Shortcuts::thinOut() {
    for (std::size_t i = 0; i < mostPassed / 2; ++i) passed_[i] = passed_[2 * i];
    passed_.resize(mostPassed / 2);
    stride_ *= 2;
}

}  // namespace ReelCore
