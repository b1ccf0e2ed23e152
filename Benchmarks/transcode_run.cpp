// transcode-run INPUT FOLDER PRESET: one transcode. Prints nothing.
// transcode-run --arguments INPUT FOLDER PRESET: prints what ffmpeg would be called with, a zero
// byte after each argument.

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Transcode/Transcoder.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <fmt/format.h>

using namespace ReelCore;

int main(int count, char* arguments[]) {
    std::vector<std::string_view> words(arguments + 1, arguments + count);
    const bool asksForArguments = !words.empty() && words.front() == "--arguments";
    if (asksForArguments) words.erase(words.begin());
    const auto presets = TranscodePreset::all();
    const auto preset = words.size() == 3
                            ? std::ranges::find(presets, words[2], &TranscodePreset::id)
                            : presets.end();
    if (preset == presets.end()) {
        fmt::print(stderr, "usage: transcode-run [--arguments] INPUT FOLDER PRESET\n");
        return 2;
    }
    const TranscodeRequest request{words[0], words[1], *preset, {}, {}};
    if (asksForArguments) {
        for (const std::string& argument : Transcoder::arguments(request)) {
            fmt::print("{}{}", argument, '\0');
        }
        return 0;
    }
    try {
        Transcoder().run(request, [](const TranscodeProgress&) {});
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
