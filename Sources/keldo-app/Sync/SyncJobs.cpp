#include "keldo-app/Sync/SyncJobs.h"

#include "ReelCore/Models/UniquePath.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/ToolComplaints.h"
#include "ReelCore/Sync/ALEWriter.h"
#include "ReelCore/Sync/FCPXMLWriter.h"
#include "ReelCore/Sync/Synchronizer.h"
#include "ReelCore/Transcode/FFmpegLocator.h"
#include "ReelCore/Transcode/MediaQuery.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace keldo_app {

using ReelCore::SyncGroup;
using ReelCore::URL;

namespace {

std::vector<std::string> muxArguments(const SyncGroup& group, const SyncGroup::Match& sound,
                                      const URL& output) {
    // Before its input, "-ss" is where that is entered: there the picture begins.
    return {"-y",
            "-v",
            "error",
            "-i",
            group.video.url.native(),
            "-ss",
            ReelCore::shortestDecimal(sound.audioOffset),
            "-i",
            sound.clip->url.native(),
            "-map",
            "0:v",
            "-map",
            "1:a",
            "-c:v",
            "copy",
            "-c:a",
            "pcm_s16le",
            "-shortest",
            output.native()};
}

/// The synced clip, if it was written whole. What ffmpeg says is heard for one thing only: it calls
/// a clip done that a full or failing drive has cut short.
std::optional<URL> muxOne(const SyncGroup& group, const SyncGroup::Match& sound, const URL& folder,
                          const URL& ffmpeg) {
    try {
        const ReelCore::ReservedOutput output(folder /
                                              (group.video.url.stem().native() + "_synced.mov"));
        ReelCore::RunningChild child(ffmpeg, muxArguments(group, sound, output.url()),
                                     {.error = ReelCore::ChildStream::pipe()});
        ReelCore::ToolComplaints complaints;
        child.readAll([&](std::string_view bytes) { complaints.take(bytes); });
        if (child.wait() != 0 || complaints.tellOfFailedDrive()) return std::nullopt;
        return output.url();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

/// In seconds, without the sound; absent where it can't be learned.
std::optional<double> pictureLength(const URL& clip) {
    const auto ffprobe = ReelCore::FFmpegLocator().ffprobe();
    if (!ffprobe) return std::nullopt;
    return ReelCore::parseDouble(
        ReelCore::answerOf(*ffprobe,
                           {"-v", "error", "-select_streams", "v:0", "-show_entries",
                            "stream=duration", "-of", "default=noprint_wrappers=1:nokey=1"},
                           clip));
}

/// Whether the synced clip lacks pictures since its sound ends first. ffmpeg goes on for a picture
/// or two behind the sound, so both clips are asked.
bool lacksPictures(const URL& synced, const SyncGroup::Match& sound,
                   const ReelCore::VideoClip& video) {
    if (sound.clip->duration - sound.audioOffset >= video.duration) return false;
    const auto whole = pictureLength(video.url);
    const auto made = pictureLength(synced);
    return whole && made && *made < *whole - 0.5 / video.frameRate.real();
}

MuxEvent::End muxAll(const ReelCore::SyncResult& result, const URL& folder, const URL& ffmpeg,
                     const std::function<void(MuxEvent)>& send) {
    MuxEvent::End end{.total = result.syncedCount()};
    std::int64_t done = 0;
    for (const SyncGroup& group : result.groups) {
        const auto best = group.best();
        if (!best) continue;
        if (const auto synced = muxOne(group, *best, folder, ffmpeg)) {
            ++end.created;
            if (lacksPictures(*synced, *best, group.video)) ++end.shortened;
        }
        send({MuxEvent::Progress{++done}});
    }
    return end;
}

/// A failure leaves the file out of the list.
template <class Write>
void addIfWritten(SyncJobs::URLs& written, const Write& write) {
    try {
        written.push_back(write());
    } catch (const std::exception&) {
    }
}

}  // namespace

Job<SyncJobs::Result> SyncJobs::scan(const URL& folder, InUse::Token inUse,
                                     std::function<void(Result)> done) {
    return runOnce<Result>(
        [folder, inUse = std::move(inUse)]() mutable {
            auto result = shareLarge(ReelCore::Synchronizer::scan(folder));
            inUse.reset();
            return result;
        },
        std::move(done), [](const std::exception&) { return Result(); });
}

Job<SyncJobs::URLs> SyncJobs::exportEditorial(Result result, const URL& folder,
                                              const std::string& day,
                                              std::function<void(URLs)> done) {
    std::string name = day;
    std::ranges::replace(name, '/', '_');
    return runOnce<URLs>(
        [result, folder, name] {
            URLs written;
            addIfWritten(written, [&] {
                return ReelCore::FCPXMLWriter::write(*result, folder / (name + ".fcpxml"),
                                                     "keldobay Sync");
            });
            addIfWritten(written, [&] {
                return ReelCore::ALEWriter::write(*result, folder / (name + ".ale"));
            });
            return written;
        },
        std::move(done), [](const std::exception&) { return URLs(); });
}

Job<MuxEvent> SyncJobs::mux(Result result, const URL& output, const URL& ffmpeg, InUse::Token inUse,
                            std::function<void(MuxEvent)> consume) {
    const std::int64_t total = result->syncedCount();
    return Job<MuxEvent>(
        {.run =
             [result, output, ffmpeg, inUse = std::move(inUse)](const auto& send) mutable {
                 const auto end = muxAll(*result, output, ffmpeg, send);
                 inUse.reset();
                 send({end});
             },
         .consume = std::move(consume),
         .failed =
             [total](const std::exception&) { return MuxEvent{MuxEvent::End{.total = total}}; },
         .isPassing =
             [](const MuxEvent& event) {
                 return std::holds_alternative<MuxEvent::Progress>(event.value);
             }});
}

}  // namespace keldo_app
