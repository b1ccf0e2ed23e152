#include "ReelCore/Transcribe/Timecode.h"

#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/Split.h"

#include <cmath>
#include <vector>

#include <fmt/format.h>

namespace ReelCore {

namespace {

std::int64_t plusProduct(std::int64_t sum, std::int64_t left, std::int64_t right) {
    return checkedAdd(sum, checkedMultiply(left, right));
}

std::int64_t frameNumberOf(const Timecode::Components& label, FrameRate rate) {
    const std::int64_t minutes = plusProduct(label.m, label.h, 60);
    const std::int64_t seconds = plusProduct(label.s, minutes, 60);
    const std::int64_t labels = plusProduct(label.f, seconds, rate.nominal());
    if (!rate.isDrop()) return labels;
    return checkedSubtract(labels,
                           checkedMultiply(rate.dropFramesPerMinute(), minutes - minutes / 10));
}

/// Counts the dropped labels in again.
std::int64_t labelNumberOf(std::int64_t frame, FrameRate rate) {
    if (!rate.isDrop()) return frame;
    const std::int64_t dropped = rate.dropFramesPerMinute();
    const std::int64_t perMinute = rate.nominal() * 60 - dropped;
    const std::int64_t perTenMinutes = rate.nominal() * 600 - 9 * dropped;
    const std::int64_t tens = frame / perTenMinutes;
    const std::int64_t rest = frame % perTenMinutes;
    const std::int64_t labels = plusProduct(frame, 9 * dropped, tens);
    if (rest <= dropped) return labels;
    return plusProduct(labels, dropped, (rest - dropped) / perMinute);
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
    return Timecode(numbers[0], numbers[1], numbers[2], numbers[3],
                    drops ? itsRate.dropFrameVariant() : itsRate);
}

Timecode::Components Timecode::components() const {
    const std::int64_t number = labelNumberOf(frameNumber, rate);
    const std::int64_t seconds = checkedDivide(number, rate.nominal());
    return {seconds / 3600, seconds / 60 % 60, seconds % 60, number - seconds * rate.nominal()};
}

std::string Timecode::formatted() const {
    const auto [h, m, s, f] = components();
    return fmt::format("{:02}:{:02}:{:02}{}{:02}", h, m, s, rate.separator(), f);
}

Timecode Timecode::adding(double seconds) const {
    return {checkedAdd(frameNumber, checkedInteger(std::round(seconds * rate.real()))), rate};
}

}  // namespace ReelCore
