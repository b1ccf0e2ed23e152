#include "../Offload/OffloadFixture.h"
#include "keldo-app/Shell/Window.h"

#include <QTest>

#include <gtest/gtest.h>

using WindowSupport::OffloadFixture;

namespace {
class ContentViewTests : public OffloadFixture {};

/// Starts a long run, closes the window in the middle of it, and ends as the application does.
[[noreturn]] void closeDuringARun(const ReelCore::URL& card, const ReelCore::URL& drive) {
    WindowSupport::FakeDesktop desktop;
    desktop.answers = {card, drive};
    WindowSupport::WindowDriver driver(WindowSupport::application(desktop));
    driver.press("offload.source.choose");
    WindowSupport::waitForStage(driver, keldo_app::OffloadViewModel::Stage::setup);
    driver.press("offload.add");
    driver.press("offload.start");
    driver.waitFor("the first progress",
                   [&] { return WindowSupport::offloadOf(driver)->progress().has_value(); });
    QMetaObject::invokeMethod(
        &driver.window(), [&] { driver.window().close(); }, Qt::QueuedConnection);
    keldo_app::runUntilClosed();
}
}  // namespace

TEST_F(ContentViewTests, Opens_OnTheOffloadModeWithItsTitleAndSmallestSize) {
    openWindow();
    EXPECT_EQ(driver_->window().title(), "keldobay");
    EXPECT_EQ(driver_->window().minimumSize(), QSize(940, 680));
    EXPECT_TRUE(driver_->isShown("offload.source.choose"));
    keepPictures("start");
}

TEST_F(ContentViewTests, EachMode_ShowsItsScreenAndDropsTheOneBefore) {
    openWindow();
    for (const QString mode : {"Plan", "Transcode", "Transcript", "Sync", "Recover"}) {
        driver_->press("mode." + mode);
        EXPECT_TRUE(driver_->isShown(mode.toLower() + ".page")) << mode.toStdString();
        EXPECT_FALSE(driver_->isShown("offload.page"));
    }
    driver_->press("mode.Offload");
    EXPECT_TRUE(driver_->isShown("offload.source.choose"));
}

TEST_F(ContentViewTests, SwitchDuringARun_LeavesItGoingAndComesBackToAFreshScreen) {
    TestSupport::writeFile(card() / "long.mxf", TestSupport::noise(48 << 20));
    setUpOffload();
    driver_->press("offload.start");
    driver_->press("mode.Plan");
    EXPECT_EQ(offload(), nullptr);
    driver_->press("mode.Offload");
    EXPECT_EQ(offload()->stage(), Stage::setup);
    EXPECT_FALSE(offload()->source());
    driver_->waitFor(
        "the unseen run to end",
        [&] { return std::filesystem::exists(drive("RAID_MASTER") / "A001" / "A001.mhl"); },
        120'000);
}

TEST_F(ContentViewTests, CloseDuringARun_EndsTheProcessAtOnceAndCleanly) {
    TestSupport::writeFile(card() / "long.mxf", TestSupport::noise(256 << 20));
    EXPECT_EXIT(closeDuringARun(card(), drive("SHUTTLE_01")), testing::ExitedWithCode(0), "");
}
