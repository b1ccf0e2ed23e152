#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "ReelCore/Sync/SyncTypes.h"
#include "SampleOffload.h"
#include "SampleStoragePlan.h"
#include "Support/CommaLocale.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

SyncResult sampleSync() {
    AudioClip recording;
    recording.url = "/day/B.WAV";
    SyncGroup group;
    group.video.url = "/day/A.MOV";
    group.audio.push_back({recording, 12.345, 0.5});
    return {{group}, {}};
}

/// Every kind of report, made at one instant.
std::vector<Report> reports() {
    std::vector<Report> all{
        Report::offload(sampleOffload({sampleFile("a.mov", 1'610'612'736)}), "Winter", "Jo"),
        Report::storagePlan("Winter", samplePlan(), sampleEstimate(), sampleCards()),
        Report::sync(sampleSync(), "Day 1")};
    for (Report& report : all) report.generatedAt = sampleDate();
    return all;
}

// A comma before the fraction would part one cell of the CSV in two, and break the PDF's own
// numbers.
TEST(ReportLocale, CommaBeforeTheFraction_ChangesNothing) {
    std::vector<std::pair<std::string, std::vector<std::byte>>> expected;
    for (const Report& report : reports()) {
        expected.emplace_back(ReportRenderer::csv(report), ReportRenderer::pdf(report));
    }

    const CommaLocale locale;
    if (!locale.isThere()) {
        GTEST_SKIP() << "needs localedef and the sources of de_DE (package locales)";
    }
    const std::vector<Report> inThatLocale = reports();

    ASSERT_EQ(inThatLocale.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(ReportRenderer::csv(inThatLocale[i]), expected[i].first);
        EXPECT_EQ(ReportRenderer::pdf(inThatLocale[i]), expected[i].second) << i;
    }
    EXPECT_EQ(humanBytes(1536), "1.50 KB");
}

}  // namespace
