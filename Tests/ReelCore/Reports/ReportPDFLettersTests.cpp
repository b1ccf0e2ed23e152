#include "OnPaper.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "SampleOffload.h"
#include "Support/Tool.h"
#include "TimeRatio.h"

#include <algorithm>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

Report reportWith(const std::vector<Report::Field>& facts) {
    return {"keldobay", "keldobay", facts, std::nullopt, sampleDate(), "keldobay"};
}

double widthOf(const PDFWord& word) {
    return word.right - word.left;
}

// A font's outlines and advances grow alike, so what is twice as large is twice as wide.
TEST(ReportPDF, Words_AreAsWideAsTheirSizeSays) {
    const auto words = OnPaper(reportWith({{"x", "keldobay"}})).words();

    std::vector<double> widths;
    for (const PDFWord& word : words) {
        if (word.text == "keldobay") widths.push_back(widthOf(word));
    }
    ASSERT_EQ(widths.size(), 4U);
    const double subtitle = widths[1];
    EXPECT_NEAR(widths[2], subtitle * 9 / 13, 0.02);
    EXPECT_NEAR(widths[3], subtitle * 11 / 13, 0.02);
}

/// How many letters are drawn on the first page, of whatever text.
std::ptrdiff_t lettersDrawn(const Report& report) {
    const std::string page = outputOf("pdftocairo", {"-svg", OnPaper(report).path(), "-"});
    std::ptrdiff_t count = 0;
    for (auto at = page.find("<use "); at != page.npos; at = page.find("<use ", at + 1)) ++count;
    return count;
}

// Tools that read a PDF's text don't show a hyphen that was only drawn.
TEST(ReportPDF, BrokenWords_GetNoHyphen) {
    const auto path = [](std::size_t length) {
        return reportWith({{"Source", "/" + std::string(length, 'W')}});
    };

    const std::ptrdiff_t unbroken = lettersDrawn(path(10));

    ASSERT_GT(unbroken, 10);
    EXPECT_EQ(lettersDrawn(path(500)) - unbroken, 490);
    EXPECT_EQ(lettersDrawn(reportWith({{"Source", "/" + std::string(10, 'W') + "\u00AD"}})),
              lettersDrawn(reportWith({{"Source", "/" + std::string(10, 'W')}})));
}

/// All text on the pages, without the blanks.
std::string lettersOf(const Report& report) {
    std::string all;
    for (const PDFWord& word : OnPaper(report).words()) all += word.text;
    return all;
}

TEST(ReportPDF, VeryLongWords_AreThereWhole) {
    std::string expected;
    std::string word;
    for (int i = 0; i < 6'000; ++i) word += i % 7 == 0 ? "é" : i % 5 == 0 ? "Ж" : "x";

    const std::string all = lettersOf(reportWith({{"Note", word + " " + word}}));

    EXPECT_NE(all.find("Note:" + word + word), all.npos);
}

TEST(ReportPDF, WordTwiceAsLong_TakesAboutTwiceAsLong) {
    const auto draw = [](std::size_t length) {
        ReportRenderer::pdf(reportWith({{"Note", std::string(length, 'x')}}));
    };

    EXPECT_LT(timeRatio([&] { draw(80'000); }, [&] { draw(40'000); }), 3);
}

}  // namespace
