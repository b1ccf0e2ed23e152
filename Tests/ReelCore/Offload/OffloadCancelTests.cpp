#include "OffloadFixture.h"

using namespace ReelCore;
using namespace TestSupport;

namespace {

const FolderTree twoFiles{{"A", noise(150'000, 1)}, {"B", "small"}};

/// The questions that one run over `twoFiles` to two drives asks, in order. Each file is asked for
/// before it begins, before each of its blocks (the empty one at the end included), and before each
/// read-back.
enum Question {
    beforeA = 1,
    blockA1,
    blockA2,
    blockA3,
    endOfA,
    readBackA1,
    readBackA2,
    beforeB,
    blockB1,
    endOfB,
    readBackB1,
    readBackB2,
};

class OffloadCancelTest : public OffloadTest {
protected:
    /// From the given question on the answer is yes.
    void cancelAt(int question) {
        asked_ = 0;
        isCancelled = [this, question] { return ++asked_ >= question; };
    }

    bool runIsCancelled() {
        const auto error = failureOf(request({at("d1"), at("d2")}));
        return error && error->is<OffloadError::Cancelled>();
    }

    std::string_view lastPhase() const { return rawValue(events_.back().phase); }

    int asked_ = 0;
};

}  // namespace

TEST_F(OffloadCancelTest, Run_NotCancelled_AsksBeforeEachFileBlockAndReadBack) {
    makeCard(twoFiles);
    cancelAt(1000);

    EXPECT_FALSE(runIsCancelled());
    EXPECT_EQ(asked_, readBackB2);
}

TEST_F(OffloadCancelTest, Cancel_AtAnyQuestion_EndsTheRunThereWithoutAnyHashList) {
    makeCard(twoFiles);
    for (int question = beforeA; question <= readBackB2; ++question) {
        cancelAt(question);

        EXPECT_TRUE(runIsCancelled()) << question;
        EXPECT_EQ(asked_, question) << "asked again after a yes";
        EXPECT_FALSE(hasHashList(at("d1")) || hasHashList(at("d2"))) << question;
    }
}

TEST_F(OffloadCancelTest, Cancel_BeforeTheFirstFile_LeavesEmptyReelFolders) {
    makeCard(twoFiles);
    cancelAt(beforeA);

    EXPECT_TRUE(runIsCancelled());
    EXPECT_EQ(lastPhase(), "scanning");
    EXPECT_TRUE(std::filesystem::is_empty(at("d1/A001")));
    EXPECT_TRUE(std::filesystem::is_empty(at("d2/A001")));
}

TEST_F(OffloadCancelTest, Cancel_BeforeABlock_LeavesTheBlocksBeforeItUnderTheFinalName) {
    makeCard(twoFiles);
    const std::string content = twoFiles.at("A");
    const std::pair<Question, std::size_t> cases[] = {
        {blockA1, 0}, {blockA2, blockSize}, {blockA3, 2 * blockSize}, {endOfA, content.size()}};
    for (const auto& [question, length] : cases) {
        cancelAt(question);

        EXPECT_TRUE(runIsCancelled());
        EXPECT_EQ(lastPhase(), "copying");
        EXPECT_TRUE(copiesOn(at("d1")) == (FolderTree{{"A", content.substr(0, length)}}));
        EXPECT_TRUE(copiesOn(at("d2")) == (FolderTree{{"A", content.substr(0, length)}}));
    }
}

TEST_F(OffloadCancelTest, Cancel_BeforeAReadBack_LeavesWholeCopies) {
    makeCard(twoFiles);
    for (const Question question : {readBackA1, readBackA2}) {
        cancelAt(question);

        EXPECT_TRUE(runIsCancelled());
        EXPECT_EQ(lastPhase(), "verifying");
        EXPECT_TRUE(copiesOn(at("d2")) == (FolderTree{{"A", twoFiles.at("A")}}));
    }
}

TEST_F(OffloadCancelTest, Cancel_BetweenFiles_LeavesTheFirstOnAllDrives) {
    makeCard(twoFiles);
    cancelAt(beforeB);

    EXPECT_TRUE(runIsCancelled());
    EXPECT_EQ(lastPhase(), "verifying");
    EXPECT_TRUE(copiesOn(at("d2")) == (FolderTree{{"A", twoFiles.at("A")}}));
}

TEST_F(OffloadCancelTest, Cancel_JustBeforeTheLastReadBack_GivesNoResultThoughAllIsCopied) {
    makeCard(twoFiles);
    cancelAt(readBackB2);

    EXPECT_TRUE(runIsCancelled());
    EXPECT_TRUE(copiesOn(at("d1")) == twoFiles);
    EXPECT_TRUE(copiesOn(at("d2")) == twoFiles);
    EXPECT_FALSE(hasHashList(at("d1")) || hasHashList(at("d2")));
}

TEST_F(OffloadCancelTest, Cancel_DuringTheLastReadBack_ComesTooLate) {
    makeCard(twoFiles);
    cancelAt(readBackB2 + 1);

    const auto result = run(request({at("d1"), at("d2")}));

    EXPECT_TRUE(isCancelled());
    EXPECT_TRUE(result.allVerified());
    EXPECT_TRUE(hasHashList(at("d1")) && hasHashList(at("d2")));
}

TEST_F(OffloadCancelTest, Cancel_EmptyCard_IsNeverAskedFor) {
    makeCard({});
    cancelAt(1);

    EXPECT_FALSE(runIsCancelled());
    EXPECT_EQ(asked_, 0);
}

TEST_F(OffloadCancelTest, Run_AfterACancelledOne_FinishesTheReel) {
    makeCard(twoFiles);
    cancelAt(blockA2);
    ASSERT_TRUE(runIsCancelled());
    isCancelled = [] { return false; };

    EXPECT_TRUE(run(request({at("d1"), at("d2")})).allVerified());
    EXPECT_TRUE(copiesOn(at("d1")) == twoFiles);
}

TEST_F(OffloadCancelTest, HashFile_DoesNotAsk) {
    writeFile(at("file"), noise(200'000));
    const OffloadEngine engine(blockSize, [] { return true; });

    EXPECT_EQ(engine.hashFile(at("file"), HashAlgorithm::xxhash64).size(), 16U);
}
