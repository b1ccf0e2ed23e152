#include "OffloadViewModelFixture.h"
#include "Support/FolderTree.h"
#include "Window/FakeDesktop.h"
#include "keldo-app/Support/Format.h"

#include <QTest>

#include <gtest/gtest.h>

using keldo_app::Format;
using keldo_app::OffloadViewModel;
using ReelCore::URL;

namespace {
class OffloadViewModelTests : public OffloadViewModelFixture {};
}  // namespace

TEST_F(OffloadViewModelTests, Start_HasNothingChosenAndCantStart) {
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_FALSE(model_.source());
    EXPECT_FALSE(model_.scan());
    EXPECT_TRUE(model_.destinations().empty());
    EXPECT_EQ(model_.reelName(), "");
    EXPECT_EQ(model_.algorithm(), ReelCore::HashAlgorithm::xxhash64);
    EXPECT_FALSE(model_.canStart());
    EXPECT_FALSE(model_.formatPlan());
}

TEST_F(OffloadViewModelTests, ChooseSource_ScansItAndNamesTheReel) {
    desktop_.answers = {card()};
    model_.setReelName("typed");
    model_.chooseSource();
    EXPECT_EQ(model_.stage(), Stage::scanning);
    EXPECT_FALSE(model_.canStart());
    ASSERT_TRUE(waitForStage(Stage::setup));
    EXPECT_EQ(desktop_.messages, QStringList("Choose Camera Card / Source"));
    EXPECT_EQ(model_.reelName(), Format::defaultReel(card()));
    ASSERT_TRUE(model_.scan());
    EXPECT_EQ(model_.scan()->fileCount(), 2);
    EXPECT_EQ(model_.scan()->cameraFormat, ReelCore::CameraFormat::sony);
}

TEST_F(OffloadViewModelTests, ChooseSource_Dismissed_ChangesNothing) {
    choose(card());
    model_.setReelName("typed");
    model_.chooseSource();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_EQ(model_.source(), card());
    EXPECT_EQ(model_.reelName(), "typed");
}

TEST_F(OffloadViewModelTests, ChooseSource_ThatCantBeScanned_StaysChosenWithoutASummary) {
    choose(folder_.path() / "missing");
    EXPECT_EQ(model_.source(), folder_.path() / "missing");
    EXPECT_FALSE(model_.scan());
    EXPECT_EQ(model_.errorMessage(), "");
    add(one());
    EXPECT_TRUE(model_.canStart());
    runToEnd();
    EXPECT_EQ(model_.errorMessage(),
              "Source not found or not a directory: " + Format::path(folder_.path() / "missing"));
}

TEST_F(OffloadViewModelTests, ChooseSource_AgainWhileScanning_KeepsTheSecond) {
    const URL other = folder_.path() / "other";
    TestSupport::writeTree(other, {{"one.mov", "1"}});
    desktop_.answers = {card(), other};
    model_.chooseSource();
    model_.chooseSource();
    ASSERT_TRUE(waitForStage(Stage::setup));
    EXPECT_EQ(model_.scan()->root, other);
}

TEST_F(OffloadViewModelTests, AddDestination_TwiceTheSame_LeavesOne) {
    add(one());
    add(one());
    add(two());
    EXPECT_EQ(model_.destinations(), (std::vector<URL>{one(), two()}));
    EXPECT_EQ(desktop_.messages.constFirst(), "Add Backup Drive");
}

TEST_F(OffloadViewModelTests, RemoveDestination_TakesThatRow) {
    add(one());
    add(two());
    model_.removeDestination(0);
    EXPECT_EQ(model_.destinations(), std::vector<URL>{two()});
    model_.removeDestination(7);
    EXPECT_EQ(model_.destinations(), std::vector<URL>{two()});
}

TEST_F(OffloadViewModelTests, CanStart_NeedsSourceDriveAndReelName) {
    choose(card());
    EXPECT_FALSE(model_.canStart());
    add(one());
    EXPECT_TRUE(model_.canStart());
    model_.setReelName("");
    EXPECT_FALSE(model_.canStart());
    model_.setReelName("  ");
    EXPECT_TRUE(model_.canStart());
}

TEST_F(OffloadViewModelTests, Start_WithoutDrives_DoesNothing) {
    choose(card());
    model_.start();
    EXPECT_EQ(model_.stage(), Stage::setup);
}

TEST_F(OffloadViewModelTests, Run_OnTwoDrives_IsVerifiedAndOpensTheGate) {
    choose(card());
    add(one());
    add(two());
    model_.setReelName("A001");
    runToEnd();
    ASSERT_TRUE(model_.result());
    EXPECT_TRUE(model_.result()->allVerified());
    EXPECT_TRUE(model_.gate()->eligible);
    EXPECT_EQ(model_.gate()->reason, "All 2 files verified on 2 drives.");
    EXPECT_EQ(model_.progress()->phase, ReelCore::OffloadProgress::Phase::done);
    auto copy = TestSupport::readTree(one() / "A001");
    EXPECT_EQ(copy.erase("A001.mhl"), 1U);
    EXPECT_EQ(copy, TestSupport::readTree(card()));
    EXPECT_EQ(model_.formatPlan(), ReelCore::CardFormatter::plan(
                                       card(), "A001", ReelCore::CardFormatter::FileSystem::exFAT));
}

TEST_F(OffloadViewModelTests, Run_OnOneDrive_KeepsTheGateClosed) {
    choose(card());
    add(one());
    runToEnd();
    EXPECT_FALSE(model_.gate()->eligible);
    EXPECT_TRUE(model_.gate()->reason.starts_with("Only 1 copy"));
}

TEST_F(OffloadViewModelTests, Run_OfAnEmptyCard_IsNotVerified) {
    const URL empty = folder_.path() / "empty";
    std::filesystem::create_directories(empty);
    choose(empty);
    add(one());
    add(two());
    runToEnd();
    EXPECT_FALSE(model_.result()->allVerified());
    EXPECT_EQ(model_.gate()->reason, "0 file(s) failed verification — DO NOT format.");
}

TEST_F(OffloadViewModelTests, Cancel_EndsTheRunAsAFailure) {
    TestSupport::writeFile(card() / "long.mxf", TestSupport::noise(64 << 20));
    choose(card());
    add(one());
    model_.start();
    model_.cancel();
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(model_.errorMessage(), "Offload cancelled.");
    EXPECT_FALSE(model_.result());
    EXPECT_FALSE(model_.gate());
}

TEST_F(OffloadViewModelTests, Start_AfterACancel_RunsAgain) {
    choose(card());
    add(one());
    model_.cancel();
    runToEnd();
    EXPECT_EQ(model_.errorMessage(), "");
    EXPECT_TRUE(model_.result()->allVerified());
}

TEST_F(OffloadViewModelTests, Reset_KeepsWhatWasChosenAndDropsTheOutcome) {
    choose(card());
    add(one());
    add(two());
    model_.setReelName("A001");
    runToEnd();
    model_.reset();
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_FALSE(model_.result());
    EXPECT_FALSE(model_.gate());
    EXPECT_FALSE(model_.progress());
    EXPECT_EQ(model_.reelName(), "A001");
    EXPECT_EQ(model_.source(), card());
    EXPECT_EQ(model_.destinations().size(), 2U);
    EXPECT_TRUE(model_.scan());
    EXPECT_TRUE(model_.canStart());
}

TEST_F(OffloadViewModelTests, FormatCard_BehindAClosedGate_DoesNothing) {
    choose(card());
    add(one());
    runToEnd();
    model_.formatCard();
    EXPECT_FALSE(model_.isFormatting());
    EXPECT_EQ(model_.formatStatus(), "");
}

TEST_F(OffloadViewModelTests, DroppedDuringARun_LeavesTheRunGoingToItsEnd) {
    TestSupport::writeFile(card() / "long.mxf", TestSupport::noise(32 << 20));
    {
        OffloadViewModel dropped;
        dropped.desktop = &desktop_;
        desktop_.answers = {card(), one()};
        dropped.chooseSource();
        dropped.addDestination();
        ASSERT_TRUE(QTest::qWaitFor([&] { return dropped.canStart(); }, 30'000));
        dropped.setReelName("A001");
        dropped.start();
    }
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return std::filesystem::exists(one() / "A001" / "A001.mhl"); }, 60'000));
}
