#include "OffloadViewModelFixture.h"
#include "Support/FaultyFileSystem.h"

#include <algorithm>

using keldo_app::InUse;
using ReelCore::URL;

namespace {

/// Runs onto a drive whose every write takes its time, so that what happens meanwhile can be seen.
class OffloadViewModelRunTests : public OffloadViewModelFixture {
protected:
    URL slowDrive(std::int64_t delay) {
        const URL mountPoint = folder_.path() / "slow";
        std::filesystem::create_directories(backing());
        std::filesystem::create_directories(mountPoint);
        slow_ = std::make_unique<TestSupport::FaultyFileSystem>(
            backing(), mountPoint, TestSupport::FaultyFileSystem::Faults{.delay = delay});
        return mountPoint;
    }

    URL backing() const { return folder_.path() / "backing"; }

    std::int64_t written(const char* name) const {
        std::error_code none;
        const auto size = std::filesystem::file_size(backing() / "A001" / name, none);
        return none ? 0 : static_cast<std::int64_t>(size);
    }

    void waitUntilWritten(const char* name, std::int64_t bytes) const {
        ASSERT_TRUE(QTest::qWaitFor([&] { return written(name) >= bytes; }, 60'000));
    }

    std::unique_ptr<TestSupport::FaultyFileSystem> slow_;
};

}  // namespace

TEST_F(OffloadViewModelRunTests, SecondRunIntoTheSameReel_ReplacesTheFilesThere) {
    choose(card());
    add(one());
    model_.setReelName("A001");
    runToEnd();
    TestSupport::writeFile(card() / "sound.wav", "another take");
    model_.reset();
    runToEnd();
    EXPECT_TRUE(model_.result()->allVerified());
    auto copy = TestSupport::readTree(one() / "A001");
    EXPECT_EQ(copy.erase("A001.mhl"), 1U);
    EXPECT_EQ(copy, TestSupport::readTree(card()));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(one()), {}), 1);
}

TEST_F(OffloadViewModelRunTests, DuringALongFile_TheFractionStandsStill) {
    constexpr std::int64_t length = 12 << 20;
    TestSupport::writeFile(card() / "a_first.mxf", TestSupport::noise(4 << 20));
    TestSupport::writeFile(card() / "b_long.mxf", TestSupport::noise(length));
    std::filesystem::remove_all(card() / "XDROOT");
    std::filesystem::remove(card() / "sound.wav");
    choose(card());
    add(slowDrive(20));
    model_.setReelName("A001");
    std::vector<std::pair<std::int64_t, double>> seen;
    QObject::connect(&model_, &keldo_app::OffloadViewModel::changed, &model_, [&] {
        if (const auto& now = model_.progress())
            seen.emplace_back(now->filesCompleted, now->fractionComplete());
    });
    model_.start();
    waitUntilWritten("b_long.mxf", length / 4);
    EXPECT_EQ(model_.progress()->fractionComplete(), 0.25);
    waitUntilWritten("b_long.mxf", length / 4 * 3);
    EXPECT_EQ(model_.progress()->fractionComplete(), 0.25);
    ASSERT_TRUE(waitForStage(Stage::finished));
    for (const auto& [files, fraction] : seen) {
        EXPECT_EQ(fraction, files == 0 ? 0 : files == 1 ? 0.25 : 1) << files;
    }
    EXPECT_EQ(model_.progress()->fractionComplete(), 1);
}

TEST_F(OffloadViewModelRunTests, ItCopiesBlocksOfFourMebibytes) {
    TestSupport::writeFile(card() / "a_long.mxf", TestSupport::noise(16 << 20));
    choose(card());
    add(slowDrive(200));
    model_.setReelName("A001");
    model_.start();
    waitUntilWritten("a_long.mxf", 1);
    model_.cancel();
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(model_.errorMessage(), "Offload cancelled.");
    EXPECT_EQ(written("a_long.mxf"), 4'194'304) << "the block that was on its way is written";
}

TEST_F(OffloadViewModelRunTests, StartWhileRunning_DoesNothing) {
    choose(card());
    add(slowDrive(100));
    model_.setReelName("A001");
    std::vector<Stage> stages;
    QObject::connect(&model_, &keldo_app::OffloadViewModel::changed, &model_, [&] {
        if (stages.empty() || stages.back() != model_.stage()) stages.push_back(model_.stage());
    });
    model_.start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return model_.progress().has_value(); }, 30'000));
    model_.start();
    EXPECT_EQ(model_.stage(), Stage::running);
    EXPECT_TRUE(model_.progress());
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(stages, (std::vector{Stage::running, Stage::finished}));
    EXPECT_TRUE(model_.result()->allVerified());
}

TEST_F(OffloadViewModelRunTests, Start_ClearsWhatTheRunBeforeLeft) {
    choose(card());
    add(one());
    add(slowDrive(50));
    model_.start();
    model_.cancel();
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(model_.errorMessage(), "Offload cancelled.");
    model_.reset();
    EXPECT_EQ(model_.errorMessage(), "");
    model_.start();
    EXPECT_EQ(model_.errorMessage(), "");
    EXPECT_FALSE(model_.progress());
    ASSERT_TRUE(waitForStage(Stage::finished));
    EXPECT_EQ(model_.errorMessage(), "");
    EXPECT_TRUE(model_.gate()->eligible);
    EXPECT_EQ(model_.formatStatus(), "");
}

TEST_F(OffloadViewModelRunTests, TheChosenAlgorithmIsUsedAndKept) {
    choose(card());
    add(one());
    ASSERT_TRUE(model_.setProperty("algorithmIndex", 2));
    model_.setProperty("algorithmIndex", 3);
    model_.setProperty("algorithmIndex", -1);
    runToEnd();
    EXPECT_EQ(model_.result()->request.algorithm, ReelCore::HashAlgorithm::sha256);
    EXPECT_EQ(model_.result()->files.front().sourceHash.size(), 64U);
    model_.reset();
    EXPECT_EQ(model_.algorithm(), ReelCore::HashAlgorithm::sha256);
}

TEST_F(OffloadViewModelRunTests, CardUnderErase_IsNeitherScannedNorOffloadedUntilThatHasEnded) {
    auto erase = InUse::shared().take({{card(), InUse::Purpose::erasing}});
    desktop_.answers = {card()};
    model_.chooseSource();
    add(one());
    EXPECT_EQ(model_.stage(), Stage::setup);
    EXPECT_EQ(model_.source(), card());
    EXPECT_FALSE(model_.canStart());
    EXPECT_EQ(model_.startObjection(), "“card” is being erased. Wait until that has ended.");
    model_.start();
    EXPECT_EQ(model_.stage(), Stage::setup);
    erase.reset();
    ASSERT_TRUE(QTest::qWaitFor([&] { return model_.scan().has_value(); }, 30'000));
    EXPECT_EQ(model_.startObjection(), "");
    EXPECT_TRUE(model_.canStart());
}

TEST_F(OffloadViewModelRunTests, RunThatNobodySees_KeepsItsReelAndItsCard) {
    const URL drive = slowDrive(300);
    std::optional<keldo_app::OffloadViewModel> dropped(std::in_place);
    dropped->desktop = &desktop_;
    desktop_.answers = {card(), drive};
    dropped->chooseSource();
    dropped->addDestination();
    dropped->setReelName("A001");
    ASSERT_TRUE(QTest::qWaitFor([&] { return dropped->canStart(); }, 30'000));
    dropped->start();
    dropped.reset();

    choose(card());
    add(drive);
    model_.setReelName("A001");
    EXPECT_EQ(model_.startObjection(), "“A001” is being written to. Wait until that has ended.");
    EXPECT_FALSE(model_.canStart());
    EXPECT_EQ(model_.formatObjection(), "“card” is being copied. Wait until that has ended.");
    model_.setReelName("A002");
    EXPECT_EQ(model_.startObjection(), "") << "two runs may read one card";
    model_.setReelName("A001");
    EXPECT_TRUE(QTest::qWaitFor([&] { return model_.canStart(); }, 60'000));
}
