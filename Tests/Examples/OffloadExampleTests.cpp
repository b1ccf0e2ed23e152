#include "ReelCore/Platform/ChildProcess.h"
#include "Support/FolderTree.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

ChildProcess::Outcome runExample(const std::vector<std::string>& arguments) {
    return ChildProcess::run(EXAMPLE_OFFLOAD, arguments);
}

TEST(OffloadExample, Card_IsCopiedProvedAndReported) {
    const TemporaryFolder folder;
    const FolderTree card{{"PRIVATE/C1.MXF", noise(100'000)}, {"AVF_INFO/C1.XML", "<x/>"}};
    writeTree(folder.path() / "CARD", card);

    const auto outcome = runExample({folder.path() / "CARD", "A001", folder.path() / "Reports",
                                     folder.path() / "RAID", folder.path() / "SHUTTLE"});

    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_NE(outcome.output.find("Sony: 2 files, 97.66 KB\n"), std::string::npos)
        << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with("all files verified\n")) << outcome.output;
    for (const char* drive : {"RAID", "SHUTTLE"}) {
        FolderTree copied = readTree(folder.path() / drive / "A001");
        EXPECT_EQ(copied.erase("A001.mhl"), 1U);
        EXPECT_EQ(copied, card);
    }
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "Reports/Offload_Report_A001.pdf"));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "Reports/Offload_Report_A001.csv"));
}

TEST(OffloadExample, EmptyCard_IsNotVerified) {
    const TemporaryFolder folder;
    writeTree(folder.path() / "CARD", {});

    const auto outcome = runExample(
        {folder.path() / "CARD", "A001", folder.path() / "Reports", folder.path() / "RAID"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.ends_with("NOT VERIFIED\n")) << outcome.output;
}

TEST(OffloadExample, MissingCard_IsSaidInWords) {
    const TemporaryFolder folder;
    const std::string card = folder.path() / "CARD";

    const auto outcome = runExample({card, "A001", folder.path() / "R", folder.path() / "RAID"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "Source not found or not a directory: " + card + "\n");
}

TEST(OffloadExample, TooFewArguments_GiveTheUsage) {
    const auto outcome = runExample({"CARD", "A001"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "usage: example-offload CARD REEL REPORTS DESTINATION...\n");
}

}  // namespace
