// match-run CLIPS: matches a realistic day of as many clips and as many recordings, then one on
// which a recording overlaps fifty clips, then one without any times, on which each overlaps all,
// and says for each: its name, seconds (the median of seven runs), the number of matches, the most
// memory in MiB that this program has had so far.

#include "PeakMemory.h"
#include "ReelCore/Sync/Synchronizer.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include <fmt/format.h>

using namespace ReelCore;

namespace {

struct Day {
    std::vector<VideoClip> videos;
    std::vector<AudioClip> audios;
};

VideoClip clipOf(int number, double start, double duration) {
    VideoClip clip;
    clip.url = fmt::format("/Volumes/DAY/A{:03}/CLIPS/A{:03}C{:03}_251121.mov", number / 100,
                           number / 100, number % 100);
    clip.startSeconds = start;
    clip.duration = duration;
    clip.width = 4096;
    clip.height = 2160;
    return clip;
}

AudioClip recordingOf(int number, double start, double duration) {
    AudioClip clip;
    clip.url = fmt::format("/Volumes/DAY/SOUND/251121/T{:05}.WAV", number);
    clip.startSeconds = start;
    clip.duration = duration;
    clip.sampleRate = 48000.0;
    clip.scene = fmt::format("{}A", number / 20);
    clip.take = std::to_string(number % 20 + 1);
    clip.tape = "251121";
    clip.note = "wild track, boom in shot at the end";
    clip.trackNames = {"MixL", "MixR", "Boom", "Lav 1", "Lav 2", "Lav 3"};
    return clip;
}

/// Takes one after the other through twelve hours. The recorder rolls two seconds before the camera
/// and stops two after it; `longer` times as long, it runs on over the next takes as well.
Day dayOf(int count, double longer) {
    constexpr double morning = 7.0 * 3600.0;
    const double step = 12.0 * 3600.0 / count;
    Day day;
    for (int i = 0; i < count; ++i) {
        const double start = morning + i * step;
        day.videos.push_back(clipOf(i, start, 0.6 * step));
        day.audios.push_back(recordingOf(i, start - 2.0, (0.6 * step + 4.0) * longer));
    }
    return day;
}

/// Clips and recordings that don't tell when they were made, and so all sit at midnight.
Day untimedDay(int count) {
    Day day;
    for (int i = 0; i < count; ++i) {
        day.videos.push_back(clipOf(i, 0.0, 60.0 + i % 7));
        day.audios.push_back(recordingOf(i, 0.0, 30.0 + i % 90));
    }
    return day;
}

void report(const char* name, const Day& day) {
    constexpr std::size_t rounds = 7;
    std::vector<double> seconds;
    std::size_t matches = 0;
    for (std::size_t i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const SyncResult result = Synchronizer::match(day.videos, day.audios, 0.5);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        seconds.push_back(taken.count());
        matches = 0;
        for (const SyncGroup& group : result.groups) matches += group.audio.size();
    }
    std::ranges::sort(seconds);
    fmt::print("{} {:.4f} {} {}\n", name, seconds[rounds / 2], matches, peakMemoryInKiB() / 1024);
}

}  // namespace

int main(int count, char* arguments[]) {
    const int clips = count == 2 ? std::atoi(arguments[1]) : 0;
    if (clips < 1) {
        fmt::print(stderr, "usage: match-run CLIPS\n");
        return 2;
    }
    report("day", dayOf(clips, 1.0));
    report("overlapping", dayOf(clips, 50.0 * 8.64 / 9.2));
    report("untimed", untimedDay(clips));
}
