#include "keldo-app/Offload/OffloadFacts.h"

#include <gtest/gtest.h>

using keldo_app::ResultFacts;
using ReelCore::DestinationState;
using ReelCore::OffloadResult;
using HashList = ReelCore::DestinationState::HashList;

namespace {

OffloadResult resultOn(const std::vector<ReelCore::URL>& drives,
                       const std::vector<DestinationState>& states) {
    OffloadResult result;
    result.request.destinations = drives;
    auto& file = result.files.emplace_back();
    file.file.relativePath = "CLIP/A.MXF";
    file.file.size = 7;
    file.sourceHash = "0eab543384f878ad";
    result.destinationStates = states;
    return result;
}

constexpr DestinationState fine{true, HashList::written};

}  // namespace

TEST(ResultFacts, DrivesAsTheyShouldBe_HaveNothingSaidOfThem) {
    const auto facts = ResultFacts::of(resultOn({"/media/ONE", "/media/TWO"}, {fine, fine}));
    EXPECT_EQ(facts.weakerProofs, QStringList());
    EXPECT_EQ(facts.missingLists, QStringList());
}

TEST(ResultFacts, ResultThatKnowsNoStates_HasNothingSaid) {
    const auto facts = ResultFacts::of(resultOn({"/media/ONE", "/media/TWO"}, {}));
    EXPECT_EQ(facts.weakerProofs, QStringList());
    EXPECT_EQ(facts.missingLists, QStringList());
}

TEST(ResultFacts, DriveReadThroughMemory_IsNamedAsAWeakerProof) {
    const auto facts =
        ResultFacts::of(resultOn({"/media/ONE", "/media/TWO"}, {fine, {false, HashList::written}}));
    EXPECT_EQ(
        facts.weakerProofs,
        QStringList("The proof is weaker on TWO: the copies were read back, but this computer "
                    "may have answered from its memory and not from the drive."));
    EXPECT_EQ(facts.missingLists, QStringList());
}

TEST(ResultFacts, DrivesWithoutANewHashList_AreNamedWithTheReason) {
    const auto facts = ResultFacts::of(
        resultOn({"/media/ONE", "/media/TWO", "/media/THREE"},
                 {{true, HashList::notWritten}, {true, HashList::cardHasItsName}, fine}));
    EXPECT_EQ(facts.missingLists,
              QStringList({"ONE has no hash list: it could not be written.",
                           "TWO has no new hash list: the card brought a file of the list's name, "
                           "and its copy was kept."}));
}

TEST(ResultFacts, DrivesOfOneName_AreToldByTheirPaths) {
    const auto facts = ResultFacts::of(
        resultOn({"/media/a/BACKUP", "/media/b/BACKUP"}, {fine, {true, HashList::notWritten}}));
    EXPECT_EQ(facts.missingLists,
              QStringList("/media/b/BACKUP has no hash list: it could not be written."));
}
