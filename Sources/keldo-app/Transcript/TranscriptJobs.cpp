#include "keldo-app/Transcript/TranscriptJobs.h"

#include "ReelCore/Transcribe/TranscriptBuilder.h"

#include <utility>

namespace keldo_app {

Job<TranscriptUIEvent> TranscriptJobs::run(ReelCore::TranscribeRequest request,
                                           std::shared_ptr<const CancellationFlag> cancel,
                                           InUse::Token inUse,
                                           std::function<void(TranscriptUIEvent)> consume) {
    auto transcribe = [request = std::move(request), cancel,
                       inUse = std::move(inUse)](const auto& send) mutable {
        auto use = std::move(inUse);  // Ends before the last event, also where that is a failure.
        auto made = ReelCore::TranscriptBuilder([&] {
                        return cancel->isSet();
                    }).run(request, [&](const ReelCore::TranscribeProgress& at) {
            send({TranscriptUIEvent::Progress{std::string(rawValue(at.phase)), at.speaker}});
        });
        use.reset();
        send({TranscriptUIEvent::Finished{std::move(made.first), std::move(made.second)}});
    };
    return Job<TranscriptUIEvent>(
        {.run = std::move(transcribe),
         .consume = std::move(consume),
         .failed = [](const auto& error) -> TranscriptUIEvent {
             return {TranscriptUIEvent::Failed{error.what()}};
         },
         .isPassing =
             [](const TranscriptUIEvent& event) {
                 return std::holds_alternative<TranscriptUIEvent::Progress>(event.value);
             }});
}

}  // namespace keldo_app
