#include "ReelCore/Sync/FCP.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/Fatal.h"

#include <cstdint>

#include <fmt/format.h>

namespace ReelCore {

namespace {

/// The length of a frame in seconds.
struct Fraction {
    std::int64_t numerator;
    std::int64_t denominator;
};

Fraction frameDuration(const FrameRate& rate) {
    for (const FrameRate& slowed :
         {FrameRate::fps23_976, FrameRate::fps29_97, FrameRate::fps29_97df, FrameRate::fps59_94,
          FrameRate::fps59_94df}) {
        if (rate == slowed) return {1001, rate.nominal() * 1000};
    }
    return {1, rate.nominal()};
}

}  // namespace

std::string FCP::frameDurationString(const FrameRate& rate) {
    const auto [numerator, denominator] = frameDuration(rate);
    return fmt::format("{}/{}s", numerator, denominator);
}

std::string FCP::time(double seconds, const FrameRate& rate) {
    const auto [numerator, denominator] = frameDuration(rate);
    const double length = static_cast<double>(numerator) / static_cast<double>(denominator);
    const std::int64_t value = exactProduct(nearestInteger(seconds / length), numerator);
    const std::int64_t whole = checkedDivide(value, denominator);
    if (whole * denominator == value) return fmt::format("{}s", whole);
    return fmt::format("{}/{}s", value, denominator);
}

}  // namespace ReelCore
