#include "Window/WindowFixture.h"

#include <QCoreApplication>

namespace WindowSupport {

void WindowFixture::TearDown() {
    if (!driver_) return;
    EXPECT_TRUE(driver_->warnings().isEmpty()) << driver_->warnings().join("\n").toStdString();
    if (HasFailure()) {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        driver_->screenshot(ReelCore::URL(KELDO_SCREENSHOTS) / "failed" /
                            (std::string(info->name()) + ".png"));
    }
    driver_.reset();
    setLook(Look::light);
}

void WindowFixture::openWindow() {
    driver_ = std::make_unique<WindowDriver>(application(desktop_));
}

void WindowFixture::keepPictures(const std::string& state) {
    for (const Look look : {Look::light, Look::dark}) {
        setLook(look);
        for (const auto& [width, height] : {std::pair(940, 680), std::pair(1600, 1000)}) {
            driver_->resize(width, height);
            QCoreApplication::processEvents();
            const std::string name = state + (look == Look::dark ? "-dark-" : "-light-") +
                                     std::to_string(width) + ".png";
            driver_->screenshot(ReelCore::URL(KELDO_SCREENSHOTS) / name);
        }
    }
    setLook(Look::light);
    driver_->resize(940, 680);
}

}  // namespace WindowSupport
