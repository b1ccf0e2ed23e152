#include "OffloadFixture.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FileCache.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <cerrno>
#include <fstream>

#include <sys/stat.h>

using namespace ReelCore;
using namespace TestSupport;

namespace fs = std::filesystem;

namespace {

using Phase = OffloadProgress::Phase;

const FolderTree clips{{"A", noise(300'001, 1)}, {"B", noise(5'000, 2)}};

std::string withBitFlipped(std::string content, std::size_t at) {
    content[at] = static_cast<char>(content[at] ^ 1);
    return content;
}

class OffloadReadBackTest : public OffloadTest {
protected:
    /// Called between the copy of the file "A" and its read-back.
    void beforeReadBackOfA(std::function<void()> action) {
        onProgress = [action](const OffloadProgress& progress) {
            if (progress.phase == Phase::verifying && progress.currentFile == "A") action();
        };
    }

    /// "A" is wrong on the first drive and all else is proved, on both drives, with hash lists.
    void expectOnlyFirstCopyOfAWrong(const OffloadResult& result, const std::string& onTheDrive) {
        const FileVerification& a = result.files.at(0);
        EXPECT_FALSE(a.destinations.at(0).matches);
        EXPECT_EQ(a.destinations.at(0).error, std::nullopt);
        EXPECT_EQ(a.destinations.at(0).readBackHash, hashOf(onTheDrive));
        EXPECT_NE(a.destinations.at(0).readBackHash, a.sourceHash);
        EXPECT_EQ(a.sourceHash, hashOf(clips.at("A")));
        EXPECT_TRUE(a.destinations.at(1).matches);
        EXPECT_TRUE(result.files.at(1).verified());
        EXPECT_EQ(result.failures(), std::vector{a});
        EXPECT_FALSE(result.allVerified());
        for (const URL& drive : result.request.destinations) EXPECT_TRUE(hasHashList(drive));
        EXPECT_EQ(events_.back().phase, Phase::done);
        EXPECT_EQ(events_.back().filesCompleted, 2) << "a mismatch does not hold the run up";
    }

    std::string hashOf(const std::string& content) const {
        writeFile(at("content"), content);
        const std::string line = outputOf("xxh64sum", {at("content").native()});
        return line.substr(line.rfind('\r') + 1, 16);
    }
};

class OffloadReadBackOnLoop : public OffloadReadBackTest,
                              public testing::WithParamInterface<std::pair<const char*, int>> {
protected:
    void SetUp() override {
        if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
        if (!hasTool(std::string("mkfs.") + GetParam().first)) {
            GTEST_SKIP() << "needs mkfs." << GetParam().first;
        }
        drive_.emplace(GetParam().first, GetParam().second);
    }

    LoopMount& drive() { return *drive_; }

private:
    std::optional<LoopMount> drive_;
};

INSTANTIATE_TEST_SUITE_P(FileSystems, OffloadReadBackOnLoop,
                         testing::Values(std::pair{"ext4", 16}, std::pair{"xfs", 300},
                                         std::pair{"ntfs", 16}),
                         [](const auto& one) { return std::string(one.param.first); });

class OffloadReadBackOnFaultyDrive : public OffloadReadBackTest {
protected:
    void SetUp() override {
        if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    }
};

}  // namespace

// The whole point of the read-back. The byte changes on the device after the copy; whoever reads
// the file the ordinary way still gets the right byte out of the cache, and would let the card be
// erased.
TEST_P(OffloadReadBackOnLoop, ByteChangesOnTheDevice_IsFoundThoughAPlainReadPassesIt) {
    makeCard(clips);
    const URL copy = drive().path() / "A001/A";
    beforeReadBackOfA([&] {
        drive().flipBitBelow(copy, 200'000);
        ASSERT_TRUE(readFile(copy) == clips.at("A")) << "the cache was not hot";
    });

    const auto result = run(request({drive().path(), at("d2")}));

    expectOnlyFirstCopyOfAWrong(result, withBitFlipped(clips.at("A"), 200'000));
}

TEST_P(OffloadReadBackOnLoop, DeviceThatThisProcessMayOpen_IsReadPastTheCache) {
    makeCard(clips);

    EXPECT_TRUE(run(request({drive().path()})).destinationStates.at(0).readPastTheCache);
}

TEST_P(OffloadReadBackOnLoop, CacheAfterARun_HoldsNothingOfTheCopies) {
    makeCard(clips);
    std::int64_t before = 0;
    beforeReadBackOfA([&] { before = cachedBytes(drive().path() / "A001/A"); });

    EXPECT_TRUE(run(request({drive().path()})).allVerified());

    EXPECT_GT(before, 0) << "the copy was never in the cache";
    EXPECT_EQ(cachedBytes(drive().path() / "A001/A"), 0);
    EXPECT_EQ(cachedBytes(drive().path() / "A001/B"), 0);
}

TEST_F(OffloadReadBackOnFaultyDrive, ByteChangesBehindADriveWithoutDirectReads_IsFound) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"),
                                 {.refuseDirectReads = true, .keepCache = true});
    const std::string wrong = withBitFlipped(clips.at("A"), 200'000);
    beforeReadBackOfA([&] {
        const URL copy = drive.path() / "A001/A";
        ASSERT_TRUE(readFile(copy) == clips.at("A"));
        writeFile(at("back/A001/A"), wrong);
        ASSERT_TRUE(readFile(copy) == clips.at("A")) << "the cache was not hot";
    });

    expectOnlyFirstCopyOfAWrong(run(request({drive.path(), at("d2")})), wrong);
}

TEST_F(OffloadReadBackOnFaultyDrive, BitReadsWrong_IsRecordedAndTheRunGoesOn) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"), {.onlyFile = "A", .flipBitAt = 123'456});

    const auto result = run(request({drive.path(), at("d2")}));

    expectOnlyFirstCopyOfAWrong(result, withBitFlipped(clips.at("A"), 123'456));
    EXPECT_TRUE(copiesOn(at("back")) == clips) << "neither copied again nor removed";
}

TEST_F(OffloadReadBackOnFaultyDrive, ReadError_IsRecordedWithTheSystemsSentence) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"), {.onlyFile = "A", .failReadAt = 100'000});

    const auto result = run(request({drive.path(), at("d2")}));

    const auto& copies = result.files.at(0).destinations;
    EXPECT_EQ(copies.at(0), (DestinationResult{drive.path(), drive.path() / "A001/A", std::nullopt,
                                               false, "Input/output error", std::nullopt}));
    EXPECT_TRUE(copies.at(1).matches);
    EXPECT_TRUE(result.files.at(1).verified());
    EXPECT_FALSE(result.allVerified());
    EXPECT_TRUE(hasHashList(drive.path()) && hasHashList(at("d2")));
}

TEST_F(OffloadReadBackOnFaultyDrive, FileCannotBeOpened_IsRecorded) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"),
                                 {.onlyFile = "A", .failOpenForReading = true});

    const auto result = run(request({drive.path(), at("d2")}));

    const auto& copy = result.files.at(0).destinations.at(0);
    EXPECT_EQ(copy.error, "Failed reading A: could not open");
    EXPECT_EQ(copy.readBackHash, std::nullopt);
    EXPECT_TRUE(result.files.at(1).verified());
}

TEST_F(OffloadReadBackOnFaultyDrive, FileCannotBeFlushed_IsRecordedAndTheRunGoesOn) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"), {.onlyFile = "A", .failFlush = true});

    const auto result = run(request({drive.path(), at("d2")}));

    const auto& copies = result.files.at(0).destinations;
    EXPECT_EQ(copies.at(0).error, "Input/output error");
    EXPECT_FALSE(copies.at(0).matches);
    EXPECT_TRUE(copies.at(1).matches);
    EXPECT_TRUE(result.files.at(1).verified());
}

// Each copy matches, but what else the drive was given went lost: its folders may be next.
TEST_F(OffloadReadBackOnFaultyDrive, DriveLosesWhatItWasGiven_NothingIsProvedOnItAndTheRunGoesOn) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"),
                                 {.onlyFile = "other", .failWriteAt = 0, .writeLate = true});
    beforeReadBackOfA([&] { std::ofstream(drive.path() / "other") << "never gets there"; });

    const auto result = run(request({drive.path(), at("d2")}));

    for (const FileVerification& file : result.files) {
        EXPECT_FALSE(file.destinations.at(0).matches);
        EXPECT_EQ(file.destinations.at(0).error, "Input/output error");
        EXPECT_EQ(file.destinations.at(0).proved, std::nullopt);
        EXPECT_TRUE(file.destinations.at(1).matches);
    }
    EXPECT_EQ(result.failures().size(), 2U);
    EXPECT_TRUE(hasHashList(at("d2")));
    EXPECT_EQ(events_.at(events_.size() - 2).phase, Phase::writingReport);
    EXPECT_EQ(events_.back().phase, Phase::done);
}

TEST_F(OffloadReadBackOnFaultyDrive, DriveLostSomethingBeforeTheRun_SaysNothingAboutItsCopies) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"),
                                 {.onlyFile = "other", .failWriteAt = 0, .writeLate = true});
    std::ofstream(drive.path() / "other") << "never gets there";

    EXPECT_TRUE(run(request({drive.path(), at("d2")})).allVerified());
}

TEST_F(OffloadReadBackOnFaultyDrive, TwoDrivesAreOneAndACopyFails_TheRunComesToItsEnd) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"),
                                 {.onlyFile = "A", .failWriteAt = 0, .writeLate = true});

    const auto result = run(request({drive.path() / "one", drive.path() / "two"}));

    EXPECT_FALSE(result.files.at(0).verified());
    EXPECT_EQ(result.files.size(), 2U);
    EXPECT_EQ(events_.back().phase, Phase::done);
}

// A program passes another file system through: what that one remembers can't be let go of.
TEST_F(OffloadReadBackOnFaultyDrive, DriveServedByAProgramWithoutADevice_IsToldAsWeakerProof) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"), {});

    const auto result = run(request({drive.path(), at("d2")}));

    EXPECT_TRUE(result.allVerified());
    ASSERT_EQ(result.destinationStates.size(), 2U);
    EXPECT_FALSE(result.destinationStates.at(0).readPastTheCache);
    EXPECT_TRUE(result.destinationStates.at(1).readPastTheCache);
}

TEST_F(OffloadReadBackOnFaultyDrive, DatesCannotBeSet_IsIgnored) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"), {.failDates = true});

    EXPECT_TRUE(run(request({drive.path()})).allVerified());
    EXPECT_NE(modificationDate(at("back/A001/A")), modificationDate(card() / "A"));
}

TEST_F(OffloadReadBackOnFaultyDrive, HashListFillsTheDrive_IsIgnored) {
    makeCard(clips);
    const FaultyFileSystem drive(at("back"), at("d1"),
                                 {.onlyFile = "A001.mhl", .writeError = ENOSPC, .failWriteAt = 9});

    const auto result = run(request({drive.path(), at("d2")}));

    EXPECT_TRUE(result.allVerified());
    using HashList = DestinationState::HashList;
    EXPECT_EQ(result.destinationStates.at(0).hashList, HashList::notWritten);
    EXPECT_EQ(result.destinationStates.at(1).hashList, HashList::written);
    EXPECT_TRUE(hasHashList(at("d2")));
    EXPECT_EQ(events_.back().phase, Phase::done);
}

TEST_F(OffloadReadBackTest, CopyIsGoneOrAPipe_IsRecordedAndTheRunDoesNotWait) {
    makeCard(clips);
    beforeReadBackOfA([&] {
        fs::remove(at("d1/A001/A"));
        fs::remove(at("d2/A001/A"));
        ASSERT_EQ(::mkfifo(at("d2/A001/A").c_str(), 0666), 0);
    });

    const auto result = run(request({at("d1"), at("d2"), at("d3")}));

    const auto& copies = result.files.at(0).destinations;
    EXPECT_EQ(copies.at(0).error, "Failed reading A: could not open");
    EXPECT_EQ(copies.at(1).error, "Failed reading A: could not open");
    EXPECT_TRUE(copies.at(2).matches);
    EXPECT_TRUE(result.files.at(1).verified());
}

TEST_F(OffloadReadBackTest, CopyIsCutShortOrTooLong_DoesNotMatch) {
    makeCard(clips);
    beforeReadBackOfA([&] {
        fs::resize_file(at("d1/A001/A"), 300'000);
        fs::resize_file(at("d2/A001/A"), 300'002);
    });

    const auto result = run(request({at("d1"), at("d2"), at("d3")}));

    const auto& copies = result.files.at(0).destinations;
    EXPECT_FALSE(copies.at(0).matches);
    EXPECT_FALSE(copies.at(1).matches);
    EXPECT_TRUE(copies.at(2).matches);
}
