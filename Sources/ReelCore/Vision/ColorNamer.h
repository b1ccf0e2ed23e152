#pragma once

#include <string>

namespace ReelCore {

/// Names colours as people do when they describe clothing. Pure; any thread.
struct ColorNamer {
    /// One of "black", "white", "grey", "dark grey", or one of eight hues, such as "blue", by
    /// itself or with "light " or "dark " in front. Red, green and blue are from 0 to 1.
    static std::string name(double r, double g, double b);
};

}  // namespace ReelCore
