#include "ReelCore/Reports/ReportLayout.h"

#include "ReelCore/Platform/Text.h"
#include "ReelCore/Reports/ReportFormat.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>

namespace ReelCore {

namespace {

using Font = ReportLayout::Font;
using Paragraph = ReportLayout::Paragraph;

constexpr Font system(double size, bool bold = false) {
    return {Font::Family::system, bold, size};
}
constexpr Font monospaced(double size) {
    return {Font::Family::monospaced, false, size};
}

constexpr const char* firstStrongIsolate = "\u2068";
constexpr const char* popDirectionalIsolate = "\u2069";

std::int64_t widthCap(std::size_t column) {
    static constexpr std::array<std::int64_t, 6> caps{44, 12, 18, 12, 14, 10};
    return column < caps.size() ? caps[column] : 20;
}

struct Substitute {
    std::string_view character;
    std::string_view shown;
};

/// Characters that end the isolation of a text (UAX #9): paragraph separators, and marks for the
/// direction inside a text.
constexpr std::array substitutes{
    Substitute{"\n", "↵"},          Substitute{"\r", "↵"},          Substitute{"\u0085", "↵"},
    Substitute{"\u2029", "↵"},      Substitute{"\x1C", "\uFFFD"},   Substitute{"\x1D", "\uFFFD"},
    Substitute{"\x1E", "\uFFFD"},   Substitute{"\u202A", "\uFFFD"}, Substitute{"\u202B", "\uFFFD"},
    Substitute{"\u202C", "\uFFFD"}, Substitute{"\u202D", "\uFFFD"}, Substitute{"\u202E", "\uFFFD"},
    Substitute{"\u2066", "\uFFFD"}, Substitute{"\u2067", "\uFFFD"}, Substitute{"\u2068", "\uFFFD"},
    Substitute{"\u2069", "\uFFFD"},
};

/// The cell's text as it is drawn, with nothing in it that reaches beyond the cell.
std::string contained(std::string text) {
    for (const auto& [character, shown] : substitutes) {
        for (auto at = text.find(character); at != text.npos; at = text.find(character, at)) {
            text.replace(at, character.size(), shown);
        }
    }
    return text;
}

/// The cut or padded cell. Text that runs from right to left is isolated, since it would otherwise
/// draw its neighbours into its own order, a verdict in front of another file's name.
std::string fitted(const std::string& cell, std::int64_t width) {
    std::string text = contained(cell);
    std::int64_t length = Text::characterCount(text);
    if (length > width) {
        text = Text::prefix(text, width - 1) + "…";
        length = width;
    }
    if (!Text::isLeftToRight(text)) text = firstStrongIsolate + text + popDirectionalIsolate;
    return text + std::string(static_cast<std::size_t>(width - length), ' ');
}

std::string repeated(const char* text, std::int64_t count) {
    std::string result;
    for (; count > 0; --count) result += text;
    return result;
}

/// As the text system takes it: well formed, and without a NUL, where it would see the text's end.
std::string printable(const std::string& text) {
    std::string result;
    for (const char c : Text::wellFormed(text)) {
        if (c == '\0') {
            result += "\uFFFD";
        } else {
            result += c;
        }
    }
    return result;
}

void appendTable(std::vector<Paragraph>& paragraphs, const Report::Table& table) {
    const auto widths = ReportLayout::columnWidths(table);
    const std::int64_t sum = std::accumulate(widths.begin(), widths.end(), std::int64_t{0});
    const auto ruleLength = std::min<std::int64_t>(sum + std::ssize(widths), 110);
    paragraphs.push_back({"", system(6), 6});
    paragraphs.push_back({ReportLayout::rowString(table.columns, widths), monospaced(9), 2});
    paragraphs.push_back({repeated("─", ruleLength), monospaced(9), 2});
    for (const auto& row : table.rows) {
        paragraphs.push_back({ReportLayout::rowString(row, widths), monospaced(9), 1});
    }
}

}  // namespace

std::vector<std::int64_t> ReportLayout::columnWidths(const Report::Table& table) {
    std::vector<std::int64_t> widths;
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        std::int64_t longest = Text::characterCount(contained(table.columns[column]));
        for (const auto& row : table.rows) {
            if (column < row.size()) {
                longest = std::max(longest, Text::characterCount(contained(row[column])));
            }
        }
        widths.push_back(std::min(longest, widthCap(column)));
    }
    return widths;
}

std::string ReportLayout::rowString(const std::vector<std::string>& cells,
                                    const std::vector<std::int64_t>& widths) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0) line += "  ";
        line += fitted(cells[i], i < widths.size() ? widths[i] : 12);
    }
    return line;
}

std::vector<Paragraph> ReportLayout::buildAttributed(const Report& report) {
    std::vector<Paragraph> paragraphs;
    paragraphs.push_back({report.title, system(22, true), 2});
    if (report.subtitle) paragraphs.push_back({*report.subtitle, system(13), 2});
    paragraphs.push_back({report.tool + "  ·  " + dateTime(report.generatedAt), system(9), 12});
    for (const Report::Field& field : report.summary) {
        paragraphs.push_back({field.label + ":  " + field.value, system(11), 2});
    }
    if (report.table) appendTable(paragraphs, *report.table);
    for (Paragraph& paragraph : paragraphs) paragraph.text = printable(paragraph.text);
    return paragraphs;
}

}  // namespace ReelCore
