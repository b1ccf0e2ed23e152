#include "ReelCore/Platform/ChildProcess.h"
#include "Support/DocumentReaders.h"
#include "Support/EditorialReaders.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"
#include "Support/ShootingDay.h"
#include "Support/Tool.h"

#include <algorithm>
#include <set>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Row = std::vector<std::string>;

ChildProcess::Outcome runExample(const std::vector<std::string>& arguments) {
    return ChildProcess::run(EXAMPLE_SYNC, arguments);
}

/// The made day as its table of clips and recordings has it, reckoned by hand: clip, time, sound,
/// offset, slate and coverage.
const std::vector<Row> madeDay{
    {".A001C004.mov", "10:00:30:00", "—", "", "", ""},
    {"A001C001.mov", "10:00:00:00", "T001.WAV", "+5.00s", "sc 12A tk 3", "100%"},
    {"A001C002.MOV", "10:00:10:12", "T001.WAV", "+15.48s", "sc 12A tk 3", "100%"},
    {"A001C003 Söhne & Co.mov", "10:00:20:00", "T002-1.wav", "+1.00s", "", "62%"},
    {"A001C005\nagain.mov", "10:00:40:00", "—", "", "", ""},
    {"A001C006 \uFFFD\uFFFD.mov", "10:00:50:00", "—", "", "", ""},
    {"B001C001.mov", "10:00:00:12", "T001.WAV", "+5.50s", "sc 12A tk 3", "100%"},
    {"B001C002.mov", "10:00:21:00", "T002-2.wav", "+-0.25s", "", "87%"},
    {"C0001.MXF", "10:10:00;00", "—", "", "", ""},
    {"C0002.mxf", "10:10:30:00", "—", "", "", ""},
    {"D0001.MP4", "11:01:00;02", "D.wav", "+0.07s", "", "100%"},
    {"D0002.mp4", "11:02:00;04", "D.wav", "+60.07s", "", "100%"},
    {"D0003.mp4", "11:03:00:25", "D.wav", "+120.50s", "", "75%"},
    {"E0001.mov", "14:00:00:00", "—", "", "", ""},
    {"E0002.mov", "14:00:02:15", "—", "", "", ""},
    {"F0001.avi", "00:00:00", "NOTIME.wav", "+0.00s", "", "100%"},
    {"F0002.mts", "00:00:00", "NOTIME.wav", "+0.00s", "", "100%"},
    {"F0003.m4v", "00:00:00", "NOTIME.wav", "+0.00s", "", "60%"},
    {"F0004.R3D", "15:00:00:00", "—", "", "", ""},
    {"F0005.braw", "15:00:10:00", "—", "", "", ""},
    {"N0001.mov", "23:59:59:00", "NIGHT.WAV", "+1.00s", "", "100%"},
    {"N0002.mov", "00:00:00:12", "NOTIME.wav", "+0.48s", "", "36%"}};

const std::vector<Row> madeDayHead{
    {"Video clips", "22"}, {"Synced", "13"}, {"Unmatched audio", "2"}};
const std::vector<Row> madeDayRest{{"(unmatched)", "", "NEARMISS.BWF", "", "", ""},
                                   {"(unmatched)", "", "LONELY.wav", "", "", ""}};

void expectReport(const URL& pdf, const std::vector<Row>& csv) {
    ASSERT_EQ(csv.size(), 34U);
    EXPECT_EQ(std::vector(csv.begin() + 5, csv.begin() + 8), madeDayHead);
    std::vector<Row> clips(csv.begin() + 10, csv.end() - 2);
    std::ranges::sort(clips);
    EXPECT_EQ(clips, madeDay);
    EXPECT_EQ(std::vector(csv.end() - 2, csv.end()), madeDayRest);

    std::set<std::string> onPaper;
    for (const std::string& line : pdfLines(pdf)) onPaper.insert(squeezed(line));
    for (const Row& row : madeDay) {
        std::string line = row[0].substr(0, row[0].find('\n'));
        if (line != row[0]) line += "↵again.mov";
        for (std::size_t i = 1; i < row.size(); ++i) line += row[i].empty() ? "" : " " + row[i];
        EXPECT_TRUE(onPaper.contains(line)) << line;
    }
}

void expectTimeline(const URL& timeline, const URL& day, const std::vector<Row>& csv) {
    EXPECT_EQ(xmlFaults(timeline), "");
    EXPECT_EQ(attributes(timeline, "project", "name"), Row{"Day 1"});
    Row names;
    for (std::size_t i = 10; i < 32; ++i) {
        names.push_back(csv.at(i)[0]);
        std::ranges::replace(names.back(), '\n', ' ');
    }
    EXPECT_EQ(attributes(timeline, "asset-clip", "name"), names);

    std::set<std::string> media;
    for (const std::string& path : mediaPaths(timeline)) {
        EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
        EXPECT_TRUE(path.starts_with(day.native() + "/")) << path;
        EXPECT_TRUE(media.insert(path).second) << path << " twice";
    }
    EXPECT_EQ(media.size(), 28U) << "22 clips and the 6 best recordings";
    EXPECT_EQ(attributes(timeline, "audio", "ref").size(), 13U);

    for (const std::string& time : timesInFrames(timeline)) {
        EXPECT_EQ(time.find('/'), time.npos) << time;
    }
}

/// Some lines whole, reckoned by hand. The day's first clip counts 25 frames a second, so each
/// Sound TC is the recording's start by the clock; each End counts in the clip's own rate.
const std::vector<Row> madeDayLog{
    {"A001C001.mov", "V", "10:00:00:00", "10:00:02:00", "", "12A", "3", "T001.WAV", "09:59:55:00"},
    {"B001C001.mov", "V", "10:00:00:12", "10:00:02:12", "", "12A", "3", "T001.WAV", "09:59:55:00"},
    {"B001C002.mov", "V", "10:00:21:00", "10:00:23:00", "", "", "", "T002-2.wav", "10:00:21:06"},
    {"C0001.MXF", "V", "10:10:00;00", "10:10:02;00", "", "", "", "", ""}};

/// The clips' lines are looked for by their beginning: nothing keeps a line feed in a name from
/// breaking its line.
void expectLog(const std::string& log) {
    for (const Row& clip : madeDay) {
        const bool hasTimecode = clip[1].size() == 11;
        const std::string begin =
            "\n" + clip[0] + "\tV\t" + clip[1] + (hasTimecode ? "\t" : ":00\t");
        const auto at = log.find(begin);
        ASSERT_NE(at, log.npos) << begin;
        const std::string rest =
            log.substr(at + begin.size(), log.find('\n', at + begin.size()) - at - begin.size());
        const auto endOfClip = rest.find('\t');
        ASSERT_NE(endOfClip, rest.npos);
        const std::string slate = clip[4].empty() ? "\t\t\t" : "\t\t12A\t3";
        const std::string expected = clip[2] == "—" ? "\t\t\t\t\t" : slate + "\t" + clip[2] + "\t";
        EXPECT_TRUE(rest.substr(endOfClip).starts_with(expected)) << begin << rest;
        EXPECT_EQ(std::ranges::count(rest, '\t'), 5) << rest;
    }
}

TEST(SyncExample, MadeDay_TimelineLogAndReportAgreeWithWhatWasMade) {
    const TemporaryFolder folder;
    const URL day = folder.path() / "Day 1";
    const URL output = folder.path() / "new/output";
    makeShootingDay(day);

    const auto outcome = runExample({day, output});

    ASSERT_EQ(outcome.status, 0) << outcome.output;
    const auto csv = readCSV(output / "Sync_Report_Day_1.csv");
    expectReport(output / "Sync_Report_Day_1.pdf", csv);
    expectTimeline(output / "day.fcpxml", day, csv);
    expectLog(readFile(output / "day.ale"));
    const auto log = readTabbed(output / "day.ale");
    for (const Row& line : madeDayLog) {
        EXPECT_EQ(std::ranges::count(log, line), 1) << line[0];
    }
}

TEST(SyncExample, ShortDay_IsShownLineByLineWithWhereThingsLie) {
    const TemporaryFolder folder;
    const std::string output = folder.path() / "output";
    makeShortDay(folder.path() / "Day 1");

    const auto outcome = runExample({folder.path() / "Day 1/", output});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "A001C001.mov  T001.WAV\n"
              "E0002.mov  no sound\n"
              "LONELY.wav  no picture\n"
              "1 of 2 clips have sound\n"
              "timeline  " +
                  output +
                  "/day.fcpxml\n"
                  "log  " +
                  output +
                  "/day.ale\n"
                  "report  " +
                  output +
                  "/Sync_Report_Day_1.pdf\n"
                  "report  " +
                  output + "/Sync_Report_Day_1.csv\n");
    EXPECT_EQ(readTabbed(output + "/day.ale").size(), 12U);
}

TEST(SyncExample, OutputInTheDayItself_AddsFourFilesAndChangesNone) {
    const TemporaryFolder folder;
    makeShortDay(folder.path());
    const FolderTree before = readTree(folder.path());

    const auto first = runExample({folder.path(), folder.path()});
    const auto second = runExample({folder.path(), folder.path()});

    EXPECT_EQ(first.status, 0) << first.output;
    EXPECT_EQ(second.status, 0) << second.output;
    EXPECT_EQ(first.output, second.output);
    const FolderTree after = readTree(folder.path());
    EXPECT_EQ(after.size(), before.size() + 4);
    for (const auto& [path, content] : before) EXPECT_EQ(after.at(path), content) << path;
}

TEST(SyncExample, WrongArguments_GiveTheUsage) {
    for (const Row& arguments : {Row{}, Row{"DAY"}, Row{"DAY", "OUTPUT", "MORE"}}) {
        const auto outcome = runExample(arguments);

        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "usage: example-sync DAY OUTPUT\n");
    }
}

TEST(SyncExample, MissingDay_IsSaidAndNothingIsMade) {
    const TemporaryFolder folder;
    const std::string day = folder.path() / "DAY";

    const auto outcome = runExample({day, folder.path() / "output"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "Not a folder: " + day + "\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(SyncExample, DayThatIsAFile_IsSaid) {
    const TemporaryFolder folder;
    const std::string day = folder.path() / "DAY.mov";
    writeFile(day, "no folder");

    const auto outcome = runExample({day, folder.path() / "output"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "Not a folder: " + day + "\n");
}

TEST(SyncExample, DayWithoutAClip_IsSaidAndNothingIsMade) {
    const TemporaryFolder folder;
    const std::string day = folder.path() / "DAY";
    writeTree(day, {{"copying.mov.tmp", noise(1000)}, {"notes.txt", "nothing shot"}});

    const auto outcome = runExample({day, folder.path() / "output"});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "No clip, or no ffprobe to read one with: " + day + "\n");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "output"));
}

TEST(SyncExample, OutputThatIsAFile_IsSaidAndTheFileStays) {
    const TemporaryFolder folder;
    makeShortDay(folder.path() / "DAY");
    const std::string output = folder.path() / "output";
    writeFile(output, "a file");

    const auto outcome = runExample({folder.path() / "DAY", output});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.output.ends_with(": " + output + "\n")) << outcome.output;
    EXPECT_EQ(readFile(output), "a file");
}

TEST(SyncExample, OutputThatCannotBeWritten_IsSaidInTheSystemsWords) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const TemporaryFolder folder;
    makeShortDay(folder.path() / "DAY");
    LoopMount drive("ext4", 8);
    drive.makeReadOnly();

    const auto outcome = runExample({folder.path() / "DAY", drive.path()});

    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.output.ends_with(
        "Read-only file system: " + (drive.path() / "day.fcpxml").native() + "\n"))
        << outcome.output;
}

}  // namespace
