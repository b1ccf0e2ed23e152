#include "ReelCore/Platform/WorkerThread.h"

#include "Support/Forked.h"
#include "Support/Threads.h"

#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;
using namespace std::chrono_literals;

TEST(WorkerThread, Begin_OwnerIsBusy_WorkIsDoneMeanwhileOnAnotherThread) {
    WorkerThread worker;
    std::promise<std::thread::id> done;
    auto doneOn = done.get_future();

    worker.begin([&] { done.set_value(std::this_thread::get_id()); });

    ASSERT_EQ(doneOn.wait_for(30s), std::future_status::ready);
    EXPECT_NE(doneOn.get(), std::this_thread::get_id());
}

TEST(WorkerThread, Begin_PieceAfterPiece_DoesEachOnceInOrder) {
    WorkerThread worker;
    std::vector<int> done;
    for (int i = 0; i < 100; ++i) {
        worker.begin([&done, i] { done.push_back(i); });
        if (i % 2 == 0) worker.finish();
    }
    worker.finish();

    ASSERT_EQ(done.size(), 100U);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(done[static_cast<std::size_t>(i)], i);
}

TEST(WorkerThread, Finish_NothingBegun_ReturnsAtOnce) {
    WorkerThread worker;
    worker.finish();
    worker.begin([] {});
    worker.finish();
    worker.finish();
}

TEST(WorkerThread, Destroy_WorkUnderWay_WaitsForItsEnd) {
    bool isDone = false;
    std::promise<void> begun;
    {
        WorkerThread worker;
        worker.begin([&] {
            begun.set_value();
            std::this_thread::sleep_for(50ms);
            isDone = true;
        });
        begun.get_future().wait();
    }
    EXPECT_TRUE(isDone);
}

TEST(WorkerThread, Finish_SystemWithoutThreads_DoesTheWorkItself) {
    const int status = statusOfForked([] {
        if (!leaveNoThreads()) return 100;
        int count = 0;
        {
            WorkerThread worker;
            worker.begin([&] { ++count; });
            if (count != 0) return 101;
            worker.begin([&] { ++count; });
            if (count != 1) return 102;
            worker.finish();
            if (count != 2) return 103;
            worker.finish();
            worker.begin([&] { ++count; });
        }
        return count;
    });

    EXPECT_EQ(status, 3);
}
