#include "ReelCore/Sync/Synchronizer.h"

#include "ReelCore/Platform/FolderWalk.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/Split.h"
#include "ReelCore/Sync/BWFReader.h"
#include "ReelCore/Transcode/MediaQuery.h"
#include "ReelCore/Transcode/Transcoder.h"
#include "ReelCore/Transcribe/AudioExtractor.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace ReelCore {

namespace {

/// When something was recorded, apart from the rest so that millions of pairs are looked at fast.
struct Interval {
    double start;
    double end;
};

template <class Clip>
std::vector<Interval> intervalsOf(std::span<const Clip> clips) {
    std::vector<Interval> intervals;
    for (const Clip& clip : clips) intervals.push_back({clip.startSeconds, clip.endSeconds()});
    return intervals;
}

/// A recording that overlaps a clip, by its place among the recordings.
struct Candidate {
    std::size_t audio;
    double coverage;
};

double coverageOf(const VideoClip& video, double overlap) {
    return video.duration > 0.0 ? std::min(overlap / video.duration, 1.0) : 0.0;
}

/// Best first. The room that `candidates` has is used again from clip to clip.
void findCandidates(const VideoClip& video, std::span<const Interval> sounds, double minOverlap,
                    std::vector<Candidate>& candidates) {
    candidates.clear();
    const Interval picture{video.startSeconds, video.endSeconds()};
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        const Interval& sound = sounds[i];
        const double overlap =
            std::min(sound.end, picture.end) - std::max(picture.start, sound.start);
        if (overlap < minOverlap) continue;
        candidates.push_back({i, coverageOf(video, overlap)});
    }
    std::ranges::stable_sort(candidates, std::greater(), &Candidate::coverage);
}

double durationOf(const URL& url) {
    try {
        return Transcoder().probeDuration(url);
    } catch (const Error&) {
        return 0.0;
    }
}

/// Appends what `read` makes of a file, or nothing where it can't be read.
template <class Clip>
void appendReadable(std::vector<Clip>& clips, Clip (*read)(const URL&), const URL& url) {
    try {
        clips.push_back(read(url));
    } catch (const Error&) {
    }
}

bool contains(std::span<const std::string_view> extensions, const URL& url) {
    return std::ranges::find(extensions, lowerCasedExtension(url)) != extensions.end();
}

}  // namespace

SyncResult Synchronizer::scan(const URL& directory) {
    std::vector<VideoClip> videos;
    std::vector<AudioClip> audios;
    walkEntries(directory, [&](const URL& url) {
        if (contains(videoExtensions, url)) appendReadable(videos, readVideo, url);
        if (contains(audioExtensions, url)) appendReadable(audios, readAudio, url);
    });
    std::ranges::stable_sort(videos, {}, &VideoClip::startSeconds);
    std::ranges::stable_sort(audios, {}, &AudioClip::startSeconds);
    return match(videos, audios, 0.5);
}

VideoClip Synchronizer::readVideo(const URL& url) {
    const AudioExtractor::ClipInfo info = AudioExtractor().probe(url);
    const double duration = durationOf(url);
    const FrameSize size = dimensions(url);
    return {.url = url,
            .startSeconds = info.startTimecode ? secondsOfDay(*info.startTimecode) : 0.0,
            .duration = duration,
            .frameRate = info.frameRate,
            .startTimecode = info.startTimecode,
            .width = size.width,
            .height = size.height};
}

AudioClip Synchronizer::readAudio(const URL& url) {
    return BWFReader::read(url);
}

SyncResult Synchronizer::match(std::span<const VideoClip> videos, std::span<const AudioClip> audios,
                               double minOverlap) {
    const std::vector<Interval> sounds = intervalsOf(audios);
    const std::vector<SharedAudioClip> clips(audios.begin(), audios.end());
    std::vector<bool> isUsed(audios.size());
    std::vector<Candidate> candidates;
    SyncResult result;
    result.groups.reserve(videos.size());
    for (const VideoClip& video : videos) {
        findCandidates(video, sounds, minOverlap, candidates);
        SyncGroup& group = result.groups.emplace_back(SyncGroup{video, {}});
        group.audio.reserve(candidates.size());
        for (const auto& [audio, coverage] : candidates) {
            const double offset = video.startSeconds - sounds[audio].start;
            group.audio.push_back({clips[audio], offset, coverage});
            isUsed[audio] = true;
        }
    }
    for (std::size_t i = 0; i < audios.size(); ++i) {
        if (!isUsed[i]) result.unmatchedAudio.push_back(audios[i]);
    }
    return result;
}

double Synchronizer::secondsOfDay(const Timecode& timecode) {
    const auto [h, m, s, f] = timecode.components();
    return static_cast<double>(h * 3600 + m * 60 + s) +
           static_cast<double>(f) / timecode.rate.real();
}

Synchronizer::FrameSize Synchronizer::dimensions(const URL& url) {
    constexpr FrameSize unknown{1920, 1080};
    const auto ffprobe = FFmpegLocator().ffprobe();
    if (!ffprobe) return unknown;
    try {
        const std::string answer =
            answerOf(*ffprobe,
                     {"-v", "error", "-select_streams", "v:0", "-show_entries",
                      "stream=width,height", "-of", "csv=p=0:s=x"},
                     url);
        std::vector<std::int64_t> numbers;
        for (const std::string_view piece : piecesOf(answer, "x")) {
            if (const auto number = parseInteger(piece)) numbers.push_back(*number);
        }
        return numbers.size() == 2 ? FrameSize{numbers[0], numbers[1]} : unknown;
    } catch (const Error&) {
        return unknown;
    }
}

}  // namespace ReelCore
