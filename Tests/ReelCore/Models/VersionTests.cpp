#include "ReelCore/Models/Version.h"

#include <gtest/gtest.h>

namespace {

TEST(Version, ToolOnPaper_IsKeldobayWithItsVersion) {
    EXPECT_EQ(ReelCore::toolName, "keldobay");
    EXPECT_EQ(ReelCore::ReelCoreVersion, "0.1.0");
}

}  // namespace
