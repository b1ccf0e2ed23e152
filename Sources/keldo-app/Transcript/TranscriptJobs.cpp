#include "keldo-app/Transcript/TranscriptJobs.h"

#include "ReelCore/Transcribe/TranscriptBuilder.h"

#include <utility>

namespace keldo_app {

namespace {

TranscriptUIEvent endOf(const ReelCore::TranscribeRequest& request, const CancellationFlag& cancel,
                        const std::function<void(TranscriptUIEvent)>& send) {
    try {
        const ReelCore::TranscriptBuilder builder([&] { return cancel.isSet(); });
        auto [transcript, document] =
            builder.run(request, [&](const ReelCore::TranscribeProgress& progress) {
                send({TranscriptUIEvent::Progress{std::string(rawValue(progress.phase)),
                                                  progress.speaker}});
            });
        return {TranscriptUIEvent::Finished{std::move(transcript), std::move(document)}};
    } catch (const std::exception& error) {
        return {TranscriptUIEvent::Failed{error.what()}};
    }
}

}  // namespace

Job<TranscriptUIEvent> TranscriptJobs::run(ReelCore::TranscribeRequest request,
                                           std::shared_ptr<const CancellationFlag> cancel,
                                           InUse::Token inUse,
                                           std::function<void(TranscriptUIEvent)> consume) {
    return Job<TranscriptUIEvent>(
        {.run =
             [request = std::move(request), cancel,
              inUse = std::move(inUse)](const auto& send) mutable {
                 auto end = endOf(request, *cancel, send);
                 inUse.reset();
                 send(std::move(end));
             },
         .consume = std::move(consume),
         .failed =
             [](const std::exception& error) {
                 return TranscriptUIEvent{TranscriptUIEvent::Failed{error.what()}};
             },
         .isPassing =
             [](const TranscriptUIEvent& event) {
                 return std::holds_alternative<TranscriptUIEvent::Progress>(event.value);
             }});
}

}  // namespace keldo_app
