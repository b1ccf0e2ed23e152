#include "ReelCore/Transcribe/Timecode.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/Split.h"

#include <vector>

#include <fmt/format.h>

namespace ReelCore {

namespace {

std::int64_t plusProduct(std::int64_t sum, std::int64_t left, std::int64_t right) {
    return exactSum(sum, exactProduct(left, right));
}

std::int64_t frameNumberOf(const Timecode::Components& label, FrameRate rate) {
    const std::int64_t minutes = plusProduct(label.m, label.h, 60);
    const std::int64_t seconds = plusProduct(label.s, minutes, 60);
    const std::int64_t labels = plusProduct(label.f, seconds, rate.nominal());
    if (!rate.isDrop()) return labels;
    return plusProduct(labels, -rate.dropFramesPerMinute(), minutes - minutes / 10);
}

/// A label as whole seconds and frames: no count of labels, which may be too large, is needed.
struct Position {
    std::int64_t seconds;
    std::int64_t frames;
};

/// Counts the dropped labels in again.
Position positionOf(std::int64_t frame, FrameRate rate) {
    std::int64_t tens = 0;
    if (rate.isDrop()) {
        const std::int64_t dropped = rate.dropFramesPerMinute();
        const std::int64_t perMinute = rate.nominal() * 60 - dropped;
        const std::int64_t perTenMinutes = rate.nominal() * 600 - 9 * dropped;
        tens = frame / perTenMinutes;
        frame %= perTenMinutes;
        if (frame > dropped) frame += dropped * ((frame - dropped) / perMinute);
    }
    const std::int64_t seconds = checkedDivide(frame, rate.nominal());
    return {tens * 600 + seconds, frame - seconds * rate.nominal()};
}

}  // namespace

Timecode::Timecode(std::int64_t number, FrameRate itsRate) : frameNumber(number), rate(itsRate) {}

Timecode::Timecode(std::int64_t hours, std::int64_t minutes, std::int64_t seconds,
                   std::int64_t frames, FrameRate itsRate)
    : Timecode(frameNumberOf({hours, minutes, seconds, frames}, itsRate), itsRate) {}

std::optional<Timecode> Timecode::parse(std::string_view text, FrameRate itsRate) {
    std::vector<std::int64_t> numbers;
    for (const std::string_view field : piecesOf(text, ":;.")) {
        const auto number = parseInteger(field);
        if (!number) return std::nullopt;
        numbers.push_back(*number);
    }
    if (numbers.size() != 4) return std::nullopt;
    const bool drops = text.find(';') != text.npos;
    try {
        return Timecode(numbers[0], numbers[1], numbers[2], numbers[3],
                        drops ? itsRate.dropFrameVariant() : itsRate);
    } catch (const OutOfRange&) {
        return std::nullopt;
    }
}

Timecode::Components Timecode::components() const {
    const auto [seconds, frames] = positionOf(frameNumber, rate);
    return {seconds / 3600, seconds / 60 % 60, seconds % 60, frames};
}

std::string Timecode::formatted() const {
    const auto [h, m, s, f] = components();
    return fmt::format("{:02}:{:02}:{:02}{}{:02}", h, m, s, rate.separator(), f);
}

Timecode Timecode::adding(double seconds) const {
    return {exactSum(frameNumber, nearestInteger(seconds * rate.real())), rate};
}

}  // namespace ReelCore
