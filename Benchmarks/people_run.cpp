// people-run ROUNDS FRAMES CLIP MODELS: counts the people in a clip by that many frames, and grabs
// the same frames with ffmpeg and looks at them by a bare loop, in turns. Prints first "peak", and
// the KiB that a count of three frames took, then a line for each: "count" or "bare", and seconds.

#include "PeakMemory.h"
#include "ReelCore/Platform/Error.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "ReelCore/Vision/Detector.h"
#include "ReelCore/Vision/PeopleCounter.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ReelCore;

namespace {

void grabBare(const char* ffmpeg, const std::string& seconds, const std::string& clip,
              const std::string& still) {
    std::vector<std::string> words{ffmpeg, "-y",        "-v", "error", "-ss", seconds, "-i",
                                   clip,   "-frames:v", "1",  "-q:v",  "2",   still};
    std::vector<char*> list;
    for (std::string& one : words) list.push_back(one.data());
    list.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", 0, 0);
    pid_t child = 0;
    if (::posix_spawn(&child, ffmpeg, &actions, nullptr, list.data(), environ) != 0) std::exit(2);
    ::posix_spawn_file_actions_destroy(&actions);
    ::waitpid(child, nullptr, 0);
}

std::size_t countBare(int samples, const char* ffmpeg, const URL& clip, double duration,
                      const URL& folder, Detector& faces, Detector& people) {
    std::size_t most = 0;
    for (int i = 0; i < samples; ++i) {
        const URL still = folder / fmt::format("bare_{}.jpg", i);
        grabBare(ffmpeg, fmt::format("{}", duration * (i + 0.5) / samples), clip, still);
        const auto image = FrameGrabber::loadCGImage(still);
        if (!image) continue;
        most = std::max({most, people.find(*image).size(), faces.find(*image).size()});
    }
    return most;
}

template <class Action>
void timed(const char* name, Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    const std::chrono::duration<double> gone = std::chrono::steady_clock::now() - start;
    fmt::print("{} {:.6f}\n", name, gone.count());
}

}  // namespace

int main(int count, char* arguments[]) {
    const int rounds = count > 4 ? std::atoi(arguments[1]) : -1;
    const int samples = count > 4 ? std::atoi(arguments[2]) : 0;
    const auto ffmpeg = FFmpegLocator().ffmpeg();
    if (rounds < 0 || samples < 1 || !ffmpeg) {
        fmt::print(stderr, "usage: people-run ROUNDS FRAMES CLIP MODELS; needs ffmpeg\n");
        return 2;
    }
    try {
        const URL clip = arguments[3];
        const URL folder = clip.parent_path() / "bare";
        std::filesystem::create_directories(folder);
        const double duration = Transcoder().probeDuration(clip);
        const auto countPeople = [&](int frames) {
            const PeopleCounter counter{
                {}, {makeFaceDetector(arguments[4]), makePersonDetector(arguments[4])}};
            counter.estimate(clip, frames, 2, [] { return false; });
        };
        countPeople(3);
        fmt::print("peak {}\n", peakMemoryInKiB());
        const auto faces = makeFaceDetector(arguments[4]);
        const auto people = makePersonDetector(arguments[4]);
        for (int i = 0; i < rounds; ++i) {
            timed("count", [&] { countPeople(samples); });
            timed("bare", [&] {
                countBare(samples, ffmpeg->c_str(), clip, duration, folder, *faces, *people);
            });
        }
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
