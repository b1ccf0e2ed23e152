#include "../Offload/WindowFixture.h"
#include "keldo-app/Shell/Window.h"

#include <QTest>

#include <gtest/gtest.h>

using WindowSupport::WindowFixture;

namespace {
class ContentViewTests : public WindowFixture {};

/// Starts a long run, closes the window in the middle of it, and ends as the application does.
[[noreturn]] void closeDuringARun(const ReelCore::URL& card, const ReelCore::URL& drive) {
    WindowSupport::FakeDesktop desktop;
    desktop.answers = {card, drive};
    WindowSupport::WindowDriver driver(desktop);
    driver.press("offload.choose");
    driver.waitForStage(keldo_app::OffloadViewModel::Stage::setup);
    driver.press("offload.add");
    driver.press("offload.start");
    driver.waitFor("the first progress", [&] { return driver.offload()->progress().has_value(); });
    QMetaObject::invokeMethod(
        &driver.window(), [&] { driver.window().close(); }, Qt::QueuedConnection);
    keldo_app::runUntilClosed();
}
}  // namespace

TEST_F(ContentViewTests, Opens_OnTheOffloadModeWithItsTitleAndSmallestSize) {
    openWindow();
    EXPECT_EQ(driver_->window().title(), "keldobay");
    EXPECT_EQ(driver_->window().minimumSize(), QSize(940, 680));
    EXPECT_TRUE(driver_->isShown("offload.choose"));
    keepPictures("start");
}

TEST_F(ContentViewTests, EachOtherMode_SaysThatItIsNotInThisVersion) {
    openWindow();
    for (const QString mode : {"Plan", "Transcode", "Transcript", "Sync", "Recover"}) {
        driver_->press("mode." + mode);
        EXPECT_EQ(driver_->text("later"), mode + " is not in this version yet.");
        EXPECT_FALSE(driver_->isShown("offload.choose"));
    }
    keepPictures("later");
    driver_->press("mode.Offload");
    EXPECT_TRUE(driver_->isShown("offload.choose"));
}

TEST_F(ContentViewTests, SwitchDuringARun_LeavesItGoingAndComesBackToAFreshScreen) {
    TestSupport::writeFile(card() / "long.mxf", TestSupport::noise(48 << 20));
    setUpOffload();
    driver_->press("offload.start");
    driver_->press("mode.Plan");
    EXPECT_EQ(driver_->offload(), nullptr);
    driver_->press("mode.Offload");
    EXPECT_EQ(driver_->offload()->stage(), Stage::setup);
    EXPECT_FALSE(driver_->offload()->source());
    driver_->waitFor(
        "the unseen run to end",
        [&] { return std::filesystem::exists(drive("RAID_MASTER") / "A001" / "A001.mhl"); },
        120'000);
}

TEST_F(ContentViewTests, CloseDuringARun_EndsTheProcessAtOnceAndCleanly) {
    TestSupport::writeFile(card() / "long.mxf", TestSupport::noise(256 << 20));
    EXPECT_EXIT(closeDuringARun(card(), drive("SHUTTLE_01")), testing::ExitedWithCode(0), "");
}
