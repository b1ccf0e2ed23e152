#include "ReelCore/Planning/StorageCalculator.h"
#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Platform/UserAccount.h"
#include "ReelCore/Reports/Report.h"
#include "ReelCore/Reports/ReportFormat.h"

#include <utility>

#include <fmt/format.h>

namespace ReelCore {

namespace {

using Plan = StorageCalculator::Plan;
using Estimate = StorageCalculator::Estimate;

/// A number of gigabytes, in decimal units.
std::string amount(double gb) {
    return gb >= 1000 ? fmt::format("{:.2f} TB", gb / 1000) : fmt::format("{:.0f} GB", gb);
}

std::string_view plural(std::int64_t number) {
    return number == 1 ? "" : "s";
}

std::string recordingFormat(const Plan& plan) {
    const auto codec = StorageCalculator::codec(plan.codecID);
    std::string text = codec ? codec->name : plan.codecID;
    if (codec && codec->usesResolution) {
        const auto resolution = StorageCalculator::resolution(plan.resolutionID);
        if (resolution) text += " · " + resolution->name;
    }
    return fmt::format("{} · {:g} fps", text, plan.fps);
}

std::vector<Report::Field> summary(const std::optional<std::string>& production, const Plan& plan,
                                   const Estimate& estimate) {
    std::vector<Report::Field> fields;
    if (production && !production->empty()) fields.push_back({"Production", *production});
    fields.insert(
        fields.end(),
        {{"Recording format", recordingFormat(plan)},
         {"Data rate", fmt::format("{:.0f} Mbps — {:.1f} GB/hour per camera", estimate.videoMbps,
                                   estimate.gbPerHour)},
         {"Shooting plan",
          fmt::format("{:.1f} h/day × {} camera{} × {} day{}", plan.hoursPerDay, plan.cameras,
                      plural(plan.cameras), plan.days, plural(plan.days))}});
    if (plan.audioChannels >= 1) {
        fields.push_back(
            {"Sound recorder", fmt::format("{} channels 24-bit/48k", plan.audioChannels)});
    }
    fields.insert(fields.end(),
                  {{"Backup policy", fmt::format("{} copies on separate drives · {:.0f}% headroom",
                                                 plan.copies, plan.marginPercent)},
                   {"Footage (one copy)", amount(estimate.shootGB)},
                   {"Total data incl. copies", amount(estimate.totalAllCopiesGB)},
                   {"Prepared by", UserAccount::fullName()}});
    return fields;
}

std::vector<std::string> driveRow(const Plan& plan, const Estimate& estimate) {
    const auto& [count, sizeTB] = estimate.drivesPerCopy;
    return {"Hard drives", fmt::format("{} × {} TB", checkedMultiply(plan.copies, count), sizeTB),
            fmt::format("{} per copy × {} copies; each copy holds {} incl. margin", count,
                        plan.copies, amount(estimate.perCopyWithMarginGB))};
}

std::vector<std::string> cardRow(const Report::PlannedCards& card) {
    const StorageCalculator::CardPlan& plan = card.plan;
    const std::int64_t calculated = plan.totalToBuy();
    const std::string origin =
        card.overrideCount ? fmt::format("count set manually (calculated: {} incl. {} spares)",
                                         calculated, plan.spares)
                           : fmt::format("incl. {} spare{}", plan.spares, plural(plan.spares));
    return {"Camera cards",
            fmt::format("{} × {} {} GB", card.overrideCount.value_or(calculated), card.familyName,
                        card.capacityGB),
            fmt::format(
                "≈{:.0f} min/card · {} per camera/day · held {} day{} until backups verified · {}",
                plan.minutesPerCard, plan.cardsPerCameraPerDay, plan.effectiveHoldDays,
                plural(plan.effectiveHoldDays), origin)};
}

}  // namespace

Report Report::storagePlan(const std::optional<std::string>& production, const Plan& plan,
                           const Estimate& estimate, const std::optional<PlannedCards>& card) {
    Table table{{"Item", "Quantity", "Notes"}, {driveRow(plan, estimate)}};
    if (card) table.rows.push_back(cardRow(*card));
    return {.title = "Storage Plan",
            .subtitle = production,
            .summary = ReelCore::summary(production, plan, estimate),
            .table = std::move(table),
            .generatedAt = now(),
            .tool = toolOnPaper()};
}

}  // namespace ReelCore
