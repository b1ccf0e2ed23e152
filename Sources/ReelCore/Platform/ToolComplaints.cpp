#include "ReelCore/Platform/ToolComplaints.h"

#include "ReelCore/Platform/DriveFailure.h"
#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <vector>

#include <fmt/ranges.h>

namespace ReelCore {

namespace {

constexpr std::size_t mostBytes = 262'144;
constexpr std::size_t mostLines = 8;

void keepLast(std::string& text, std::size_t most) {
    if (text.size() > most) text.erase(0, text.size() - most);
}

/// ffmpeg's lines end in the system's sentence, which may itself hold a colon, always in English.
/// Indented is what it tells of the clip itself, whose title may be any sentence.
bool endsWithFailedDrive(std::string_view line) {
    if (line.starts_with(' ')) return false;
    for (auto sign = line.find(": "); sign != line.npos; sign = line.find(": ", sign + 1)) {
        if (isSentenceOfFailedDrive(line.substr(sign + 2))) return true;
    }
    return false;
}

/// Without the end of a character that a cut went through.
std::string fromACharactersBeginning(const std::string& text) {
    constexpr std::size_t mostContinuationBytes = 3;
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
    const std::string_view beginning = std::string_view(text).substr(0, mostContinuationBytes);
    return text.substr(static_cast<std::size_t>(std::ranges::find_if_not(beginning, continues) -
                                                beginning.begin()));
}

}  // namespace

void ToolComplaints::take(std::string_view bytes) {
    // Of an endless line, the end.
    constexpr std::size_t mostOfALine = 4096;
    last_ += bytes;
    if (last_.size() > 2 * mostBytes) keepLast(last_, mostBytes + 1);
    for (std::size_t end = 0; (end = bytes.find('\n')) != bytes.npos;
         bytes.remove_prefix(end + 1)) {
        line_ += bytes.substr(0, end);
        driveHasFailed_ = driveHasFailed_ || endsWithFailedDrive(line_);
        line_.clear();
    }
    line_ += bytes;
    keepLast(line_, mostOfALine);
}

std::string ToolComplaints::lastText() const {
    if (last_.size() <= mostBytes) return last_;
    return fromACharactersBeginning(last_.substr(last_.size() - mostBytes));
}

std::string ToolComplaints::tail() const {
    const std::string text = lastText();
    std::vector<std::string_view> lines = piecesOf(text, "\n");
    if (lines.size() > mostLines) lines.erase(lines.begin(), lines.end() - mostLines);
    return Text::wellFormed(fmt::format("{}", fmt::join(lines, "\n")));
}

bool ToolComplaints::tellOfFailedDrive() const {
    return driveHasFailed_ || endsWithFailedDrive(line_);
}

}  // namespace ReelCore
