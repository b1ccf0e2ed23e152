#include "ReelCore/Transcode/ProgressReports.h"

#include <vector>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using Fields = ProgressReports::Fields;

/// What is reported when the stream comes in these pieces.
std::vector<Fields> reportsOf(const std::vector<std::string>& pieces) {
    std::vector<Fields> result;
    ProgressReports reports([&](const Fields& fields) { result.push_back(fields); });
    for (const std::string& piece : pieces) reports.take(piece);
    return result;
}

TEST(ProgressReports, Report_IsGivenOnceItCloses) {
    EXPECT_EQ(reportsOf({"fps=25\nspeed=2x\n"}), std::vector<Fields>{});
    EXPECT_EQ(reportsOf({"fps=25\nspeed=2x\nprogress=continue\n"}),
              (std::vector<Fields>{{{"fps", "25"}, {"speed", "2x"}, {"progress", "continue"}}}));
}

TEST(ProgressReports, Field_StandsUntilItIsSaidAgain) {
    EXPECT_EQ(reportsOf({"fps=25\nframe=1\nprogress=continue\nframe=2\nprogress=continue\n"}),
              (std::vector<Fields>{{{"fps", "25"}, {"frame", "1"}, {"progress", "continue"}},
                                   {{"fps", "25"}, {"frame", "2"}, {"progress", "continue"}}}));
}

TEST(ProgressReports, StreamCutAnywhere_GivesTheSame) {
    const std::string stream = "fps=25\nprogress=continue\nfps=26\nprogress=end\n";
    std::vector<std::string> bytes;
    for (const char byte : stream) bytes.emplace_back(1, byte);

    EXPECT_EQ(reportsOf(bytes), reportsOf({stream}));
    EXPECT_EQ(reportsOf(bytes).size(), 2U);
}

TEST(ProgressReports, LineWithoutItsEnd_IsNotRead) {
    EXPECT_EQ(reportsOf({"progress=end"}), std::vector<Fields>{});
}

TEST(ProgressReports, BlanksAndTabs_AreTakenOffBothSides) {
    EXPECT_EQ(reportsOf({" \tfps \t=\t 25 \nprogress= continue\t\n"}),
              (std::vector<Fields>{{{"fps", "25"}, {"progress", "continue"}}}));
}

TEST(ProgressReports, OtherWhiteSpace_Stays) {
    EXPECT_EQ(reportsOf({"fps=25\r\nprogress=continue\n"}),
              (std::vector<Fields>{{{"fps", "25\r"}, {"progress", "continue"}}}));
}

TEST(ProgressReports, Value_IsAllBehindTheFirstSign) {
    EXPECT_EQ(reportsOf({"a=b=c\nnone=\n=nameless\nprogress=continue\n"}),
              (std::vector<Fields>{
                  {{"a", "b=c"}, {"none", ""}, {"", "nameless"}, {"progress", "continue"}}}));
}

TEST(ProgressReports, LineThatIsNoFieldOrNoText_IsPassedOver) {
    EXPECT_EQ(reportsOf({"hello\n\nbad=\xFF\n\xC3=1\nprogress=continue\n"}),
              (std::vector<Fields>{{{"progress", "continue"}}}));
}

TEST(ProgressReports, NonASCIIText_IsKept) {
    EXPECT_EQ(reportsOf({"t\xC3", "\xA9=\xC3\xA9\nprogress=continue\n"}),
              (std::vector<Fields>{{{"té", "é"}, {"progress", "continue"}}}));
}

TEST(ProgressReports, WhatFollowsTheLastReport_IsNotReadFromTheSameBytes) {
    EXPECT_EQ(reportsOf({"progress=end\nfps=25\nprogress=continue\n"}),
              (std::vector<Fields>{{{"progress", "end"}}}));
}

TEST(ProgressReports, BytesAfterTheLastReport_AreStillRead) {
    EXPECT_EQ(
        reportsOf({"progress=end\n", "fps=25\nprogress=continue\n"}),
        (std::vector<Fields>{{{"progress", "end"}}, {{"fps", "25"}, {"progress", "continue"}}}));
}

TEST(ProgressReports, ValuesThatOnlyBeginWithEnd_DoNotClose) {
    EXPECT_EQ(reportsOf({"progress=ending\nprogress=continue\n"}).size(), 2U);
}

}  // namespace

}  // namespace ReelCore
