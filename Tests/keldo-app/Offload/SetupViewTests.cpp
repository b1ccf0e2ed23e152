#include "WindowFixture.h"

using WindowSupport::WindowFixture;

namespace {
class SetupViewTests : public WindowFixture {};
}  // namespace

TEST_F(SetupViewTests, AtFirst_SaysWhatIsMissingAndCantStart) {
    openWindow();
    EXPECT_EQ(driver_->text("offload.source"), "No card selected");
    EXPECT_EQ(driver_->text("offload.nodrives"),
              "Add at least two drives for a safe, format-eligible offload.");
    EXPECT_EQ(driver_->find("offload.reel")->property("placeholderText"), "A001_2026-06-06");
    EXPECT_FALSE(driver_->isEnabled("offload.start"));
    EXPECT_FALSE(driver_->isShown("offload.warning"));
    EXPECT_FALSE(driver_->isShown("offload.scan"));
}

TEST_F(SetupViewTests, ChosenCard_IsSummedUp) {
    openWindow();
    chooseCard(card());
    EXPECT_EQ(driver_->text("offload.source").toStdString(), card().native());
    EXPECT_TRUE(driver_->isShown("offload.scan"));
    EXPECT_EQ(driver_->text("offload.camera"), "Sony");
    EXPECT_EQ(driver_->text("offload.fileCount"), "4 files");
    EXPECT_EQ(driver_->text("offload.total"), "537.1 KB");
    keepPictures("card-chosen");
}

TEST_F(SetupViewTests, WhileScanning_SaysSoAndCantStart) {
    openWindow();
    addDrive(drive("SHUTTLE_01"));
    bool seen = false;
    const auto look = [&] {
        if (driver_->offload()->stage() != Stage::scanning) return;
        seen = true;
        EXPECT_EQ(driver_->text("offload.scanning"), "Scanning…");
        EXPECT_FALSE(driver_->isEnabled("offload.start"));
        EXPECT_FALSE(driver_->isShown("offload.scan"));
        driver_->screenshot(ReelCore::URL(KELDO_SCREENSHOTS) / "scanning-light-980.png");
    };
    QObject::connect(driver_->offload(), &keldo_app::OffloadViewModel::stageChanged,
                     driver_->offload(), look);
    chooseCard(card());
    EXPECT_TRUE(seen);
}

TEST_F(SetupViewTests, Dismissed_ChangesNothing) {
    openWindow();
    driver_->press("offload.choose");
    driver_->press("offload.add");
    EXPECT_EQ(desktop_.messages, (QStringList{"Choose Camera Card / Source", "Add Backup Drive"}));
    EXPECT_EQ(driver_->text("offload.source"), "No card selected");
    EXPECT_TRUE(driver_->isShown("offload.nodrives"));
}

TEST_F(SetupViewTests, OneDrive_WarnsThatFormattingStaysLocked) {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    EXPECT_EQ(driver_->text("offload.warning"),
              "One drive copies fine, but formatting stays locked until you add a second.");
    EXPECT_FALSE(driver_->isShown("offload.nodrives"));
    EXPECT_TRUE(driver_->isEnabled("offload.start"));
    keepPictures("one-drive");
}

TEST_F(SetupViewTests, DrivesAreListedOnceInOrderAndCanBeRemoved) {
    openWindow();
    addDrive(drive("SHUTTLE_01"));
    addDrive(drive("RAID_MASTER"));
    addDrive(drive("SHUTTLE_01"));
    EXPECT_EQ(driver_->text("offload.drive.0"), "SHUTTLE_01");
    EXPECT_EQ(driver_->text("offload.drive.1"), "RAID_MASTER");
    EXPECT_FALSE(driver_->isShown("offload.drive.2"));
    EXPECT_FALSE(driver_->isShown("offload.warning"));
    driver_->press("offload.remove.0");
    EXPECT_EQ(driver_->text("offload.drive.0"), "RAID_MASTER");
    EXPECT_TRUE(driver_->isShown("offload.warning"));
}

TEST_F(SetupViewTests, TypedReelName_IsUsedAndOverwrittenByANewCard) {
    openWindow();
    chooseCard(card());
    driver_->press("offload.reel");
    driver_->key(Qt::Key_End);
    driver_->type("_B");
    EXPECT_TRUE(driver_->offload()->reelName().endsWith("_B"));
    chooseCard(drive("EMPTY"));
    EXPECT_TRUE(driver_->offload()->reelName().startsWith("EMPTY_"));
    EXPECT_EQ(driver_->text("offload.reel"), driver_->offload()->reelName());
}

TEST_F(SetupViewTests, ClearedReelName_CantStart) {
    setUpOffload();
    driver_->press("offload.reel");
    for (int i = 0; i < 4; ++i) driver_->key(Qt::Key_Backspace);
    EXPECT_EQ(driver_->text("offload.reel"), "");
    EXPECT_FALSE(driver_->isEnabled("offload.start"));
    driver_->type(" ");
    EXPECT_TRUE(driver_->isEnabled("offload.start"));
}

TEST_F(SetupViewTests, Checksum_IsChosenBySegments) {
    setUpOffload();
    driver_->press("offload.checksum.sha256");
    EXPECT_EQ(driver_->offload()->algorithm(), ReelCore::HashAlgorithm::sha256);
    keepPictures("ready");
    driver_->press("offload.checksum.md5");
    EXPECT_EQ(driver_->offload()->algorithm(), ReelCore::HashAlgorithm::md5);
}

TEST_F(SetupViewTests, ManyDrivesAndLongPaths_StayWholeAndScroll) {
    openWindow();
    const ReelCore::URL far =
        drive(std::string(120, 'x')) / std::string(120, 'y') / "LONG_NAMED_DRIVE";
    chooseCard(far.parent_path().parent_path().parent_path() / "A001_C003");
    for (int i = 0; i < 8; ++i) addDrive(far / std::to_string(i));
    keepPictures("many-drives");
    driver_->press("offload.remove.7");
    EXPECT_EQ(driver_->offload()->destinations().size(), 7U);
}
