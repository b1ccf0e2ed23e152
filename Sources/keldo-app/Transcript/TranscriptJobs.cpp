#include "keldo-app/Transcript/TranscriptJobs.h"

#include "ReelCore/Transcribe/TranscriptBuilder.h"

#include <utility>

namespace keldo_app {

namespace {

using Send = std::function<void(TranscriptUIEvent)>;

/// The use ends with the work, also where that fails.
TranscriptUIEvent transcribe(const ReelCore::TranscribeRequest& request,
                             const CancellationFlag& cancel, InUse::Token /*inUse*/,
                             const Send& send) {
    const ReelCore::TranscriptBuilder builder([&] { return cancel.isSet(); });
    auto [transcript,
          document] = builder.run(request, [&](const ReelCore::TranscribeProgress& progress) {
        send(
            {TranscriptUIEvent::Progress{std::string(rawValue(progress.phase)), progress.speaker}});
    });
    return {TranscriptUIEvent::Finished{std::move(transcript), std::move(document)}};
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
                 send(transcribe(request, *cancel, std::move(inUse), send));
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
