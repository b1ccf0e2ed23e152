#include "OffloadFixture.h"

using WindowSupport::OffloadFixture;

namespace {
class FinishedViewTests : public OffloadFixture {};
}  // namespace

TEST_F(FinishedViewTests, AllVerified_ShowsTheProofAndOffersTheErase) {
    setUpOffload();
    runToEnd();
    EXPECT_EQ(driver_->text("offload.verdict"), "All Files Verified");
    EXPECT_EQ(driver_->text("offload.verdict.files"), "4 files");
    EXPECT_EQ(driver_->text("offload.verdict.total"), "537.1 KB");
    EXPECT_EQ(driver_->text("offload.verdict.drives"), "2 drives");
    EXPECT_EQ(driver_->text("offload.verdict.algorithm"), "xxhash64");
    EXPECT_EQ(driver_->text("offload.reason"), "All 4 files verified on 2 drives.");
    EXPECT_TRUE(driver_->isShown("offload.formatButton"));
    EXPECT_FALSE(driver_->isShown("offload.locked"));
    EXPECT_FALSE(driver_->isShown("offload.failures"));
    EXPECT_FALSE(driver_->isShown("offload.failed.message"));
    keepPictures("verified");
}

TEST_F(FinishedViewTests, LyingDrive_ShowsTheFailedFilesAndLocksTheErase) {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    addDrive(faultyDrive({.onlyFile = "A001C002.MXF", .flipBitAt = 1000}));
    offload()->setReelName("A001");
    runToEnd();
    EXPECT_EQ(driver_->text("offload.verdict"), "Verification Problems");
    EXPECT_EQ(driver_->text("offload.failures.0"), "XDROOT/Clip/A001C002.MXF");
    EXPECT_EQ(driver_->text("offload.reason"), "1 file(s) failed verification — DO NOT format.");
    EXPECT_EQ(driver_->text("offload.locked"), "Formatting locked — keep the card.");
    EXPECT_FALSE(driver_->isShown("offload.formatButton"));
    keepPictures("problems");
}

TEST_F(FinishedViewTests, ManyFailedFiles_StayInAListOfTheirOwn) {
    for (int i = 0; i < 60; ++i) {
        TestSupport::writeFile(card() / ("CLIP_" + std::to_string(i) + ".MXF"), "picture");
    }
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    addDrive(faultyDrive({.flipBitAt = 2}));
    runToEnd();
    EXPECT_EQ(driver_->find("offload.failures")->property("count").toInt(), 64);
    EXPECT_LE(driver_->find("offload.failures")->height(), 240);
    keepPictures("many-problems");
}

TEST_F(FinishedViewTests, OneDrive_KeepsTheEraseLocked) {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    runToEnd();
    EXPECT_EQ(driver_->text("offload.verdict"), "All Files Verified");
    EXPECT_EQ(driver_->text("offload.reason"),
              "Only 1 copy — need at least 2 verified copies before formatting.");
    EXPECT_TRUE(driver_->isShown("offload.locked"));
    EXPECT_FALSE(driver_->isShown("offload.formatButton"));
    keepPictures("one-copy");
}

TEST_F(FinishedViewTests, EmptyCard_IsAProblemWithoutFailedFiles) {
    openWindow();
    chooseCard(drive("EMPTY"));
    addDrive(drive("SHUTTLE_01"));
    addDrive(drive("RAID_MASTER"));
    runToEnd();
    EXPECT_EQ(driver_->text("offload.verdict"), "Verification Problems");
    EXPECT_FALSE(driver_->isShown("offload.failures"));
    EXPECT_EQ(driver_->text("offload.reason"), "0 file(s) failed verification — DO NOT format.");
    keepPictures("empty-card");
}

TEST_F(FinishedViewTests, FailedRun_ShowsOnlyWhy) {
    openWindow();
    chooseCard(card());
    addDrive(drive("SHUTTLE_01"));
    addDrive(faultyDrive({.writeError = 28, .failWriteAfter = 100'000}));
    runToEnd();
    const QString error = driver_->text("offload.failed.message");
    EXPECT_TRUE(error.startsWith("Failed writing to ")) << error.toStdString();
    EXPECT_TRUE(error.endsWith(": No space left on device")) << error.toStdString();
    EXPECT_FALSE(driver_->isShown("offload.format"));
    EXPECT_FALSE(driver_->isShown("offload.verdict"));
    EXPECT_TRUE(driver_->isShown("offload.new"));
    keepPictures("failed");
}

TEST_F(FinishedViewTests, DrivesWithSomethingToSayOfThem_GetALineEachBesideTheVerdict) {
    setUpOffload();
    runToEnd();
    showResultWith({{false, ReelCore::DestinationState::HashList::written},
                    {false, ReelCore::DestinationState::HashList::notWritten}});
    EXPECT_EQ(driver_->text("offload.verdict"), "All Files Verified");
    const WindowSupport::Shown weaker{
        "The proof is weaker on SHUTTLE_01: the copies were read back, but this computer may have "
        "answered from its memory and not from the drive.",
        driver_->themeColor("attention").name().toStdString(), "exclamationmark.triangle.fill",
        driver_->themeColor("attention").name().toStdString()};
    EXPECT_EQ(driver_->shown("offload.notes.0"), weaker);
    EXPECT_TRUE(driver_->isShown("offload.notes.1"));
    EXPECT_EQ(driver_->shown("offload.notes.2").text,
              "RAID_MASTER has no hash list: it could not be written.");
    EXPECT_FALSE(driver_->isShown("offload.notes.3"));
    EXPECT_TRUE(driver_->isShown("offload.formatButton"));
    keepPictures("verified-weaker");
}

TEST_F(FinishedViewTests, DrivesAsTheyShouldBe_GetNoLines) {
    setUpOffload();
    runToEnd();
    showResultWith({{true, ReelCore::DestinationState::HashList::written},
                    {true, ReelCore::DestinationState::HashList::written}});
    EXPECT_FALSE(driver_->isShown("offload.notes"));
    driver_->press("offload.formatButton");
    driver_->waitFor("the sheet", [&] { return driver_->isShown("sheet.heading"); });
    EXPECT_FALSE(driver_->isShown("sheet.weakerProofs"));
}

TEST_F(FinishedViewTests, WeakerProof_IsSaidOnceMoreInTheSheet) {
    setUpOffload();
    runToEnd();
    showResultWith({{true, ReelCore::DestinationState::HashList::notWritten},
                    {false, ReelCore::DestinationState::HashList::written}});
    driver_->press("offload.formatButton");
    driver_->waitFor("the sheet", [&] { return driver_->isShown("sheet.heading"); });
    EXPECT_EQ(
        driver_->shown("sheet.weakerProofs.0").text,
        "The proof is weaker on RAID_MASTER: the copies were read back, but this computer may "
        "have answered from its memory and not from the drive.");
    EXPECT_EQ(driver_->text("sheet.text"),
              "This permanently erases the source card. Your footage is verified on 2 drives, so "
              "this is safe — but it cannot be undone.");
    keepPictures("erase-weaker");
}

TEST_F(FinishedViewTests, FailedRunWithAReason_AddsItBelowTheError) {
    setUpOffload();
    offload()->apply(keldo_app::OffloadEvent{keldo_app::OffloadEvent::Failed{
        "Destination is not writable: /media/SHUTTLE_01",
        "The reel folder lies inside the reel folder on RAID_MASTER."}});
    EXPECT_EQ(driver_->text("offload.failed.message"),
              "Destination is not writable: /media/SHUTTLE_01");
    EXPECT_EQ(driver_->shown("offload.failed.reasons.0").text,
              "The reel folder lies inside the reel folder on RAID_MASTER.");
    EXPECT_EQ(driver_->shown("offload.failed.reasons.0").textColor,
              driver_->themeColor("attention").name().toStdString());
    keepPictures("failed-reason");
    offload()->apply(
        keldo_app::OffloadEvent{keldo_app::OffloadEvent::Failed{"Offload cancelled."}});
    EXPECT_FALSE(driver_->isShown("offload.failed.reasons"));
}

TEST_F(FinishedViewTests, SaveReport_SaysWhereItWentAndShowsIt) {
    setUpOffload();
    runToEnd();
    desktop_.answers = {drive("Reports")};
    driver_->press("offload.save");
    driver_->waitFor("the report", [&] { return driver_->text("offload.reportStatus") != ""; });
    EXPECT_EQ(driver_->text("offload.reportStatus"), "Saved 2 file(s) to Reports.");
    EXPECT_EQ(desktop_.revealed,
              std::vector<ReelCore::URL>{drive("Reports") / "Offload_Report_A001.pdf"});
    keepPictures("report-saved");
}

TEST_F(FinishedViewTests, SaveReport_ThatCantBeWritten_SaysSo) {
    setUpOffload();
    runToEnd();
    desktop_.answers = {card() / "SOUND/T001.WAV"};
    driver_->press("offload.save");
    driver_->waitFor("the answer", [&] { return driver_->text("offload.reportStatus") != ""; });
    EXPECT_EQ(driver_->text("offload.reportStatus"), "Could not write report.");
    EXPECT_EQ(driver_->shown("offload.reportStatus").textColor,
              driver_->themeColor("secondary").name().toStdString());
    EXPECT_TRUE(desktop_.revealed.empty());
    keepPictures("report-failed");
}

TEST_F(FinishedViewTests, NewOffload_StartsFromTheSameCardDrivesAndReel) {
    setUpOffload();
    runToEnd();
    driver_->press("offload.new");
    EXPECT_EQ(offload()->stage(), Stage::setup);
    EXPECT_EQ(driver_->text("offload.reel"), "A001");
    EXPECT_TRUE(driver_->isShown("offload.drive.1"));
    EXPECT_TRUE(driver_->isShown("offload.scan"));
    runToEnd();
    EXPECT_EQ(driver_->text("offload.verdict"), "All Files Verified");
}
