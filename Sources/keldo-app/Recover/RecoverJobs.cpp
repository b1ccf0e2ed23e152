#include "keldo-app/Recover/RecoverJobs.h"

#include <cstdint>
#include <utility>

namespace keldo_app {

using ReelCore::CardCarver;
using ReelCore::ClipDoctor;
using ReelCore::URL;

namespace {

OutcomeEvent brokenOff(const std::exception& error) {
    return {OutcomeEvent::End{error.what()}};
}

}  // namespace

Job<ReelCore::RecoveryScan> RecoverJobs::scan(const URL& folder, InUse::Token inUse,
                                              std::function<void(ReelCore::RecoveryScan)> done) {
    return runOnce<ReelCore::RecoveryScan>(
        [folder, inUse = std::move(inUse)]() mutable {
            auto scan = ClipDoctor::scan(folder);
            inUse.reset();
            return scan;
        },
        std::move(done), [](const std::exception&) { return ReelCore::RecoveryScan(); });
}

Job<OutcomeEvent> RecoverJobs::repair(std::vector<ReelCore::ClipReport> damaged,
                                      std::optional<URL> reference, const URL& output,
                                      InUse::Token inUse,
                                      std::function<void(OutcomeEvent)> consume) {
    return Job<OutcomeEvent>({.run =
                                  [damaged = std::move(damaged), reference, output,
                                   inUse = std::move(inUse)](const auto& send) mutable {
                                      for (const auto& report : damaged) {
                                          send({ClipDoctor::repair(report, reference, output)});
                                      }
                                      inUse.reset();
                                      send({OutcomeEvent::End()});
                                  },
                              .consume = std::move(consume),
                              .failed = brokenOff});
}

Job<CarveScanEvent> RecoverJobs::scanImage(const URL& image,
                                           std::function<void(CarveScanEvent)> consume) {
    return Job<CarveScanEvent>(
        {.run =
             [image](const auto& send) {
                 auto findings = CardCarver::scan(
                     image, [] { return false; },
                     [&](const ReelCore::CarveProgress& progress) { send({progress.fraction()}); });
                 send({CarveScanEvent::Found{std::move(findings)}});
             },
         .consume = std::move(consume),
         .failed =
             [](const std::exception& error) {
                 return CarveScanEvent{CarveScanEvent::Found{{}, error.what()}};
             },
         .isPassing =
             [](const CarveScanEvent& event) {
                 return std::holds_alternative<double>(event.value);
             }});
}

Job<OutcomeEvent> RecoverJobs::extract(std::vector<ReelCore::Finding> findings, const URL& image,
                                       std::optional<URL> reference, const URL& output,
                                       InUse::Token inUse,
                                       std::function<void(OutcomeEvent)> consume) {
    return Job<OutcomeEvent>(
        {.run =
             [findings = std::move(findings), image, reference, output,
              inUse = std::move(inUse)](const auto& send) mutable {
                 std::int64_t index = 0;
                 for (const auto& finding : findings) {
                     send({CardCarver::extract(finding, image, output, reference, ++index)});
                 }
                 inUse.reset();
                 send({OutcomeEvent::End()});
             },
         .consume = std::move(consume),
         .failed = brokenOff});
}

}  // namespace keldo_app
