#include "keldo-app/Support/Job.h"

#include <QTest>
#include <atomic>
#include <latch>
#include <numeric>
#include <optional>

#include <gtest/gtest.h>

using keldo_app::Job;

namespace {

bool waitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 30'000);
}

}  // namespace

TEST(Job, EventsArriveOnTheMainThreadInOrderAndComplete) {
    std::vector<int> seen;
    std::thread::id consumer;
    Job<int> job(
        [](const auto& send) {
            for (int i = 0; i < 100'000; ++i) send(i);
        },
        [&](std::vector<int> batch) {
            consumer = std::this_thread::get_id();
            seen.insert(seen.end(), batch.begin(), batch.end());
        });
    ASSERT_TRUE(waitFor([&] { return seen.size() == 100'000; }));
    std::vector<int> expected(100'000);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(consumer, std::this_thread::get_id());
}

TEST(Job, EventsSentWhileTheMainThreadIsAway_ComeAsOneBatch) {
    std::vector<std::size_t> batches;
    std::latch sent(1);
    Job<int> job(
        [&](const auto& send) {
            for (int i = 0; i < 1'000; ++i) send(i);
            sent.count_down();
        },
        [&](std::vector<int> batch) { batches.push_back(batch.size()); });
    sent.wait();
    ASSERT_TRUE(waitFor([&] { return !batches.empty(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(batches, std::vector<std::size_t>{1'000});
}

TEST(Job, DroppedJob_RunsToItsEndUnseen) {
    std::atomic<bool> finished = false;
    std::latch dropped(1);
    int seen = 0;
    {
        std::optional<Job<int>> job(
            std::in_place,
            [&](const auto& send) {
                send(1);
                dropped.wait();
                send(2);
                finished = true;
            },
            [&](std::vector<int>) { ++seen; });
        job.reset();
        dropped.count_down();
    }
    ASSERT_TRUE(waitFor([&] { return finished.load(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(seen, 0);
}

TEST(Job, ReplacedJob_IsUnseenAndTheNewOneIsSeen) {
    std::latch replaced(1);
    std::atomic<bool> sent = false;
    std::vector<int> seen;
    const auto consume = [&](std::vector<int> batch) {
        seen.insert(seen.end(), batch.begin(), batch.end());
    };
    std::optional<Job<int>> job;
    job.emplace(
        [&](const auto& send) {
            replaced.wait();
            send(1);
            sent = true;
        },
        consume);
    job = Job<int>([](const auto& send) { send(2); }, consume);
    replaced.count_down();
    ASSERT_TRUE(waitFor([&] { return !seen.empty() && sent; }));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(seen, std::vector<int>{2});
}
