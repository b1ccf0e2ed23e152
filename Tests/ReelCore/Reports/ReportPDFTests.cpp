#include "DocumentReaders.h"
#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "SampleOffload.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using Lines = std::vector<std::string>;

/// A report on disk as a PDF, for the tools that read it.
class PDF {
public:
    explicit PDF(const Report& report)
        : path_(ReportRenderer::write(report, folder_.path(), {"pdf"}).at(0)) {}

    Lines lines() const { return pdfLines(path_); }
    int pages() const { return pdfPages(path_); }
    std::string tell(const std::string& tool, Lines options = {}) const {
        options.push_back(path_);
        if (tool == "pdftotext") options.push_back("-");
        return outputOf(tool, options);
    }

private:
    TemporaryFolder folder_;
    URL path_;
};

Report reportWithRows(int count) {
    Report report{"Offload Report", "A001",       {{"Camera", "Sony"}, {"Copies", "2"}},
                  Report::Table{},  sampleDate(), "keldobay 0.1.0"};
    report.table->columns = {"File", "Size", "xxhash64", "Status"};
    for (int i = 0; i < count; ++i) {
        report.table->rows.push_back(
            {fmt::format("CLIP/C{:05}.MXF", i), "1.50 GB", "0eab543384f878ad", "VERIFIED"});
    }
    return report;
}

/// Every match of a pattern: the whole, then its groups.
std::vector<Lines> matches(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    std::vector<Lines> all;
    for (std::sregex_iterator one(text.begin(), text.end(), expression), end; one != end; ++one) {
        all.emplace_back(one->begin(), one->end());
    }
    return all;
}

TEST(ReportPDF, Page_IsUSLetterWithoutTitleAuthorOrDate) {
    const std::string info = PDF(reportWithRows(3)).tell("pdfinfo");

    EXPECT_NE(info.find("612 x 792 pts (letter)"), info.npos) << info;
    EXPECT_NE(info.find("Pages:           1\n"), info.npos) << info;
    for (const char* entry : {"Title:", "Author:", "Subject:", "Keywords:", "CreationDate:"}) {
        EXPECT_EQ(info.find(entry), info.npos) << info;
    }
}

TEST(ReportPDF, AllTexts_StandInOrder) {
    const Lines lines = PDF(reportWithRows(2)).lines();

    ASSERT_EQ(lines.size(), 9U);
    EXPECT_EQ(lines[0], "Offload Report");
    EXPECT_EQ(lines[1], "A001");
    EXPECT_EQ(lines[2], "keldobay 0.1.0 · " + dateTime(sampleDate()));
    EXPECT_EQ(lines[3], "Camera: Sony");
    EXPECT_EQ(lines[4], "Copies: 2");
    EXPECT_TRUE(std::regex_match(lines[5], std::regex("File +Size +xxhash64 +Status"))) << lines[5];
    EXPECT_EQ(lines[6].substr(0, 6), "──");
    EXPECT_TRUE(std::regex_match(
        lines[7], std::regex("CLIP/C00000\\.MXF +1\\.50 GB +0eab543384f878ad +VERIFIED")))
        << lines[7];
    EXPECT_EQ(lines[8].substr(0, 15), "CLIP/C00001.MXF");
}

TEST(ReportPDF, Text_IsBlackInTheSizesOfTheLayout) {
    const std::string xml =
        PDF(reportWithRows(1)).tell("pdftohtml", {"-xml", "-stdout", "-i", "-zoom", "1"});

    for (const char* size : {"22", "13", "9", "11"}) {
        EXPECT_NE(xml.find(fmt::format("size=\"{}\"", size)), xml.npos) << xml;
    }
    for (const Lines& color : matches(xml, "<fontspec [^>]*color=\"([^\"]*)\"")) {
        EXPECT_EQ(color[1], "#000000");
    }
}

/// The name by which a PDF knows the font that the system has for a description.
std::string systemFont(const std::string& description) {
    return outputOf("fc-match", {"--format=%{postscriptname}", description});
}

TEST(ReportPDF, Fonts_AreTheSystemsAndEmbeddedWithTheirText) {
    const std::string fonts = PDF(reportWithRows(1)).tell("pdffonts");

    for (const char* description : {"Sans", "Sans:bold", "Menlo,Monospace"}) {
        EXPECT_NE(fonts.find("+" + systemFont(description) + " "), fonts.npos)
            << description << "\n"
            << fonts;
    }
    EXPECT_EQ(fonts.find(systemFont("Menlo,Monospace:bold") + " "), fonts.npos) << fonts;
    // Each line tells: embedded, subset, with a map to Unicode.
    EXPECT_EQ(std::ranges::count(fonts, '\n') - 2, std::ssize(matches(fonts, "yes yes yes")))
        << fonts;
}

TEST(ReportPDF, EverythingStandsWithinTheMargins) {
    Report report = reportWithRows(200);
    report.summary.push_back({"Source", std::string(400, 'W')});
    report.summary.push_back({"Note", "many words " + std::string(300, ' ') + "and more"});

    const std::string boxes = PDF(report).tell("pdftotext", {"-bbox"});

    double left = 612, top = 792, right = 0, bottom = 0;
    for (const Lines& word : matches(boxes,
                                     "<word xMin=\"([-\\d.]+)\" yMin=\"([-\\d.]+)\" "
                                     "xMax=\"([-\\d.]+)\" yMax=\"([-\\d.]+)\"")) {
        left = std::min(left, std::stod(word[1]));
        top = std::min(top, std::stod(word[2]));
        right = std::max(right, std::stod(word[3]));
        bottom = std::max(bottom, std::stod(word[4]));
    }
    constexpr double rounding = 0.5;
    EXPECT_NEAR(left, 48, rounding);
    EXPECT_NEAR(top, 48, 2);  // Tools take a font's height in different ways.
    EXPECT_LE(right, 612 - 48 + rounding);
    EXPECT_LE(bottom, 792 - 48 + 2);
    EXPECT_GT(bottom, 792 - 48 - 20);
}

TEST(ReportPDF, LongTable_RunsOnWithoutARepeatedHeader) {
    const PDF pdf(reportWithRows(200));

    const Lines lines = pdf.lines();

    EXPECT_GE(pdf.pages(), 3);
    EXPECT_EQ(lines.size(), 7U + 200U);
    EXPECT_EQ(std::ranges::count_if(
                  lines, [](const auto& line) { return line.find("Status") != line.npos; }),
              1);
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(lines[static_cast<std::size_t>(7 + i)].substr(0, 15),
                  fmt::format("CLIP/C{:05}.MXF", i));
    }
}

TEST(ReportPDF, EmptyReport_StillHasAPage) {
    const PDF pdf(Report{"", std::nullopt, {}, std::nullopt, sampleDate(), ""});

    EXPECT_EQ(pdf.pages(), 1);
    EXPECT_EQ(pdf.lines(), Lines{"· " + dateTime(sampleDate())});
}

TEST(ReportPDF, ReportWithoutATable_HasNoRule) {
    Report report = reportWithRows(0);
    report.table.reset();

    EXPECT_EQ(PDF(report).lines().size(), 5U);
}

TEST(ReportPDF, LongFact_IsWrappedAndNothingIsLost) {
    Report report = reportWithRows(0);
    report.table.reset();
    std::string words;
    for (int i = 0; i < 2'000; ++i) words += fmt::format("word{:04} ", i);
    report.summary = {{"Note", words}};

    const PDF pdf(report);

    std::string all;
    for (const std::string& line : pdf.lines()) all += line + " ";
    for (int i = 0; i < 2'000; ++i) {
        EXPECT_NE(all.find(fmt::format("word{:04} ", i)), all.npos) << i;
    }
    EXPECT_GE(pdf.pages(), 3);
}

// Each name stays in its row, and its verdict in that row.
TEST(ReportPDF, NastyNames_KeepOneRowAFile) {
    const Lines names{"line\nfeed",
                      "carriage\rreturn",
                      "new\u2028lines\u2029here",
                      "שלום עולם",
                      "שלום.mov",
                      "exe\u202Evom.A",
                      "שלום\u2069 עולם",
                      "\u2069\u202EDELIAF",
                      "שלום\u2069\u202Eעולם",
                      "\u2067שלום\u202C",
                      "שלום\nעולם",
                      "שלום\u2029עולם",
                      "cafe\u0301",
                      "👨‍👩‍👧 family",
                      "bad \xFF\xFE",
                      "ctl \x01\x1B",
                      std::string(255, 'x'),
                      std::string("nul \0 nul", 9),
                      "tab\tab",
                      "日本語",
                      ""};
    Report report = reportWithRows(0);
    for (const std::string& name : names) {
        report.table->rows.push_back({name, "1.50 GB", "0eab543384f878ad", "FAILED"});
    }

    const std::set<std::string> columns{"1.50", "GB", "0eab543384f878ad", "FAILED"};

    const std::string xml = PDF(report).tell("pdftotext", {"-bbox"});

    // The verdicts stand one below the other, right of the checksums, which stand right of the
    // sizes, which stand right of the names.
    std::map<std::string, std::vector<std::pair<double, double>>> places;
    std::vector<std::pair<double, double>> nameWords;
    for (const Lines& word :
         matches(xml, "<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\"[^>]*>([^<]*)</word>")) {
        const std::pair<double, double> place{std::stod(word[2]), std::stod(word[1])};
        places[word[3]].push_back(place);
        if (!columns.contains(word[3])) nameWords.push_back(place);
    }
    auto& sizes = places["1.50"];
    auto& hashes = places["0eab543384f878ad"];
    auto& verdicts = places["FAILED"];
    ASSERT_EQ(verdicts.size(), names.size()) << xml;
    ASSERT_EQ(hashes.size(), names.size());
    ASSERT_EQ(sizes.size(), names.size());
    std::ranges::sort(sizes);
    std::ranges::sort(hashes);
    std::ranges::sort(verdicts);
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_NEAR(verdicts[i].first, hashes[i].first, 1) << names[i];
        EXPECT_NEAR(sizes[i].first, hashes[i].first, 1) << names[i];
        EXPECT_LT(sizes[i].second, hashes[i].second) << names[i];
        EXPECT_LT(hashes[i].second, verdicts[i].second) << names[i];
        for (const auto& [y, x] : nameWords) {
            const bool isInThisRow = std::abs(y - sizes[i].first) < 4;
            EXPECT_TRUE(!isInThisRow || x < sizes[i].second) << names[i];
        }
    }
}

TEST(ReportPDF, PagesThatAreJustFull_AreFollowedByNoEmptyOne) {
    std::set<int> pageCounts;
    for (int rows = 35; rows < 65; ++rows) {
        const PDF pdf(reportWithRows(rows));

        const std::string text = pdf.tell("pdftotext");

        std::istringstream pages(text);
        for (std::string page; std::getline(pages, page, '\f');) {
            EXPECT_NE(page.find_first_not_of(" \n"), page.npos) << rows;
        }
        EXPECT_EQ(std::ranges::count(text, '\f'), pdf.pages());
        pageCounts.insert(pdf.pages());
    }
    EXPECT_EQ(pageCounts, (std::set<int>{1, 2}));
}

/// The top of the first word of this text.
double topOf(const std::string& boxes, const std::string& word) {
    const auto found = matches(boxes, "yMin=\"([\\d.]+)\"[^>]*>" + word + "</word>");
    return std::stod(found.at(0).at(1));
}

// Between lines of one font the distance is the height of a line and the space after the first. A
// fact that is wrapped tells that height; for other sizes of the font it is as much in proportion.
TEST(ReportPDF, SpacesBetweenParagraphs_AreThoseOfTheLayout) {
    Report report = reportWithRows(3);
    report.summary = {{"One", "x"}, {"Two", std::string(150, 'W') + " wrapped"}, {"Three", "x"}};
    constexpr double rounding = 0.01;

    const std::string boxes = PDF(report).tell("pdftotext", {"-bbox"});

    const double first = topOf(boxes, "One:");
    const double second = topOf(boxes, "Two:");
    const double third = topOf(boxes, "Three:");
    const double wrapped = topOf(boxes, "wrapped");
    const double line = third - wrapped - 2;
    EXPECT_NEAR(second - first, line + 2, rounding);
    EXPECT_NEAR(std::remainder(wrapped - second, line), 0, rounding);
    EXPECT_GT(wrapped - second, line / 2);
    // From size 13 to 9 and on to 11 the fonts' ascents cancel each other out if the second
    // distance is taken twice.
    const double provenance = topOf(boxes, "keldobay");
    EXPECT_NEAR(provenance - topOf(boxes, "A001") + 2 * (first - provenance),
                line / 11 * (9 + 2 * 11) + 2 + 2 * 12, rounding * 4);
    const double row = topOf(boxes, "CLIP/C00001.MXF") - topOf(boxes, "CLIP/C00000.MXF");
    EXPECT_NEAR(topOf(boxes, "CLIP/C00000.MXF") - topOf(boxes, "File"), 2 * (row - 1) + 2 + 2,
                rounding);
}

TEST(ReportPDF, TenThousandRows_AreAllThereWithinFiveSeconds) {
    const Report report = reportWithRows(10'000);
    const auto start = std::chrono::steady_clock::now();

    const auto bytes = ReportRenderer::pdf(report);

    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_LT(taken.count(), 5.0);
    EXPECT_GT(bytes.size(), 10'000U);
    const Lines lines = PDF(report).lines();
    EXPECT_EQ(lines.size(), 7U + 10'000U);
    EXPECT_EQ(lines.back().substr(0, 15), "CLIP/C09999.MXF");
}

}  // namespace
