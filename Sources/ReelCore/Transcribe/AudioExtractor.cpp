#include "ReelCore/Transcribe/AudioExtractor.h"

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Platform/ToolComplaints.h"
#include "ReelCore/Transcode/MediaQuery.h"
#include "ReelCore/Transcribe/TranscribeError.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

namespace ReelCore {

namespace {

using Arguments = std::vector<std::string>;

void runFFmpeg(const URL& ffmpeg, const Arguments& arguments) {
    constexpr std::int64_t tailLength = 500;
    RunningChild child(ffmpeg, arguments,
                       {.output = ChildStream::nowhere(), .error = ChildStream::pipe()});
    ToolComplaints complaints;
    child.readAll([&](std::string_view piece) { complaints.take(piece); });
    if (child.wait() == 0 && !complaints.tellOfFailedDrive()) return;
    const std::string said = complaints.lastText();
    const std::string text = Text::isWellFormed(said) ? said : "";
    throw TranscribeError(TranscribeError::ExtractionFailed{Text::suffix(text, tailLength)});
}

URL requireFFmpeg(const FFmpegLocator& locator) {
    const auto ffmpeg = locator.ffmpeg();
    if (!ffmpeg) throw TranscribeError(TranscribeError::FFmpegNotFound{});
    return *ffmpeg;
}

/// How one speaker's sound is taken out of a file.
Arguments monoArguments(const SpeakerTrack& track) {
    if (track.fileURL || !track.channelIndex) return {"-ac", "1"};
    return {"-filter_complex", fmt::format("[0:a]pan=mono|c0=c{}[a]", *track.channelIndex), "-map",
            "[a]"};
}

/// A tag in a file may hold anything: a label at a rate that counts no frames, or with fields that
/// no day on earth has, counts as unreadable.
std::optional<Timecode> readTimecode(const std::string& text, const FrameRate& rate) {
    constexpr std::size_t longestField = 9;
    for (const std::string_view field : piecesOf(text, ":;.")) {
        if (field.size() > longestField) return std::nullopt;
    }
    return rate.isCountable() ? Timecode::parse(text, rate) : std::nullopt;
}

}  // namespace

AudioExtractor::ClipInfo AudioExtractor::probe(const URL& url) const {
    const auto ffprobe = ff.ffprobe();
    if (!ffprobe) throw TranscribeError(TranscribeError::FFmpegNotFound{});
    const auto ask = [&](const Arguments& entries) {
        Arguments arguments{"-v", "error"};
        arguments.insert(arguments.end(), entries.begin(), entries.end());
        arguments.insert(arguments.end(), {"-of", "default=nk=1:nw=1"});
        return answerOf(*ffprobe, std::move(arguments), url);
    };
    ClipInfo info;
    const std::string rate =
        ask({"-select_streams", "v:0", "-show_entries", "stream=r_frame_rate"});
    info.frameRate = FrameRate::fromFFmpeg(rate.empty() ? "24" : rate);
    std::string timecode = ask({"-select_streams", "v:0", "-show_entries", "stream_tags=timecode"});
    if (timecode.empty()) timecode = ask({"-show_entries", "format_tags=timecode"});
    info.startTimecode = readTimecode(timecode, info.frameRate);
    info.audioChannels =
        parseInteger(ask({"-select_streams", "a:0", "-show_entries", "stream=channels"}))
            .value_or(0);
    const std::string streams = ask({"-select_streams", "a", "-show_entries", "stream=index"});
    info.audioStreams = std::ssize(piecesOf(streams, "\r\n"));
    return info;
}

URL AudioExtractor::extract(const SpeakerTrack& track, const URL& input,
                            const URL& directory) const {
    const URL ffmpeg = requireFFmpeg(ff);
    std::string name = track.name;
    std::ranges::replace(name, '/', '_');
    URL output = directory / ("spk_" + name + ".wav");
    Arguments arguments{"-y", "-i", toolPath(track.fileURL.value_or(input))};
    for (const std::string& one : monoArguments(track)) arguments.push_back(one);
    arguments.insert(arguments.end(), {"-ar", "16000", "-c:a", "pcm_s16le", toolPath(output)});
    runFFmpeg(ffmpeg, arguments);
    return output;
}

URL AudioExtractor::extractMix(const URL& input, const URL& directory) const {
    const URL ffmpeg = requireFFmpeg(ff);
    FileSystem::createFolders(directory);
    URL output = directory / "mix.wav";
    runFFmpeg(ffmpeg, {"-y", "-i", toolPath(input), "-vn", "-ac", "1", "-ar", "16000", "-c:a",
                       "pcm_s16le", toolPath(output)});
    return output;
}

}  // namespace ReelCore
