#include "ReelCore/Platform/Text.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "SampleOffload.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using Row = std::vector<std::string>;

Report sampleReport() {
    return {"Offload Report",
            "A001",
            {{"Camera", "Sony"}, {"Destinations", "RAID, SHUTTLE"}},
            Report::Table{{"File", "Size"}, {{"a.mov", "7 B"}, {"b \"x\".mov", "1.50 KB"}}},
            sampleDate(),
            "keldobay 0.1.0"};
}

/// The line that a single cell gives.
std::string lineOf(const std::string& cell) {
    Report report = sampleReport();
    report.title = cell;
    const std::string csv = ReportRenderer::csv(report);
    return csv.substr(0, csv.find("\nA001\n"));
}

TEST(ReportCSV, WholeReport_StandsLineByLine) {
    EXPECT_EQ(ReportRenderer::csv(sampleReport()),
              "Offload Report\n"
              "A001\n"
              "Generated," +
                  dateTime(sampleDate()) +
                  "\n"
                  "\n"
                  "Camera,Sony\n"
                  "Destinations,\"RAID, SHUTTLE\"\n"
                  "\n"
                  "File,Size\n"
                  "a.mov,7 B\n"
                  "\"b \"\"x\"\".mov\",1.50 KB\n");
}

TEST(ReportCSV, WithoutSubtitleAndTable_EndsWithTheLastFact) {
    Report report = sampleReport();
    report.subtitle.reset();
    report.table.reset();

    EXPECT_EQ(ReportRenderer::csv(report), "Offload Report\nGenerated," + dateTime(sampleDate()) +
                                               "\n\nCamera,Sony\nDestinations,\"RAID, SHUTTLE\"\n");
}

TEST(ReportCSV, TableWithoutRows_HasItsHeader) {
    Report report = sampleReport();
    report.summary.clear();
    report.table->rows.clear();

    EXPECT_EQ(ReportRenderer::csv(report),
              "Offload Report\nA001\nGenerated," + dateTime(sampleDate()) + "\n\n\nFile,Size\n");
}

TEST(ReportCSV, RowsShorterAndLongerThanTheColumns_KeepTheirCells) {
    Report report = sampleReport();
    report.table->rows = {{"a"}, {"b", "1", "more"}, {}};

    EXPECT_TRUE(ReportRenderer::csv(report).ends_with("\nFile,Size\na\nb,1,more\n\n"));
}

TEST(ReportCSV, Quotes_StandOnlyAroundCellsThatNeedThem) {
    EXPECT_EQ(lineOf("plain"), "plain");
    EXPECT_EQ(lineOf(""), "");
    EXPECT_EQ(lineOf(" blanks "), " blanks ");
    EXPECT_EQ(lineOf("it's; a\ttab"), "it's; a\ttab");
    EXPECT_EQ(lineOf("a,b"), "\"a,b\"");
    EXPECT_EQ(lineOf("a\nb"), "\"a\nb\"");
    EXPECT_EQ(lineOf("say \"x\""), "\"say \"\"x\"\"\"");
    EXPECT_EQ(lineOf("\""), "\"\"\"\"");
    EXPECT_EQ(lineOf("a\rb"), "a\rb");
    EXPECT_EQ(lineOf("a\r\nb"), "\"a\r\nb\"");
}

TEST(ReportCSV, Labels_AreQuotedLikeValues) {
    Report report = sampleReport();
    report.summary = {{"a,b", "c\"d"}};
    report.table->columns = {"x,y", "z"};

    const std::string csv = ReportRenderer::csv(report);

    EXPECT_NE(csv.find("\n\"a,b\",\"c\"\"d\"\n"), csv.npos) << csv;
    EXPECT_NE(csv.find("\n\"x,y\",z\n"), csv.npos) << csv;
}

TEST(ReportCSV, NoByteOrderMarkAndNoCarriageReturns) {
    const std::string csv = ReportRenderer::csv(sampleReport());

    EXPECT_EQ(csv.front(), 'O');
    EXPECT_EQ(csv.find('\r'), csv.npos);
}

TEST(ReportCSV, NastyCells_ReadBackAsTheyWere) {
    const TemporaryFolder folder;
    const Row names{"line\nfeed",
                    "quote\"\"quote",
                    ",",
                    "\"",
                    "\n",
                    "שלום",
                    "👨‍👩‍👧 family",
                    "cafe\u0301",
                    std::string(255, 'x'),
                    "control \x01\x1B\x7F",
                    "tab\t",
                    "'",
                    "\\",
                    "invalid \xFF\xFE utf8"};
    Report report = sampleReport();
    report.title = "two\nlines";
    report.table->rows.clear();
    std::vector<Row> expected{{"two\nlines"},
                              {"A001"},
                              {"Generated", dateTime(sampleDate())},
                              {},
                              {"Camera", "Sony"},
                              {"Destinations", "RAID, SHUTTLE"},
                              {},
                              {"File", "Size"}};
    for (const std::string& name : names) {
        report.table->rows.push_back({name, "1 B", name});
        expected.push_back({Text::wellFormed(name), "1 B", Text::wellFormed(name)});
    }

    const auto written = ReportRenderer::write(report, folder.path(), {"csv"});

    EXPECT_EQ(readCSV(written.at(0)), expected);
    EXPECT_EQ(expected.back()[0], "invalid \uFFFD\uFFFD utf8");
}

}  // namespace
