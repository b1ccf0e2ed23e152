#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <map>

namespace ReelCore {

/// Places in an image that were seen, a bit for each byte of the regions around them. Takes no more
/// than 16 MiB: what comes when they are full is not remembered.
class PlaceSet {
public:
    bool contains(std::int64_t place) const {
        const auto region = regions_.find(place / regionSize);
        return region != regions_.end() && region->second[bitOf(place)];
    }

    void insert(std::int64_t place) {
        const std::int64_t region = place / regionSize;
        if (regions_.size() >= mostRegions && !regions_.contains(region)) return;
        regions_[region].set(bitOf(place));
    }

    /// Drops the regions that lie before a place.
    void forgetBefore(std::int64_t place) {
        regions_.erase(regions_.begin(), regions_.lower_bound(place / regionSize));
    }

private:
    static constexpr std::int64_t regionSize = 0x10000;
    static constexpr std::size_t mostRegions = 0x800;

    static std::size_t bitOf(std::int64_t place) {
        return static_cast<std::size_t>(place % regionSize);
    }

    std::map<std::int64_t, std::bitset<regionSize>> regions_;
};

}  // namespace ReelCore
