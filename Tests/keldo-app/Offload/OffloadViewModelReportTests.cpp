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

TEST_F(OffloadViewModelReportTests, SaveReport_WithoutAResult_AsksForNoFolder) {
    model_.saveReport();
    EXPECT_TRUE(desktop_.messages.isEmpty());
    EXPECT_EQ(model_.reportStatus(), "");
}

TEST_F(OffloadViewModelReportTests, SaveReport_Dismissed_KeepsTheTextOfTheSaveBefore) {
    choose(card());
    add(one());
    runToEnd();
    desktop_.answers = {two()};
    model_.saveReport();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model_.reportStatus().isEmpty(); }, 30'000));
    QStringList texts;
    QObject::connect(&model_, &keldo_app::OffloadViewModel::changed, &model_,
                     [&] { texts += model_.reportStatus(); });
    model_.saveReport();
    EXPECT_EQ(desktop_.messages.constLast(), "Save Offload Report to…");
    EXPECT_EQ(texts, QStringList());
    EXPECT_EQ(model_.reportStatus(), "Saved 2 file(s) to two.");
}

TEST_F(OffloadViewModelReportTests, SaveReport_Again_ClearsTheTextUntilItIsDone) {
    choose(card());
    add(one());
    runToEnd();
    QStringList texts;
    QObject::connect(&model_, &keldo_app::OffloadViewModel::changed, &model_,
                     [&] { texts += model_.reportStatus(); });
    desktop_.answers = {two(), two()};
    model_.saveReport();
    ASSERT_TRUE(QTest::qWaitFor([&] { return texts.size() == 2; }, 30'000));
    model_.saveReport();
    ASSERT_TRUE(QTest::qWaitFor([&] { return texts.size() == 4; }, 30'000));
    const QString saved = "Saved 2 file(s) to two.";
    EXPECT_EQ(texts, (QStringList{"", saved, "", saved}));
}

TEST_F(OffloadViewModelReportTests, Start_LeavesTheTextOfTheLastSave) {
    choose(card());
    add(one());
    runToEnd();
    desktop_.answers = {two()};
    model_.saveReport();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !model_.reportStatus().isEmpty(); }, 30'000));
    model_.reset();
    runToEnd();
    EXPECT_EQ(model_.reportStatus(), "Saved 2 file(s) to two.");
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
