#include "ReelCore/Platform/UserAccount.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "SampleOffload.h"
#include "ValueOf.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using namespace std::chrono_literals;
using Row = std::vector<std::string>;

TEST(OffloadReport, WholeRun_HasEveryFieldInOrder) {
    const auto result =
        sampleOffload({sampleFile("CLIP/C1.MXF", 1'610'612'736), sampleFile("CLIP/C1.XML", 512)});
    const Date before = now();

    const Report report = Report::offload(result, "Winter", "Jo Doe");

    EXPECT_EQ(report.title, "Offload Report");
    EXPECT_EQ(report.subtitle, "A001");
    EXPECT_EQ(report.tool, "keldobay 0.1.0");
    EXPECT_GE(report.generatedAt, before);
    EXPECT_LE(report.generatedAt, now());
    EXPECT_EQ(report.summary,
              (std::vector<Report::Field>{{"Project", "Winter"},
                                          {"Reel / Card", "A001"},
                                          {"Camera", "Sony"},
                                          {"Source", "/media/CARD"},
                                          {"Destinations", "RAID, SHUTTLE", {"RAID", "SHUTTLE"}},
                                          {"Copies", "2"},
                                          {"Files", "2"},
                                          {"Total size", "1.50 GB"},
                                          {"Checksum", "xxhash64"},
                                          {"Verified", "ALL FILES VERIFIED ✓"},
                                          {"Started", dateTime(sampleDate())},
                                          {"Finished", dateTime(sampleDate() + 1min)},
                                          {"Operator", "Jo Doe"}}));
}

TEST(OffloadReport, Table_HasOneRowAFileInTheOrderOfTheResult) {
    const auto result = sampleOffload({sampleFile("b.mov", 1'536), sampleFile("a.mov", 7)});

    const Report report = Report::offload(result, std::nullopt, std::nullopt);

    ASSERT_TRUE(report.table);
    EXPECT_EQ(report.table->columns, (Row{"File", "Size", "xxhash64", "Status"}));
    EXPECT_EQ(report.table->rows,
              (std::vector<Row>{{"b.mov", "1.50 KB", "0eab543384f878ad", "VERIFIED"},
                                {"a.mov", "7 B", "0eab543384f878ad", "VERIFIED"}}));
}

TEST(OffloadReport, ChecksumColumn_IsNamedByTheAlgorithm) {
    auto result = sampleOffload({sampleFile("a.mov", 7)});
    for (const HashAlgorithm algorithm : allCases<HashAlgorithm>()) {
        result.request.algorithm = algorithm;

        const Report report = Report::offload(result, std::nullopt, std::nullopt);

        EXPECT_EQ(report.table->columns[2], mhlTag(algorithm));
        EXPECT_EQ(valueOf(report, "Checksum"), rawValue(algorithm));
    }
}

TEST(OffloadReport, WithoutAProject_BeginsWithTheReel) {
    const Report report = Report::offload(sampleOffload({}), std::nullopt, "Jo");

    EXPECT_EQ(report.summary.front(), (Report::Field{"Reel / Card", "A001"}));
    EXPECT_EQ(report.summary.size(), 12U);
}

TEST(OffloadReport, EmptyProject_IsStillPresent) {
    const Report report = Report::offload(sampleOffload({}), "", "Jo");

    EXPECT_EQ(report.summary.front(), (Report::Field{"Project", ""}));
}

TEST(OffloadReport, WithoutAnOperator_NamesTheUser) {
    const auto result = sampleOffload({});

    EXPECT_EQ(valueOf(Report::offload(result, std::nullopt, std::nullopt), "Operator"),
              UserAccount::fullName());
    EXPECT_EQ(valueOf(Report::offload(result, std::nullopt, ""), "Operator"), "");
}

TEST(OffloadReport, FailedFiles_AreCountedAndMarkedWithoutTheirDestinations) {
    const auto result =
        sampleOffload({sampleFile("a.mov", 1, {true, true}), sampleFile("b.mov", 1, {true, false}),
                       sampleFile("c.mov", 1, {false, false})});

    const Report report = Report::offload(result, std::nullopt, std::nullopt);

    EXPECT_EQ(valueOf(report, "Verified"), "2 FAILED ✗");
    EXPECT_EQ(report.table->rows,
              (std::vector<Row>{{"a.mov", "1 B", "0eab543384f878ad", "VERIFIED"},
                                {"b.mov", "1 B", "0eab543384f878ad", "FAILED"},
                                {"c.mov", "1 B", "0eab543384f878ad", "FAILED"}}));
}

TEST(OffloadReport, FileWithoutAnyCopy_IsFailed) {
    const Report report =
        Report::offload(sampleOffload({sampleFile("a.mov", 1, {})}), std::nullopt, std::nullopt);

    EXPECT_EQ(valueOf(report, "Verified"), "1 FAILED ✗");
    EXPECT_EQ(report.table->rows[0][3], "FAILED");
}

TEST(OffloadReport, EmptyCard_ProvesNothingAndCountsNoFailures) {
    const Report report = Report::offload(sampleOffload({}), std::nullopt, std::nullopt);

    EXPECT_EQ(valueOf(report, "Verified"), "0 FAILED ✗");
    EXPECT_EQ(valueOf(report, "Files"), "0");
    EXPECT_EQ(valueOf(report, "Total size"), "0 B");
    ASSERT_TRUE(report.table);
    EXPECT_EQ(report.table->columns, (Row{"File", "Size", "xxhash64", "Status"}));
    EXPECT_TRUE(report.table->rows.empty());
}

TEST(OffloadReport, Destinations_AreNamedByTheirLastPart) {
    auto result = sampleOffload({});
    result.request.destinations = {"/mnt/RAID/Shoot 7/", "/mnt/SHUTTLE//", "/", "relative"};

    const Report report = Report::offload(result, std::nullopt, std::nullopt);

    EXPECT_EQ(valueOf(report, "Destinations"), "Shoot 7, SHUTTLE, /, relative");
    EXPECT_EQ(valueOf(report, "Copies"), "4");
}

TEST(OffloadReport, Source_IsItsPathWithoutSlashesAtTheEnd) {
    auto result = sampleOffload({});
    for (const auto& [source, shown] : std::vector<std::pair<URL, std::string>>{
             {"/media/CARD", "/media/CARD"}, {"/media/CARD//", "/media/CARD"}, {"/", "/"}}) {
        result.request.source = source;

        EXPECT_EQ(valueOf(Report::offload(result, std::nullopt, std::nullopt), "Source"), shown);
    }
}

TEST(OffloadReport, FileNames_ComeFromTitleAndReel) {
    auto result = sampleOffload({});
    result.request.reelName = "DAY 1/A001";

    EXPECT_EQ(Report::offload(result, std::nullopt, std::nullopt).fileBase(),
              "Offload_Report_DAY_1_A001");
}

}  // namespace
