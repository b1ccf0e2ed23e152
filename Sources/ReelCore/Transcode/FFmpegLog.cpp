#include "ReelCore/Transcode/FFmpegLog.h"

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include <fmt/ranges.h>

namespace ReelCore {

namespace {

/// A damaged clip can fill the log for hours; the last lines are all that is shown, and no more
/// than this is held.
constexpr std::int64_t mostBytes = 262'144;
constexpr std::size_t mostLines = 8;
constexpr std::int64_t reservedBytes = 65'536;

/// ffmpeg's lines end in the system's sentence, always in English.
constexpr std::array<std::string_view, 11> sentencesOfFailedDrives{
    ": Input/output error",
    ": No space left on device",
    ": Disk quota exceeded",
    ": File too large",
    ": Read-only file system",
    ": No such device",
    ": No such device or address",
    ": Transport endpoint is not connected",
    ": Stale file handle",
    ": Connection timed out",
    ": Software caused connection abort",
};

bool tellsOfFailedDrive(std::string_view lines) {
    const auto isOfFailedDrive = [](std::string_view line) {
        return std::ranges::any_of(sentencesOfFailedDrives, [&](std::string_view sentence) {
            return line.ends_with(sentence);
        });
    };
    return std::ranges::any_of(piecesOf(lines, "\n"), isOfFailedDrive);
}

/// Without the end of a character that a cut went through.
std::string fromACharactersBeginning(const std::string& text) {
    constexpr std::size_t mostContinuationBytes = 3;
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
    const std::string_view beginning = std::string_view(text).substr(0, mostContinuationBytes);
    return text.substr(static_cast<std::size_t>(std::ranges::find_if_not(beginning, continues) -
                                                beginning.begin()));
}

/// Reads the log piece by piece; of a very long line the end counts.
bool fileTellsOfFailedDrive(const File& file) {
    constexpr std::size_t mostOfALine = 4096;
    std::string block(static_cast<std::size_t>(mostBytes), '\0');
    std::string lines;
    for (std::int64_t offset = 0;; offset += mostBytes) {
        const std::size_t count = file.readAt(offset, std::as_writable_bytes(std::span(block)));
        lines.append(block, 0, count);
        if (tellsOfFailedDrive(lines)) return true;
        if (count < block.size()) return false;
        lines.erase(
            0, std::max(lines.rfind('\n') + 1, lines.size() - std::min(lines.size(), mostOfALine)));
    }
}

}  // namespace

FFmpegLog::FFmpegLog() : path_("keldo-ffmpeg-", ".log"), file_(File::create(path_.url())) {
    file_.reserve(reservedBytes);
}

std::string FFmpegLog::lastText() const {
    try {
        const File file = File::openForReading(path_.url());
        const std::int64_t begin = std::max<std::int64_t>(file.size() - mostBytes, 0);
        std::string text(static_cast<std::size_t>(mostBytes), '\0');
        text.resize(file.readAt(begin, std::as_writable_bytes(std::span(text))));
        return begin > 0 ? fromACharactersBeginning(text) : text;
    } catch (const Error&) {
        return {};
    }
}

std::string FFmpegLog::tail() const {
    const std::string text = lastText();
    std::vector<std::string_view> lines = piecesOf(text, "\n");
    if (lines.size() > mostLines) lines.erase(lines.begin(), lines.end() - mostLines);
    return Text::wellFormed(fmt::format("{}", fmt::join(lines, "\n")));
}

bool FFmpegLog::tellsOfFailedDrive() const {
    try {
        return fileTellsOfFailedDrive(File::openForReading(path_.url()));
    } catch (const Error&) {
        return false;
    }
}

}  // namespace ReelCore
