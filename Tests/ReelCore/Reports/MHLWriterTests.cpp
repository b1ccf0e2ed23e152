#include "ReelCore/Reports/MHLWriter.h"

#include "ReelCore/Platform/DateText.h"
#include "ReelCore/Platform/UserAccount.h"
#include "SampleOffload.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"

#include <algorithm>
#include <regex>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using namespace std::chrono_literals;

const MHLWriter writer{"keldobay", "0.1.0"};

/// The text of the only element of that name.
std::string onlyText(const URL& list, const std::string& name) {
    const auto texts = elementTexts(list, name);
    return texts.size() == 1 ? texts[0] : "not once but " + std::to_string(texts.size());
}

/// The lines up to the first file, for a user whose names need no escaping.
std::string expectedHead() {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<hashlist version=\"1.1\">\n"
           "  <creatorinfo>\n"
           "    <name>" +
           UserAccount::fullName() +
           "</name>\n"
           "    <username>" +
           UserAccount::loginName() +
           "</username>\n"
           "    <hostname>" +
           UserAccount::hostName() +
           "</hostname>\n"
           "    <tool>keldobay 0.1.0</tool>\n"
           "    <startdate>2026-03-01T14:05:09Z</startdate>\n"
           "    <finishdate>2026-03-01T14:06:09Z</finishdate>\n"
           "  </creatorinfo>\n";
}

TEST(MHLWriter, TwoFiles_GiveTheListLineByLine) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload(
        {sampleFile("CLIP/C0001.MXF", 1'610'612'736), sampleFile("CLIP/C0001.XML", 0)});
    result.files[1].sourceHash = "ef46db3751d8e999";

    const URL list = writer.write(result, folder.path());

    const std::string hashDate = elementTexts(list, "hashdate").at(0);
    EXPECT_EQ(readFile(list),
              expectedHead() +
                  "  <hash>\n"
                  "    <file>CLIP/C0001.MXF</file>\n"
                  "    <size>1610612736</size>\n"
                  "    <lastmodificationdate>2026-03-01T13:05:09Z</lastmodificationdate>\n"
                  "    <xxhash64>0eab543384f878ad</xxhash64>\n"
                  "    <hashdate>" +
                  hashDate +
                  "</hashdate>\n"
                  "  </hash>\n"
                  "  <hash>\n"
                  "    <file>CLIP/C0001.XML</file>\n"
                  "    <size>0</size>\n"
                  "    <lastmodificationdate>2026-03-01T13:05:09Z</lastmodificationdate>\n"
                  "    <xxhash64>ef46db3751d8e999</xxhash64>\n"
                  "    <hashdate>" +
                  hashDate +
                  "</hashdate>\n"
                  "  </hash>\n"
                  "</hashlist>\n");
    EXPECT_EQ(xmlFaults(list), "");
}

TEST(MHLWriter, NoFiles_GiveTheHeadAndTheLastLineOnly) {
    const TemporaryFolder folder;

    const URL list = writer.write(sampleOffload({}), folder.path());

    EXPECT_EQ(readFile(list), expectedHead() + "</hashlist>\n");
    EXPECT_EQ(xmlFaults(list), "");
}

TEST(MHLWriter, FileWithoutADate_HasFourInnerLines) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload({sampleFile("a.mov", 7)});
    result.files[0].file.modificationDate.reset();

    const std::string list = readFile(writer.write(result, folder.path()));

    EXPECT_TRUE(std::regex_search(
        list, std::regex("  <hash>\n    <file>a\\.mov</file>\n    <size>7</size>\n"
                         "    <xxhash64>0eab543384f878ad</xxhash64>\n"
                         "    <hashdate>[^\n]*</hashdate>\n  </hash>\n")))
        << list;
}

TEST(MHLWriter, EachAlgorithm_NamesTheHashElement) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload({sampleFile("a.mov", 7)});

    for (const HashAlgorithm algorithm : allCases<HashAlgorithm>()) {
        result.request.algorithm = algorithm;
        const URL list = writer.write(result, folder.path());
        for (const HashAlgorithm other : allCases<HashAlgorithm>()) {
            EXPECT_EQ(elementTexts(list, std::string(mhlTag(other))).size(),
                      other == algorithm ? 1U : 0U);
        }
    }
}

TEST(MHLWriter, HashDate_IsTheInstantOfWritingAndTheSameForAllFiles) {
    const TemporaryFolder folder;
    const std::string before = DateText::utc(now());

    const URL list = writer.write(
        sampleOffload({sampleFile("a.mov", 1), sampleFile("b.mov", 1), sampleFile("c.mov", 1)}),
        folder.path());

    const auto dates = elementTexts(list, "hashdate");
    ASSERT_EQ(dates.size(), 3U);
    EXPECT_EQ(std::ranges::count(dates, dates[0]), 3);
    EXPECT_LE(before, dates[0]);
    EXPECT_LE(dates[0], DateText::utc(now()));
}

TEST(MHLWriter, Dates_HaveNoFractions) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload({sampleFile("a.mov", 1)});
    result.startedAt += 999'999'999ns;
    result.files[0].file.modificationDate = sampleDate() + 500ms;

    const URL list = writer.write(result, folder.path());

    EXPECT_EQ(onlyText(list, "startdate"), "2026-03-01T14:05:09Z");
    EXPECT_EQ(onlyText(list, "lastmodificationdate"), "2026-03-01T14:05:09Z");
}

TEST(MHLWriter, ListName_IsTheReelNameWithUnderscoresForSlashes) {
    const TemporaryFolder folder;
    OffloadResult result = sampleOffload({});

    for (const auto& [reel, name] : FolderTree{{"A001", "A001.mhl"},
                                               {"DAY 1/A001/B", "DAY 1_A001_B.mhl"},
                                               {"/A001", "_A001.mhl"},
                                               {"..", "...mhl"},
                                               {"", ".mhl"}}) {
        result.request.reelName = reel;
        EXPECT_EQ(writer.write(result, folder.path()), folder.path() / name);
        EXPECT_TRUE(std::filesystem::is_regular_file(folder.path() / name)) << name;
    }
}

TEST(MHLWriter, OldListOfThatName_IsReplacedWhole) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "A001.mhl", noise(100'000));

    const URL list = writer.write(sampleOffload({}), folder.path());

    EXPECT_EQ(readFile(list), expectedHead() + "</hashlist>\n");
}

TEST(MHLWriter, ManyFiles_AreListedOnceEachInOrder) {
    const TemporaryFolder folder;
    std::vector<std::string> paths;
    std::vector<FileVerification> files;
    for (int i = 0; i < 2000; ++i) {
        paths.push_back("CLIP/C" + std::to_string(i) + ".MXF");
        files.push_back(sampleFile(paths.back(), i));
    }

    const URL list = writer.write(sampleOffload(files), folder.path());

    EXPECT_EQ(elementTexts(list, "file"), paths);
    EXPECT_EQ(elementTexts(list, "hash").size(), paths.size());
}

TEST(MHLWriter, SameNameInTwoFolders_GivesTwoEntriesWithTheirPaths) {
    const TemporaryFolder folder;

    const URL list = writer.write(
        sampleOffload({sampleFile("A/C1.MOV", 1), sampleFile("B/C1.MOV", 1)}), folder.path());

    EXPECT_EQ(elementTexts(list, "file"), (std::vector<std::string>{"A/C1.MOV", "B/C1.MOV"}));
}

TEST(MHLWriter, FilesThatFailed_AreListedLikeAnyOther) {
    const TemporaryFolder folder;
    const URL good =
        writer.write(sampleOffload({sampleFile("a.mov", 5, {true, true})}), folder.path());
    const auto hashes = elementTexts(good, "xxhash64");

    const URL list = writer.write(
        sampleOffload({sampleFile("a.mov", 5, {true, false}), sampleFile("b.mov", 5, {})}),
        folder.path());

    EXPECT_EQ(elementTexts(list, "file"), (std::vector<std::string>{"a.mov", "b.mov"}));
    EXPECT_EQ(elementTexts(list, "xxhash64").at(0), hashes.at(0));
    EXPECT_EQ(readFile(list).find("FAILED"), std::string::npos);
}

}  // namespace
