#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ReelCore {

/// Cuts short the ways of walks that go over an image step by step, each step depending on nothing
/// but the place: a walk that comes to where another one was goes straight on to where that one
/// ended. It serves one scan, whose walks begin at ascending places.
///
/// Walks that come together share one way from there on, so that as soon as one of them goes
/// further all others do. Room is fixed, 4.5 MiB at most: of a long way evenly spread places are
/// kept, where two places need the same slot the one nearer to the scan has it, and the oldest ways
/// are forgotten. What is forgotten is walked again, for which CarveGround makes walks pay:
/// findings do not depend on what is kept here.
class Shortcuts {
public:
    /// Places lie `2^grainBits` bytes or more apart, as a rule.
    Shortcuts(std::int64_t imageSize, int grainBits);

    void begin(std::int64_t start) {
        start_ = start;
        lastLine_ = -1;
        passed_.clear();
        stride_ = 1;
        count_ = 0;
        followed_.clear();
    }

    /// The walk came to `place`, behind all it came to before. Returns where it may go straight
    /// on, which is `place` itself where nobody was.
    std::int64_t pass(std::int64_t place) {
        if (place >> lineBits == lastLine_) return place;
        lastLine_ = place >> lineBits;
        if (slots_.empty()) slots_.resize(slotCount_);
        if ((count_++ & (stride_ - 1)) == 0) note(place);
        const Slot& slot = slots_[slotOf(place)];
        if (slot.place != place || !isKept(slot.way)) return place;
        followed_.push_back(slot.way);
        return endOf(slot.way);
    }

    /// The walk ends at `place`, or is cut off there: whoever comes to where it passed may go
    /// straight there.
    void end(std::int64_t place) {
        if (passed_.empty()) return;
        if (followed_.empty()) followed_.push_back(++newest_);
        for (const std::uint32_t way : followed_) endOf(way) = place;
        for (const std::int64_t passed : passed_) {
            Slot& slot = slots_[slotOf(passed)];
            const bool isTaken = slot.place >= start_ && slot.place < passed && isKept(slot.way);
            if (passed < place && !isTaken) slot = {passed, followed_.back()};
        }
    }

private:
    /// Steps may be as small as 8 bytes: of those within 16 bytes only the first is kept.
    static constexpr int lineBits = 4;
    static constexpr int stretchBits = 9;
    static constexpr std::uint32_t mostWays = 0x10000;

    struct Slot {
        std::int64_t place = -1;
        std::uint32_t way = 0;
    };

    bool isKept(std::uint32_t way) const { return newest_ - way < mostWays; }
    std::int64_t& endOf(std::uint32_t way) { return ends_[way % mostWays]; }

    /// Neighbours stay neighbours, as walks go from one to the next; stretches of them are strewn.
    std::size_t slotOf(std::int64_t place) const {
        const auto number = static_cast<std::uint64_t>(place) >> grainBits_;
        const std::uint64_t stretch = (number >> stretchBits) * 0x9E3779B97F4A7C15U >> 32U;
        return static_cast<std::size_t>(stretch + number) & (slotCount_ - 1);
    }

    void note(std::int64_t place) {
        passed_.push_back(place);
        if (passed_.size() == mostPassed) thinOut();
    }
    void thinOut();

    static constexpr std::size_t mostPassed = 0x10000;

    int grainBits_;
    std::size_t slotCount_;
    std::vector<Slot> slots_;         ///< None before the first place.
    std::vector<std::int64_t> ends_;  ///< Of the newest ways.
    std::uint32_t newest_ = 0;
    std::int64_t start_ = 0;
    std::int64_t lastLine_ = -1;
    std::vector<std::int64_t> passed_;  ///< Each `stride_`th place of the walk.
    std::size_t stride_ = 1;            ///< A power of two.
    std::size_t count_ = 0;
    std::vector<std::uint32_t> followed_;  ///< The ways that the walk went along.
};

}  // namespace ReelCore
