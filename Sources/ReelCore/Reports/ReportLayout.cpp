#include "ReelCore/Reports/ReportLayout.h"

#include "ReelCore/Platform/Text.h"
#include "ReelCore/Reports/ReportFormat.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

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

/// What would leave its line, its column or its isolation (UAX #9), beside the controls of ASCII.
constexpr std::array substitutes{
    Substitute{"\n", "↵"},          Substitute{"\r", "↵"},          Substitute{"\v", "↵"},
    Substitute{"\f", "↵"},          Substitute{"\u0085", "↵"},      Substitute{"\u2028", "↵"},
    Substitute{"\u2029", "↵"},      Substitute{"\t", "⇥"},          Substitute{"\u202A", "\uFFFD"},
    Substitute{"\u202B", "\uFFFD"}, Substitute{"\u202C", "\uFFFD"}, Substitute{"\u202D", "\uFFFD"},
    Substitute{"\u202E", "\uFFFD"}, Substitute{"\u2066", "\uFFFD"}, Substitute{"\u2067", "\uFFFD"},
    Substitute{"\u2068", "\uFFFD"}, Substitute{"\u2069", "\uFFFD"},
};

bool isControl(char c) {
    return (c >= 0 && c < ' ') || c == '\x7F';
}

/// True for the bytes that a substitute's character or a control can begin with.
bool mayBeReplaced(char c) {
    return isControl(c) || c == '\xC2' || c == '\xE2';
}

/// The text as it is drawn, with nothing in it that reaches beyond its place.
std::string contained(const std::string& bytes) {
    const std::string text = Text::wellFormed(bytes);
    std::string result;
    for (auto at = text.begin(); at != text.end();) {
        const auto next = std::find_if(at, text.end(), mayBeReplaced);
        result.append(at, next);
        if (next == text.end()) break;
        const std::string_view rest(next, text.end());
        const auto known = std::ranges::find_if(
            substitutes, [&](const Substitute& one) { return rest.starts_with(one.character); });
        if (known != substitutes.end()) {
            result += known->shown;
            at = next + std::ssize(known->character);
        } else {
            result += isControl(*next) ? "\uFFFD" : rest.substr(0, 1);
            at = next + 1;
        }
    }
    return result;
}

/// Text that runs from right to left is isolated, since it would otherwise draw its neighbours into
/// its own order, a verdict in front of another file's name.
std::string isolated(const std::string& text) {
    return Text::isLeftToRight(text) ? text : firstStrongIsolate + text + popDirectionalIsolate;
}

/// The cut or padded cell.
std::string fitted(const std::string& cell, std::int64_t width) {
    std::string text = contained(cell);
    std::int64_t length = Text::characterCount(text);
    if (length > width) {
        text = Text::prefix(text, width - 1) + "…";
        length = width;
    }
    return isolated(text) + std::string(static_cast<std::size_t>(width - length), ' ');
}

std::string valueOnPaper(const Report::Field& fact) {
    if (fact.names.empty()) return isolated(contained(fact.value));
    std::vector<std::string> names;
    for (const std::string& name : fact.names) names.push_back(isolated(contained(name)));
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string repeated(const char* text, std::int64_t count) {
    std::string result;
    for (; count > 0; --count) result += text;
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
    paragraphs.push_back({contained(report.title), system(22, true), 2});
    if (report.subtitle) paragraphs.push_back({contained(*report.subtitle), system(13), 2});
    paragraphs.push_back(
        {contained(report.tool) + "  ·  " + dateTime(report.generatedAt), system(9), 12});
    for (const Report::Field& field : report.summary) {
        paragraphs.push_back({contained(field.label) + ":  " + valueOnPaper(field), system(11), 2});
    }
    if (report.table) appendTable(paragraphs, *report.table);
    return paragraphs;
}

}  // namespace ReelCore
