#include "ReelCore/Reports/Report.h"
#include "SampleStoragePlan.h"

#include <csignal>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;
using Estimate = StorageCalculator::Estimate;
using Plan = StorageCalculator::Plan;
using Row = std::vector<std::string>;

Row cardRow(const Report::PlannedCards& cards) {
    return Report::storagePlan("Winter", samplePlan(), sampleEstimate(), cards).table->rows.at(1);
}

TEST(StoragePlanTable, HardDrives_AreThoseOfAllCopies) {
    Estimate estimate = sampleEstimate();
    estimate.drivesPerCopy = {.count = 2, .sizeTB = 16};
    estimate.perCopyWithMarginGB = 999;
    Plan plan = samplePlan();
    plan.copies = 4;

    const Report report = Report::storagePlan("Winter", plan, estimate, std::nullopt);

    EXPECT_EQ(report.table->rows,
              (std::vector<Row>{{"Hard drives", "8 × 16 TB",
                                 "2 per copy × 4 copies; each copy holds 999 GB incl. margin"}}));
}

TEST(StoragePlanTable, CopiesOfNothing_StandAsThePlanHasThem) {
    Plan plan = samplePlan();
    plan.copies = 0;

    const Report report = Report::storagePlan("Winter", plan, sampleEstimate(), std::nullopt);

    EXPECT_EQ(report.table->rows.at(0),
              (Row{"Hard drives", "0 × 8 TB",
                   "1 per copy × 0 copies; each copy holds 7.80 TB incl. margin"}));
}

TEST(StoragePlanTable, Cards_HaveNoPluralForOneDayAndOneSpare) {
    Report::PlannedCards cards = sampleCards();
    cards.plan = {.usableGB = 114,
                  .minutesPerCard = 12.5,
                  .cardsPerCameraPerDay = 1,
                  .effectiveHoldDays = 1,
                  .rotationCards = 1,
                  .spares = 1};

    EXPECT_EQ(cardRow(cards),
              (Row{"Camera cards", "2 × XQD 120 GB",
                   "≈12 min/card · 1 per camera/day · held 1 day until backups verified · "
                   "incl. 1 spare"}));
}

TEST(StoragePlanTable, CountSetByHand_StandsBesideTheCalculatedOne) {
    Report::PlannedCards cards = sampleCards();
    cards.overrideCount = 40;
    EXPECT_EQ(cardRow(cards),
              (Row{"Camera cards", "40 × XQD 120 GB",
                   "≈73 min/card · 7 per camera/day · held 2 days until backups verified · "
                   "count set manually (calculated: 45 incl. 3 spares)"}));

    cards.overrideCount = 0;
    EXPECT_EQ(cardRow(cards).at(1), "0 × XQD 120 GB");

    cards.overrideCount = 45;
    cards.plan.spares = 1;
    cards.plan.effectiveHoldDays = 1;
    EXPECT_EQ(cardRow(cards),
              (Row{"Camera cards", "45 × XQD 120 GB",
                   "≈73 min/card · 7 per camera/day · held 1 day until backups verified · "
                   "count set manually (calculated: 43 incl. 1 spares)"}));
}

TEST(StoragePlanTableDeathTest, QuantitiesThatNoNumberHolds_AreFatal) {
    const testing::KilledBySignal aborted(SIGABRT);
    Estimate estimate = sampleEstimate();
    estimate.drivesPerCopy.count = std::numeric_limits<std::int64_t>::max();
    Report::PlannedCards cards = sampleCards();
    cards.plan.rotationCards = std::numeric_limits<std::int64_t>::max();

    EXPECT_EXIT(Report::storagePlan("", samplePlan(), estimate, std::nullopt), aborted,
                "arithmetic overflow");
    EXPECT_EXIT(cardRow(cards), aborted, "arithmetic overflow");
}

}  // namespace
