#include "ReelCore/CardFormat/EraseCheck.h"

#include "ReelCore/Offload/OffloadEngine.h"
#include "ReelCore/Offload/OffloadError.h"
#include "Support/FolderTree.h"

#include <gtest/gtest.h>

using ReelCore::EraseCheck;
using ReelCore::OffloadResult;
using ReelCore::URL;
using TestSupport::writeFile;

namespace {

class EraseCheckTests : public testing::Test {
protected:
    EraseCheckTests() {
        TestSupport::writeTree(card(), {{"CLIP/A.MXF", "picture"}, {"CLIP/A.XML", "<a/>"}});
    }

    URL card() const { return folder_.path() / "card"; }
    URL drive(const char* name) const { return folder_.path() / name; }

    OffloadResult offloadTo(const std::vector<URL>& drives) const {
        ReelCore::OffloadEngine engine(4096, [] { return false; });
        return engine.run({card(), drives, ReelCore::HashAlgorithm::xxhash64, "A001"},
                          [](const auto&) {});
    }

    OffloadResult offload() const { return offloadTo({drive("one"), drive("two")}); }

    TestSupport::TemporaryFolder folder_;
};

const std::string otherFiles = "The files on the card are not the ones that were verified.";

}  // namespace

TEST_F(EraseCheckTests, CardAndCopiesAsProved_NoObjection) {
    EXPECT_EQ(EraseCheck::objection(offload()), std::nullopt);
}

TEST_F(EraseCheckTests, FileAddedToTheCard_IsAnObjection) {
    const auto result = offload();
    writeFile(card() / "CLIP/B.MXF", "a take of just now");
    EXPECT_EQ(EraseCheck::objection(result), otherFiles);
}

TEST_F(EraseCheckTests, FileOnTheCardChangedInPlace_IsAnObjection) {
    const auto result = offload();
    writeFile(card() / "CLIP/A.MXF", "picturE");
    EXPECT_EQ(EraseCheck::objection(result), otherFiles);
}

TEST_F(EraseCheckTests, OtherCardInItsPlace_IsAnObjection) {
    const auto result = offload();
    std::filesystem::remove_all(card());
    TestSupport::writeTree(card(), {{"CLIP/A.MXF", "picture"}, {"CLIP/A.XML", "<a/>"}});
    EXPECT_EQ(EraseCheck::objection(result), otherFiles);
}

TEST_F(EraseCheckTests, CardGone_FailsAsTheScanDoes) {
    const auto result = offload();
    std::filesystem::remove_all(card());
    EXPECT_THROW(EraseCheck::objection(result), ReelCore::OffloadError);
}

TEST_F(EraseCheckTests, DriveTakenAway_IsAnObjectionThatNamesTheCopy) {
    const auto result = offload();
    std::filesystem::rename(drive("two"), drive("elsewhere"));
    EXPECT_EQ(EraseCheck::objection(result),
              "A verified copy is no longer there: " + (drive("two") / "A001/CLIP/A.MXF").native());
}

TEST_F(EraseCheckTests, CopyCutShort_IsAnObjectionThatNamesIt) {
    const auto result = offload();
    std::filesystem::resize_file(drive("one") / "A001/CLIP/A.XML", 1);
    EXPECT_EQ(EraseCheck::objection(result),
              "A verified copy is no longer there: " + (drive("one") / "A001/CLIP/A.XML").native());
}

TEST_F(EraseCheckTests, SameFolderAsTwoDrives_IsAnObjection) {
    std::filesystem::create_directories(drive("one"));
    std::filesystem::create_symlink(drive("one"), drive("link"));
    const auto result = offloadTo({drive("one"), drive("link")});
    EXPECT_EQ(EraseCheck::objection(result),
              "Two of the drives are one and the same folder, so there is only one copy.");
}
