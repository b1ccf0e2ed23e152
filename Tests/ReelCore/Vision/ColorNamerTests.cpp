#include "ReelCore/Vision/ColorNamer.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

/// A colour of that hue in degrees, of full saturation unless told.
std::string nameOfHue(double degrees, double value = 0.6, double saturation = 1.0) {
    const auto part = [&](double shift) {
        const double at = std::fmod(degrees / 60.0 + shift, 6.0);
        return value - value * saturation * std::clamp(std::min(at, 4.0 - at), 0.0, 1.0);
    };
    return ColorNamer::name(part(5), part(3), part(1));
}

TEST(ColorNamer, Greys_AreNamedByTheirBrightness) {
    EXPECT_EQ(ColorNamer::name(0.0, 0.0, 0.0), "black");
    EXPECT_EQ(ColorNamer::name(0.1, 0.1, 0.1), "black");
    EXPECT_EQ(ColorNamer::name(0.179, 0.0, 0.1), "black");
    EXPECT_EQ(ColorNamer::name(0.18, 0.18, 0.18), "grey");
    EXPECT_EQ(ColorNamer::name(0.5, 0.5, 0.5), "grey");
    EXPECT_EQ(ColorNamer::name(0.82, 0.82, 0.82), "grey");
    EXPECT_EQ(ColorNamer::name(0.821, 0.821, 0.821), "white");
    EXPECT_EQ(ColorNamer::name(0.9, 0.9, 0.9), "white");
    EXPECT_EQ(ColorNamer::name(1.0, 1.0, 1.0), "white");
}

TEST(ColorNamer, LittleSaturation_IsGreyUpToItsBoundary) {
    EXPECT_EQ(ColorNamer::name(0.5, 0.441, 0.441), "grey");
    EXPECT_EQ(ColorNamer::name(0.5, 0.4375, 0.4375), "red");
    EXPECT_EQ(ColorNamer::name(0.9, 0.8, 0.8), "white");
}

TEST(ColorNamer, DimAndHalfSaturated_IsDarkGrey) {
    EXPECT_EQ(ColorNamer::name(0.3, 0.2, 0.2), "dark grey");
    EXPECT_EQ(ColorNamer::name(0.319, 0.2, 0.2), "dark grey");
    EXPECT_EQ(ColorNamer::name(0.32, 0.2, 0.2), "dark red");
    EXPECT_EQ(ColorNamer::name(0.25, 0.125, 0.125), "dark red");
    EXPECT_EQ(ColorNamer::name(0.3, 0.1, 0.1), "dark red");
}

TEST(ColorNamer, Hues_ChangeAtTheirBoundaries) {
    for (const auto& [from, name] : {std::pair(0.0, "red"),
                                     {15.0, "orange"},
                                     {45.0, "yellow"},
                                     {70.0, "green"},
                                     {160.0, "teal"},
                                     {200.0, "blue"},
                                     {255.0, "purple"},
                                     {290.0, "pink"},
                                     {345.0, "red"}}) {
        EXPECT_EQ(nameOfHue(from + 0.01), name) << from;
        if (from == 0.0) continue;
        EXPECT_NE(nameOfHue(from - 0.01), name) << from;
    }
    EXPECT_EQ(nameOfHue(359.99), "red");
}

TEST(ColorNamer, HueOnABoundary_IsTheOneAbove) {
    EXPECT_EQ(ColorNamer::name(0.5, 0.125, 0.0), "orange");    // 15
    EXPECT_EQ(ColorNamer::name(0.5, 0.375, 0.0), "yellow");    // 45
    EXPECT_EQ(ColorNamer::name(0.0, 0.75, 0.5), "teal");       // 160
    EXPECT_EQ(ColorNamer::name(0.0, 0.5, 0.75), "blue");       // 200
    EXPECT_EQ(ColorNamer::name(0.1875, 0.0, 0.75), "purple");  // 255
    EXPECT_EQ(ColorNamer::name(0.5, 0.0, 0.125), "red");       // 345
}

TEST(ColorNamer, BrightPastel_IsLight) {
    EXPECT_EQ(ColorNamer::name(0.95, 0.8, 0.8), "light red");
    EXPECT_EQ(ColorNamer::name(0.75, 1.0, 0.75), "light green");
    EXPECT_EQ(ColorNamer::name(0.85, 0.7, 0.7), "red");
    EXPECT_EQ(ColorNamer::name(1.0, 0.549, 0.549), "red");
    EXPECT_EQ(ColorNamer::name(1.0, 0.551, 0.551), "light red");
}

TEST(ColorNamer, DimColour_IsDark) {
    EXPECT_EQ(ColorNamer::name(0.4, 0.1, 0.1), "dark red");
    EXPECT_EQ(ColorNamer::name(0.0, 0.0, 0.449), "dark blue");
    EXPECT_EQ(ColorNamer::name(0.0, 0.0, 0.45), "blue");
    EXPECT_EQ(ColorNamer::name(0.0, 0.0, 0.9), "blue");
}

}  // namespace

}  // namespace ReelCore
