#include "ReelCore/Transcribe/Timecode.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "Require.h"

#include <array>
#include <cmath>
#include <cstring>
#include <string>

using namespace ReelCore;

namespace {

constexpr std::array rates{FrameRate::fps24,     FrameRate::fps25,     FrameRate::fps30,
                           FrameRate::fps23_976, FrameRate::fps29_97,  FrameRate::fps29_97df,
                           FrameRate::fps59_94,  FrameRate::fps59_94df};

/// Positions up to here (millions of years) have labels at all the rates of `rates`.
constexpr std::int64_t farAway = std::int64_t{1} << 55;

void requireProperLabel(const Timecode::Components& label, FrameRate rate) {
    REQUIRE(label.h >= 0);
    REQUIRE(label.m >= 0 && label.m < 60);
    REQUIRE(label.s >= 0 && label.s < 60);
    REQUIRE(label.f >= 0 && label.f < rate.nominal());
    const bool dropsHere = label.m % 10 != 0 && label.s == 0;
    REQUIRE(!dropsHere || label.f >= rate.dropFramesPerMinute());
}

/// From a position to its label, and back from its text and its fields.
void tryPosition(std::int64_t frame, FrameRate rate) {
    // At such a rate there are no labels.
    if (rate.nominal() < 1) return;
    const Timecode timecode(frame, rate);
    const auto [h, m, s, f] = timecode.components();
    if (frame >= 0) requireProperLabel({h, m, s, f}, rate);

    // The labels of drop-frame rates have no other side of midnight, and may take more bits.
    if (rate.isDrop() && (frame < 0 || frame > farAway)) return;
    REQUIRE(Timecode(h, m, s, f, rate) == timecode);
    REQUIRE(Timecode::parse(timecode.formatted(), rate) == timecode);
}

void tryLabel(std::string_view text, FrameRate rate) {
    const auto timecode = Timecode::parse(text, rate);
    if (!timecode) return;

    const bool drops = text.find(';') != text.npos;
    REQUIRE(timecode->rate == (drops ? rate.dropFrameVariant() : rate));
    tryPosition(timecode->frameNumber, timecode->rate);
}

FrameRate rateOf(std::string_view text) {
    const FrameRate rate = FrameRate::fromFFmpeg(text);
    REQUIRE(!rate.isDrop());
    REQUIRE(std::isfinite(rate.real()));
    REQUIRE(std::abs(rate.real() - static_cast<double>(rate.nominal())) <= 0.5);
    return rate;
}

void tryFraction(std::int32_t above, std::int32_t below) {
    const FrameRate rate = rateOf(std::to_string(above) + "/" + std::to_string(below));
    if (below == 0) {
        REQUIRE(rate == FrameRate::fps24);
        return;
    }
    const double quotient = static_cast<double>(above) / below;
    const bool isTrueSixty = std::abs(quotient - 60.0) < 0.001 && rate == FrameRate::fps59_94;
    REQUIRE(isTrueSixty || std::abs(rate.real() - quotient) < 0.001);
}

void tryAdding(std::int64_t frame, double seconds) {
    for (const FrameRate rate : rates) {
        const Timecode start(frame, rate);
        try {
            const Timecode moved = start.adding(seconds);
            REQUIRE(moved.rate == rate);
            const double gone = static_cast<double>(moved.frameNumber - frame);
            REQUIRE(std::abs(gone - seconds * rate.real()) <= 0.5);
        } catch (const OutOfRange&) {
            REQUIRE(!(std::abs(seconds) < 1e15) || std::abs(frame / 2) > farAway);
        }
    }
}

template <class Number>
Number numberAt(const std::uint8_t* data) {
    Number number;
    std::memcpy(&number, data, sizeof number);
    return number;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = textOf(data, size);
    for (const FrameRate rate : rates) tryLabel(text, rate);
    const FrameRate odd = rateOf(text);
    tryLabel(text, odd);

    if (size < 16) return 0;
    const auto frame = numberAt<std::int64_t>(data);
    for (const FrameRate rate : rates) tryPosition(frame, rate);
    tryPosition(frame, odd);
    tryFraction(numberAt<std::int32_t>(data), numberAt<std::int32_t>(data + 4));
    tryAdding(frame, numberAt<double>(data + 8));
    tryLabel(text.substr(16), FrameRate::other(frame, 1.0));
    return 0;
}
