#include "ReelCore/Platform/UserAccount.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "SampleStoragePlan.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"
#include "ValueOf.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using Estimate = StorageCalculator::Estimate;
using Plan = StorageCalculator::Plan;
using Row = std::vector<std::string>;

/// The value of one fact of the plan's report.
std::string valueFor(const Plan& plan, const std::string& label) {
    return valueOf(Report::storagePlan("Winter", plan, sampleEstimate(), std::nullopt), label);
}

std::string valueFor(const Estimate& estimate, const std::string& label) {
    return valueOf(Report::storagePlan("Winter", samplePlan(), estimate, std::nullopt), label);
}

/// The amount of footage as the report prints it.
std::string footage(double gb) {
    Estimate estimate = sampleEstimate();
    estimate.shootGB = gb;
    return valueFor(estimate, "Footage (one copy)");
}

std::string recordingFormat(const char* codecID, const char* resolutionID, double fps) {
    Plan plan = samplePlan();
    plan.codecID = codecID;
    plan.resolutionID = resolutionID;
    plan.fps = fps;
    return valueFor(plan, "Recording format");
}

TEST(StoragePlanReport, WholePlan_HasEveryFactInOrder) {
    const Date before = now();

    const Report report =
        Report::storagePlan("Winter", samplePlan(), sampleEstimate(), sampleCards());

    EXPECT_EQ(report.title, "Storage Plan");
    EXPECT_EQ(report.subtitle, "Winter");
    EXPECT_EQ(report.tool, "keldobay 0.1.0");
    EXPECT_GE(report.generatedAt, before);
    EXPECT_LE(report.generatedAt, now());
    EXPECT_EQ(report.summary, (std::vector<Report::Field>{
                                  {"Production", "Winter"},
                                  {"Recording format", "ProRes 422 HQ · HD 1920×1080 · 23.976 fps"},
                                  {"Data rate", "176 Mbps — 79.2 GB/hour per camera"},
                                  {"Shooting plan", "8.0 h/day × 2 cameras × 5 days"},
                                  {"Sound recorder", "8 channels 24-bit/48k"},
                                  {"Backup policy", "3 copies on separate drives · 20% headroom"},
                                  {"Footage (one copy)", "6.50 TB"},
                                  {"Total data incl. copies", "23.41 TB"},
                                  {"Prepared by", UserAccount::fullName()}}));
    ASSERT_TRUE(report.table);
    EXPECT_EQ(report.table->columns, (Row{"Item", "Quantity", "Notes"}));
    EXPECT_EQ(
        report.table->rows,
        (std::vector<Row>{{"Hard drives", "3 × 8 TB",
                           "1 per copy × 3 copies; each copy holds 7.80 TB incl. margin"},
                          {"Camera cards", "45 × XQD 120 GB",
                           "≈73 min/card · 7 per camera/day · held 2 days until backups verified · "
                           "incl. 3 spares"}}));
}

TEST(StoragePlanReport, WithoutAProduction_BeginsWithTheRecordingFormat) {
    const Report absent =
        Report::storagePlan(std::nullopt, samplePlan(), sampleEstimate(), std::nullopt);
    const Report empty = Report::storagePlan("", samplePlan(), sampleEstimate(), std::nullopt);

    EXPECT_EQ(absent.subtitle, std::nullopt);
    EXPECT_EQ(absent.summary.front().label, "Recording format");
    EXPECT_EQ(absent.fileBase(), "Storage_Plan");
    EXPECT_EQ(empty.subtitle, "");
    EXPECT_EQ(empty.summary.front().label, "Recording format");
    EXPECT_EQ(empty.fileBase(), "Storage_Plan_");
}

TEST(StoragePlanReport, RecordingFormat_NamesTheResolutionOnlyWhereTheCodecUsesAKnownOne) {
    EXPECT_EQ(recordingFormat("dnxhr_lb", "8k", 25), "DNxHR LB · 8K 7680×4320 · 25 fps");
    EXPECT_EQ(recordingFormat("dnxhr_lb", "foo", 25), "DNxHR LB · 25 fps");
    EXPECT_EQ(recordingFormat("xavci_4k", "uhd", 50), "XAVC-I 4K (FX9/FX6) · 50 fps");
    EXPECT_EQ(recordingFormat("custom", "uhd", 50), "Custom bitrate… · 50 fps");
}

TEST(StoragePlanReport, UnknownCodec_StandsByItsID) {
    EXPECT_EQ(recordingFormat("foo", "uhd", 24), "foo · 24 fps");
    EXPECT_EQ(recordingFormat("", "uhd", 24), " · 24 fps");
}

TEST(StoragePlanReport, FramesPerSecond_HaveSixDigitsAtMost) {
    for (const auto& [fps, shown] :
         std::vector<std::pair<double, std::string>>{{23.976, "23.976"},
                                                     {24000.0 / 1001.0, "23.976"},
                                                     {24, "24"},
                                                     {29.97, "29.97"},
                                                     {59.94, "59.94"},
                                                     {0.1, "0.1"},
                                                     {0, "0"},
                                                     {0.00001, "1e-05"},
                                                     {999'999, "999999"},
                                                     {1'000'000, "1e+06"}}) {
        EXPECT_EQ(recordingFormat("custom", "hd", fps), "Custom bitrate… · " + shown + " fps");
    }
}

TEST(StoragePlanReport, DataRate_IsRounded) {
    Estimate estimate = sampleEstimate();
    estimate.videoMbps = 176.17617617;
    estimate.gbPerHour = 79.279279;
    EXPECT_EQ(valueFor(estimate, "Data rate"), "176 Mbps — 79.3 GB/hour per camera");

    estimate.videoMbps = 99.5;
    estimate.gbPerHour = 0.04;
    EXPECT_EQ(valueFor(estimate, "Data rate"), "100 Mbps — 0.0 GB/hour per camera");
}

TEST(StoragePlanReport, ShootingPlan_HasAPluralForAnyNumberButOne) {
    Plan plan = samplePlan();
    plan.hoursPerDay = 7.25;
    for (const auto& [cameras, days, shown] :
         std::vector<std::tuple<std::int64_t, std::int64_t, std::string>>{
             {1, 1, "7.2 h/day × 1 camera × 1 day"},
             {2, 1, "7.2 h/day × 2 cameras × 1 day"},
             {1, 2, "7.2 h/day × 1 camera × 2 days"},
             {0, 0, "7.2 h/day × 0 cameras × 0 days"},
             {-1, -1, "7.2 h/day × -1 cameras × -1 days"}}) {
        plan.cameras = cameras;
        plan.days = days;

        EXPECT_EQ(valueFor(plan, "Shooting plan"), shown);
    }
}

TEST(StoragePlanReport, SoundRecorder_StandsFromOneChannelUp) {
    Plan plan = samplePlan();
    plan.audioChannels = 1;
    EXPECT_EQ(valueFor(plan, "Sound recorder"), "1 channels 24-bit/48k");

    for (const std::int64_t none : {0, -1}) {
        plan.audioChannels = none;
        EXPECT_EQ(valueFor(plan, "Sound recorder"), "no field Sound recorder");
    }
}

TEST(StoragePlanReport, BackupPolicy_HasThePlansOwnNumbers) {
    Plan plan = samplePlan();
    plan.copies = 1;
    plan.marginPercent = 12.5;
    EXPECT_EQ(valueFor(plan, "Backup policy"), "1 copies on separate drives · 12% headroom");

    plan.copies = 0;
    plan.marginPercent = 0;
    EXPECT_EQ(valueFor(plan, "Backup policy"), "0 copies on separate drives · 0% headroom");
}

TEST(StoragePlanReport, Amounts_AreTerabytesFrom1000GigabytesUp) {
    EXPECT_EQ(footage(0), "0 GB");
    EXPECT_EQ(footage(0.6), "1 GB");
    EXPECT_EQ(footage(999), "999 GB");
    EXPECT_EQ(footage(999.4), "999 GB");
    EXPECT_EQ(footage(999.6), "1000 GB");
    EXPECT_EQ(footage(1000), "1.00 TB");
    EXPECT_EQ(footage(1006), "1.01 TB");
    EXPECT_EQ(footage(1'234'567), "1234.57 TB");
    EXPECT_EQ(footage(-2000), "-2000 GB");
}

TEST(StoragePlanReport, Total_IsInTheSameUnits) {
    Estimate estimate = sampleEstimate();
    estimate.totalAllCopiesGB = 750.2;

    EXPECT_EQ(valueFor(estimate, "Total data incl. copies"), "750 GB");
}

TEST(StoragePlanReport, OfARealEstimate_SaysWhatTheCalculatorFound) {
    const auto estimate = StorageCalculator::estimate(samplePlan());
    ASSERT_TRUE(estimate);

    const Report report = Report::storagePlan("Winter", samplePlan(), *estimate, std::nullopt);

    EXPECT_EQ(valueOf(report, "Data rate"), "176 Mbps — 79.2 GB/hour per camera");
    EXPECT_EQ(valueOf(report, "Total data incl. copies"), "23.41 TB");
    EXPECT_EQ(report.table->rows.at(0).at(1), "3 × 8 TB");
}

TEST(StoragePlanReport, OnPaper_PDFAndCSVSayTheSame) {
    const TemporaryFolder folder;
    const Report report =
        Report::storagePlan("Wind, \xFF", samplePlan(), sampleEstimate(), sampleCards());

    const auto written = ReportRenderer::write(report, folder.path(), {"pdf", "csv"});

    ASSERT_EQ(written.size(), 2U);
    const auto rows = readCSV(written[1]);
    ASSERT_EQ(rows.size(), 17U);
    EXPECT_EQ(rows[0], (Row{"Storage Plan"}));
    EXPECT_EQ(rows[1], (Row{"Wind, \uFFFD"}));
    EXPECT_EQ(rows[4], (Row{"Production", "Wind, \uFFFD"}));
    EXPECT_EQ(rows[5], (Row{"Recording format", "ProRes 422 HQ · HD 1920×1080 · 23.976 fps"}));
    EXPECT_EQ(rows[14], (Row{"Item", "Quantity", "Notes"}));
    EXPECT_EQ(rows[15], (Row{"Hard drives", "3 × 8 TB",
                             "1 per copy × 3 copies; each copy holds 7.80 TB incl. margin"}));
    EXPECT_EQ(rows[16], (Row{"Camera cards", "45 × XQD 120 GB",
                             "≈73 min/card · 7 per camera/day · held 2 days until backups "
                             "verified · incl. 3 spares"}));
    const Row lines = pdfLines(written[0]);
    ASSERT_EQ(lines.size(), 16U);
    EXPECT_EQ(lines[0], "Storage Plan");
    EXPECT_EQ(lines[1], "Wind, \uFFFD");
    EXPECT_EQ(lines[4], "Recording format: ProRes 422 HQ · HD 1920×1080 · 23.976 fps");
    EXPECT_EQ(lines[8], "Backup policy: 3 copies on separate drives · 20% headroom");
    EXPECT_EQ(lines[10], "Total data incl. copies: 23.41 TB");
    EXPECT_EQ(squeezed(lines[12]), "Item Quantity Notes");
    EXPECT_EQ(squeezed(lines[14]), "Hard drives 3 × 8 TB 1 per copy × 3 co…");
    EXPECT_EQ(squeezed(lines[15]), "Camera cards 45 × XQD 12… ≈73 min/card · 7 …");
}

}  // namespace
