#include "ReelCore/Planning/StorageCalculator.h"

#include <csignal>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using DrivePlan = StorageCalculator::DrivePlan;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(StorageDrives, FewestDrivesThenTheSmallest) {
    EXPECT_EQ(StorageCalculator::drivePlan(10'000), (DrivePlan{1, 12}));
    EXPECT_EQ(StorageCalculator::drivePlan(25'000), (DrivePlan{2, 16}));
    EXPECT_EQ(StorageCalculator::drivePlan(30'000), (DrivePlan{2, 16}));
    EXPECT_EQ(StorageCalculator::drivePlan(240'000), (DrivePlan{10, 24}));
}

TEST(StorageDrives, NothingToHold_StillTakesOneDrive) {
    EXPECT_EQ(StorageCalculator::drivePlan(0), (DrivePlan{1, 1}));
    EXPECT_EQ(StorageCalculator::drivePlan(0.001), (DrivePlan{1, 1}));
    EXPECT_EQ(StorageCalculator::drivePlan(-5'000), (DrivePlan{1, 1}));
}

TEST(StorageDrives, DriveFilledToTheBrim_IsEnough) {
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

TEST(StorageDrives, EveryGigabyteUpTo200TB_IsWhatASearchFinds) {
    for (std::int64_t gb = 0; gb <= 200'000; ++gb) {
        ASSERT_EQ(StorageCalculator::drivePlan(static_cast<double>(gb)), searchedDrives(gb)) << gb;
    }
}

TEST(StorageDrives, GreatShoots_AreWhatASearchFinds) {
    for (std::int64_t gb = 1'000'000; gb <= 40'000'000; gb += 99'991) {
        ASSERT_EQ(StorageCalculator::drivePlan(static_cast<double>(gb)), searchedDrives(gb)) << gb;
    }
}

TEST(StorageCards, WholeShoot_IsReckonedStepByStep) {
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

TEST(StorageCards, HoldDays_AreAtLeastOneAndAtMostTheShoot) {
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

TEST(StorageCards, CamerasOfNothing_CountAsOne) {
    const auto one = StorageCalculator::cardPlan(100, 8, 1, 5, 2, 128);

    EXPECT_EQ(StorageCalculator::cardPlan(100, 8, 0, 5, 2, 128), one);
    EXPECT_EQ(StorageCalculator::cardPlan(100, 8, -4, 5, 2, 128), one);
    EXPECT_EQ(one->rotationCards, 14);
    EXPECT_EQ(one->spares, 1);
}

TEST(StorageCards, CardsOfADay_AreRoundedUpAndAtLeastOne) {
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

TEST(StorageCards, NoCapacityOrNothingRecorded_GivesNone) {
    EXPECT_FALSE(StorageCalculator::cardPlan(100, 8, 1, 1, 1, 0));
    EXPECT_FALSE(StorageCalculator::cardPlan(100, 8, 1, 1, 1, -128));
    EXPECT_FALSE(StorageCalculator::cardPlan(0, 8, 1, 1, 1, 128));
    EXPECT_FALSE(StorageCalculator::cardPlan(-1, 8, 1, 1, 1, 128));
    EXPECT_TRUE(StorageCalculator::cardPlan(0.5, 8, 1, 1, 1, 1));
}

TEST(StorageDrivesDeathTest, DrivesThatNoNumberCounts_AreFatal) {
    const testing::KilledBySignal aborted(SIGABRT);

    EXPECT_EXIT(StorageCalculator::drivePlan(1e22), aborted, "impossible conversion");
    EXPECT_EXIT(StorageCalculator::drivePlan(-1e23), aborted, "impossible conversion");
    EXPECT_EXIT(StorageCalculator::drivePlan(infinity), aborted, "impossible conversion");
    EXPECT_EXIT(StorageCalculator::drivePlan(notANumber), aborted, "impossible conversion");
    EXPECT_EQ(StorageCalculator::drivePlan(9e21), (DrivePlan{375'000'000'000'000'000, 24}));
}

TEST(StorageCardsDeathTest, CardsThatNoNumberCounts_AreFatal) {
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

TEST(StorageCardsDeathTest, TotalOfCardsThatNoNumberHolds_IsFatal) {
    const auto plan = StorageCalculator::cardPlan(1, 1, largest, 1, 1, 128);

    ASSERT_TRUE(plan);
    EXPECT_EQ(plan->rotationCards, largest);
    EXPECT_EXIT(plan->totalToBuy(), testing::KilledBySignal(SIGABRT), "arithmetic overflow");
}

}  // namespace
