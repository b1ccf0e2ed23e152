#include "ReelCore/Reports/ReportLayout.h"

#include "ReelCore/Platform/Text.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "SampleOffload.h"
#include "TimeRatio.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using TestSupport::sampleDate;
using TestSupport::timeRatio;
using Font = ReportLayout::Font;
using Paragraph = ReportLayout::Paragraph;
using Row = std::vector<std::string>;
using Widths = std::vector<std::int64_t>;

constexpr Font sans(double size) {
    return {Font::Family::system, false, size};
}
constexpr Font mono(double size) {
    return {Font::Family::monospaced, false, size};
}

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (; count > 0; --count) all += text;
    return all;
}

Report sampleReport() {
    return {"Offload Report", "A001",       {{"Camera", "Sony"}, {"Copies", "2"}},
            std::nullopt,     sampleDate(), "keldobay 0.1.0"};
}

TEST(ColumnWidths, LongestCellOrHeader_SetsTheWidth) {
    EXPECT_EQ(ReportLayout::columnWidths({{"File", "Size"}, {{"a.mov", "1 B"}, {"b", "12 B"}}}),
              (Widths{5, 4}));
}

TEST(ColumnWidths, ColumnWithoutCells_TakesTheHeadersLength) {
    EXPECT_EQ(ReportLayout::columnWidths({{"File", "Size"}, {{"clip.mov"}}}), (Widths{8, 4}));
    EXPECT_EQ(ReportLayout::columnWidths({{"File", "Size"}, {}}), (Widths{4, 4}));
}

TEST(ColumnWidths, CellsBehindTheLastColumn_GiveNoColumn) {
    EXPECT_EQ(ReportLayout::columnWidths({{"A"}, {{"1", "2", "3"}}}), Widths{1});
    EXPECT_EQ(ReportLayout::columnWidths({{}, {{"1", "2"}}}), Widths{});
}

TEST(ColumnWidths, EachPlace_HasItsCapForCellsAndHeaders) {
    const Widths caps{44, 12, 18, 12, 14, 10, 20, 20};
    const Row wide(8, std::string(60, 'x'));
    const Row narrow(8, "");

    EXPECT_EQ(ReportLayout::columnWidths({narrow, {wide}}), caps);
    EXPECT_EQ(ReportLayout::columnWidths({wide, {narrow}}), caps);
}

TEST(ColumnWidths, CountCharactersNotBytes) {
    EXPECT_EQ(ReportLayout::columnWidths({{"é"}, {{"👨‍👩‍👧"}, {"e\u0301"}}}),
              Widths{1});
}

TEST(RowString, Cells_ArePaddedAndJoinedByTwoBlanks) {
    EXPECT_EQ(ReportLayout::rowString({"a", "bc", "d"}, {3, 2, 4}), "a    bc  d   ");
}

TEST(RowString, CellOfTheWidth_StaysWholeAndOneMoreIsCut) {
    EXPECT_EQ(ReportLayout::rowString({"abcde"}, {5}), "abcde");
    EXPECT_EQ(ReportLayout::rowString({"abcdef"}, {5}), "abcd…");
    EXPECT_EQ(ReportLayout::rowString({"ab"}, {1}), "…");
}

TEST(RowString, ShortRow_PrintsItsCellsOnly) {
    EXPECT_EQ(ReportLayout::rowString({"a"}, {3, 2, 4}), "a  ");
    EXPECT_EQ(ReportLayout::rowString({}, {3, 2, 4}), "");
}

TEST(RowString, CellsBehindTheLastWidth_AreTwelveWide) {
    EXPECT_EQ(ReportLayout::rowString({"a", "b"}, {1}), "a  b           ");
    EXPECT_EQ(ReportLayout::rowString({"a", "123456789012"}, {1}), "a  123456789012");
    EXPECT_EQ(ReportLayout::rowString({"a", "1234567890123"}, {1}), "a  12345678901…");
}

TEST(RowString, Cut_NeverDividesACharacter) {
    EXPECT_EQ(ReportLayout::rowString({"a👨‍👩‍👧e\u0301xyz"}, {4}),
              "a👨‍👩‍👧e\u0301…");
}

TEST(RowString, CellsFromRightToLeft_AreIsolatedFromTheirNeighbours) {
    EXPECT_EQ(ReportLayout::rowString({"שלום", "7 B"}, {6, 3}), "\u2068שלום\u2069    7 B");
}

TEST(RowString, MarksForTheDirection_AreReplacedSoThatNoCellLeavesItsIsolation) {
    EXPECT_EQ(ReportLayout::rowString({"a\u202Eb", "7 B"}, {3, 3}), "a\uFFFDb  7 B");
    EXPECT_EQ(ReportLayout::rowString({"של\u2069ום", "7 B"}, {5, 3}),
              "\u2068של\uFFFDום\u2069  7 B");
    for (const char* mark : {"\u202A", "\u202B", "\u202C", "\u202D", "\u202E", "\u2066", "\u2067",
                             "\u2068", "\u2069"}) {
        EXPECT_EQ(ReportLayout::rowString({mark}, {1}), "\uFFFD");
    }
    EXPECT_EQ(ReportLayout::rowString({"\u2028\u202F\u2065\u206A"}, {4}).find("\uFFFD"),
              std::string::npos);
}

TEST(RowString, LineEndsTabsAndControls_AreSignsInTheirRow) {
    EXPECT_EQ(ReportLayout::rowString({"a\nb\rc\u0085d\u2029e\u2028f\vg\fh"}, {15}),
              "a↵b↵c↵d↵e↵f↵g↵h");
    EXPECT_EQ(ReportLayout::rowString({"\ta\t"}, {3}), "⇥a⇥");
    EXPECT_EQ(ReportLayout::rowString({"a\x1C\x1D\x1E"}, {4}), "a\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(ReportLayout::rowString({{"a\0\x01\x7F", 4}}, {4}), "a\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(ReportLayout::columnWidths({{"A"}, {{"a\r\n"}}}), Widths{3});
}

TEST(RowString, CellTwiceAsLong_TakesAboutTwiceAsLong) {
    const std::string cell(200'000, '\n');
    const auto lay = [](const std::string& text) { ReportLayout::rowString({text}, {44}); };

    EXPECT_LT(timeRatio([&] { lay(cell + cell); }, [&] { lay(cell); }), 3);
}

TEST(BuildAttributed, ReportWithATable_IsTheseParagraphs) {
    Report report = sampleReport();
    report.table = {{"File", "Size"}, {{"a.mov", "7 B"}, {"b.mov", "12 B"}}};

    EXPECT_EQ(ReportLayout::buildAttributed(report),
              (std::vector<Paragraph>{
                  {"Offload Report", {Font::Family::system, true, 22}, 2},
                  {"A001", sans(13), 2},
                  {"keldobay 0.1.0  ·  " + dateTime(sampleDate()), sans(9), 12},
                  {"Camera:  Sony", sans(11), 2},
                  {"Copies:  2", sans(11), 2},
                  {"", sans(6), 6},
                  {"File   Size", mono(9), 2},
                  {repeated("─", 5 + 4 + 2), mono(9), 2},
                  {"a.mov  7 B ", mono(9), 1},
                  {"b.mov  12 B", mono(9), 1},
              }));
}

TEST(BuildAttributed, WithoutSubtitleFactsAndTable_IsTitleAndProvenance) {
    Report report = sampleReport();
    report.subtitle.reset();
    report.summary.clear();

    EXPECT_EQ(ReportLayout::buildAttributed(report),
              (std::vector<Paragraph>{
                  {"Offload Report", {Font::Family::system, true, 22}, 2},
                  {"keldobay 0.1.0  ·  " + dateTime(sampleDate()), sans(9), 12},
              }));
}

TEST(BuildAttributed, TableWithoutRows_HasSpacerHeaderAndRule) {
    Report report = sampleReport();
    report.summary.clear();
    report.table = {{"File", "Size"}, {}};

    const auto paragraphs = ReportLayout::buildAttributed(report);

    ASSERT_EQ(paragraphs.size(), 6U);
    EXPECT_EQ(paragraphs[3], (Paragraph{"", sans(6), 6}));
    EXPECT_EQ(paragraphs[4], (Paragraph{"File  Size", mono(9), 2}));
    EXPECT_EQ(paragraphs[5], (Paragraph{repeated("─", 10), mono(9), 2}));
}

std::string ruleOf(const Row& columns) {
    Report report = sampleReport();
    report.table = {columns, {}};
    return ReportLayout::buildAttributed(report).back().text;
}

TEST(BuildAttributed, Rule_EndsAtAHundredAndTenCharacters) {
    const auto column = [](int width) { return std::string(static_cast<std::size_t>(width), 'x'); };

    // 44 + 12 + 18 + 12 + 14 wide and five columns are 105.
    EXPECT_EQ(ruleOf({column(44), column(12), column(18), column(12), column(14)}),
              repeated("─", 105));
    EXPECT_EQ(ruleOf({column(44), column(12), column(18), column(12), column(14), column(4)}),
              repeated("─", 110));
    EXPECT_EQ(ruleOf({column(44), column(12), column(18), column(12), column(14), column(5)}),
              repeated("─", 110));
    EXPECT_EQ(ruleOf({}), "");
}

TEST(BuildAttributed, LineEndsTabsAndDirections_StayWithinTheirParagraph) {
    Report report = sampleReport();
    report.title = "Two\nlines";
    report.subtitle = "A\t1";
    report.summary = {{"Note", "two\nlines\ttab"},
                      {"Reel", "שלום\u2069"},
                      {"Drives", "א, ב\n, RAID", {"א", "ב\n", "RAID"}}};

    const auto paragraphs = ReportLayout::buildAttributed(report);

    EXPECT_EQ(paragraphs[0].text, "Two↵lines");
    EXPECT_EQ(paragraphs[1].text, "A⇥1");
    EXPECT_EQ(paragraphs[3].text, "Note:  two↵lines⇥tab");
    EXPECT_EQ(paragraphs[4].text, "Reel:  \u2068שלום\uFFFD\u2069");
    EXPECT_EQ(paragraphs[5].text, "Drives:  \u2068א\u2069, \u2068ב↵\u2069, RAID");
}

TEST(BuildAttributed, BytesThatAreNoText_AreReplacedEverywhere) {
    Report report = sampleReport();
    report.title = "A\xFF";
    report.subtitle = std::string("B\0C", 3);
    report.summary = {{"L\xFE", "V\xC3"}};
    report.table = {{"H\xFF"}, {{"R\xFF"}}};

    for (const Paragraph& paragraph : ReportLayout::buildAttributed(report)) {
        EXPECT_TRUE(Text::isWellFormed(paragraph.text)) << paragraph.text;
        EXPECT_EQ(paragraph.text.find('\0'), std::string::npos) << paragraph.text;
    }
    EXPECT_EQ(ReportLayout::buildAttributed(report)[1].text, "B\uFFFDC");
    EXPECT_EQ(ReportLayout::buildAttributed(report)[3].text, "L\uFFFD:  V\uFFFD");
}

}  // namespace
