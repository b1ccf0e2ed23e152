#include "ReelCore/Reports/ReportRenderer.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Reports/ReportFormat.h"

#include <algorithm>
#include <span>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

std::string quoted(const std::string& cell) {
    const std::string text = Text::wellFormed(cell);
    if (text.find_first_of(",\"\n") == text.npos) return text;
    std::string result = "\"";
    for (const char c : text) result += c == '"' ? "\"\"" : std::string(1, c);
    return result + "\"";
}

std::string csvLine(const std::vector<std::string>& cells) {
    std::vector<std::string> quotedCells;
    std::ranges::transform(cells, std::back_inserter(quotedCells), quoted);
    return fmt::format("{}", fmt::join(quotedCells, ","));
}

void writeFile(const URL& url, std::span<const std::byte> bytes) {
    File file = File::create(url);
    file.write(bytes);
    file.flush();
}

}  // namespace

std::vector<URL> ReportRenderer::write(const Report& report, const URL& directory,
                                       const std::set<std::string>& formats) {
    FileSystem::createFolders(directory);
    std::vector<URL> written;
    if (formats.contains("pdf")) {
        written.push_back(directory / (report.fileBase() + ".pdf"));
        writeFile(written.back(), pdf(report));
    }
    if (formats.contains("csv")) {
        written.push_back(directory / (report.fileBase() + ".csv"));
        const std::string text = csv(report);
        writeFile(written.back(), std::as_bytes(std::span(text)));
    }
    if (!written.empty()) FileSystem::flushFolder(directory);
    return written;
}

std::string ReportRenderer::csv(const Report& report) {
    std::vector<std::string> lines{quoted(report.title)};
    if (report.subtitle) lines.push_back(quoted(*report.subtitle));
    lines.push_back("Generated," + quoted(dateTime(report.generatedAt)));
    lines.push_back("");
    for (const Report::Field& field : report.summary) {
        lines.push_back(csvLine({field.label, field.value}));
    }
    if (report.table) {
        lines.push_back("");
        lines.push_back(csvLine(report.table->columns));
        for (const auto& row : report.table->rows) lines.push_back(csvLine(row));
    }
    return fmt::format("{}\n", fmt::join(lines, "\n"));
}

}  // namespace ReelCore
