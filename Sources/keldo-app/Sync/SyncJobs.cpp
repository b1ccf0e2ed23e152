#include "keldo-app/Sync/SyncJobs.h"

#include "ReelCore/Models/UniquePath.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/ToolComplaints.h"
#include "ReelCore/Sync/ALEWriter.h"
#include "ReelCore/Sync/FCPXMLWriter.h"
#include "ReelCore/Sync/Synchronizer.h"

#include <algorithm>
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

/// True if the synced clip was written whole. What ffmpeg says is heard for one thing only: it
/// calls a clip done that a full or failing drive has cut short.
bool muxOne(const SyncGroup& group, const SyncGroup::Match& sound, const URL& folder,
            const URL& ffmpeg) {
    try {
        const ReelCore::ReservedOutput output(folder /
                                              (group.video.url.stem().native() + "_synced.mov"));
        ReelCore::RunningChild child(ffmpeg, muxArguments(group, sound, output.url()),
                                     {.error = ReelCore::ChildStream::pipe()});
        ReelCore::ToolComplaints complaints;
        child.readAll([&](std::string_view bytes) { complaints.take(bytes); });
        return child.wait() == 0 && !complaints.tellOfFailedDrive();
    } catch (const std::exception&) {
        return false;
    }
}

MuxEvent::End muxAll(const ReelCore::SyncResult& result, const URL& folder, const URL& ffmpeg,
                     const std::function<void(MuxEvent)>& send) {
    MuxEvent::End end{0, result.syncedCount()};
    std::int64_t done = 0;
    for (const SyncGroup& group : result.groups) {
        const auto best = group.best();
        if (!best) continue;
        if (muxOne(group, *best, folder, ffmpeg)) ++end.created;
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
             [total](const std::exception&) {
                 return MuxEvent{MuxEvent::End{0, total}};
             },
         .isPassing =
             [](const MuxEvent& event) {
                 return std::holds_alternative<MuxEvent::Progress>(event.value);
             }});
}

}  // namespace keldo_app
