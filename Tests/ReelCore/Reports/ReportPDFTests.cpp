#include "ReelCore/Reports/ReportFormat.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "SampleOffload.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <algorithm>
#include <chrono>
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
