#include "keldo-app/Offload/OffloadJobs.h"

#include "ReelCore/CardFormat/EraseCheck.h"
#include "ReelCore/Offload/OffloadEngine.h"
#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "keldo-app/Support/Format.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace keldo_app {

using ReelCore::CardFormatter;
using ReelCore::OffloadResult;
using ReelCore::URL;

namespace {

constexpr std::size_t bufferSize = 4'194'304;  // 4 MiB

/// For work that has one answer: runs `work` and hands its value to `done`.
template <class Value>
Job<Value> runOnce(std::function<Value()> work, std::function<void(Value)> done) {
    return Job<Value>([work = std::move(work)](const auto& send) { send(work()); },
                      [done = std::move(done)](std::vector<Value> values) {
                          for (Value& value : values) done(std::move(value));
                      });
}

/// A large card's result takes longer to take apart than the window may stand still, so the last
/// owner leaves that to a thread of its own.
OffloadJobs::Result share(OffloadResult result) {
    return {new OffloadResult(std::move(result)),
            [](const OffloadResult* last) { std::thread([last] { delete last; }).detach(); }};
}

bool isProgress(const OffloadEvent& event) {
    return std::holds_alternative<OffloadEvent::Progress>(event.value);
}

/// A picture of each of a hundred thousand small files would keep the window from answering.
std::vector<OffloadEvent> withoutStaleProgress(std::vector<OffloadEvent> events) {
    std::vector<OffloadEvent> kept;
    for (OffloadEvent& event : events) {
        if (!kept.empty() && isProgress(kept.back()) && isProgress(event)) kept.pop_back();
        kept.push_back(std::move(event));
    }
    return kept;
}

OffloadEvent::Failed failed(const ReelCore::OffloadError& error) {
    const auto* refused = error.get<ReelCore::OffloadError::DestinationNotWritable>();
    return {error.description(), refused ? refused->reason : ""};
}

QString erase(const CardFormatter::FormatPlan& plan, const CardFormatter::FormatGate& gate,
              const OffloadResult& result) {
    try {
        auto finding = ReelCore::EraseCheck::look(result);
        if (finding.objection) {
            return QStringLiteral("✗ %1 Nothing was erased.").arg(Format::text(*finding.objection));
        }
        const std::string output =
            CardFormatter::execute(plan, gate, true, false, std::move(finding.card));
        return QStringLiteral("✓ Card formatted as “%1”.\n%2")
            .arg(Format::text(plan.newName), Format::text(output));
    } catch (const std::exception& error) {
        return "✗ " + Format::text(error.what());
    }
}

}  // namespace

Job<OffloadJobs::ScanResult> OffloadJobs::scan(const URL& source,
                                               std::function<void(ScanResult)> done) {
    return runOnce<ScanResult>(
        [source]() -> ScanResult {
            try {
                return ReelCore::SourceScanner::scan(source);
            } catch (const std::exception&) {
                return std::nullopt;
            }
        },
        std::move(done));
}

Job<OffloadEvent> OffloadJobs::offload(const ReelCore::OffloadRequest& request,
                                       std::shared_ptr<CancellationFlag> cancelFlag,
                                       std::function<void(OffloadEvent)> consume) {
    const auto work = [request, cancelFlag = std::move(cancelFlag)](const auto& send) {
        try {
            ReelCore::OffloadEngine engine(bufferSize,
                                           [cancelFlag] { return cancelFlag->isSet(); });
            auto result = engine.run(request, [&](const ReelCore::OffloadProgress& progress) {
                send({OffloadEvent::Progress{progress}});
            });
            send({OffloadEvent::Finished{share(std::move(result))}});
        } catch (const ReelCore::OffloadError& error) {
            send({failed(error)});
        } catch (const std::exception& error) {
            send({OffloadEvent::Failed{error.what()}});
        }
    };
    return Job<OffloadEvent>(
        work, [consume = std::move(consume)](std::vector<OffloadEvent> events) {
            for (OffloadEvent& event : withoutStaleProgress(std::move(events))) {
                consume(std::move(event));
            }
        });
}

Job<OffloadJobs::URLs> OffloadJobs::report(Result result, const URL& folder,
                                           std::function<void(const URLs&)> done) {
    return runOnce<URLs>(
        [result, folder]() -> URLs {
            try {
                const auto report = ReelCore::Report::offload(*result, std::nullopt, std::nullopt);
                return ReelCore::ReportRenderer::write(report, folder, {"pdf", "csv"});
            } catch (const std::exception&) {
                return {};
            }
        },
        std::move(done));
}

Job<QString> OffloadJobs::format(const CardFormatter::FormatPlan& plan,
                                 const CardFormatter::FormatGate& gate, Result result,
                                 std::function<void(const QString&)> done) {
    return runOnce<QString>([plan, gate, result] { return erase(plan, gate, *result); },
                            std::move(done));
}

}  // namespace keldo_app
