#include "ReelCore/Planning/StorageCalculator.h"

#include "ReelCore/Platform/Fatal.h"

#include <algorithm>
#include <cmath>

namespace ReelCore {

namespace {

using Codec = StorageCalculator::Codec;
using RateModel = StorageCalculator::RateModel;
using Resolution = StorageCalculator::Resolution;

/// 1920 × 1080 pixels at 23.976 frames per second.
constexpr double basePixelsPerSecond = 49'716'633.6;

/// The most frames per second that count as "about 30".
constexpr double lowTierFPS = 31.0;

/// One channel of 24 bits at 48 kHz.
constexpr double audioMbpsPerChannel = 1.152;

struct Rate {
    const Resolution& resolution;
    double fps;
    std::optional<double> customMbps;

    double operator()(const RateModel::Scaled& model) const {
        const double pixelsPerSecond =
            fps * static_cast<double>(resolution.width) * static_cast<double>(resolution.height);
        return model.baseMbpsAt1080p24 * pixelsPerSecond / basePixelsPerSecond;
    }

    double operator()(const RateModel::Tiered& model) const {
        return fps <= lowTierFPS ? model.upTo30 : model.above30;
    }

    double operator()(const RateModel::Custom& model) const {
        return customMbps.value_or(model.defaultMbps);
    }
};

template <class Record>
std::optional<Record> first(std::span<const Record> records, std::string_view id) {
    const auto found = std::ranges::find(records, id, &Record::id);
    if (found == records.end()) return std::nullopt;
    return *found;
}

double gbPerHour(double mbps) {
    return mbps * 0.125 * 3600 / 1000;
}

double atLeastOne(std::int64_t number) {
    return static_cast<double>(std::max<std::int64_t>(number, 1));
}

/// How many of `size` hold `amount`, at least one.
std::int64_t countOf(double amount, double size) {
    return std::max<std::int64_t>(checkedInteger(std::ceil(amount / size)), 1);
}

}  // namespace

std::int64_t StorageCalculator::CardPlan::totalToBuy() const {
    return checkedAdd(rotationCards, spares);
}

std::optional<Codec> StorageCalculator::codec(std::string_view id) {
    return first(codecs(), id);
}

std::optional<StorageCalculator::CardType> StorageCalculator::cardType(std::string_view id) {
    return first(cardTypes(), id);
}

std::optional<Resolution> StorageCalculator::resolution(std::string_view id) {
    return first(Resolution::all(), id);
}

double StorageCalculator::mbps(const Codec& codec, const Resolution& resolution, double fps,
                               std::optional<double> customMbps) {
    return std::visit(Rate{resolution, fps, customMbps}, codec.model.value);
}

std::optional<StorageCalculator::Estimate> StorageCalculator::estimate(const Plan& plan) {
    const auto codec = StorageCalculator::codec(plan.codecID);
    const auto resolution = StorageCalculator::resolution(plan.resolutionID);
    if (!codec || !resolution) return std::nullopt;

    Estimate result;
    result.videoMbps = mbps(*codec, *resolution, plan.fps, plan.customMbps);
    result.gbPerHour = ReelCore::gbPerHour(result.videoMbps);
    const double audioGBPerHour =
        ReelCore::gbPerHour(static_cast<double>(plan.audioChannels) * audioMbpsPerChannel);
    result.gbPerDay = atLeastOne(plan.cameras) * (result.gbPerHour * plan.hoursPerDay) +
                      audioGBPerHour * plan.hoursPerDay;
    result.shootGB = result.gbPerDay * atLeastOne(plan.days);
    result.perCopyWithMarginGB = (plan.marginPercent / 100 + 1) * result.shootGB;
    result.totalAllCopiesGB = result.perCopyWithMarginGB * atLeastOne(plan.copies);
    result.drivesPerCopy = drivePlan(result.perCopyWithMarginGB);
    return result;
}

StorageCalculator::DrivePlan StorageCalculator::drivePlan(double gb) {
    const double tb = gb / 1000;
    std::optional<DrivePlan> best;
    double leastWaste = 0;
    for (const std::int64_t size : driveSizesTB()) {
        const std::int64_t count = countOf(tb, static_cast<double>(size));
        const double waste = static_cast<double>(checkedMultiply(count, size)) - tb;
        if (!best || count < best->count || (count == best->count && waste < leastWaste)) {
            best = DrivePlan{count, size};
            leastWaste = waste;
        }
    }
    return *best;
}

std::optional<StorageCalculator::CardPlan> StorageCalculator::cardPlan(
    double gbPerHourPerCamera, double hoursPerDay, std::int64_t cameras, std::int64_t days,
    std::int64_t holdDays, std::int64_t cardCapacityGB) {
    if (cardCapacityGB < 1 || gbPerHourPerCamera <= 0) return std::nullopt;

    CardPlan plan;
    plan.usableGB = static_cast<double>(cardCapacityGB) * cardUsableFactor;
    plan.minutesPerCard = plan.usableGB / gbPerHourPerCamera * 60;
    plan.cardsPerCameraPerDay = countOf(gbPerHourPerCamera * hoursPerDay, plan.usableGB);
    plan.effectiveHoldDays = std::clamp<std::int64_t>(holdDays, 1, std::max<std::int64_t>(days, 1));
    plan.spares = std::max<std::int64_t>(cameras, 1);
    plan.rotationCards = checkedMultiply(checkedMultiply(plan.cardsPerCameraPerDay, plan.spares),
                                         plan.effectiveHoldDays);
    return plan;
}

}  // namespace ReelCore
