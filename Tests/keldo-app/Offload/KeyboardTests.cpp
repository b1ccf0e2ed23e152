#include "OffloadFixture.h"

using WindowSupport::OffloadFixture;

namespace {

class KeyboardTests : public OffloadFixture {
protected:
    QString focused() const {
        QQuickItem* item = driver_->window().activeFocusItem();
        while (item && item->objectName().isEmpty()) item = item->parentItem();
        return item ? item->objectName() : QString();
    }

    /// The names that Tab reaches from the start, once around.
    QStringList tabRound() {
        QStringList names;
        for (int i = 0; i < 40; ++i) {
            driver_->key(Qt::Key_Tab);
            if (names.contains(focused())) break;
            names += focused();
            EXPECT_TRUE(focusedIsInView()) << focused().toStdString();
        }
        return names;
    }

    /// The names of one round, in alphabetical order.
    QStringList sortedRound() {
        QStringList names = tabRound();
        names.sort();
        return names;
    }

    bool focusedIsInView() const {
        const QQuickItem* item = driver_->window().activeFocusItem();
        const QQuickItem* scroll = driver_->find("offload.page.scroll");
        if (!scroll->isAncestorOf(item)) return true;
        const QRectF place = item->mapRectToItem(scroll, QRectF(QPointF(), item->size()));
        return place.top() >= 0 && place.bottom() <= scroll->height();
    }

    void focus(const char* name) { driver_->find(name)->forceActiveFocus(Qt::TabFocusReason); }
};

}  // namespace

TEST_F(KeyboardTests, TabReachesEveryControlOfTheSetup) {
    setUpOffload();
    EXPECT_EQ(sortedRound(), (QStringList{"mode", "offload.add", "offload.checksum",
                                          "offload.source.choose", "offload.reel", "offload.remove.0",
                                          "offload.remove.1", "offload.start"}));
    focus("offload.reel");
    keepPictures("focus");
    focus("offload.start");
    keepPictures("focus-button");
    focus("offload.checksum");
    keepPictures("focus-segment");
}

TEST_F(KeyboardTests, TabReachesEveryControlOfARun) {
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.delay = 2'000}));
    driver_->press("offload.start");
    driver_->waitFor("the run", [&] { return driver_->isShown("offload.running.current"); });
    EXPECT_EQ(sortedRound(), (QStringList{"mode", "offload.running.cancel"}));
    focus("offload.running.cancel");
    driver_->key(Qt::Key_Space);
    waitForStage(Stage::finished);
    EXPECT_EQ(driver_->text("offload.failed.message"), "Offload cancelled.");
}

TEST_F(KeyboardTests, TabReachesEveryControlOfAProvedRun) {
    setUpOffload();
    runToEnd();
    EXPECT_EQ(sortedRound(),
              (QStringList{"mode", "offload.formatButton", "offload.new", "offload.save"}));
}

TEST_F(KeyboardTests, TabReachesALongListOfFailedFilesAndTheArrowsScrollIt) {
    for (int i = 0; i < 60; ++i) {
        TestSupport::writeFile(card() / ("CLIP_" + std::to_string(i) + ".MXF"), "picture");
    }
    openWindow();
    chooseCard(card());
    addDrive(faultyDrive({.flipBitAt = 2}));
    runToEnd();
    EXPECT_EQ(sortedRound(),
              (QStringList{"mode", "offload.failures.0", "offload.new", "offload.save"}));
    focus("offload.failures");
    keepPictures("focus-failures");
    const QQuickItem* list = driver_->find("offload.failures");
    for (int i = 0; i < 63; ++i) driver_->key(Qt::Key_Down);
    driver_->waitFor("the last failed file", [&] { return list->property("atYEnd").toBool(); });
}

TEST_F(KeyboardTests, TabStaysInTheSheet) {
    setUpOffload();
    runToEnd();
    focus("offload.formatButton");
    driver_->key(Qt::Key_Space);
    driver_->waitFor("the sheet", [&] { return focused() == "sheet.typed"; });
    EXPECT_EQ(sortedRound(), (QStringList{"sheet.cancel", "sheet.typed"}));
    focus("sheet.typed");
    driver_->type("ERASE");
    EXPECT_EQ(sortedRound(), (QStringList{"sheet.cancel", "sheet.erase", "sheet.typed"}));
    focus("sheet.cancel");
    driver_->key(Qt::Key_Space);
    driver_->waitFor("the sheet to close", [&] { return !driver_->isShown("sheet.typed"); });
}

TEST_F(KeyboardTests, WhatTabReachesIsScrolledIntoView) {
    openWindow();
    driver_->resize(940, 680);
    for (int i = 0; i < 9; ++i) addDrive(drive("DRIVE_" + std::to_string(i)));
    chooseCard(card());
    ASSERT_GT(driver_->find("offload.page.scroll")->property("contentHeight").toDouble(), 680);
    EXPECT_EQ(tabRound().size(), 15);
}

TEST_F(KeyboardTests, RemovingDrives_KeepsTheFocusOnARow) {
    openWindow();
    for (const char* name : {"SHUTTLE_01", "RAID_MASTER", "EMPTY"}) addDrive(drive(name));
    focus("offload.remove.1");
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(driver_->text("offload.drive.1"), "EMPTY");
    EXPECT_EQ(focused(), "offload.remove.1");
    driver_->key(Qt::Key_Space);
    EXPECT_EQ(focused(), "offload.remove.0");
    EXPECT_EQ(driver_->text("offload.drive.0"), "SHUTTLE_01");
    driver_->key(Qt::Key_Space);
    EXPECT_TRUE(driver_->isShown("offload.nodrives"));
    EXPECT_EQ(focused(), "offload.add");
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
    EXPECT_EQ(driver_->text("later"), "Transcode is not in this version yet.");
}
