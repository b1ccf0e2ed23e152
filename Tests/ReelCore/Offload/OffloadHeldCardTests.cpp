#include "OffloadFixture.h"
#include "ReelCore/Offload/SourceScanner.h"
#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/FileSystem.h"
#include "Support/FaultyFileSystem.h"
#include "Support/Forked.h"
#include "Support/LoopDevice.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <cstdlib>

using namespace ReelCore;
using namespace TestSupport;

namespace fs = std::filesystem;

namespace {

using Phase = OffloadProgress::Phase;

const FolderTree clips{{"DCIM/A", noise(300'000, 1)}, {"DCIM/B", noise(200'000, 2)}};

class OffloadHeldCardTest : public OffloadTest {};

/// Two cards that a camera numbered alike, and a reader that takes one after the other.
class OffloadSwappedCard : public OffloadHeldCardTest {
protected:
    void SetUp() override {
        if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
        first_.emplace(clips, 8);
        second_.emplace(FolderTree{{"DCIM/A", noise(300'000, 3)}, {"DCIM/B", noise(200'000, 4)}},
                        8);
        first_->mountAt(card());
    }

    void TearDown() override {
        while (runTool("umount", {"-l", card().native()}).status == 0) {
        }
    }

    void swap() {
        outputOf("umount", {"-l", card().native()});
        second_->mountAt(card());
    }

    /// The drive below the first card has another medium all at once.
    void growFirst() {
        fs::resize_file(first_->image(), 16 << 20);
        outputOf("losetup", {"-c", first_->node().native()});
    }

private:
    std::optional<LoopDevice> first_;
    std::optional<LoopDevice> second_;
};

}  // namespace

TEST_F(OffloadSwappedCard, BetweenTwoFiles_NoByteOfTheOtherIsCopied) {
    when(Phase::verifying, "DCIM/A", [&] { swap(); });

    EXPECT_EQ(descriptionOf(request({at("d1"), at("d2")})),
              "Failed reading B: another card stands in the place of this one");

    EXPECT_TRUE(copiesOn(at("d1")) == (FolderTree{{"DCIM/A", clips.at("DCIM/A")}}));
    EXPECT_FALSE(hasHashList(at("d1")));
}

TEST_F(OffloadSwappedCard, MountedOverTheFirst_IsSeenAsWell) {
    when(Phase::verifying, "DCIM/A", [&] {
        writeTree(at("elsewhere"), clips);
        outputOf("mount", {"--bind", at("elsewhere").native(), card().native()});
    });

    EXPECT_EQ(descriptionOf(request({at("d1")})),
              "Failed reading B: another card stands in the place of this one");
}

TEST_F(OffloadSwappedCard, AfterTheLastFile_EndsTheRun) {
    when(Phase::verifying, "DCIM/B", [&] { swap(); });

    EXPECT_EQ(descriptionOf(request({at("d1"), at("d2")})),
              "Failed reading B: another card stands in the place of this one");
    EXPECT_FALSE(hasHashList(at("d1")));
}

TEST_F(OffloadSwappedCard, DuringARun_CannotBeUnmountedTheOrdinaryWay) {
    int status = 0;
    when(Phase::verifying, "DCIM/A", [&] { status = runTool("umount", {card().native()}).status; });

    EXPECT_TRUE(run(request({at("d1")})).allVerified());
    EXPECT_NE(status, 0);
    EXPECT_EQ(runTool("umount", {card().native()}).status, 0) << "and let go afterwards";
}

TEST_F(OffloadSwappedCard, OtherMediumBelowTheSameMount_EndsTheRun) {
    when(Phase::verifying, "DCIM/B", [&] { growFirst(); });

    EXPECT_EQ(descriptionOf(request({at("d1"), at("d2")})),
              "Failed reading B: another card stands in the place of this one");
    EXPECT_FALSE(hasHashList(at("d1")));
}

TEST_F(OffloadHeldCardTest, SizesThatHaveNoSum_AreAFailureThatIsTold) {
    const URL folder = "/dev/shm/keldo-test-large";
    if (!fs::is_directory("/dev/shm")) GTEST_SKIP() << "needs /dev/shm";
    fs::create_directory(folder);
    for (const char* name : {"a", "b"}) {
        writeFile(folder / name, "");
        std::error_code failure;
        fs::resize_file(folder / name, std::uintmax_t{7} << 60U, failure);
        if (failure) {
            fs::remove_all(folder);
            GTEST_SKIP() << "needs a file system with files of 7 EiB";
        }
    }

    EXPECT_THROW(SourceScanner::scan(folder), OutOfRange);
    fs::remove_all(folder);
}

TEST_F(OffloadHeldCardTest, ReelInAReelThatIsInUse_IsRefusedInBothOrders) {
    makeCard({{"B/clip", "of one"}});
    writeTree(at("card2"), {{"clip", "of the other"}});
    const OffloadRequest inner{at("card2"), {at("d/A001")}, HashAlgorithm::xxhash64, "B"};
    const OffloadRequest outer = request({at("d")});
    for (const auto& [first, second] : {std::pair{outer, inner}, {inner, outer}}) {
        std::optional<OffloadError> refusal;
        const auto file = first.reelName == "B" ? "clip" : "B/clip";
        when(Phase::verifying, file, [&, wanted = second] {
            OffloadEngine engine(blockSize, [] { return false; });
            try {
                engine.run(wanted, [](const OffloadProgress&) {});
            } catch (const OffloadError& error) {
                refusal = error;
            }
        });

        EXPECT_TRUE(run(first).allVerified());
        EXPECT_TRUE(refusal && refusal->is<OffloadError::DestinationNotWritable>());
        fs::remove_all(at("d"));
    }
}

TEST_F(OffloadHeldCardTest, FolderOfTheCardBecomesALink_IsNotFollowed) {
    writeTree(card(), clips);
    writeTree(at("elsewhere"), clips);
    when(Phase::verifying, "DCIM/A", [&] {
        fs::rename(card() / "DCIM", at("gone"));
        fs::create_symlink(at("elsewhere"), card() / "DCIM");
    });

    EXPECT_EQ(descriptionOf(request({at("d1")})), "Failed reading B: could not open");
}

TEST_F(OffloadHeldCardTest, FileEndsEarly_EndsTheRunWithBothNumbers) {
    writeTree(card(), clips);
    when(Phase::copying, "DCIM/B", [&] { fs::resize_file(card() / "DCIM/B", 123'456); });

    EXPECT_EQ(descriptionOf(request({at("d1"), at("d2")})),
              "Failed reading B: it ended after 123456 of 200000 bytes");

    EXPECT_FALSE(hasHashList(at("d1")));
    EXPECT_EQ(events_.back().filesCompleted, 1);
}

TEST_F(OffloadHeldCardTest, ReelInUse_SecondRunIsRefusedAndTheFirstKeepsItsFiles) {
    makeCard(clips);
    writeTree(at("card2"), {{"DCIM/A", "another A"}, {"DCIM/B", "another B"}});
    OffloadRequest second = request({at("d2"), at("d1")});
    second.source = at("card2");
    std::optional<OffloadError> refusal;
    when(Phase::verifying, "DCIM/A", [&] {
        OffloadEngine engine(blockSize, [] { return false; });
        try {
            engine.run(second, [](const OffloadProgress&) {});
        } catch (const OffloadError& error) {
            refusal = error;
        }
    });

    EXPECT_TRUE(run(request({at("d1")})).allVerified());

    ASSERT_TRUE(refusal && refusal->is<OffloadError::DestinationNotWritable>());
    EXPECT_EQ(refusal->description(), "Destination is not writable: " + at("d1").native());
    EXPECT_EQ(refusal->get<OffloadError::DestinationNotWritable>()->reason,
              "Another offload is writing into this reel folder.");
    EXPECT_TRUE(copiesOn(at("d1")) == clips);
    EXPECT_TRUE(run(second).allVerified()) << "once the first is done";
}

TEST_F(OffloadHeldCardTest, ProcessWithAReelInUseDies_TheReelIsFreeAndNoFileTellsOfIt) {
    makeCard(clips);
    when(Phase::verifying, "DCIM/B", [] { ::_Exit(7); });
    EXPECT_EQ(statusOfForked([&] {
                  run(request({at("d1")}));
                  return 0;
              }),
              7);

    onProgress = [](const OffloadProgress&) {};
    EXPECT_TRUE(run(request({at("d1")})).allVerified());
    EXPECT_TRUE(copiesOn(at("d1")) == clips);
}

TEST_F(OffloadHeldCardTest, FolderThatCannotBeRead_IsInTheResult) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"A", "a"}, {"LOCKED/B", "b"}});
    const FaultyFileSystem faulty(at("back"), at("mount"), {.failListingOf = "LOCKED"});
    OffloadRequest wanted = request({at("d1")});
    wanted.source = faulty.path();

    const auto result = run(wanted);

    EXPECT_EQ(result.files.size(), 1U);
    EXPECT_EQ(result.unreadFolders, (UnreadFolders{1, "LOCKED"}));
}

TEST_F(OffloadHeldCardTest, CopyThatMatches_HasItsStamp) {
    makeCard(clips);

    const auto result = run(request({at("d1")}));

    for (const FileVerification& file : result.files) {
        const auto& copy = file.destinations.at(0);
        ASSERT_TRUE(copy.proved);
        EXPECT_EQ(copy.proved->size, file.file.size);
        EXPECT_EQ(copy.proved, FileSystem::stamp(copy.writtenURL));
    }
    writeFile(at("d1/A001/DCIM/A"), clips.at("DCIM/A"));
    EXPECT_NE(result.files.at(0).destinations.at(0).proved,
              FileSystem::stamp(at("d1/A001/DCIM/A")));
}
