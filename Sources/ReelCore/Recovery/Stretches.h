#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>

namespace ReelCore {

/// Stretches of an image of which something is known, as that nothing begins there. Offsets in
/// bytes; stretches that touch become one.
class Stretches {
public:
    /// The end of the stretch that a place lies in; the place itself where it lies in none.
    std::int64_t endAround(std::int64_t place) const {
        const auto next = ends_.upper_bound(place);
        if (next == ends_.begin()) return place;
        return std::max(std::prev(next)->second, place);
    }

    void add(std::int64_t begin, std::int64_t end) {
        if (begin >= end) return;
        auto next = ends_.upper_bound(begin);
        if (next != ends_.begin() && std::prev(next)->second >= begin) {
            --next;
            begin = next->first;
        }
        while (next != ends_.end() && next->first <= end) {
            end = std::max(end, next->second);
            next = ends_.erase(next);
        }
        ends_.emplace_hint(next, begin, end);
    }

    /// Drops the stretches that end at or before a place.
    void forgetBefore(std::int64_t place) {
        while (!ends_.empty() && ends_.begin()->second <= place) ends_.erase(ends_.begin());
    }

private:
    std::map<std::int64_t, std::int64_t> ends_;  ///< Of each stretch, by where it begins.
};

}  // namespace ReelCore
