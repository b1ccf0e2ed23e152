#include "ReelCore/Recovery/Remux.h"

#include "ReelCore/Platform/ChildProcess.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Platform/ToolComplaints.h"
#include "ReelCore/Recovery/MP4Scan.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Transcode/MediaQuery.h"
#include "ReelCore/Transcribe/TranscribeError.h"

#include <algorithm>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

[[noreturn]] void fail(const std::string& reason) {
    throw RecoveryError(RecoveryError::IOFailed{"remux failed: " + reason});
}

/// Nothing where the text is not UTF-8.
std::string lastLines(const std::string& text) {
    constexpr std::ptrdiff_t most = 4;
    if (!Text::isWellFormed(text)) return {};
    auto lines = piecesOf(text, "\n");
    if (std::ssize(lines) > most) lines.erase(lines.begin(), lines.end() - most);
    return fmt::format("{}", fmt::join(lines, "\n"));
}

/// A kind of stream of which a remux takes one.
struct Kind {
    std::string codecType;  ///< As ffprobe says it.
    std::string letter;     ///< In ffmpeg's arguments.
    std::string name;       ///< For people.
};

/// The kinds that the clip's index promises, as far as ffprobe can read it.
std::vector<Kind> promisedBy(const URL& clip) {
    const auto ffprobe = FFmpegLocator().ffprobe();
    if (!ffprobe) return {};
    const std::string answer = answerOf(
        *ffprobe, {"-v", "error", "-show_entries", "stream=codec_type", "-of", "default=nk=1:nw=1"},
        clip);
    std::vector<Kind> kinds{{"video", "v", "picture"}, {"audio", "a", "sound"}};
    const auto lines = piecesOf(answer, "\n");
    std::erase_if(kinds, [&](const Kind& kind) {
        return std::ranges::find(lines, kind.codecType) == lines.end();
    });
    return kinds;
}

/// One thread and no delay, so that nothing behind the first frame has a say.
bool playsItsFirst(const URL& ffmpeg, const URL& movie, const Kind& kind) {
    return ChildProcess::status(
               ffmpeg, {"-v", "error", "-xerror", "-threads", "1", "-flags", "low_delay", "-i",
                        toolPath(movie), "-map", "0:" + kind.letter + ":0",
                        "-frames:" + kind.letter, "1", "-f", "null", "-"}) == 0;
}

/// ffmpeg calls it a success if it could read the index and not one frame behind it.
bool holdsNoMedia(const URL& movie) {
    const MP4Scan::TopLevel layout = MP4Scan::topLevel(movie);
    const TopLevelBox* media = layout.first("mdat");
    return media && !media->extendsToEOF && media->declaredPayload == 0;
}

void run(const URL& ffmpeg, const URL& source, const URL& output) {
    RunningChild child(ffmpeg,
                       {"-y", "-err_detect", "ignore_err", "-i", toolPath(source), "-c", "copy",
                        "-ignore_unknown", toolPath(output)},
                       {.output = ChildStream::nowhere(), .error = ChildStream::pipe()});
    ToolComplaints complaints;
    child.readAll([&](std::string_view piece) { complaints.take(piece); });
    const bool isDone = child.wait() == 0 && FileSystem::sizeOf(output).value_or(0) > 0 &&
                        !complaints.tellOfFailedDrive() && !holdsNoMedia(output);
    if (!isDone) fail(lastLines(complaints.lastText()));
}

}  // namespace

void remux(const URL& source, const URL& output) {
    const auto ffmpeg = FFmpegLocator().ffmpeg();
    if (!ffmpeg) throw TranscribeError(TranscribeError::FFmpegNotFound{});
    // Before, as long as the card is sure to be there.
    const std::vector<Kind> promised = promisedBy(source);
    run(*ffmpeg, source, output);
    for (const Kind& kind : promised) {
        if (playsItsFirst(*ffmpeg, output, kind)) continue;
        fail(fmt::format("no {} that plays came out of the clip; what did come out is in {}",
                         kind.name, lastPathComponent(output)));
    }
}

}  // namespace ReelCore
