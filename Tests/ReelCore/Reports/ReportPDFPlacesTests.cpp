#include "ReelCore/Reports/ReportRenderer.h"
#include "SampleOffload.h"
#include "Support/DocumentReaders.h"
#include "Support/FolderTree.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

std::vector<PDFWord> wordsOf(const Report& report) {
    const TemporaryFolder folder;
    return pdfWords(ReportRenderer::write(report, folder.path(), {"pdf"}).at(0));
}

TEST(ReportPDF, EverythingStandsWithinTheMargins) {
    Report report = reportWithRows(200);
    report.summary.push_back({"Source", std::string(400, 'W')});
    report.summary.push_back({"Note", "many words " + std::string(300, ' ') + "and more"});

    double left = 612, top = 792, right = 0, bottom = 0;
    for (const PDFWord& word : wordsOf(report)) {
        left = std::min(left, word.left);
        top = std::min(top, word.top);
        right = std::max(right, word.right);
        bottom = std::max(bottom, word.bottom);
    }
    constexpr double rounding = 0.5;
    EXPECT_NEAR(left, 48, rounding);
    EXPECT_NEAR(top, 48, 2);  // Tools take a font's height in different ways.
    EXPECT_LE(right, 612 - 48 + rounding);
    EXPECT_LE(bottom, 792 - 48 + 2);
    EXPECT_GT(bottom, 792 - 48 - 20);
}

// Each name stays in its row, and its verdict in that row.
TEST(ReportPDF, NastyNames_KeepOneRowAFile) {
    const std::vector<std::string> names{"line\nfeed",
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

    const auto words = wordsOf(report);

    // The verdicts stand one below the other, right of the checksums, which stand right of the
    // sizes, which stand right of the names.
    std::map<std::string, std::vector<std::pair<double, double>>> places;
    std::vector<std::pair<double, double>> nameWords;
    for (const PDFWord& word : words) {
        places[word.text].emplace_back(word.top, word.left);
        if (!columns.contains(word.text)) nameWords.emplace_back(word.top, word.left);
    }
    auto& sizes = places["1.50"];
    auto& hashes = places["0eab543384f878ad"];
    auto& verdicts = places["FAILED"];
    ASSERT_EQ(verdicts.size(), names.size());
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

/// The top of the first word of this text.
double topOf(const std::vector<PDFWord>& words, const std::string& text) {
    const auto word = std::ranges::find(words, text, &PDFWord::text);
    if (word == words.end()) throw std::runtime_error("not on the page: " + text);
    return word->top;
}

// Between lines of one font the distance is the height of a line and the space after the first. A
// fact that is wrapped tells that height; for other sizes of the font it is as much in proportion.
TEST(ReportPDF, SpacesBetweenParagraphs_AreThoseOfTheLayout) {
    Report report = reportWithRows(3);
    report.summary = {{"One", "x"}, {"Two", std::string(150, 'W') + " wrapped"}, {"Three", "x"}};
    constexpr double rounding = 0.01;

    const auto words = wordsOf(report);

    const double first = topOf(words, "One:");
    const double second = topOf(words, "Two:");
    const double third = topOf(words, "Three:");
    const double wrapped = topOf(words, "wrapped");
    const double line = third - wrapped - 2;
    EXPECT_NEAR(second - first, line + 2, rounding);
    EXPECT_NEAR(std::remainder(wrapped - second, line), 0, rounding);
    EXPECT_GT(wrapped - second, line / 2);
    // From size 13 to 9 and on to 11 the fonts' ascents cancel each other out if the second
    // distance is taken twice.
    const double provenance = topOf(words, "keldobay");
    EXPECT_NEAR(provenance - topOf(words, "A001") + 2 * (first - provenance),
                line / 11 * (9 + 2 * 11) + 2 + 2 * 12, rounding * 4);
    const double row = topOf(words, "CLIP/C00001.MXF") - topOf(words, "CLIP/C00000.MXF");
    EXPECT_NEAR(topOf(words, "CLIP/C00000.MXF") - topOf(words, "File"), 2 * (row - 1) + 2 + 2,
                rounding);
}

}  // namespace
