#include "OffloadFixture.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/LoopMount.h"

#include <sys/stat.h>

using namespace ReelCore;
using namespace TestSupport;

namespace fs = std::filesystem;

namespace {

const FolderTree clips{{"A", "first"}, {"DCIM/B", noise(100'000)}};

class OffloadOverlapTest : public OffloadTest {
protected:
    /// Refused for the drive named, before any folder is made on another one. The fixture looks at
    /// the card.
    void expectRefused(const OffloadRequest& wanted, const URL& drive) {
        OffloadRequest all = wanted;
        all.destinations.insert(all.destinations.begin(), at("another/drive"));

        const auto error = failureOf(all);

        ASSERT_TRUE(error && error->is<OffloadError::DestinationNotWritable>()) << drive;
        EXPECT_EQ(error->get<OffloadError::DestinationNotWritable>()->destination, drive);
        EXPECT_FALSE(fs::exists(at("another")));
        EXPECT_EQ(events_.size(), 1U);
    }

    void expectRefused(const URL& drive, const std::string& reelName = "A001") {
        OffloadRequest wanted = request({drive});
        wanted.reelName = reelName;
        expectRefused(wanted, drive);
    }
};

}  // namespace

TEST_F(OffloadOverlapTest, SameDriveTwice_BothReadBacksSeeTheSecondCopy) {
    makeCard(clips);

    const auto result = run(request({at("d1"), at("d1")}));

    EXPECT_TRUE(result.allVerified());
    EXPECT_EQ(result.files.at(0).destinations.size(), 2U);
    EXPECT_TRUE(copiesOn(at("d1")) == clips);
}

TEST_F(OffloadOverlapTest, DriveWithASlashAtItsEnd_IsTheSameDrive) {
    makeCard(clips);
    const URL drive = at("d1").native() + "/";

    const auto result = run(request({drive}));

    EXPECT_TRUE(result.allVerified());
    EXPECT_EQ(result.files.at(0).destinations.at(0).destination.native(), drive.native());
    EXPECT_EQ(result.files.at(0).destinations.at(0).writtenURL.native(), at("d1/A001/A").native());
}

TEST_F(OffloadOverlapTest, NoDrivePath_IsRefusedAndNotTakenForTheRoot) {
    makeCard(clips);

    EXPECT_EQ(descriptionOf(request({at("d1"), ""})), "Destination is not writable: ");
    EXPECT_FALSE(fs::exists(at("d1")));
}

TEST_F(OffloadOverlapTest, SameDriveThroughALink_IsLikeTheSameDriveTwice) {
    makeCard(clips);
    fs::create_directory(at("d1"));
    fs::create_symlink("d1", at("link"));

    EXPECT_TRUE(run(request({at("link"), at("d1")})).allVerified());
    EXPECT_TRUE(copiesOn(at("d1")) == clips);
}

TEST_F(OffloadOverlapTest, ReelFolderInAnothersReelFolder_IsRefusedBeforeAnyFolderIsMade) {
    makeCard(clips);
    for (const URL& inner : {at("d1/A001"), at("d1/A001/below")}) {
        for (const auto& drives : {std::vector{at("d1"), inner}, std::vector{inner, at("d1")}}) {
            const auto error = failureOf(request(drives));

            ASSERT_TRUE(error && error->is<OffloadError::DestinationNotWritable>());
            const auto* refusal = error->get<OffloadError::DestinationNotWritable>();
            EXPECT_EQ(refusal->destination, inner);
            EXPECT_EQ(refusal->reason,
                      "The reel folder would lie in the reel folder of another destination.");
            EXPECT_FALSE(fs::exists(at("d1")));
        }
    }
}

TEST_F(OffloadOverlapTest, ReelFolderInAnothersReelFolderByALink_IsRefused) {
    makeCard(clips);
    fs::create_directories(at("d1/A001"));
    fs::create_symlink("d1/A001", at("link"));

    EXPECT_EQ(descriptionOf(request({at("d1"), at("link")})),
              "Destination is not writable: " + at("link").native());
}

TEST_F(OffloadOverlapTest, OldReelHasALinkToAFolderElsewhere_NothingThereIsTouched) {
    makeCard(clips);
    writeTree(at("elsewhere"), {{"B", "somebody else's"}});
    fs::create_directories(at("drive/A001"));
    fs::create_symlink(at("elsewhere"), at("drive/A001/DCIM"));

    EXPECT_THROW(run(request({at("drive")})), SystemError);

    EXPECT_EQ(readTree(at("elsewhere")), (FolderTree{{"B", "somebody else's"}}));
    EXPECT_FALSE(hasHashList(at("drive")));
}

TEST_F(OffloadOverlapTest, OldReelsTakeTwoFoldersForOne_NoProvedCopyIsReplaced) {
    makeCard({{"X/CLIP", "of X"}, {"Y/CLIP", "of Y"}});
    for (const char* drive : {"d1", "d2"}) {
        fs::create_directories(at(drive) / "A001/X");
        fs::create_symlink("X", at(drive) / "A001/Y");
    }

    EXPECT_THROW(run(request({at("d1"), at("d2")})), SystemError);

    EXPECT_EQ(readFile(at("d1/A001/X/CLIP")), "of X");
    EXPECT_EQ(readFile(at("d2/A001/X/CLIP")), "of X");
}

TEST_F(OffloadOverlapTest, DriveHoldsAFolderTwiceByAMount_NoProvedCopyIsReplaced) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    makeCard({{"X/CLIP", "of X"}, {"Y/CLIP", "of Y"}});
    fs::create_directories(at("d1/A001/X"));
    const BindMount twice(at("d1/A001/X"), at("d1/A001/Y"));

    EXPECT_EQ(descriptionOf(request({at("d1")})),
              "Failed writing to " + at("d1/A001/Y/CLIP").native() +
                  ": another file of the card has this name here");
    EXPECT_EQ(readFile(at("d1/A001/X/CLIP")), "of X");
}

TEST_F(OffloadOverlapTest, SecondDriveShowsAFolderOfTheFirst_NoProvedCopyIsReplaced) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    makeCard({{"X/CLIP", "of X"}, {"Y/CLIP", "of Y"}});
    fs::create_directories(at("d1/A001/X"));
    const BindMount shown(at("d1/A001/X"), at("d2/A001/Y"));

    EXPECT_EQ(descriptionOf(request({at("d1"), at("d2")})),
              "Failed writing to " + at("d2/A001/Y/CLIP").native() +
                  ": another file of the card has this name here");
    EXPECT_EQ(readFile(at("d1/A001/X/CLIP")), "of X");
}

TEST_F(OffloadOverlapTest, CardInsideTheDrive_IsFine) {
    makeCard(clips);

    EXPECT_TRUE(run(request({at("")})).allVerified());
    EXPECT_TRUE(copiesOn(at("")) == clips);
}

TEST_F(OffloadOverlapTest, ReelFolderIsTheCardOrLiesInIt_IsRefused) {
    makeCard(clips);

    expectRefused(card());
    expectRefused(card() / "DCIM");
    expectRefused(card() / "new/folder");
    expectRefused(at(""), "card");
    expectRefused(at(""), "card/new");
    expectRefused(at("drive"), "../card");
    expectRefused(card(), "");
    expectRefused(card(), ".");
    expectRefused(card() / "DCIM", "..");
}

TEST_F(OffloadOverlapTest, ReelFolderLeadsIntoTheCardByALink_IsRefused) {
    makeCard(clips);
    fs::create_directory(at("drive"));
    fs::create_symlink(card(), at("link"));
    fs::create_symlink(card() / "DCIM", at("drive/A001"));
    fs::create_symlink("../card", at("drive/toCard"));

    expectRefused(at("link"));
    expectRefused(at("drive"));
    expectRefused(at("drive"), "toCard");
    expectRefused(at("drive"), "toCard/new");
    expectRefused(at("drive"), "new/../toCard/A001");
}

TEST_F(OffloadOverlapTest, CardGivenByALink_ReelFolderInIt_IsRefused) {
    makeCard(clips);
    fs::create_symlink("card", at("cardLink"));
    OffloadRequest wanted = request({card()});
    wanted.source = at("cardLink");

    expectRefused(wanted, card());
}

TEST_F(OffloadOverlapTest, ReelFolderIsAMountOfTheCardOrOfAFolderInIt_IsRefused) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    makeCard(clips);
    const BindMount whole(card(), at("mirror"));
    const BindMount part(card() / "DCIM", at("partMirror"));

    expectRefused(at("mirror"));
    expectRefused(at("partMirror"));
    expectRefused(at(""), "partMirror");
}

TEST_F(OffloadOverlapTest, ReelFolderIsOnASecondMountOfTheCard_IsRefused) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount device("ext4", 8);
    writeTree(device.path(), clips);
    device.mountAgainAt(at("again"));
    noteCard(device.path());
    OffloadRequest wanted = request({at("again")});
    wanted.source = device.path();

    expectRefused(wanted, at("again"));
    expectCardUntouched();
}

TEST_F(OffloadOverlapTest, ReelNamedLikeTheCardInOtherCase_IsRefusedWhereCaseDoesNotMatter) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const FaultyFileSystem drive(at("back"), at("mount"), {.ignoreCase = true});
    writeTree(drive.path() / "card", clips);
    const FolderTree before = readTree(at("back"));
    OffloadRequest wanted = request({drive.path()});
    wanted.source = drive.path() / "card";
    wanted.reelName = "CARD";

    expectRefused(wanted, drive.path());
    EXPECT_TRUE(readTree(at("back")) == before);
}

TEST_F(OffloadOverlapTest, ReelFolderHoldsTheCardAndAPathLeadsIntoIt_EndsBeforeThatFile) {
    // The card is the folder "drive/A001/card", so its file "card/B" would go to "card/B" in it.
    const URL source = at("drive/A001/card");
    writeTree(source, {{"A", "a"}, {"card/B", "b"}});
    noteCard(source);
    OffloadRequest wanted = request({at("drive")});
    wanted.source = source;

    const auto error = failureOf(wanted);

    ASSERT_TRUE(error);
    EXPECT_EQ(error->description(), "Destination is not writable: " + at("drive").native());
    EXPECT_EQ(readFile(at("drive/A001/A")), "a");
    EXPECT_FALSE(hasHashList(at("drive")));
}

TEST_F(OffloadOverlapTest, ReelFolderHoldsTheCardAndAFileHasTheCardsName_CannotBeCreated) {
    const URL source = at("drive/A001/card");
    writeTree(source, {{"card", "a file named like the card"}});
    noteCard(source);
    OffloadRequest wanted = request({at("drive")});
    wanted.source = source;

    EXPECT_EQ(descriptionOf(wanted),
              "Failed writing to " + source.native() + ": could not create file");
}

TEST_F(OffloadOverlapTest, Refusal_SaysWhy) {
    makeCard(clips);

    const auto error = failureOf(request({card()}));

    ASSERT_TRUE(error && error->is<OffloadError::DestinationNotWritable>());
    EXPECT_EQ(error->get<OffloadError::DestinationNotWritable>()->reason,
              "The reel folder would lie on the card itself.");
}

TEST_F(OffloadOverlapTest, OldReelHasALinkThatLeadsIntoTheCard_EndsBeforeThatFile) {
    makeCard(clips);
    fs::create_directories(at("drive/A001"));
    fs::create_symlink(card() / "DCIM", at("drive/A001/DCIM"));

    EXPECT_EQ(descriptionOf(request({at("drive")})),
              "Destination is not writable: " + at("drive").native());
    EXPECT_EQ(readFile(at("drive/A001/A")), "first");
}

TEST_F(OffloadOverlapTest, OldCopyIsALinkToTheSourceFile_IsReplacedAndNotWrittenThrough) {
    makeCard(clips);
    fs::create_directories(at("drive/A001"));
    fs::create_symlink(card() / "A", at("drive/A001/A"));

    EXPECT_TRUE(run(request({at("drive")})).allVerified());

    EXPECT_FALSE(fs::is_symlink(at("drive/A001/A")));
    EXPECT_TRUE(copiesOn(at("drive")) == clips);
}

TEST_F(OffloadOverlapTest, OldCopyIsASecondNameOfTheSourceFile_IsReplacedAndNotWrittenInto) {
    writeTree(card(), clips);
    fs::create_directories(at("drive/A001"));
    fs::create_hard_link(card() / "A", at("drive/A001/A"));
    noteCard(card());

    EXPECT_TRUE(run(request({at("drive")})).allVerified());

    EXPECT_FALSE(fs::equivalent(at("drive/A001/A"), card() / "A"));
    EXPECT_TRUE(copiesOn(at("drive")) == clips);
}

TEST_F(OffloadOverlapTest, OldHashListIsALinkToASourceFile_IsReplacedAndNotWrittenThrough) {
    makeCard(clips);
    fs::create_directories(at("drive/A001"));
    fs::create_symlink(card() / "A", at("drive/A001/A001.mhl"));

    EXPECT_TRUE(run(request({at("drive")})).allVerified());

    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(at("drive/A001/A001.mhl"))));
}

TEST_F(OffloadOverlapTest, OldCopyIsReadOnly_IsReplaced) {
    makeCard(clips);
    writeTree(at("drive/A001"), {{"A", "old and longer"}});
    ASSERT_EQ(::chmod(at("drive/A001/A").c_str(), 0444), 0);

    EXPECT_TRUE(run(request({at("drive")})).allVerified());
    EXPECT_TRUE(copiesOn(at("drive")) == clips);
}

TEST_F(OffloadOverlapTest, FolderStandsWhereACopyShouldGo_StaysAndEndsTheRun) {
    makeCard(clips);
    writeTree(at("d2/A001/A"), {{"inside", "precious"}});

    EXPECT_EQ(descriptionOf(request({at("d1"), at("d2")})),
              "Failed writing to " + at("d2/A001/A").native() + ": could not create file");

    EXPECT_EQ(copiesOn(at("d2")), (FolderTree{{"A/inside", "precious"}}));
    EXPECT_EQ(copiesOn(at("d1")), (FolderTree{{"A", ""}})) << "created, but nothing was read yet";
    EXPECT_FALSE(hasHashList(at("d1")));
}
