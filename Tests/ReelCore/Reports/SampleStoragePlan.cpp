#include "SampleStoragePlan.h"

namespace TestSupport {

using namespace ReelCore;

StorageCalculator::Plan samplePlan() {
    return {.codecID = "prores_hq",
            .resolutionID = "hd",
            .fps = 23.976,
            .customMbps = std::nullopt,
            .hoursPerDay = 8,
            .cameras = 2,
            .days = 5,
            .copies = 3,
            .audioChannels = 8,
            .marginPercent = 20};
}

StorageCalculator::Estimate sampleEstimate() {
    return {.videoMbps = 176,
            .gbPerHour = 79.2,
            .gbPerDay = 1300.3776,
            .shootGB = 6501.888,
            .perCopyWithMarginGB = 7802.2656,
            .totalAllCopiesGB = 23406.7968,
            .drivesPerCopy = {.count = 1, .sizeTB = 8}};
}

Report::PlannedCards sampleCards() {
    return {.familyName = "XQD",
            .capacityGB = 120,
            .plan = {.usableGB = 114,
                     .minutesPerCard = 72.96,
                     .cardsPerCameraPerDay = 7,
                     .effectiveHoldDays = 2,
                     .rotationCards = 42,
                     .spares = 3},
            .overrideCount = std::nullopt};
}

}  // namespace TestSupport
