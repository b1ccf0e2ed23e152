#include "OffloadViewModelFixture.h"

using ReelCore::URL;

namespace {
class OffloadViewModelReportTests : public OffloadViewModelFixture {};
}  // namespace

TEST_F(OffloadViewModelReportTests, SaveReport_WritesBothFilesAndShowsThePDF) {
    choose(card());
    add(one());
    model_.setReelName("A001");
    runToEnd();
    const URL reports = folder_.path() / "Reports";
    std::filesystem::create_directories(reports);
    desktop_.answers = {reports};
    model_.saveReport();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model_.reportStatus().isEmpty(); }, 30'000));
    EXPECT_EQ(desktop_.messages.constLast(), "Save Offload Report to…");
    EXPECT_EQ(model_.reportStatus(), "Saved 2 file(s) to Reports.");
    EXPECT_EQ(desktop_.revealed, std::vector<URL>{reports / "Offload_Report_A001.pdf"});
    EXPECT_TRUE(std::filesystem::exists(reports / "Offload_Report_A001.csv"));
    model_.reset();
    EXPECT_EQ(model_.reportStatus(), "Saved 2 file(s) to Reports.");
}

TEST_F(OffloadViewModelReportTests, SaveReport_WhereNothingCanBeWritten_SaysSo) {
    choose(card());
    add(one());
    runToEnd();
    desktop_.answers = {card() / "sound.wav"};
    model_.saveReport();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model_.reportStatus().isEmpty(); }, 30'000));
    EXPECT_EQ(model_.reportStatus(), "Could not write report.");
    EXPECT_TRUE(desktop_.revealed.empty());
}
