#include "Window/WindowDriver.h"

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    WindowSupport::startOffscreen(argc, argv);
    const int status = RUN_ALL_TESTS();
    std::fflush(nullptr);
    return status;
}
