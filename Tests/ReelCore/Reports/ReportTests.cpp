#include "ReelCore/Reports/Report.h"

#include "ReelCore/Reports/ReportRenderer.h"
#include "Support/FolderTree.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

Report reportNamed(const std::string& title, const std::optional<std::string>& subtitle) {
    return {title, subtitle, {}, std::nullopt, Date(), "keldobay 0.1.0"};
}

TEST(ReportFileBase, BlanksAndSlashes_BecomeUnderscores) {
    EXPECT_EQ(reportNamed("Offload Report", "DAY 1/A 001").fileBase(),
              "Offload_Report_DAY_1_A_001");
    EXPECT_EQ(reportNamed("A/B", std::nullopt).fileBase(), "A_B");
}

TEST(ReportFileBase, Subtitle_IsOnlyAppendedIfThereIsOne) {
    EXPECT_EQ(reportNamed("Plan", std::nullopt).fileBase(), "Plan");
    EXPECT_EQ(reportNamed("Plan", "").fileBase(), "Plan_");
}

TEST(ReportFileBase, OtherCharacters_StayAsTheyAre) {
    EXPECT_EQ(reportNamed("Plan: é\t", "..").fileBase(), "Plan:_é\t_..");
}

TEST(ReportWrite, BothFormats_GiveThePDFFirst) {
    const TemporaryFolder folder;
    const Report report = reportNamed("Offload Report", "A/1");

    const auto written = ReportRenderer::write(report, folder.path(), {"csv", "pdf"});

    EXPECT_EQ(written, (std::vector<URL>{folder.path() / "Offload_Report_A_1.pdf",
                                         folder.path() / "Offload_Report_A_1.csv"}));
    EXPECT_EQ(readFile(written[0]).substr(0, 5), "%PDF-");
    EXPECT_EQ(readFile(written[1]), ReportRenderer::csv(report));
}

TEST(ReportWrite, OneFormat_WritesThatFileOnly) {
    const TemporaryFolder folder;
    const Report report = reportNamed("Plan", std::nullopt);

    EXPECT_EQ(ReportRenderer::write(report, folder.path() / "1", {"csv"}),
              std::vector<URL>{folder.path() / "1/Plan.csv"});
    EXPECT_EQ(ReportRenderer::write(report, folder.path() / "2", {"pdf"}),
              std::vector<URL>{folder.path() / "2/Plan.pdf"});
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "1/Plan.pdf"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "2/Plan.csv"));
}

TEST(ReportWrite, OtherFormats_AreIgnoredButTheFolderIsMade) {
    const TemporaryFolder folder;
    const URL target = folder.path() / "a/b/c";

    EXPECT_TRUE(ReportRenderer::write(reportNamed("Plan", std::nullopt), target, {"PDF", "xml", ""})
                    .empty());
    EXPECT_TRUE(ReportRenderer::write(reportNamed("Plan", std::nullopt), target, {}).empty());

    EXPECT_TRUE(std::filesystem::is_directory(target));
    EXPECT_TRUE(std::filesystem::is_empty(target));
}

TEST(ReportWrite, OldFilesOfThoseNames_AreReplacedWhole) {
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"Plan.csv", noise(50'000)}, {"Plan.pdf", noise(500'000)}});
    const Report report = reportNamed("Plan", std::nullopt);

    const auto written = ReportRenderer::write(report, folder.path(), {"csv", "pdf"});

    EXPECT_EQ(readFile(written[1]), ReportRenderer::csv(report));
    EXPECT_LT(std::filesystem::file_size(written[0]), 100'000U);
}

}  // namespace
