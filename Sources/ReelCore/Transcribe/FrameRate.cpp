#include "ReelCore/Transcribe/FrameRate.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/Split.h"

#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace ReelCore {

namespace {

double framesPerSecond(std::string_view text) {
    std::vector<double> numbers;
    for (const std::string_view piece : piecesOf(text, "/")) {
        if (const auto number = parseDouble(piece)) numbers.push_back(*number);
    }
    if (numbers.size() == 2 && numbers[1] != 0.0) return numbers[0] / numbers[1];
    return parseDouble(text).value_or(24.0);
}

}  // namespace

FrameRate FrameRate::fromFFmpeg(std::string_view text) {
    // The true 60 is counted with 59.94: cameras that say the one record the other.
    static constexpr std::array<std::pair<double, FrameRate>, 7> known{{{24.0, fps24},
                                                                        {25.0, fps25},
                                                                        {30.0, fps30},
                                                                        {60.0, fps59_94},
                                                                        {23.976, fps23_976},
                                                                        {29.97, fps29_97},
                                                                        {59.94, fps59_94}}};
    const double rate = framesPerSecond(text);
    const double toThousandths = std::round(rate * 1000.0) / 1000.0;
    for (const auto& [value, result] : known) {
        if (toThousandths == value) return result;
    }
    try {
        return other(nearestInteger(rate), rate);
    } catch (const OutOfRange&) {
        return fps24;
    }
}

FrameRate FrameRate::dropFrameVariant() const {
    if (kind_ == Kind::fps29_97) return fps29_97df;
    if (kind_ == Kind::fps59_94) return fps59_94df;
    return *this;
}

}  // namespace ReelCore
