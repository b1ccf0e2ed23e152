#include "ReelCore/Vision/ColorNamer.h"

#include <algorithm>
#include <cmath>

namespace ReelCore {

namespace {

struct Hue {
    double below;  ///< In degrees.
    const char* name;
};

constexpr Hue hues[]{{15, "red"},   {45, "orange"}, {70, "yellow"},  {160, "green"},
                     {200, "teal"}, {255, "blue"},  {290, "purple"}, {345, "pink"}};

/// In degrees from 0 to 360.
double hueOf(double r, double g, double b, double max, double delta) {
    if (!(delta > 0.0)) return 0.0;
    double hue = 0.0;
    if (max == r) {
        hue = 60.0 * std::fmod((g - b) / delta, 6.0);
    } else if (max == g) {
        hue = 60.0 * ((b - r) / delta + 2.0);
    } else {
        hue = 60.0 * ((r - g) / delta + 4.0);
    }
    return hue < 0.0 ? hue + 360.0 : hue;
}

std::string nameOfHue(double degrees) {
    for (const auto& [below, name] : hues) {
        if (degrees < below) return name;
    }
    return degrees <= 360.0 ? "red" : "—";
}

}  // namespace

std::string ColorNamer::name(double r, double g, double b) {
    const double max = std::max({r, g, b});
    const double delta = max - std::min({r, g, b});
    if (max < 0.18) return "black";
    const double saturation = delta / max;
    if (saturation < 0.12) return max > 0.82 ? "white" : "grey";
    if (max < 0.32 && saturation < 0.5) return "dark grey";
    const std::string hue = nameOfHue(hueOf(r, g, b, max, delta));
    if (max > 0.85 && saturation < 0.45) return "light " + hue;
    return max < 0.45 ? "dark " + hue : hue;
}

}  // namespace ReelCore
