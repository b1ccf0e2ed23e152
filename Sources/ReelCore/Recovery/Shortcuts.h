#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ReelCore {

/// Cuts short the ways of walks that go over an image step by step, each step depending on nothing
/// but the place: a walk that comes to where another one was goes straight on to where that one
/// ended. It serves one scan, whose walks begin at ascending places.
///
/// Room is fixed, 4 MiB at most: of a long way evenly spread places are kept, and where two places
/// need the same slot, the one nearer to the scan has it. What is forgotten is walked again, for
/// which CarveGround makes walks pay: findings do not depend on what is kept here.
class Shortcuts {
public:
    /// Places lie `2^grainBits` bytes or more apart, as a rule.
    Shortcuts(std::int64_t imageSize, int grainBits);

    void begin(std::int64_t start) {
        if (slots_.empty()) slots_.resize(slotCount_);
        start_ = start;
        lastLine_ = -1;
        passed_.clear();
        stride_ = 1;
        count_ = 0;
    }

    /// The walk came to `place`, behind all it came to before. Returns where it may go straight
    /// on, which is `place` itself where nobody was.
    std::int64_t pass(std::int64_t place) {
        if (place >> lineBits == lastLine_) return place;
        lastLine_ = place >> lineBits;
        if (count_++ % stride_ == 0) note(place);
        const Shortcut& known = slots_[slotOf(place)];
        return known.from == place ? known.to : place;
    }

    /// The walk ends at `place`, or is cut off there: whoever comes to where it passed may go
    /// straight there.
    void end(std::int64_t place) {
        for (const std::int64_t from : passed_) {
            Shortcut& slot = slots_[slotOf(from)];
            const bool isTaken = slot.from >= start_ && slot.from < from;
            if (from < place && !isTaken) slot = {from, place};
        }
    }

private:
    /// Steps may be as small as 8 bytes: of those within 64 bytes only the first is kept.
    static constexpr int lineBits = 6;
    static constexpr int stretchBits = 9;

    struct Shortcut {
        std::int64_t from = -1;
        std::int64_t to = -1;
    };

    /// Neighbours stay neighbours, as walks go from one to the next; stretches of them are strewn.
    std::size_t slotOf(std::int64_t place) const {
        const auto number = static_cast<std::uint64_t>(place) >> grainBits_;
        const std::uint64_t stretch = (number >> stretchBits) * 0x9E3779B97F4A7C15U >> 32U;
        return static_cast<std::size_t>(stretch + number) & (slots_.size() - 1);
    }

    void note(std::int64_t place);

    int grainBits_;
    std::size_t slotCount_;
    std::vector<Shortcut> slots_;  ///< None before the first walk.
    std::int64_t start_ = 0;
    std::int64_t lastLine_ = -1;
    std::vector<std::int64_t> passed_;  ///< Each `stride_`th place of the walk.
    std::size_t stride_ = 1;
    std::size_t count_ = 0;
};

}  // namespace ReelCore
