#include "OffloadFixture.h"

using WindowSupport::OffloadFixture;

namespace {

class KeyboardTests : public OffloadFixture {
protected:
    bool focusedIsInView() const {
        const QQuickItem* item = driver_->window().activeFocusItem();
        const QQuickItem& scroll = driver_->at("offload.page.scroll");
        if (!scroll.isAncestorOf(item)) return true;
        const QRectF place = item->mapRectToItem(&scroll, QRectF(QPointF(), item->size()));
        return place.top() >= 0 && place.bottom() <= scroll.height();
    }
};

}  // namespace

TEST_F(KeyboardTests, Tab_GoesThroughTheSetupAsTheEyeDoes) {
    setUpOffload();
    driver_->focus("mode");
    EXPECT_EQ(driver_->tabRound(), (QStringList{"offload.source.choose", "offload.remove.0",
                                                "offload.remove.1", "offload.add", "offload.reel",
                                                "offload.checksum", "offload.start", "mode"}));
    driver_->focus("offload.reel");
    keepPictures("focus");
    driver_->focus("offload.start");
    keepPictures("focus-button");
    driver_->focus("offload.checksum");
    keepPictures("focus-segment");
}

TEST_F(KeyboardTests, Tab_BeginsAtTheFirstControlOfTheScreen) {
    openWindow();
    driver_->key(Qt::Key_Tab);
    EXPECT_EQ(driver_->focused(), "offload.source.choose");
}

TEST_F(KeyboardTests, Tab_ReachesTheOnlyControlOfARun) {
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.delay = 2'000}));
    driver_->press("offload.start");
    driver_->waitFor("the run", [&] { return driver_->isShown("offload.running.current"); });
    EXPECT_EQ(driver_->focused(), "offload.page.rest") << "not on the button that is gone";
    EXPECT_EQ(driver_->tabRound(), (QStringList{"offload.running.cancel", "mode"}));
    driver_->focus("offload.running.cancel");
    driver_->key(Qt::Key_Space);
    waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.failed.message"), "Offload cancelled.");
    EXPECT_EQ(driver_->focused(), "offload.failed");
}

TEST_F(KeyboardTests, AfterARun_TheVerdictHasTheFocusAndTabGoesOnInIt) {
    setUpOffload();
    driver_->focus("offload.start");
    driver_->key(Qt::Key_Return);
    waitForStage(Stage::finished);
    EXPECT_EQ(driver_->focused(), "offload.verdict");
    EXPECT_TRUE(driver_->accessible("offload.verdict").isFocused);
    EXPECT_EQ(driver_->accessible("offload.verdict").name, "All Files Verified");
    EXPECT_EQ(driver_->tabRound(),
              (QStringList{"offload.save", "offload.formatButton", "mode", "offload.new"}));
}

TEST_F(KeyboardTests, AfterARun_TheFocusStaysOnTheModeSwitchIfItIsThere) {
    setUpOffload();
    driver_->focus("mode");
    driver_->key(Qt::Key_Return);
    waitForStage(Stage::finished);
    EXPECT_EQ(driver_->focused(), "mode");
}

TEST_F(KeyboardTests, NewOffload_LeavesTheFocusOnNoHiddenButton) {
    setUpOffload();
    runToEnd();
    driver_->focus("offload.new");
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(driver_->focused(), "offload.page.rest");
    driver_->key(Qt::Key_Tab);
    EXPECT_EQ(driver_->focused(), "offload.source.choose");
}

TEST_F(KeyboardTests, Tab_ReachesALongListOfFailedFilesAndTheArrowsScrollIt) {
    for (int i = 0; i < 60; ++i) {
        TestSupport::writeFile(card() / ("CLIP_" + std::to_string(i) + ".MXF"), "picture");
    }
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.flipBitAt = 2}));
    runToEnd();
    EXPECT_EQ(driver_->tabRound().join(" ").toStdString(),
              "offload.failures offload.save mode offload.new");
    driver_->focus("offload.failures");
    keepPictures("focus-failures");
    const QQuickItem* list = driver_->find("offload.failures");
    for (int i = 0; i < 63; ++i) driver_->key(Qt::Key_Down);
    driver_->waitFor("the last failed file", [&] { return list->property("atYEnd").toBool(); });
}

TEST_F(KeyboardTests, Tab_StaysInTheSheet) {
    setUpOffload();
    runToEnd();
    driver_->focus("offload.formatButton");
    driver_->key(Qt::Key_Space);
    driver_->waitFor("the sheet", [&] { return driver_->focused() == "sheet.typed"; });
    EXPECT_EQ(driver_->tabRound(), (QStringList{"sheet.cancel", "sheet.typed"}));
    driver_->focus("sheet.typed");
    driver_->type("ERASE");
    EXPECT_EQ(driver_->tabRound(), (QStringList{"sheet.cancel", "sheet.erase", "sheet.typed"}));
    driver_->focus("sheet.cancel");
    driver_->key(Qt::Key_Space);
    driver_->waitFor("the sheet to close", [&] { return !driver_->isShown("sheet.typed"); });
}

TEST_F(KeyboardTests, WhatTabReachesIsScrolledIntoView) {
    openWindow();
    driver_->resize(940, 680);
    for (int i = 0; i < 9; ++i) addDrive(drive("DRIVE_" + std::to_string(i)));
    chooseCard(card());
    ASSERT_GT(driver_->at("offload.page.scroll").property("contentHeight").toDouble(), 680);
    driver_->focus("mode");
    int reached = 0;
    do {
        driver_->key(Qt::Key_Tab);
        EXPECT_TRUE(focusedIsInView()) << driver_->focused().toStdString();
        ++reached;
    } while (driver_->focused() != "mode" && reached < 40);
    EXPECT_EQ(reached, 15);
}

TEST_F(KeyboardTests, Start_FromTheFootOfALongSetup_ShowsTheRunFromItsTop) {
    openWindow();
    for (int i = 0; i < 9; ++i) addDrive(drive("DRIVE_" + std::to_string(i)));
    addDrive(faultyDrive({.delay = 2'000}));
    chooseCard(card());
    driver_->press("offload.start");
    driver_->waitFor("the run", [&] { return driver_->isShown("offload.running.current"); });
    EXPECT_EQ(driver_->at("offload.page.scroll").property("contentY").toDouble(), 0);
    driver_->press("offload.running.cancel");
    waitForStage(Stage::finished);
}

TEST_F(KeyboardTests, Return_OnAButtonWithTheRing_PressesItAndStartsNothing) {
    setUpOffload();
    driver_->focus("offload.remove.1");
    driver_->key(Qt::Key_Tab);
    ASSERT_EQ(driver_->focused(), "offload.add");
    desktop_.answers = {drive("EMPTY")};
    driver_->key(Qt::Key_Return);
    EXPECT_EQ(driver_->text("offload.drive.2"), "EMPTY");
    EXPECT_EQ(offload()->stage(), Stage::setup);
    driver_->focus("offload.remove.2");
    driver_->key(Qt::Key_Enter);
    EXPECT_FALSE(driver_->isShown("offload.drive.2"));
    EXPECT_EQ(offload()->stage(), Stage::setup);
}

TEST_F(KeyboardTests, AssistiveTools_PressTheirWayThroughAnOffload) {
    openWindow();
    desktop_.answers = {card()};
    driver_->accessiblePress("offload.source.choose");
    waitForStage(Stage::setup);
    desktop_.answers = {drive("SHUTTLE_01")};
    driver_->accessiblePress("offload.add");
    driver_->accessiblePress("offload.checksum.md5");
    EXPECT_TRUE(driver_->accessible("offload.checksum.md5").isChecked);
    driver_->accessiblePress("offload.start");
    waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.verdict.algorithm"), "md5");
    driver_->accessiblePress("offload.new");
    EXPECT_EQ(offload()->stage(), Stage::setup);
}

TEST_F(KeyboardTests, RemovingDrives_KeepsTheFocusOnARow) {
    openWindow();
    for (const char* name : {"SHUTTLE_01", "RAID_MASTER", "EMPTY"}) addDrive(drive(name));
    driver_->focus("offload.remove.1");
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(driver_->text("offload.drive.1"), "EMPTY");
    EXPECT_EQ(driver_->focused(), "offload.remove.1");
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(driver_->focused(), "offload.remove.0");
    EXPECT_EQ(driver_->text("offload.drive.0"), "SHUTTLE_01");
    driver_->key(Qt::Key_Space);
    EXPECT_TRUE(driver_->isShown("offload.nodrives"));
    EXPECT_EQ(driver_->focused(), "offload.add");
}

TEST_F(KeyboardTests, Return_StartsTheOffloadFromTheReelField) {
    setUpOffload();
    driver_->press("offload.reel");
    driver_->key(Qt::Key_Return);
    waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.verdict"), "All Files Verified");
}

TEST_F(KeyboardTests, Return_DoesNothingWhileNothingCanStart) {
    openWindow();
    driver_->key(Qt::Key_Return);
    EXPECT_EQ(offload()->stage(), Stage::setup);
}

TEST_F(KeyboardTests, Return_HeldSinceAFolderPanel_DoesNotStart) {
    setUpOffload();
    for (int i = 0; i < 5; ++i) driver_->heldKey(Qt::Key_Return);
    EXPECT_EQ(offload()->stage(), Stage::setup);
    driver_->key(Qt::Key_Return);
    waitForStage(Stage::finished);
}

TEST_F(KeyboardTests, SpacePressesTheFocusedButton) {
    openWindow();
    driver_->find("offload.add")->forceActiveFocus();
    desktop_.answers = {drive("SHUTTLE_01")};
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(driver_->text("offload.drive.0"), "SHUTTLE_01");
}

TEST_F(KeyboardTests, ArrowsMoveTheChecksumAndTheMode) {
    setUpOffload();
    driver_->find("offload.checksum")->forceActiveFocus();
    driver_->key(Qt::Key_Right);
    EXPECT_EQ(offload()->algorithm(), ReelCore::HashAlgorithm::md5);
    driver_->key(Qt::Key_Left);
    EXPECT_EQ(offload()->algorithm(), ReelCore::HashAlgorithm::xxhash64);
    driver_->key(Qt::Key_Left);
    EXPECT_EQ(offload()->algorithm(), ReelCore::HashAlgorithm::xxhash64);
    driver_->find("mode")->forceActiveFocus();
    driver_->key(Qt::Key_Right);
    EXPECT_TRUE(driver_->isShown("transcode.add"));
}

TEST_F(KeyboardTests, WholeOffload_IsDoneByKeyboardAlone) {
    openWindow();
    desktop_.answers = {card(), drive("SHUTTLE_01"), drive("RAID_MASTER"), drive("Reports")};
    const auto tabTo = [&](const QString& name) {
        for (int i = 0; i < 20 && driver_->focused() != name; ++i) driver_->key(Qt::Key_Tab);
        ASSERT_EQ(driver_->focused().toStdString(), name.toStdString());
    };
    tabTo("offload.source.choose");
    driver_->key(Qt::Key_Space);
    driver_->waitFor("the scan", [&] { return driver_->isShown("offload.fileCount"); });
    tabTo("offload.add");
    driver_->key(Qt::Key_Return);
    driver_->key(Qt::Key_Return);
    tabTo("offload.reel");
    driver_->key(Qt::Key_A, Qt::ControlModifier);
    driver_->type("A001");
    driver_->key(Qt::Key_Return);
    waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.verdict"), "All Files Verified");
    tabTo("offload.save");
    driver_->key(Qt::Key_Space);
    driver_->waitFor("the report", [&] {
        return driver_->text("offload.reportStatus") == "Saved 2 file(s) to Reports.";
    });
    tabTo("offload.formatButton");
    driver_->key(Qt::Key_Return);
    driver_->waitFor("the sheet", [&] { return driver_->focused() == "sheet.typed"; });
    driver_->key(Qt::Key_Escape);
    driver_->waitFor("the sheet to close", [&] { return !driver_->isShown("sheet.typed"); });
    tabTo("offload.new");
    driver_->key(Qt::Key_Space);
    driver_->waitFor("the setup", [&] { return driver_->isShown("offload.start"); });
}
