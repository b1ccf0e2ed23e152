#include "ReelCore/Transcribe/Timecode.h"

#include "ExpectedFatal.h"
#include "Require.h"

#include <array>
#include <cmath>
#include <cstring>
#include <optional>
#include <string>

using namespace ReelCore;
using ExpectedFatal::endsWell;

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
void requireRoundTrip(std::int64_t frame, FrameRate rate) {
    const Timecode timecode(frame, rate);
    const auto [h, m, s, f] = timecode.components();

    // The labels of drop-frame rates have no other side of midnight.
    if (rate.isDrop() && frame < 0) return;
    REQUIRE(Timecode(h, m, s, f, rate) == timecode);
    REQUIRE(Timecode::parse(timecode.formatted(), rate) == timecode);
    if (frame >= 0 && rate.nominal() > 0) requireProperLabel({h, m, s, f}, rate);
}

void tryPosition(std::int64_t frame, FrameRate rate) {
    const bool endedWell = endsWell([&] { requireRoundTrip(frame, rate); });
    const bool isKnown = rate.nominal() >= 24 && rate.nominal() <= 60;
    REQUIRE(endedWell || !isKnown || frame > farAway || frame < -farAway);
}

void tryLabel(std::string_view text, FrameRate rate) {
    std::optional<Timecode> timecode;
    if (!endsWell([&] { timecode = Timecode::parse(text, rate); }) || !timecode) return;

    const bool drops = text.find(';') != text.npos;
    REQUIRE(timecode->rate == (drops ? rate.dropFrameVariant() : rate));
    tryPosition(timecode->frameNumber, timecode->rate);
}

/// Reads a rate; absent where that is a fatal fault.
std::optional<FrameRate> rateOf(std::string_view text) {
    std::optional<FrameRate> rate;
    if (!endsWell([&] { rate = FrameRate::fromFFmpeg(text); })) return std::nullopt;
    REQUIRE(!rate->isDrop());
    REQUIRE(std::isfinite(rate->real()));
    REQUIRE(std::abs(rate->real() - static_cast<double>(rate->nominal())) <= 0.5);
    return rate;
}

void tryFraction(std::int32_t above, std::int32_t below) {
    const auto rate = rateOf(std::to_string(above) + "/" + std::to_string(below));
    REQUIRE(rate);
    if (below == 0) {
        REQUIRE(rate == FrameRate::fps24);
        return;
    }
    const double quotient = static_cast<double>(above) / below;
    const bool isTrueSixty = std::abs(quotient - 60.0) < 0.001 && rate == FrameRate::fps59_94;
    REQUIRE(isTrueSixty || std::abs(rate->real() - quotient) < 0.001);
}

void tryAdding(std::int64_t frame, double seconds) {
    for (const FrameRate rate : rates) {
        const Timecode start(frame, rate);
        std::optional<Timecode> moved;
        if (!endsWell([&] { moved = start.adding(seconds); })) {
            REQUIRE(!(std::abs(seconds) < 1e15) || std::abs(frame / 2) > farAway);
            continue;
        }
        REQUIRE(moved->rate == rate);
        const double wanted = seconds * rate.real();
        const double gone = static_cast<double>(moved->frameNumber - frame);
        REQUIRE(std::abs(gone - wanted) <= 0.5);
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
    const auto odd = rateOf(text);
    if (odd) tryLabel(text, *odd);

    if (size < 16) return 0;
    const auto frame = numberAt<std::int64_t>(data);
    for (const FrameRate rate : rates) tryPosition(frame, rate);
    if (odd) tryPosition(frame, *odd);
    tryFraction(numberAt<std::int32_t>(data), numberAt<std::int32_t>(data + 4));
    tryAdding(frame, numberAt<double>(data + 8));
    tryLabel(text.substr(16), FrameRate::other(frame, 1.0));
    return 0;
}
