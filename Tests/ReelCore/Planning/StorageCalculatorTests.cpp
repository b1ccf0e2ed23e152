#include "ReelCore/Planning/StorageCalculator.h"

#include <csignal>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using CardPlan = StorageCalculator::CardPlan;
using DrivePlan = StorageCalculator::DrivePlan;
using Plan = StorageCalculator::Plan;
using Resolution = StorageCalculator::Resolution;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

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

TEST(StorageCalculatorRate, Scaled_IsTheBaseAtHDAnd23_976) {
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::hd, 23.976), 176);
    EXPECT_DOUBLE_EQ(mbps("prores_proxy", Resolution::hd, 23.976), 36);
}

TEST(StorageCalculatorRate, Scaled_At24IsAHairAboveTheBase) {
    EXPECT_NEAR(mbps("prores_hq", Resolution::hd, 24), 176.17617617, 1e-8);
}

TEST(StorageCalculatorRate, Scaled_GrowsWithPixelsAndFrames) {
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::uhd, 23.976), 704);
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::uhd8k, 23.976), 2816);
    EXPECT_NEAR(mbps("prores_hq", Resolution::dci4k, 23.976), 750.9333333333, 1e-9);
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::hd, 47.952), 352);
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::hd, 0), 0);
}

TEST(StorageCalculatorRate, Scaled_IgnoresTheUsersBitrate) {
    EXPECT_DOUBLE_EQ(mbps("prores_hq", Resolution::hd, 23.976, 999), 176);
}

TEST(StorageCalculatorRate, Tiered_RisesAbove31FramesAtAnyResolution) {
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

TEST(StorageCalculatorRate, Custom_IsTheUsersBitrateOr100) {
    EXPECT_EQ(mbps("custom", Resolution::uhd, 50, 42.5), 42.5);
    EXPECT_EQ(mbps("custom", Resolution::uhd, 50, 0.0), 0);
    EXPECT_EQ(mbps("custom", Resolution::uhd, 50), 100);
}

TEST(StorageCalculatorEstimate, WholeShoot_IsReckonedStepByStep) {
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

TEST(StorageCalculatorEstimate, CustomBitrate_IsThatOfThePlan) {
    Plan plan = samplePlan();
    plan.codecID = "custom";
    plan.customMbps = 50;

    EXPECT_DOUBLE_EQ(StorageCalculator::estimate(plan)->videoMbps, 50);

    plan.customMbps.reset();

    EXPECT_DOUBLE_EQ(StorageCalculator::estimate(plan)->videoMbps, 100);
    EXPECT_DOUBLE_EQ(StorageCalculator::estimate(plan)->gbPerHour, 45);
}

TEST(StorageCalculatorEstimate, Sound_IsCountedOnceADayWhateverTheCameras) {
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

TEST(StorageCalculatorEstimate, CamerasDaysAndCopiesOfNothing_CountAsOne) {
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

TEST(StorageCalculatorEstimate, WithoutMargin_ACopyIsTheShoot) {
    Plan plan = samplePlan();
    plan.marginPercent = 0;

    const auto estimate = StorageCalculator::estimate(plan);

    EXPECT_EQ(estimate->perCopyWithMarginGB, estimate->shootGB);
    EXPECT_DOUBLE_EQ(estimate->totalAllCopiesGB, 19505.664);
}

TEST(StorageCalculatorEstimate, Drives_HoldOneCopyWithItsMargin) {
    Plan plan = samplePlan();
    plan.marginPercent = 100;

    EXPECT_EQ(StorageCalculator::estimate(plan)->drivesPerCopy, (DrivePlan{1, 16}));
}

TEST(StorageCalculatorEstimate, ShootThatRecordsNothing_TakesTheSmallestDrive) {
    Plan plan = samplePlan();
    plan.hoursPerDay = 0;

    const auto estimate = StorageCalculator::estimate(plan);

    EXPECT_EQ(estimate->totalAllCopiesGB, 0);
    EXPECT_EQ(estimate->drivesPerCopy, (DrivePlan{1, 1}));
}

TEST(StorageCalculatorEstimate, UnknownCodecOrResolution_GivesNone) {
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

TEST(StorageCalculatorDrives, FewestDrivesThenTheSmallest) {
    EXPECT_EQ(StorageCalculator::drivePlan(10'000), (DrivePlan{1, 12}));
    EXPECT_EQ(StorageCalculator::drivePlan(25'000), (DrivePlan{2, 16}));
    EXPECT_EQ(StorageCalculator::drivePlan(30'000), (DrivePlan{2, 16}));
    EXPECT_EQ(StorageCalculator::drivePlan(240'000), (DrivePlan{10, 24}));
}

TEST(StorageCalculatorDrives, NothingToHold_StillTakesOneDrive) {
    EXPECT_EQ(StorageCalculator::drivePlan(0), (DrivePlan{1, 1}));
    EXPECT_EQ(StorageCalculator::drivePlan(0.001), (DrivePlan{1, 1}));
    EXPECT_EQ(StorageCalculator::drivePlan(-5'000), (DrivePlan{1, 1}));
}

TEST(StorageCalculatorDrives, DriveFilledToTheBrim_IsEnough) {
    for (const std::int64_t size : StorageCalculator::driveSizesTB()) {
        EXPECT_EQ(StorageCalculator::drivePlan(static_cast<double>(size) * 1000),
                  (DrivePlan{1, size}));
    }
    EXPECT_EQ(StorageCalculator::drivePlan(1'000.001), (DrivePlan{1, 2}));
    EXPECT_EQ(StorageCalculator::drivePlan(24'000.001), (DrivePlan{2, 16}));
}

/// Tries one drive of each size, then two, and so on, in whole gigabytes.
DrivePlan searchedDrives(std::int64_t gb) {
    for (std::int64_t count = 1;; ++count) {
        std::optional<DrivePlan> best;
        std::int64_t leastWasteGB = 0;
        for (const std::int64_t sizeTB : {1, 2, 4, 5, 8, 12, 16, 20, 24}) {
            const std::int64_t wasteGB = count * sizeTB * 1000 - gb;
            if (wasteGB < 0 || (best && wasteGB >= leastWasteGB)) continue;
            best = DrivePlan{count, sizeTB};
            leastWasteGB = wasteGB;
        }
        if (best) return *best;
    }
}

TEST(StorageCalculatorDrives, EveryGigabyteUpTo200TB_IsWhatASearchFinds) {
    for (std::int64_t gb = 0; gb <= 200'000; ++gb) {
        ASSERT_EQ(StorageCalculator::drivePlan(static_cast<double>(gb)), searchedDrives(gb)) << gb;
    }
}

TEST(StorageCalculatorDrives, GreatShoots_AreWhatASearchFinds) {
    for (std::int64_t gb = 1'000'000; gb <= 40'000'000; gb += 99'991) {
        ASSERT_EQ(StorageCalculator::drivePlan(static_cast<double>(gb)), searchedDrives(gb)) << gb;
    }
}

TEST(StorageCalculatorCards, WholeShoot_IsReckonedStepByStep) {
    const auto plan = StorageCalculator::cardPlan(100, 8, 3, 5, 2, 128);

    ASSERT_TRUE(plan);
    EXPECT_DOUBLE_EQ(plan->usableGB, 121.6);
    EXPECT_DOUBLE_EQ(plan->minutesPerCard, 72.96);
    EXPECT_EQ(plan->cardsPerCameraPerDay, 7);
    EXPECT_EQ(plan->effectiveHoldDays, 2);
    EXPECT_EQ(plan->rotationCards, 42);
    EXPECT_EQ(plan->spares, 3);
    EXPECT_EQ(plan->totalToBuy(), 45);
}

TEST(StorageCalculatorCards, HoldDays_AreAtLeastOneAndAtMostTheShoot) {
    const auto held = [](std::int64_t holdDays, std::int64_t days) {
        return StorageCalculator::cardPlan(100, 8, 1, days, holdDays, 128)->effectiveHoldDays;
    };

    EXPECT_EQ(held(0, 5), 1);
    EXPECT_EQ(held(-9, 5), 1);
    EXPECT_EQ(held(1, 5), 1);
    EXPECT_EQ(held(5, 5), 5);
    EXPECT_EQ(held(9, 5), 5);
    EXPECT_EQ(held(9, 1), 1);
    EXPECT_EQ(held(9, 0), 1);
    EXPECT_EQ(held(9, -2), 1);
}

TEST(StorageCalculatorCards, CamerasOfNothing_CountAsOne) {
    const auto one = StorageCalculator::cardPlan(100, 8, 1, 5, 2, 128);

    EXPECT_EQ(StorageCalculator::cardPlan(100, 8, 0, 5, 2, 128), one);
    EXPECT_EQ(StorageCalculator::cardPlan(100, 8, -4, 5, 2, 128), one);
    EXPECT_EQ(one->rotationCards, 14);
    EXPECT_EQ(one->spares, 1);
}

TEST(StorageCalculatorCards, CardsOfADay_AreRoundedUpAndAtLeastOne) {
    const auto cards = [](double gbPerHour, double hours) {
        return StorageCalculator::cardPlan(gbPerHour, hours, 1, 1, 1, 100)->cardsPerCameraPerDay;
    };

    EXPECT_EQ(cards(95, 1), 1);
    EXPECT_EQ(cards(95.001, 1), 2);
    EXPECT_EQ(cards(95, 2), 2);
    EXPECT_EQ(cards(0.001, 1), 1);
    EXPECT_EQ(cards(95, 0), 1);
    EXPECT_EQ(cards(95, -8), 1);
}

TEST(StorageCalculatorCards, NoCapacityOrNothingRecorded_GivesNone) {
    EXPECT_FALSE(StorageCalculator::cardPlan(100, 8, 1, 1, 1, 0));
    EXPECT_FALSE(StorageCalculator::cardPlan(100, 8, 1, 1, 1, -128));
    EXPECT_FALSE(StorageCalculator::cardPlan(0, 8, 1, 1, 1, 128));
    EXPECT_FALSE(StorageCalculator::cardPlan(-1, 8, 1, 1, 1, 128));
    EXPECT_TRUE(StorageCalculator::cardPlan(0.5, 8, 1, 1, 1, 1));
}

TEST(StorageCalculatorDeathTest, DrivesThatNoNumberCounts_AreFatal) {
    const testing::KilledBySignal aborted(SIGABRT);

    EXPECT_EXIT(StorageCalculator::drivePlan(1e22), aborted, "impossible conversion");
    EXPECT_EXIT(StorageCalculator::drivePlan(-1e23), aborted, "impossible conversion");
    EXPECT_EXIT(StorageCalculator::drivePlan(infinity), aborted, "impossible conversion");
    EXPECT_EXIT(StorageCalculator::drivePlan(notANumber), aborted, "impossible conversion");
    EXPECT_EQ(StorageCalculator::drivePlan(9e21), (DrivePlan{375'000'000'000'000'000, 24}));
}

TEST(StorageCalculatorDeathTest, EstimateWhoseDrivesNoNumberCounts_IsFatal) {
    Plan plan = samplePlan();
    plan.codecID = "custom";
    plan.customMbps = 1e30;

    EXPECT_EXIT(StorageCalculator::estimate(plan), testing::KilledBySignal(SIGABRT),
                "impossible conversion");
}

TEST(StorageCalculatorDeathTest, CardsThatNoNumberCounts_AreFatal) {
    const testing::KilledBySignal aborted(SIGABRT);

    EXPECT_EXIT(StorageCalculator::cardPlan(1e30, 8, 1, 1, 1, 1), aborted, "impossible conversion");
    EXPECT_EXIT(StorageCalculator::cardPlan(notANumber, 8, 1, 1, 1, 1), aborted,
                "impossible conversion");
    EXPECT_EXIT(StorageCalculator::cardPlan(100, infinity, 1, 1, 1, 1), aborted,
                "impossible conversion");
    EXPECT_EXIT(StorageCalculator::cardPlan(100, 8, largest, 1, 1, 128), aborted,
                "arithmetic overflow");
    EXPECT_EXIT(StorageCalculator::cardPlan(1, 1, 2, largest, largest, 128), aborted,
                "arithmetic overflow");
}

TEST(StorageCalculatorDeathTest, TotalOfCardsThatNoNumberHolds_IsFatal) {
    const auto plan = StorageCalculator::cardPlan(1, 1, largest, 1, 1, 128);

    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->rotationCards, largest);
    EXPECT_EXIT(plan->totalToBuy(), testing::KilledBySignal(SIGABRT), "arithmetic overflow");
}

}  // namespace
