#include "keldo-app/Transcode/TranscodeJobs.h"

#include "ReelCore/Transcode/Transcoder.h"

#include <utility>

namespace keldo_app {

namespace {

using Send = std::function<void(TranscodeEvent)>;

void transcode(std::size_t index, const ReelCore::TranscodeRequest& request,
               const ReelCore::Transcoder& transcoder, const Send& send) {
    try {
        transcoder.run(request, [&](const ReelCore::TranscodeProgress& progress) {
            send({TranscodeEvent::Progress{index, progress}});
        });
        send({TranscodeEvent::FileFinished{index, request.outputURL()}});
    } catch (const std::exception& error) {
        send({TranscodeEvent::FileFailed{index, error.what()}});
    }
}

}  // namespace

Job<TranscodeEvent> TranscodeJobs::run(std::vector<ReelCore::TranscodeRequest> requests,
                                       std::shared_ptr<const TranscodeFlags> flags,
                                       InUse::Token inUse,
                                       std::function<void(TranscodeEvent)> consume) {
    return Job<TranscodeEvent>(
        {.run =
             [requests = std::move(requests), flags,
              inUse = std::move(inUse)](const auto& send) mutable {
                 const ReelCore::Transcoder transcoder([flags] { return flags->cancel.isSet(); },
                                                       [flags] { return flags->endNow.isSet(); });
                 for (std::size_t i = 0; i < requests.size() && !flags->cancel.isSet(); ++i) {
                     transcode(i, requests[i], transcoder, send);
                 }
                 inUse.reset();
                 send({TranscodeEvent::AllDone()});
             },
         .consume = std::move(consume),
         .failed =
             [](const std::exception& error) {
                 return TranscodeEvent{TranscodeEvent::AllDone{error.what()}};
             },
         .isPassing =
             [](const TranscodeEvent& event) {
                 return std::holds_alternative<TranscodeEvent::Progress>(event.value);
             }});
}

}  // namespace keldo_app
