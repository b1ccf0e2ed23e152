#include "keldo-app/Shell/AppMode.h"

#include <gtest/gtest.h>

using keldo_app::AppMode;

TEST(AppMode, LabelsStandInTheOrderOfTheModeSwitch) {
    const QStringList labels{"Plan", "Offload", "Transcode", "Transcript", "Sync", "Recover"};
    EXPECT_EQ(keldo_app::AppModes().labels(), labels);
    EXPECT_EQ(keldo_app::AppModes().offload(), 1);
}

TEST(AppMode, RawValuesLeadBackToTheirModes) {
    for (const AppMode mode : ReelCore::allCases<AppMode>()) {
        EXPECT_EQ(ReelCore::fromRawValue<AppMode>(rawValue(mode)), mode);
    }
    EXPECT_FALSE(ReelCore::fromRawValue<AppMode>("offload"));
}
