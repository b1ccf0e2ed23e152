#include "keldo-app/Offload/OffloadJobs.h"

#include "ReelCore/CardFormat/EraseCheck.h"
#include "ReelCore/Offload/OffloadEngine.h"
#include "ReelCore/Offload/OffloadError.h"
#include "keldo-app/Support/Format.h"

#include <utility>

namespace keldo_app {

using ReelCore::CardFormatter;
using ReelCore::OffloadError;
using ReelCore::OffloadResult;

namespace {

constexpr std::size_t bufferSize = 4'194'304;  // 4 MiB

OffloadEvent failed(const std::exception& error) {
    const auto* offload = dynamic_cast<const OffloadError*>(&error);
    if (!offload) return {OffloadEvent::Failed{error.what()}};
    const auto* refused = offload->get<OffloadError::DestinationNotWritable>();
    return {OffloadEvent::Failed{offload->description(), refused ? refused->reason : ""}};
}

OffloadResult copy(const ReelCore::OffloadRequest& request, const CancellationFlag& cancelFlag,
                   const std::function<void(OffloadEvent)>& send) {
    ReelCore::OffloadEngine engine(bufferSize, [&] { return cancelFlag.isSet(); });
    return engine.run(request, [&](const ReelCore::OffloadProgress& progress) {
        send({OffloadEvent::Progress{progress}});
    });
}

QString erase(const CardFormatter::FormatPlan& plan, const CardFormatter::FormatGate& gate,
              const OffloadResult& result) {
    auto finding = ReelCore::EraseCheck::look(result);
    if (finding.objection) {
        return QStringLiteral("✗ %1 Nothing was erased.").arg(Format::text(*finding.objection));
    }
    const std::string output =
        CardFormatter::execute(plan, gate, true, false, std::move(finding.card));
    return QStringLiteral("✓ Card formatted as “%1”.\n%2")
        .arg(Format::text(plan.newName), Format::text(output));
}

}  // namespace

Job<OffloadJobs::ScanResult> OffloadJobs::scan(const ReelCore::URL& source,
                                               std::function<void(ScanResult)> done) {
    return runOnce<ScanResult>([source] { return ReelCore::SourceScanner::scan(source); },
                               std::move(done), [](const std::exception&) { return ScanResult(); });
}

Job<OffloadEvent> OffloadJobs::offload(const ReelCore::OffloadRequest& request, InUse::Token inUse,
                                       std::shared_ptr<CancellationFlag> cancelFlag,
                                       std::function<void(OffloadEvent)> consume) {
    auto run = [request, inUse = std::move(inUse), cancelFlag](const auto& send) mutable {
        auto result = [&, ends = std::move(inUse)] { return copy(request, *cancelFlag, send); }();
        send({OffloadEvent::Finished{shareLarge(std::move(result))}});
    };
    return Job<OffloadEvent>({.run = std::move(run),
                              .consume = std::move(consume),
                              .failed = failed,
                              .isPassing = [](const OffloadEvent& event) {
                                  return std::holds_alternative<OffloadEvent::Progress>(
                                      event.value);
                              }});
}

Job<QString> OffloadJobs::format(const CardFormatter::FormatPlan& plan,
                                 const CardFormatter::FormatGate& gate, Result result,
                                 InUse::Token inUse, std::function<void(QString)> done) {
    return runOnce<QString>(
        [plan, gate, result, inUse = std::move(inUse)]() mutable {
            return [&, ends = std::move(inUse)] { return erase(plan, gate, *result); }();
        },
        std::move(done),
        [](const std::exception& error) { return "✗ " + Format::text(error.what()); });
}

}  // namespace keldo_app
