#include "OffloadFixture.h"
#include "Support/FaultyFileSystem.h"
#include "Support/LoopMount.h"

#include <cerrno>

using namespace ReelCore;
using namespace TestSupport;

namespace fs = std::filesystem;

namespace {

using Phase = OffloadProgress::Phase;

const FolderTree clips{{"A", noise(70'000, 1)}, {"B", noise(300'000, 2)}, {"C", "last"}};

class OffloadDrivesTest : public OffloadTest {
protected:
    FolderTree beginningOf(std::size_t lengthOfB) const {
        return {{"A", clips.at("A")}, {"B", clips.at("B").substr(0, lengthOfB)}};
    }
};

class OffloadToLoopMounts : public OffloadDrivesTest {
protected:
    void SetUp() override {
        if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    }
};

class OffloadToFaultyDrives : public OffloadDrivesTest {
protected:
    void SetUp() override {
        if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    }
};

}  // namespace

TEST_F(OffloadToLoopMounts, FullDrive_EndsTheRunForAllWithTheSystemsSentence) {
    const std::string large = noise(8 << 20);
    makeCard({{"A", "fits"}, {"B", large}, {"C", "never reached"}});
    const LoopMount small("ext4", 4);

    EXPECT_EQ(
        descriptionOf(request({at("d1"), small.path()})),
        "Failed writing to " + (small.path() / "A001/B").native() + ": No space left on device");

    EXPECT_EQ(copiesOn(at("d1")).at("A"), "fits");
    const FolderTree copies = copiesOn(small.path());
    EXPECT_EQ(copies.at("A"), "fits");
    EXPECT_GT(copies.at("B").size(), 1U << 20U) << "what was written stays, under its final name";
    EXPECT_TRUE(large.starts_with(copies.at("B")));
    EXPECT_FALSE(copies.contains("C"));
    EXPECT_FALSE(hasHashList(at("d1")) || hasHashList(small.path()));
    EXPECT_EQ(events_.back().phase, Phase::copying);
    EXPECT_EQ(events_.back().filesCompleted, 1);
}

TEST_F(OffloadToLoopMounts, ReadOnlyDrive_IsNotWritableAndNothingIsCopied) {
    makeCard(clips);
    LoopMount drive("ext4", 8);
    drive.makeReadOnly();

    EXPECT_EQ(descriptionOf(request({at("d1"), drive.path()})),
              "Destination is not writable: " + drive.path().native());
    EXPECT_TRUE(fs::is_empty(at("d1/A001")));
}

TEST_F(OffloadToLoopMounts, ReadOnlyDriveThatHasTheReel_FailsAtTheFirstFile) {
    makeCard(clips);
    LoopMount drive("ext4", 8);
    writeTree(drive.path() / "A001", {{"A", "old"}});
    drive.makeReadOnly();

    EXPECT_EQ(
        descriptionOf(request({at("d1"), drive.path()})),
        "Failed writing to " + (drive.path() / "A001/A").native() + ": could not create file");
    EXPECT_EQ(copiesOn(drive.path()), (FolderTree{{"A", "old"}}));
}

TEST_F(OffloadToLoopMounts, DriveVanishesBetweenFiles_NothingIsWrittenIntoItsEmptyMountPoint) {
    makeCard(clips);
    LoopMount drive("ext4", 8);
    when(Phase::copying, "B", [&] { drive.vanish(); });

    EXPECT_EQ(descriptionOf(request({at("d1"), drive.path()})),
              "Failed writing to " + (drive.path() / "A001/B").native() +
                  ": the drive is no longer there");

    EXPECT_TRUE(fs::is_empty(drive.path()));
    EXPECT_TRUE(copiesOn(at("d1")) == (FolderTree{{"A", clips.at("A")}}));
}

TEST_F(OffloadToLoopMounts, DriveVanishesInTheMiddleOfAFile_ItsReadBackFailsAndThenTheRun) {
    makeCard(clips);
    LoopMount drive("ext4", 8);
    int questions = 0;
    isCancelled = [&] {
        const bool secondBlockOfA = ++questions == 3;
        if (secondBlockOfA) drive.vanish();
        return false;
    };

    EXPECT_EQ(descriptionOf(request({at("d1"), drive.path()})),
              "Failed writing to " + (drive.path() / "A001/B").native() +
                  ": the drive is no longer there");
    EXPECT_TRUE(fs::is_empty(drive.path()));
}

TEST_F(OffloadToLoopMounts, DriveVanishesInTheLastFile_IsToldInTheResultAndTheOtherIsProved) {
    makeCard({{"A", "only"}});
    LoopMount drive("ext4", 8);
    when(Phase::verifying, "A", [&] { drive.vanish(); });

    const auto result = run(request({drive.path(), at("d2")}));

    const auto& copies = result.files.at(0).destinations;
    EXPECT_EQ(copies.at(0).error, "Failed reading A: the drive is no longer there");
    EXPECT_EQ(copies.at(0).readBackHash, std::nullopt);
    EXPECT_FALSE(copies.at(0).matches);
    EXPECT_TRUE(copies.at(1).matches);
    EXPECT_TRUE(fs::is_empty(drive.path()));
    EXPECT_TRUE(hasHashList(at("d2")));
}

TEST_F(OffloadToLoopMounts, DriveVanishesAndAnOldCopyStandsBelow_IsNotTakenForTheNewOne) {
    makeCard({{"A", "only"}});
    LoopMount drive("ext4", 8);
    when(Phase::verifying, "A", [&] {
        drive.vanish();
        writeTree(drive.path() / "A001", {{"A", "only"}});
    });

    const auto result = run(request({drive.path()}));

    EXPECT_FALSE(result.allVerified());
    EXPECT_EQ(readTree(drive.path()), (FolderTree{{"A001/A", "only"}})) << "no hash list either";
}

TEST_F(OffloadToLoopMounts, CardVanishesBetweenFiles_EndsTheRunAndTheCopiesStay) {
    LoopMount device("ext4", 8);
    writeTree(device.path(), clips);
    OffloadRequest wanted = request({at("d1")});
    wanted.source = device.path();
    when(Phase::copying, "B", [&] { device.vanish(); });

    EXPECT_EQ(descriptionOf(wanted), "Failed reading B: could not open");

    EXPECT_TRUE(copiesOn(at("d1")) == (FolderTree{{"A", clips.at("A")}}));
    EXPECT_FALSE(hasHashList(at("d1")));
}

TEST_F(OffloadToLoopMounts, ReadOnlyCard_IsCopiedLikeAnyOther) {
    LoopMount device("ext4", 8);
    writeTree(device.path(), clips);
    device.makeReadOnly();
    OffloadRequest wanted = request({at("d1")});
    wanted.source = device.path();

    EXPECT_TRUE(run(wanted).allVerified());
    EXPECT_EQ(copiesOn(at("d1")).size(), clips.size());
}

TEST_F(OffloadToFaultyDrives, WriteErrorOnTheSecondOfThree_EndsTheRunAtThatBlockForAll) {
    makeCard(clips);
    const FaultyFileSystem bad(at("back"), at("d2"), {.onlyFile = "B", .failWriteAt = 100'000});

    EXPECT_EQ(descriptionOf(request({at("d1"), bad.path(), at("d3")})),
              "Failed writing to " + (bad.path() / "A001/B").native() + ": Input/output error");

    EXPECT_TRUE(copiesOn(at("d1")) == beginningOf(2 * blockSize));
    EXPECT_TRUE(copiesOn(at("back")) == beginningOf(100'000));
    EXPECT_TRUE(copiesOn(at("d3")) == beginningOf(blockSize)) << "no more after the failure";
    for (const char* drive : {"d1", "back", "d3"}) EXPECT_FALSE(hasHashList(at(drive)));
}

TEST_F(OffloadToFaultyDrives, DriveFullAfterSomeBytesInTotal_TellsTheSystemsSentence) {
    makeCard(clips);
    const FaultyFileSystem full(at("back"), at("d1"),
                                {.writeError = ENOSPC, .failWriteAfter = 150'000});

    EXPECT_EQ(
        descriptionOf(request({full.path()})),
        "Failed writing to " + (full.path() / "A001/B").native() + ": No space left on device");
    EXPECT_TRUE(copiesOn(at("back")) == beginningOf(80'000));
}

TEST_F(OffloadToFaultyDrives, DriveVanishesInTheMiddleOfAFile_EndsTheRunAndTheOtherKeepsItsFiles) {
    makeCard(clips);
    const FaultyFileSystem bad(at("back"), at("d2"), {.vanishAfterWriting = 200'000});

    const auto error = failureOf(request({at("d1"), bad.path()}));

    ASSERT_TRUE(error && error->is<OffloadError::WriteFailed>());
    EXPECT_EQ(error->get<OffloadError::WriteFailed>()->target, bad.path() / "A001/B");
    EXPECT_EQ(copiesOn(at("d1")).at("A"), clips.at("A"));
    EXPECT_FALSE(hasHashList(at("d1")));
}

TEST_F(OffloadToFaultyDrives, SlowDrive_IsWaitedFor) {
    makeCard(clips);
    const FaultyFileSystem slow(at("back"), at("d2"), {.delay = 10});

    EXPECT_TRUE(run(request({at("d1"), slow.path()})).allVerified());
    EXPECT_TRUE(copiesOn(at("back")) == clips);
    EXPECT_TRUE(copiesOn(at("d1")) == clips);
}

namespace {

/// Offloads a card that fails: `clips` behind a faulty mount.
class OffloadFromFaultyCard : public OffloadToFaultyDrives {
protected:
    std::string descriptionWith(const FaultyFileSystem::Faults& faults) {
        writeTree(at("back"), clips);
        const FaultyFileSystem card(at("back"), at("mount"), faults);
        OffloadRequest wanted = request({at("d1"), at("d2")});
        wanted.source = card.path();
        std::string description = descriptionOf(wanted);
        EXPECT_TRUE(readTree(at("back")) == clips) << "the card has changed";
        return description;
    }
};

}  // namespace

TEST_F(OffloadFromFaultyCard, ReadErrorHalfWay_EndsTheRunWithTheSystemsSentence) {
    EXPECT_EQ(descriptionWith({.onlyFile = "B", .failReadAt = 131'072}),
              "Failed reading B: Input/output error");

    EXPECT_TRUE(copiesOn(at("d1")) == beginningOf(131'072));
    EXPECT_TRUE(copiesOn(at("d2")) == beginningOf(131'072));
    EXPECT_FALSE(hasHashList(at("d1")));
}

TEST_F(OffloadFromFaultyCard, FileCannotBeOpened_EndsTheRunBeforeAnyTargetIsMade) {
    EXPECT_EQ(descriptionWith({.onlyFile = "B", .failOpenForReading = true}),
              "Failed reading B: could not open");

    EXPECT_EQ(copiesOn(at("d1")), (FolderTree{{"A", clips.at("A")}}));
}

TEST_F(OffloadFromFaultyCard, CardVanishesHalfWay_EndsTheRunWithReadFailed) {
    EXPECT_TRUE(descriptionWith({.vanishAfterReading = 150'000}).starts_with("Failed reading B: "));

    EXPECT_EQ(copiesOn(at("d2")).at("A"), clips.at("A"));
    EXPECT_FALSE(hasHashList(at("d1")));
}
