#include "Support/Clip.h"

#include "Support/Tool.h"

#include <fmt/format.h>

namespace TestSupport {

namespace {

using Arguments = std::vector<std::string>;

void append(Arguments& list, const Arguments& more) {
    list.insert(list.end(), more.begin(), more.end());
}

std::string tone(int channels, double seconds) {
    std::string channelTones;
    for (int i = 0; i < channels; ++i) {
        channelTones += fmt::format("{}sin({}*2*PI*t)/4", i == 0 ? "" : "|", 2000 + 1000 * i);
    }
    return fmt::format("aevalsrc={}:s=48000:d={}", channelTones, seconds);
}

}  // namespace

void makeClip(const ReelCore::URL& url, const ClipRecipe& recipe) {
    Arguments arguments{"-nostdin", "-v", "error", "-y"};
    append(arguments, {"-f", "lavfi", "-i",
                       fmt::format("testsrc2=size={}:rate={}:duration={}", recipe.size, recipe.rate,
                                   recipe.seconds)});
    for (const int channels : recipe.channels) {
        append(arguments, {"-f", "lavfi", "-i", tone(channels, recipe.seconds)});
    }
    for (std::size_t i = 0; i <= recipe.channels.size(); ++i) {
        append(arguments, {"-map", fmt::format("{}:0", i)});
    }
    append(arguments, recipe.video);
    append(arguments, recipe.audio);
    if (!recipe.timecode.empty()) append(arguments, {"-timecode", recipe.timecode});
    append(arguments, recipe.more);
    append(arguments, {"file:" + url.native()});
    outputOf("ffmpeg", arguments);
}

std::string probed(const ReelCore::URL& url, const std::string& entry, const std::string& streams) {
    Arguments arguments{"-v", "error"};
    if (!streams.empty()) append(arguments, {"-select_streams", streams});
    append(arguments, {"-show_entries", entry, "-of", "default=nk=1:nw=1", "file:" + url.native()});
    std::string text = outputOf("ffprobe", arguments);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

}  // namespace TestSupport
