#include "OffloadFixture.h"
#include "ReelCore/Platform/DateText.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/Tool.h"

#include <sys/stat.h>

using namespace ReelCore;
using namespace TestSupport;
using namespace std::chrono_literals;

namespace {

using Phase = OffloadProgress::Phase;
using File = std::optional<std::string>;

const FolderTree threeFiles{
    {"A.MOV", noise(200'000, 1)}, {"DCIM/B.MOV", noise(65'536, 2)}, {"DCIM/C.XML", ""}};
constexpr std::int64_t threeSizes = 265'536;

}  // namespace

class OffloadEngineTest : public OffloadTest {};

TEST_F(OffloadEngineTest, Run_TwoDrives_LeavesVerifiedCopiesAndHashListsOnBoth) {
    makeCard(threeFiles);

    const auto result = run(request({at("d1"), at("d2")}));

    EXPECT_TRUE(result.allVerified());
    EXPECT_EQ(result.request, request({at("d1"), at("d2")}));
    EXPECT_EQ(result.totalBytes(), threeSizes);
    for (const URL& drive : {at("d1"), at("d2")}) {
        EXPECT_TRUE(copiesOn(drive) == threeFiles);
        EXPECT_EQ(runTool("xmllint", {"--noout", (drive / "A001/A001.mhl").native()}).status, 0);
    }
}

TEST_F(OffloadEngineTest, Run_Result_TellsEachFileAndDriveInOrder) {
    makeCard({{"B", "b"}, {"A", "a"}, {"C", ""}});

    const auto result = run(request({at("d2"), at("d1")}));

    const std::string hashOfA = "d24ec4f1a98c6e5b";
    EXPECT_EQ(result.files.at(0).file.relativePath, "A");
    EXPECT_EQ(result.files.at(0).sourceHash, hashOfA);
    const auto proved = [&](const URL& drive) {
        const URL copy = drive / "A001/A";
        return DestinationResult{drive, copy, hashOfA, true, std::nullopt, FileSystem::stamp(copy)};
    };
    EXPECT_EQ(result.files.at(0).destinations, (std::vector{proved(at("d2")), proved(at("d1"))}));
    EXPECT_EQ(result.files.at(1).file.relativePath, "B");
    EXPECT_EQ(result.files.at(2).sourceHash, "ef46db3751d8e999") << "of the empty stream";
}

TEST_F(OffloadEngineTest, Run_CameraFormat_ComesFromTheScan) {
    makeCard({{"DCIM/a", ""}, {"MISC/b", ""}});

    EXPECT_EQ(run(request({at("d1")})).cameraFormat, CameraFormat::canon);
}

TEST_F(OffloadEngineTest, Run_Dates_StartBeforeTheScanAndFinishBeforeTheHashLists) {
    makeCard({{"A", "12345"}});
    Date atScan, atLastReadBack, atReport;
    onProgress = [&](const OffloadProgress& progress) {
        if (progress.phase == Phase::scanning) atScan = now();
        if (progress.phase == Phase::verifying) atLastReadBack = now();
        if (progress.phase == Phase::writingReport) atReport = now();
    };
    const Date before = now();

    const auto result = run(request({at("d1")}));

    EXPECT_LE(before, result.startedAt);
    EXPECT_LE(result.startedAt, atScan);
    EXPECT_LE(atLastReadBack, result.finishedAt);
    EXPECT_LE(atReport, result.finishedAt);
    const std::string list = readFile(at("d1/A001/A001.mhl"));
    EXPECT_NE(list.find("<finishdate>" + DateText::utc(result.finishedAt)), list.npos)
        << "the list was written before the end was known";
}

TEST_F(OffloadEngineTest, Run_EmptyCard_EndsWithHashListsButProvesNothing) {
    makeCard({});

    const auto result = run(request({at("d1"), at("d2")}));

    EXPECT_TRUE(result.files.empty());
    EXPECT_FALSE(result.allVerified());
    EXPECT_TRUE(hasHashList(at("d1")) && hasHashList(at("d2")));
    EXPECT_EQ(events_,
              (std::vector<OffloadProgress>{{Phase::scanning, std::nullopt, 0, 0, 0, 0},
                                            {Phase::writingReport, std::nullopt, 0, 0, 0, 0},
                                            {Phase::done, std::nullopt, 0, 0, 0, 0}}));
    for (const auto& event : events_) EXPECT_EQ(event.fractionComplete(), 0.0);
}

TEST_F(OffloadEngineTest, Run_NoDestinations_FailsBeforeAnythingElse) {
    OffloadRequest nothing = request({});
    nothing.source = at("gone");

    EXPECT_EQ(descriptionOf(nothing), "At least one destination is required.");
    EXPECT_TRUE(events_.empty());
}

TEST_F(OffloadEngineTest, Run_SourceMissing_FailsAfterTheFirstEventAndMakesNoFolder) {
    EXPECT_EQ(descriptionOf(request({at("d1")})),
              "Source not found or not a directory: " + card().native());
    EXPECT_EQ(events_, std::vector<OffloadProgress>(1));
    EXPECT_FALSE(std::filesystem::exists(at("d1")));
}

TEST_F(OffloadEngineTest, Run_ReelFolderCannotBeMade_TellsTheDriveAndCopiesNothingAnywhere) {
    makeCard(threeFiles);
    writeFile(at("d2"), "a file, no folder");

    const auto error = failureOf(request({at("d1"), at("d2"), at("d3")}));

    ASSERT_TRUE(error && error->is<OffloadError::DestinationNotWritable>());
    EXPECT_EQ(error->description(), "Destination is not writable: " + at("d2").native());
    EXPECT_TRUE(std::filesystem::is_empty(at("d1/A001"))) << "what was made before stays";
    EXPECT_FALSE(std::filesystem::exists(at("d3")));
    EXPECT_EQ(events_.size(), 1U);
}

TEST_F(OffloadEngineTest, Run_FolderForAFileCannotBeMade_FailsWithTheSystemsError) {
    makeCard({{"A", "a"}, {"DCIM/B", "b"}, {"Z", "z"}});
    writeFile(at("d2/A001/DCIM"), "a file in the way");

    EXPECT_THROW(run(request({at("d1"), at("d2")})), SystemError);

    EXPECT_EQ(copiesOn(at("d1")), (FolderTree{{"A", "a"}}));
    EXPECT_FALSE(hasHashList(at("d1")));
}

TEST_F(OffloadEngineTest, Run_AgainOntoTheSameReel_GivesFreshCopies) {
    makeCard({{"A", "new"}, {"DCIM/B", noise(100'000)}});
    writeTree(at("d1/A001"),
              {{"A", "a longer old text"}, {"DCIM/B", noise(300'000, 7)}, {"other", "stays"}});

    EXPECT_TRUE(run(request({at("d1")})).allVerified());
    EXPECT_TRUE(run(request({at("d1")})).allVerified());

    EXPECT_TRUE(copiesOn(at("d1")) ==
                (FolderTree{{"A", "new"}, {"DCIM/B", noise(100'000)}, {"other", "stays"}}));
}

TEST_F(OffloadEngineTest, Run_HashListCannotBeWritten_IsIgnored) {
    makeCard({{"A", "a"}});
    writeFile(at("d1/A001/A001.mhl/inside"), "a folder in the way");

    const auto result = run(request({at("d1"), at("d2")}));

    EXPECT_TRUE(result.allVerified());
    EXPECT_EQ(events_.back().phase, Phase::done);
    EXPECT_TRUE(hasHashList(at("d2")));
    EXPECT_EQ(readFile(at("d1/A001/A001.mhl/inside")), "a folder in the way");
}

TEST_F(OffloadEngineTest, Run_CardHoldsAFileOfTheHashListsName_ItsProvedCopyStays) {
    const FolderTree card{{"A", "a"}, {"A001.mhl", "the list of an earlier offload"}};
    makeCard(card);

    EXPECT_TRUE(run(request({at("d1"), at("d2")})).allVerified());
    EXPECT_TRUE(run(request({at("d1"), at("d2")})).allVerified());

    EXPECT_EQ(readTree(at("d1/A001")), card);
    EXPECT_EQ(readTree(at("d2/A001")), card);
}

TEST_F(OffloadEngineTest, Run_CopyOfAFileNamedLikeTheHashListIsDamaged_DoesNotKeepTheListAway) {
    makeCard({{"A001.mhl", "an earlier list"}});
    onProgress = [&](const OffloadProgress& progress) {
        if (progress.phase == Phase::verifying) writeFile(at("d1/A001/A001.mhl"), "damaged");
    };

    EXPECT_FALSE(run(request({at("d1"), at("d2")})).allVerified());

    EXPECT_EQ(runTool("xmllint", {"--noout", at("d1/A001/A001.mhl").native()}).status, 0);
    EXPECT_EQ(readFile(at("d2/A001/A001.mhl")), "an earlier list") << "that copy is proved";
}

TEST_F(OffloadEngineTest, Run_AgainOntoTheSameReel_WritesTheHashListAnew) {
    makeCard({{"A", "a"}, {"DCIM/A001.mhl", "no matter in a folder"}});
    run(request({at("d1")}));
    writeFile(at("d1/A001/A001.mhl"), "an old list");

    run(request({at("d1")}));

    EXPECT_EQ(runTool("xmllint", {"--noout", at("d1/A001/A001.mhl").native()}).status, 0);
}

TEST_F(OffloadEngineTest, Run_FileDates_AreKeptToTheNanosecondOnEveryCopy) {
    const Date date(1'234'567'890s + 123'456'789ns);
    writeTree(card(), {{"A", "a"}, {"B", ""}});
    setModificationDate(card() / "A", date);
    setModificationDate(card() / "B", Date(-1s));
    noteCard(card());

    run(request({at("d1"), at("d2")}));

    for (const URL& drive : {at("d1"), at("d2")}) {
        EXPECT_EQ(modificationDate(drive / "A001/A"), date);
        EXPECT_EQ(modificationDate(drive / "A001/B"), Date(-1s));
    }
}

TEST_F(OffloadEngineTest, Run_Permissions_AreNotCopied) {
    writeTree(card(), {{"A", "a"}});
    ASSERT_EQ(::chmod((card() / "A").c_str(), 0400), 0);
    noteCard(card());

    run(request({at("d1")}));

    const auto mode = std::filesystem::status(at("d1/A001/A")).permissions();
    EXPECT_NE(mode & std::filesystem::perms::owner_write, std::filesystem::perms::none);
}

TEST_F(OffloadEngineTest, Run_FileVanishesAfterTheScan_EndsWithReadFailed) {
    makeCard({{"A", "a"}, {"DCIM/B", "b"}, {"Z", "z"}});
    forgetCard();
    onProgress = [&](const OffloadProgress& progress) {
        if (progress.phase == Phase::copying) std::filesystem::remove(card() / "DCIM/B");
    };

    EXPECT_EQ(descriptionOf(request({at("d1")})), "Failed reading B: could not open");
    EXPECT_EQ(copiesOn(at("d1")), (FolderTree{{"A", "a"}}));
    EXPECT_FALSE(hasHashList(at("d1")));
    EXPECT_EQ(events_.back().phase, Phase::copying) << "no further event";
}

TEST_F(OffloadEngineTest, Run_FileBecomesAPipeOrALink_EndsWithReadFailedAndDoesNotWait) {
    for (const bool pipe : {true, false}) {
        writeTree(card(), {{"A", "a"}});
        writeFile(at("elsewhere"), "not on the card");
        onProgress = [&](const OffloadProgress& progress) {
            if (progress.phase != Phase::copying) return;
            std::filesystem::remove(card() / "A");
            if (pipe) {
                ASSERT_EQ(::mkfifo((card() / "A").c_str(), 0666), 0);
            } else {
                std::filesystem::create_symlink(at("elsewhere"), card() / "A");
            }
        };

        EXPECT_EQ(descriptionOf(request({at("d1")})), "Failed reading A: could not open");
        EXPECT_EQ(copiesOn(at("d1")), FolderTree{});
        std::filesystem::remove_all(card());
    }
}

TEST_F(OffloadEngineTest, Run_FileGrewAfterTheScan_IsCopiedWholeAndCountedAsScanned) {
    writeTree(card(), {{"A", "12345"}, {"B", noise(100'000)}});
    onProgress = [&](const OffloadProgress& progress) {
        if (progress.phase != Phase::copying || progress.currentFile != File("A")) return;
        writeFile(card() / "A", noise(200'000, 9));
    };

    const auto result = run(request({at("d1")}));

    EXPECT_TRUE(result.allVerified());
    EXPECT_TRUE(copiesOn(at("d1")) ==
                (FolderTree{{"A", noise(200'000, 9)}, {"B", noise(100'000)}}));
    EXPECT_EQ(result.files.at(0).file.size, 200'000);
    EXPECT_EQ(events_.back().bytesCompleted, 100'005);
    EXPECT_EQ(events_.back().totalBytes, 100'005);
    EXPECT_NE(readFile(at("d1/A001/A001.mhl")).find("<size>200000</size>"), std::string::npos);
}

TEST_F(OffloadEngineTest, Engine_BlocksOfAnySize_GiveTheSameCopyAndHash) {
    makeCard({{"A", noise(10'001)}});
    for (const std::size_t size : {1U, 7U, 4096U, 10'001U, 4U << 20U}) {
        OffloadEngine engine(size, [] { return false; });

        const auto result = engine.run(request({at("d1")}), [](const auto&) {});

        EXPECT_TRUE(result.allVerified()) << size;
        EXPECT_TRUE(copiesOn(at("d1")) == (FolderTree{{"A", noise(10'001)}})) << size;
    }
}

TEST(OffloadEngineDeathTest, Engine_WithoutABuffer_IsAFatalFault) {
    EXPECT_DEATH(OffloadEngine(0, [] { return false; }), "buffer");
}

TEST(OffloadEngineDeathTest, Engine_WithoutQuestionOrListener_IsAFatalFault) {
    EXPECT_DEATH(OffloadEngine(1, {}), "cancelled");
    OffloadEngine engine(1, [] { return false; });
    EXPECT_DEATH(engine.run({}, {}), "tell how it goes");
}

TEST_F(OffloadEngineTest, ApplyMetadata_WithoutADateOrWithoutTheFile_DoesNothing) {
    writeFile(at("there"), "");
    const Date before = modificationDate(at("there"));

    OffloadEngine::applyMetadata({"x", 0, std::nullopt}, {at("there")});
    EXPECT_EQ(modificationDate(at("there")), before);

    OffloadEngine::applyMetadata({"x", 0, Date(5s)}, {at("gone"), at("there")});
    EXPECT_EQ(modificationDate(at("there")), Date(5s));
}

TEST_F(OffloadEngineTest, HashFile_MissingFile_CouldNotBeOpened) {
    const OffloadEngine engine(blockSize, [] { return false; });
    try {
        engine.hashFile(at("gone/A.MOV"), HashAlgorithm::md5);
        FAIL() << "no error";
    } catch (const OffloadError& error) {
        EXPECT_EQ(error.description(), "Failed reading A.MOV: could not open");
    }
}
