#include "Window/WindowFixture.h"

#include <algorithm>
#include <cmath>

using WindowSupport::Look;
using WindowSupport::WindowFixture;

namespace {

class ThemeTests : public WindowFixture {};

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

/// How well text of one colour is read on the other: from 1 to 21.
double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

/// Every background that text stands on, and the colours of the texts there.
const std::vector<std::pair<const char*, std::vector<const char*>>> texts{
    {"windowBackground", {"primary", "secondary", "attention"}},
    {"cardBackground", {"primary", "secondary", "accent", "proved", "attention", "danger"}},
    {"fieldBackground", {"primary", "secondary", "danger"}},
    {"troughBackground", {"primary", "secondary"}},
    {"selectedSegment", {"primary"}},
    {"buttonBackground", {"primary"}},
    {"buttonPressed", {"primary"}},
    {"prominentBackground", {"onProminent"}},
    {"prominentPressed", {"onProminent"}},
    {"dangerBackground", {"onProminent"}},
    {"dangerPressed", {"onProminent"}},
};

}  // namespace

TEST(Contrast, OfBlackAndWhiteIsTheGreatest) {
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 1e-9);
    EXPECT_NEAR(contrast(Qt::white, Qt::white), 1, 1e-9);
    EXPECT_NEAR(contrast(QColor("#777777"), Qt::white), 4.48, 0.01);
}

TEST_F(ThemeTests, EveryTextCanBeReadOnItsBackground) {
    openWindow();
    for (const Look look : {Look::light, Look::dark}) {
        WindowSupport::setLook(look);
        for (const auto& [background, colors] : texts) {
            for (const char* color : colors) {
                EXPECT_GE(contrast(driver_->themeColor(color), driver_->themeColor(background)),
                          4.5)
                    << color << " on " << background << (look == Look::dark ? ", dark" : ", light");
            }
        }
    }
}

TEST_F(ThemeTests, FollowsTheSystemsPalette) {
    openWindow();
    EXPECT_EQ(driver_->themeColor("cardBackground").name(), "#ffffff");
    WindowSupport::setLook(Look::dark);
    EXPECT_EQ(driver_->themeColor("cardBackground").name(), "#26282c");
    WindowSupport::setLook(Look::light);
    EXPECT_EQ(driver_->themeColor("cardBackground").name(), "#ffffff");
}
