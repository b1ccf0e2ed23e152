#include "ReelCore/Recovery/Remux.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Recovery/MP4Scan.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Transcode/FFmpegLog.h"
#include "ReelCore/Transcode/MediaQuery.h"
#include "ReelCore/Transcribe/TranscribeError.h"

#include <string>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

/// Nothing where the text is not UTF-8.
std::string lastLines(const std::string& text) {
    constexpr std::ptrdiff_t most = 4;
    if (!Text::isWellFormed(text)) return {};
    auto lines = piecesOf(text, "\n");
    if (std::ssize(lines) > most) lines.erase(lines.begin(), lines.end() - most);
    return fmt::format("{}", fmt::join(lines, "\n"));
}

/// ffmpeg calls it a success if it could read the index and not one frame behind it.
bool holdsNoMedia(const URL& movie) {
    const MP4Scan::TopLevel layout = MP4Scan::topLevel(movie);
    const TopLevelBox* media = layout.first("mdat");
    return media && !media->extendsToEOF && media->declaredPayload == 0;
}

bool isDone(int status, const URL& output, const FFmpegLog& log) {
    return status == 0 && FileSystem::leadsSomewhere(output) && !log.tellsOfFailedDrive() &&
           !holdsNoMedia(output);
}

}  // namespace

void remux(const URL& source, const URL& output) {
    const auto ffmpeg = FFmpegLocator().ffmpeg();
    if (!ffmpeg) throw TranscribeError(TranscribeError::FFmpegNotFound{});
    const FFmpegLog log;
    RunningChild child(*ffmpeg,
                       {"-y", "-err_detect", "ignore_err", "-i", toolPath(source), "-c", "copy",
                        "-ignore_unknown", toolPath(output)},
                       {.output = ChildStream::nowhere(), .error = ChildStream::file(log.file())});
    if (isDone(child.wait(), output, log)) return;
    throw RecoveryError(RecoveryError::IOFailed{"remux failed: " + lastLines(log.lastText())});
}

}  // namespace ReelCore
