#include "OnPaper.h"
#include "SampleOffload.h"
#include "Support/Tool.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using Words = std::vector<PDFWord>;

constexpr double margin = 48;
constexpr double frameWidth = 516;

/// The advance of a letter in tables, in points, as the font's own file has it.
double advance() {
    const std::string font = outputOf("fc-match", {"--format=%{file}", "Menlo,Monospace"});
    return std::stod(outputOf("python3", {"-c", R"(
import struct, sys
font = open(sys.argv[1], "rb").read()
number = lambda at: struct.unpack(">H", font[at:at + 2])[0]
records = range(12, 12 + 16 * number(4), 16)
tables = {font[at:at + 4]: struct.unpack(">I", font[at + 8:at + 12])[0] for at in records}
widest, em = number(tables[b"hhea"] + 10), number(tables[b"head"] + 18)
print(9 * widest / em)
)",
                                          font}));
}

Report reportWith(const std::vector<std::string>& columns,
                  const std::vector<std::vector<std::string>>& rows) {
    return {"Report", std::nullopt, {}, Report::Table{columns, rows}, sampleDate(), "keldobay"};
}

const PDFWord& wordAt(const Words& words, const std::string& text) {
    const auto word = std::ranges::find(words, text, &PDFWord::text);
    if (word == words.end()) throw std::runtime_error("not on the page: " + text);
    return *word;
}

TEST(ReportPDFTable, Letters_AdvanceAsTheirFontHasIt) {
    const double letter = advance();
    const Words words = OnPaper(reportWithRows(3)).words();
    constexpr double rounding = 0.05;

    ASSERT_GT(letter, 4);
    for (const char* text : {"CLIP/C00002.MXF", "0eab543384f878ad", "VERIFIED", "xxhash64"}) {
        const PDFWord& word = wordAt(words, text);
        EXPECT_NEAR(word.right - word.left, static_cast<double>(std::string(text).size()) * letter,
                    rounding)
            << text;
    }
    // The columns are 15, 7, 16 and 8 wide, with two blanks between.
    EXPECT_NEAR(wordAt(words, "File").left, margin, rounding);
    EXPECT_NEAR(wordAt(words, "Size").left, margin + 17 * letter, rounding);
    EXPECT_NEAR(wordAt(words, "xxhash64").left, margin + 26 * letter, rounding);
    EXPECT_NEAR(wordAt(words, "Status").left, margin + 44 * letter, rounding);
    EXPECT_NEAR(wordAt(words, "1.50").left, margin + 17 * letter, rounding);
    EXPECT_NEAR(wordAt(words, "0eab543384f878ad").left, margin + 26 * letter, rounding);
    EXPECT_NEAR(wordAt(words, "VERIFIED").left, margin + 44 * letter, rounding);
}

// Blanks that fill the last column up may reach beyond the margin; they show nothing.
TEST(ReportPDFTable, LastCell_StaysInItsRowAsLongAsItFits) {
    const double letter = advance();
    int fitting = 0;
    int wrapped = 0;
    for (std::size_t length = 24; length < 45; ++length) {
        const Words words =
            OnPaper(reportWith({"Clip", "TC", "Audio", "Offset", "Scene/Take", "Coverage"},
                               {{std::string(length, 'c'), "10:00:00:00", "AUDIO-0001-LONG.W",
                                 "+12.34s", "sc 1", "100%"}}))
                .words();

        const double end = static_cast<double>(length + 55 + 4) * letter;
        const bool fits = end < frameWidth;
        const bool isInItsRow =
            std::abs(wordAt(words, "100%").top - wordAt(words, "10:00:00:00").top) < 1;

        EXPECT_EQ(isInItsRow, fits) << length;
        if (fits) {
            EXPECT_NEAR(wordAt(words, "100%").right, margin + end, 0.05) << length;
        }
        ++(fits ? fitting : wrapped);
    }
    EXPECT_GT(fitting, 0);
    EXPECT_GT(wrapped, 0);
}

TEST(ReportPDFTable, TableWiderThanThePage_IsWrappedAndNothingIsLost) {
    const std::vector<std::size_t> widths{44, 12, 18, 12, 14, 10, 20};
    std::vector<std::vector<std::string>> rows(100);
    std::vector<std::string> expected;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            const auto letter = static_cast<char>('a' + (row + column) % 26);
            rows[row].emplace_back(widths[column], letter);
            expected.push_back(rows[row].back());
        }
    }

    const Words words = OnPaper(reportWith({"A", "B", "C", "D", "E", "F", "G"}, rows)).words();

    std::vector<std::string> cells;
    std::size_t rule = 0;
    for (const PDFWord& word : words) {
        EXPECT_GE(word.left, margin - 0.5) << word.text;
        EXPECT_LE(word.right, margin + frameWidth + 0.5) << word.text;
        EXPECT_LE(word.bottom, 792 - 48 + 2) << word.text;
        if (word.text.starts_with("─")) rule += word.text.size() / std::string("─").size();
        if (word.text.size() >= 10 && word.text[0] == word.text[1]) cells.push_back(word.text);
    }
    std::ranges::sort(cells);
    std::ranges::sort(expected);
    EXPECT_EQ(cells, expected);
    EXPECT_EQ(rule, 110U);
}

TEST(ReportPDFTable, TabsAndOtherControls_MoveNoColumn) {
    const std::vector<std::string> names{
        "plain", "tab\there",         "\t",           "a\t\tb",       "\v\f", "bell\x07",
        "\r\n",  "ls\u2028ps\u2029x", "next\u0085xx", "shift\x0E\x7F"};
    Report report = reportWith({"File", "Size"}, {});
    for (const std::string& name : names) report.table->rows.push_back({name, "SIZE"});
    report.table->rows.push_back({std::string(20, 'x'), "SIZE"});

    const Words words = OnPaper(report).words();

    const double column = margin + 22 * advance();
    EXPECT_NEAR(wordAt(words, "Size").left, column, 0.02);
    EXPECT_EQ(std::ranges::count(words, "SIZE", &PDFWord::text), std::ssize(names) + 1);
    for (const PDFWord& word : words) {
        if (word.text != "SIZE") continue;
        EXPECT_NEAR(word.left, column, 0.02) << word.top;
    }
}

// Each drive's name keeps its place in the list, in whatever direction it runs.
TEST(ReportPDF, NamesOfAFact_StandInTheirOrder) {
    const std::vector<URL> drives{"/mnt/אאא", "/mnt/בבבבבבבבב", "/mnt/RAID"};
    OffloadResult result = sampleOffload({});
    result.request.destinations = drives;
    Words words = OnPaper(Report::offload(result, std::nullopt, "Jo")).words();

    const double top = wordAt(words, "Destinations:").top;
    std::erase_if(words, [&](const PDFWord& word) { return std::abs(word.top - top) > 6; });
    std::ranges::sort(words, {}, &PDFWord::left);
    std::string line;
    for (const PDFWord& word : words) line += word.text;
    EXPECT_EQ(line, "Destinations:אאא,בבבבבבבבב,RAID");
}

}  // namespace
