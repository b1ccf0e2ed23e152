#include "ReelCore/Transcode/FFmpegLog.h"

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <fmt/ranges.h>

namespace ReelCore {

namespace {

/// A damaged clip can fill the log for hours; the last lines are all that is shown.
constexpr std::int64_t mostBytes = 262'144;
constexpr std::size_t mostLines = 8;

std::string endOf(const URL& path) {
    const File file = File::openForReading(path);
    const std::int64_t begin = std::max<std::int64_t>(file.size() - mostBytes, 0);
    std::string text(static_cast<std::size_t>(mostBytes), '\0');
    text.resize(file.readAt(begin, std::as_writable_bytes(std::span(text))));
    return text;
}

}  // namespace

FFmpegLog::FFmpegLog() : path_("keldo-ffmpeg-", ".log"), file_(File::create(path_.url())) {}

std::string FFmpegLog::tail() const {
    try {
        const std::string text = endOf(path_.url());
        std::vector<std::string_view> lines = piecesOf(text, "\n");
        if (lines.size() > mostLines) lines.erase(lines.begin(), lines.end() - mostLines);
        return Text::wellFormed(fmt::format("{}", fmt::join(lines, "\n")));
    } catch (const Error&) {
        return {};
    }
}

}  // namespace ReelCore
