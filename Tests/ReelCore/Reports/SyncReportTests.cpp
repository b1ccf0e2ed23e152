#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "ReelCore/Sync/SyncTypes.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"
#include "ValueOf.h"

#include <csignal>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using Row = std::vector<std::string>;

VideoClip clipOf(const URL& url) {
    VideoClip video;
    video.url = url;
    return video;
}

VideoClip videoAt(const char* label) {
    VideoClip video = clipOf("/day/A001C001.mov");
    video.startTimecode = Timecode::parse(label, FrameRate::fps25);
    return video;
}

AudioClip recording(const URL& url, std::optional<std::string> scene = std::nullopt,
                    std::optional<std::string> take = std::nullopt) {
    AudioClip clip;
    clip.url = url;
    clip.scene = std::move(scene);
    clip.take = std::move(take);
    return clip;
}

/// One clip with one recording.
SyncResult synced(const AudioClip& clip, double audioOffset, double coverage) {
    return {{{videoAt("10:00:00:00"), {{clip, audioOffset, coverage}}}}, {}};
}

Row firstRow(const SyncResult& result) {
    return Report::sync(result, "DAY 1").table->rows.at(0);
}

std::string offsetOf(double audioOffset) {
    return firstRow(synced(recording("a.wav"), audioOffset, 1)).at(3);
}

std::string coverageOf(double coverage) {
    return firstRow(synced(recording("a.wav"), 0, coverage)).at(5);
}

/// What stands for the start of a clip without timecode.
std::string startOf(double seconds) {
    VideoClip video = clipOf("a.mov");
    video.startSeconds = seconds;
    return firstRow({{{video, {}}}, {}}).at(1);
}

TEST(SyncReport, WholeDay_HasEveryFactInOrder) {
    const AudioClip sound = recording("/day/T01.wav", "12", "3");
    const SyncResult result{
        {{videoAt("10:00:00:00"), {{sound, 0, 1}}}, {videoAt("11:00:00:00"), {}}},
        {sound, sound, sound}};
    const Date before = now();

    const Report report = Report::sync(result, "DAY 1");

    EXPECT_EQ(report.title, "Sync Report");
    EXPECT_EQ(report.subtitle, "DAY 1");
    EXPECT_EQ(report.tool, "keldobay 0.1.0");
    EXPECT_GE(report.generatedAt, before);
    EXPECT_LE(report.generatedAt, now());
    EXPECT_EQ(
        report.summary,
        (std::vector<Report::Field>{
            {"Day", "DAY 1"}, {"Video clips", "2"}, {"Synced", "1"}, {"Unmatched audio", "3"}}));
}

TEST(SyncReport, WithoutADay_TheTimeStandsForItAndThereIsNoSubtitle) {
    const Report report = Report::sync({}, std::nullopt);

    EXPECT_EQ(report.subtitle, std::nullopt);
    EXPECT_EQ(valueOf(report, "Day"), dateTime(report.generatedAt));
    EXPECT_EQ(report.fileBase(), "Sync_Report");
}

TEST(SyncReport, EmptyDay_IsStillPresent) {
    const Report report = Report::sync({}, "");

    EXPECT_EQ(report.subtitle, "");
    EXPECT_EQ(valueOf(report, "Day"), "");
}

TEST(SyncReport, NothingFound_LeavesTheTableWithoutRows) {
    const Report report = Report::sync({}, "DAY 1");

    ASSERT_TRUE(report.table);
    EXPECT_EQ(report.table->columns,
              (Row{"Clip", "TC", "Audio", "Offset", "Scene/Take", "Coverage"}));
    EXPECT_TRUE(report.table->rows.empty());
    EXPECT_EQ(valueOf(report, "Video clips"), "0");
    EXPECT_EQ(valueOf(report, "Synced"), "0");
    EXPECT_EQ(valueOf(report, "Unmatched audio"), "0");
}

TEST(SyncReport, SyncedClip_HasAllCells) {
    EXPECT_EQ(firstRow(synced(recording("/day/sound/T01.wav", "12A", "3"), 10, 0.5)),
              (Row{"A001C001.mov", "10:00:00:00", "T01.wav", "+10.00s", "sc 12A tk 3", "50%"}));
}

TEST(SyncReport, ClipWithoutAMatch_HasADashAndThreeEmptyCells) {
    EXPECT_EQ(firstRow({{{videoAt("10:00:00:00"), {}}}, {}}),
              (Row{"A001C001.mov", "10:00:00:00", "—", "", "", ""}));
}

TEST(SyncReport, SeveralMatches_OnlyTheFirstOfTheHighestCoverageStands) {
    const SyncGroup group{videoAt("10:00:00:00"),
                          {{recording("low.wav", "1", "1"), 1, 0.25},
                           {recording("high.wav", "2", "2"), 2, 0.75},
                           {recording("equal.wav", "3", "3"), 3, 0.75}}};

    const Report report = Report::sync({{group}, {}}, "DAY 1");

    EXPECT_EQ(report.table->rows, (std::vector<Row>{{"A001C001.mov", "10:00:00:00", "high.wav",
                                                     "+2.00s", "sc 2 tk 2", "75%"}}));
}

TEST(SyncReport, UnmatchedAudio_FollowsTheClipsInOrder) {
    SyncResult result = synced(recording("z.wav", "1", "1"), 0, 1);
    result.groups.push_back({videoAt("09:00:00:00"), {}});
    result.unmatchedAudio = {recording("/day/b.wav", "7", "2"), recording("/day/a.wav")};

    EXPECT_EQ(
        Report::sync(result, "DAY 1").table->rows,
        (std::vector<Row>{{"A001C001.mov", "10:00:00:00", "z.wav", "+0.00s", "sc 1 tk 1", "100%"},
                          {"A001C001.mov", "09:00:00:00", "—", "", "", ""},
                          {"(unmatched)", "", "b.wav", "", "sc 7 tk 2", ""},
                          {"(unmatched)", "", "a.wav", "", "", ""}}));
}

TEST(SyncReport, Slate_HasThePartsThatAreKnown) {
    const auto slate = [](std::optional<std::string> scene, std::optional<std::string> take) {
        return firstRow(synced(recording("a.wav", scene, take), 0, 1)).at(4);
    };

    EXPECT_EQ(slate("12", "3"), "sc 12 tk 3");
    EXPECT_EQ(slate("12", std::nullopt), "sc 12");
    EXPECT_EQ(slate(std::nullopt, "3"), "tk 3");
    EXPECT_EQ(slate(std::nullopt, std::nullopt), "");
}

TEST(SyncReport, Offset_AlwaysHasAPlus) {
    EXPECT_EQ(offsetOf(10), "+10.00s");
    EXPECT_EQ(offsetOf(0), "+0.00s");
    EXPECT_EQ(offsetOf(-2.5), "+-2.50s");
    EXPECT_EQ(offsetOf(-0.001), "+-0.00s");
    EXPECT_EQ(offsetOf(1.239), "+1.24s");
    EXPECT_EQ(offsetOf(0.125), "+0.12s");
    EXPECT_EQ(offsetOf(86'400.5), "+86400.50s");
}

TEST(SyncReport, Coverage_IsCutNotRounded) {
    EXPECT_EQ(coverageOf(0), "0%");
    EXPECT_EQ(coverageOf(0.009), "0%");
    EXPECT_EQ(coverageOf(0.125), "12%");
    EXPECT_EQ(coverageOf(0.999), "99%");
    EXPECT_EQ(coverageOf(1), "100%");
}

TEST(SyncReport, TimecodeOfTheClip_GoesBeforeItsSeconds) {
    VideoClip video = videoAt("25:00:00:24");
    video.startSeconds = 1;

    EXPECT_EQ(firstRow({{{video, {}}}, {}}).at(1), "25:00:00:24");

    video.startTimecode = Timecode::parse("01:00:00;02", FrameRate::fps29_97);

    EXPECT_EQ(firstRow({{{video, {}}}, {}}).at(1), "01:00:00;02");
}

TEST(SyncReport, ClipWithoutTimecode_HasItsTimeOfDayRoundedAndNotWrapped) {
    EXPECT_EQ(startOf(0), "00:00:00");
    EXPECT_EQ(startOf(3'661), "01:01:01");
    EXPECT_EQ(startOf(59.4), "00:00:59");
    EXPECT_EQ(startOf(59.5), "00:01:00");
    EXPECT_EQ(startOf(2.5), "00:00:03");
    EXPECT_EQ(startOf(3'599.7), "01:00:00");
    EXPECT_EQ(startOf(86'399), "23:59:59");
    EXPECT_EQ(startOf(86'399.5), "24:00:00");
    EXPECT_EQ(startOf(90'061), "25:01:01");
    EXPECT_EQ(startOf(360'000), "100:00:00");
}

TEST(SyncReport, ClipBeforeMidnight_PrintsAsPrintfWould) {
    EXPECT_EQ(startOf(-1), "00:00:-1");
    EXPECT_EQ(startOf(-12), "00:00:-12");
    EXPECT_EQ(startOf(-3'661), "-1:-1:-1");
}

TEST(SyncReportDeathTest, NumbersThatHaveNoWholePart_AreFatal) {
    const testing::KilledBySignal aborted(SIGABRT);
    const double infinity = std::numeric_limits<double>::infinity();

    EXPECT_EXIT(startOf(1e19), aborted, "impossible conversion");
    EXPECT_EXIT(startOf(-infinity), aborted, "impossible conversion");
    EXPECT_EXIT(coverageOf(infinity), aborted, "impossible conversion");
}

TEST(SyncReport, NamesThatAreNotUTF8_KeepTheirBytesAndPrintWithMarks) {
    const TemporaryFolder folder;
    VideoClip video = videoAt("10:00:00:00");
    video.url = "/day/clip\xFF.mov";
    const AudioClip sound = recording("/day/t\xFE.wav", "a\xC3");

    const Report report = Report::sync({{{video, {{sound, 0, 1}}}}, {}}, "DAY");

    EXPECT_EQ(report.table->rows.at(0),
              (Row{"clip\xFF.mov", "10:00:00:00", "t\xFE.wav", "+0.00s", "sc a\xC3", "100%"}));
    const auto written = ReportRenderer::write(report, folder.path(), {"csv"});
    EXPECT_EQ(readCSV(written.at(0)).back(), (Row{"clip\uFFFD.mov", "10:00:00:00", "t\uFFFD.wav",
                                                  "+0.00s", "sc a\uFFFD", "100%"}));
}

TEST(SyncReport, OnPaper_PDFAndCSVSayTheSame) {
    const TemporaryFolder folder;
    SyncResult result = synced(recording("T01.wav", "12", "3"), -1.5, 0.5);
    result.groups.push_back({videoAt("11:00:00:00"), {}});
    result.unmatchedAudio = {recording("T,02.wav", "4")};

    const auto written =
        ReportRenderer::write(Report::sync(result, "DAY 1"), folder.path(), {"pdf", "csv"});

    ASSERT_EQ(written.size(), 2U);
    EXPECT_EQ(written[0].filename(), "Sync_Report_DAY_1.pdf");
    EXPECT_EQ(written[1].filename(), "Sync_Report_DAY_1.csv");
    const auto rows = readCSV(written[1]);
    ASSERT_EQ(rows.size(), 13U);
    EXPECT_EQ(rows[0], (Row{"Sync Report"}));
    EXPECT_EQ(rows[1], (Row{"DAY 1"}));
    EXPECT_EQ(rows[4], (Row{"Day", "DAY 1"}));
    EXPECT_EQ(rows[7], (Row{"Unmatched audio", "1"}));
    EXPECT_EQ(rows[9], (Row{"Clip", "TC", "Audio", "Offset", "Scene/Take", "Coverage"}));
    EXPECT_EQ(rows[10],
              (Row{"A001C001.mov", "10:00:00:00", "T01.wav", "+-1.50s", "sc 12 tk 3", "50%"}));
    EXPECT_EQ(rows[11], (Row{"A001C001.mov", "11:00:00:00", "—", "", "", ""}));
    EXPECT_EQ(rows[12], (Row{"(unmatched)", "", "T,02.wav", "", "sc 4", ""}));
    const Row lines = pdfLines(written[0]);
    ASSERT_EQ(lines.size(), 12U);
    EXPECT_EQ(lines[0], "Sync Report");
    EXPECT_EQ(lines[3], "Day: DAY 1");
    EXPECT_EQ(lines[6], "Unmatched audio: 1");
    EXPECT_EQ(squeezed(lines[7]), "Clip TC Audio Offset Scene/Take Coverage");
    EXPECT_EQ(squeezed(lines[9]), "A001C001.mov 10:00:00:00 T01.wav +-1.50s sc 12 tk 3 50%");
    EXPECT_EQ(squeezed(lines[10]), "A001C001.mov 11:00:00:00 —");
    EXPECT_EQ(squeezed(lines[11]), "(unmatched) T,02.wav sc 4");
}

}  // namespace
