// longtranscode CLIP FOLDER LUT [abort]: transcodes one clip after the other on a thread of its
// own, as a job of the application does, and says its number when the first is under way.

#include "ReelCore/Platform/ProcessSignals.h"
#include "ReelCore/Transcode/Transcoder.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <span>
#include <string_view>
#include <thread>

#include <unistd.h>

namespace {

using namespace ReelCore;

void transcodeAll(const TranscodeRequest& request, bool mustAbort) {
    for (int clip = 0; clip < 1000; ++clip) {
        try {
            Transcoder().run(request, [&](const TranscodeProgress&) {
                if (clip > 0) return;
                std::printf("%d\n", ::getpid());
                std::fflush(stdout);
                if (mustAbort) std::abort();
            });
        } catch (const std::exception& failure) {
            std::puts(failure.what());
            std::fflush(stdout);
        }
    }
}

}  // namespace

int main(int count, char** list) {
    const std::span<char*> arguments(list, static_cast<std::size_t>(count));
    if (arguments.size() < 4) return 2;
    const bool mustAbort = arguments.size() > 4 && std::string_view(arguments[4]) == "abort";
    cleanUpOnSignals();
    const TranscodeRequest request{arguments[1], arguments[2], TranscodePreset::h264Review,
                                   LUT{arguments[3]}, 1280};
    std::thread job([&] { transcodeAll(request, mustAbort); });
    job.join();
}
