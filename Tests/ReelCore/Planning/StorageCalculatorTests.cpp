#include "ReelCore/Planning/StorageCalculator.h"

#include <csignal>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using DrivePlan = StorageCalculator::DrivePlan;
using Plan = StorageCalculator::Plan;
using Resolution = StorageCalculator::Resolution;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

double mbps(const char* codecID, const Resolution& resolution, double fps,
            std::optional<double> customMbps = std::nullopt) {
    return StorageCalculator::mbps(StorageCalculator::codec(codecID).value(), resolution, fps,
                                   customMbps);
}

/// Two cameras for five days of eight hours at 176 Mbps each, sound on eight channels.
Plan samplePlan() {
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

TEST(StorageRate, Scaled_IsTheBaseAtHDAnd23_976) {
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::hd, 23.976), 176);
    EXPECT_DOUBLE_EQ(mbps("prores_proxy", Resolution::hd, 23.976), 36);
}

TEST(StorageRate, Scaled_At24IsAHairAboveTheBase) {
    EXPECT_NEAR(mbps("prores_hq", Resolution::hd, 24), 176.17617617, 1e-8);
}

TEST(StorageRate, Scaled_GrowsWithPixelsAndFrames) {
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::uhd, 23.976), 704);
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::uhd8k, 23.976), 2816);
    EXPECT_NEAR(mbps("prores_hq", Resolution::dci4k, 23.976), 750.9333333333, 1e-9);
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::hd, 47.952), 352);
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::hd, 0), 0);
}

TEST(StorageRate, Scaled_IgnoresTheUsersBitrate) {
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::hd, 23.976, 999), 176);
}

TEST(StorageRate, Tiered_RisesAbove31FramesAtAnyResolution) {
    for (const Resolution& resolution : Resolution::all()) {
        EXPECT_EQ(mbps("xavci_4k", resolution, 25), 300);
        EXPECT_EQ(mbps("xavci_4k", resolution, 29.97), 300);
        EXPECT_EQ(mbps("xavci_4k", resolution, 30), 300);
        EXPECT_EQ(mbps("xavci_4k", resolution, 31.0), 300);
        EXPECT_EQ(mbps("xavci_4k", resolution, 31.1), 600);
        EXPECT_EQ(mbps("xavci_4k", resolution, 50), 600);
        EXPECT_EQ(mbps("xavci_4k", resolution, 59.94, 7), 600);
    }
}

TEST(StorageRate, Custom_IsTheUsersBitrateOr100) {
    EXPECT_EQ(mbps("custom", Resolution::uhd, 50, 42.5), 42.5);
    EXPECT_EQ(mbps("custom", Resolution::uhd, 50, 0.0), 0);
    EXPECT_EQ(mbps("custom", Resolution::uhd, 50), 100);
}

TEST(StorageEstimate, WholeShoot_IsReckonedStepByStep) {
    const auto estimate = StorageCalculator::estimate(samplePlan());

    ASSERT_TRUE(estimate);
    EXPECT_DOUBLE_EQ(estimate->videoMbps, 176);
    EXPECT_DOUBLE_EQ(estimate->gbPerHour, 79.2);
    EXPECT_DOUBLE_EQ(estimate->gbPerDay, 1300.3776);
    EXPECT_DOUBLE_EQ(estimate->shootGB, 6501.888);
    EXPECT_DOUBLE_EQ(estimate->perCopyWithMarginGB, 7802.2656);
    EXPECT_DOUBLE_EQ(estimate->totalAllCopiesGB, 23406.7968);
    EXPECT_EQ(estimate->drivesPerCopy, (DrivePlan{1, 8}));
}

TEST(StorageEstimate, CustomBitrate_IsThatOfThePlan) {
    Plan plan = samplePlan();
    plan.codecID = "custom";
    plan.customMbps = 50;

    EXPECT_DOUBLE_EQ(StorageCalculator::estimate(plan)->videoMbps, 50);

    plan.customMbps.reset();

    EXPECT_DOUBLE_EQ(StorageCalculator::estimate(plan)->videoMbps, 100);
    EXPECT_DOUBLE_EQ(StorageCalculator::estimate(plan)->gbPerHour, 45);
}

TEST(StorageEstimate, Sound_IsCountedOnceADayWhateverTheCameras) {
    Plan silent = samplePlan();
    silent.hoursPerDay = 10;
    silent.audioChannels = 0;
    Plan loud = silent;
    loud.audioChannels = 8;
    for (const std::int64_t cameras : {1, 2, 7}) {
        silent.cameras = loud.cameras = cameras;

        const auto without = StorageCalculator::estimate(silent);
        const auto with = StorageCalculator::estimate(loud);

        EXPECT_DOUBLE_EQ(without->gbPerDay, 792.0 * static_cast<double>(cameras));
        EXPECT_NEAR(with->gbPerDay - without->gbPerDay, 41.472, 1e-9);
        EXPECT_EQ(with->gbPerHour, without->gbPerHour);
    }
}

TEST(StorageEstimate, CamerasDaysAndCopiesOfNothing_CountAsOne) {
    Plan one = samplePlan();
    one.cameras = one.days = one.copies = 1;
    for (const std::int64_t few : {std::int64_t{0}, std::int64_t{-3}, -largest}) {
        Plan none = one;
        none.cameras = none.days = none.copies = few;

        EXPECT_EQ(StorageCalculator::estimate(none), StorageCalculator::estimate(one));
    }
    EXPECT_DOUBLE_EQ(StorageCalculator::estimate(one)->gbPerDay, 666.7776);
    EXPECT_DOUBLE_EQ(StorageCalculator::estimate(one)->shootGB, 666.7776);
}

TEST(StorageEstimate, WithoutMargin_ACopyIsTheShoot) {
    Plan plan = samplePlan();
    plan.marginPercent = 0;

    const auto estimate = StorageCalculator::estimate(plan);

    EXPECT_EQ(estimate->perCopyWithMarginGB, estimate->shootGB);
    EXPECT_DOUBLE_EQ(estimate->totalAllCopiesGB, 19505.664);
}

TEST(StorageEstimate, Drives_HoldOneCopyWithItsMargin) {
    Plan plan = samplePlan();
    plan.marginPercent = 100;

    EXPECT_EQ(StorageCalculator::estimate(plan)->drivesPerCopy, (DrivePlan{1, 16}));
}

TEST(StorageEstimate, ShootThatRecordsNothing_TakesTheSmallestDrive) {
    Plan plan = samplePlan();
    plan.hoursPerDay = 0;

    const auto estimate = StorageCalculator::estimate(plan);

    EXPECT_EQ(estimate->totalAllCopiesGB, 0);
    EXPECT_EQ(estimate->drivesPerCopy, (DrivePlan{1, 1}));
}

TEST(StorageEstimate, UnknownCodecOrResolution_GivesNone) {
    Plan unknownCodec = samplePlan();
    unknownCodec.codecID = "foo";
    Plan unknownResolution = samplePlan();
    unknownResolution.resolutionID = "foo";

    EXPECT_FALSE(StorageCalculator::estimate(unknownCodec));
    EXPECT_FALSE(StorageCalculator::estimate(unknownResolution));
    EXPECT_FALSE(StorageCalculator::estimate({}));

    unknownResolution.codecID = "custom";

    EXPECT_FALSE(StorageCalculator::estimate(unknownResolution));
}

TEST(StorageEstimateDeathTest, EstimateWhoseDrivesNoNumberCounts_IsFatal) {
    Plan plan = samplePlan();
    plan.codecID = "custom";
    plan.customMbps = 1e30;

    EXPECT_EXIT(StorageCalculator::estimate(plan), testing::KilledBySignal(SIGABRT),
                "impossible conversion");
}

}  // namespace
