#include "ReelCore/Sync/ALEWriter.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/Text.h"

#include <span>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

std::string label(double seconds, const FrameRate& rate) {
    return Timecode(nearestInteger(seconds * rate.real()), rate).formatted();
}

std::string startOf(const VideoClip& video, const FrameRate& timelineRate) {
    if (video.startTimecode) return video.startTimecode->formatted();
    return label(video.startSeconds, timelineRate);
}

/// The first frame after the clip.
std::string endOf(const VideoClip& video, const FrameRate& timelineRate) {
    if (!video.startTimecode) return label(video.endSeconds(), timelineRate);
    return video.startTimecode->adding(video.duration).formatted();
}

std::string line(const SyncGroup& group, const FrameRate& timelineRate) {
    std::vector<std::string> fields{group.video.name(), "V", startOf(group.video, timelineRate),
                                    endOf(group.video, timelineRate)};
    if (const auto best = group.best()) {
        const AudioClip& sound = *best->clip;
        fields.insert(fields.end(),
                      {sound.tape.value_or(""), sound.scene.value_or(""), sound.take.value_or(""),
                       sound.name(), label(sound.startSeconds, timelineRate)});
    } else {
        fields.resize(9);
    }
    return fmt::format("{}\n", fmt::join(fields, "\t"));
}

}  // namespace

std::string ALEWriter::ale(const SyncResult& result) {
    const FrameRate rate = result.timelineRate();
    std::string text = fmt::format(
        "Heading\nFIELD_DELIM\tTABS\nVIDEO_FORMAT\t1080\nAUDIO_FORMAT\t48kHz\nFPS\t{:.2f}\n\n"
        "Column\nName\tTracks\tStart\tEnd\tTape\tScene\tTake\tSound Roll\tSound TC\n\nData\n",
        rate.real());
    for (const SyncGroup& group : result.groups) text += line(group, rate);
    return Text::wellFormed(text);
}

URL ALEWriter::write(const SyncResult& result, const URL& url) {
    const std::string text = ale(result);
    File file = File::create(url);
    file.write(std::as_bytes(std::span(text)));
    file.flush();
    return url;
}

}  // namespace ReelCore
