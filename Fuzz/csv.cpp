#include "ReelCore/Platform/Text.h"
#include "ReelCore/Reports/ReportLayout.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "Require.h"

#include <algorithm>

using namespace ReelCore;

namespace {

using Row = std::vector<std::string>;

/// A table whose cells are the parts of the input between bytes 0x1F, its rows between 0x1E.
std::vector<Row> tableOf(std::string_view text) {
    std::vector<Row> rows{{""}};
    for (const char c : text) {
        if (c == '\x1E') {
            rows.push_back({""});
        } else if (c == '\x1F') {
            rows.back().emplace_back();
        } else {
            rows.back().back() += c;
        }
    }
    return rows;
}

/// Takes comma-separated values apart (RFC 4180, with line feeds).
std::vector<Row> decode(const std::string& csv) {
    std::vector<Row> rows{{""}};
    bool quoted = false;
    for (std::size_t i = 0; i < csv.size(); ++i) {
        if (quoted && csv.compare(i, 2, "\"\"") == 0) {
            rows.back().back() += csv[i++];
        } else if (csv[i] == '"') {
            REQUIRE(quoted || rows.back().back().empty());
            quoted = !quoted;
        } else if (!quoted && csv[i] == ',') {
            rows.back().emplace_back();
        } else if (!quoted && csv[i] == '\n') {
            rows.push_back({""});
        } else {
            rows.back().back() += csv[i];
        }
    }
    REQUIRE(!quoted);
    return rows;
}

void requireSound(const Report& report) {
    const auto widths = ReportLayout::columnWidths(*report.table);
    REQUIRE(widths.size() == report.table->columns.size());
    for (const auto& paragraph : ReportLayout::buildAttributed(report)) {
        REQUIRE(Text::isWellFormed(paragraph.text));
        REQUIRE(std::ranges::none_of(paragraph.text, [](char c) { return c >= 0 && c < ' '; }));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<Row> rows = tableOf(textOf(data, size));
    const Report report{"Title", std::nullopt, {}, Report::Table{rows.front(), rows}, Date(), ""};
    requireSound(report);

    const std::vector<Row> decoded = decode(ReportRenderer::csv(report));

    // Title, date, two empty lines and the columns stand in front, the last line feed behind.
    constexpr std::size_t front = 5;
    REQUIRE(decoded.size() == front + rows.size() + 1);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::string& cell : rows[i]) cell = Text::wellFormed(cell);
        REQUIRE(decoded[front + i] == rows[i]);
    }
    return 0;
}
