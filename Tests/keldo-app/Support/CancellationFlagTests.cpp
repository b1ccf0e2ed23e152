#include "keldo-app/Support/CancellationFlag.h"

#include <thread>

#include <gtest/gtest.h>

using keldo_app::CancellationFlag;

TEST(CancellationFlag, StartsUnsetAndFollowsCancelAndClear) {
    CancellationFlag flag;
    EXPECT_FALSE(flag.isSet());
    flag.cancel();
    EXPECT_TRUE(flag.isSet());
    flag.clear();
    EXPECT_FALSE(flag.isSet());
}

TEST(CancellationFlag, CancelOnOneThread_IsSeenOnAnother) {
    CancellationFlag flag;
    std::thread worker([&] {
        while (!flag.isSet()) std::this_thread::yield();
    });
    flag.cancel();
    worker.join();
    EXPECT_TRUE(flag.isSet());
}
