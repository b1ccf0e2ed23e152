#include "keldo-app/Support/Jobs.h"

#include <QTest>
#include <atomic>
#include <fstream>
#include <latch>
#include <numeric>
#include <optional>
#include <stdexcept>

#include <gtest/gtest.h>
#include <sys/resource.h>

using keldo_app::Job;
using keldo_app::Work;

namespace {

using Send = Work<int>::Send;

constexpr int failure = -1;

bool waitFor(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 30'000);
}

Work<int> work(std::function<void(const Send&)> run, std::function<void(int)> consume) {
    return {.run = std::move(run),
            .consume = std::move(consume),
            .failed = [](const std::exception&) { return failure; }};
}

/// What of this process's memory is taken now, in bytes.
rlim_t addressesTaken() {
    std::ifstream statm("/proc/self/statm");
    rlim_t pages = 0;
    statm >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

/// Starts a job where no thread's stack finds room; the process's status tells what came of it.
void startWithoutRoom() {
    const rlimit limit{addressesTaken() + (4 << 20), RLIM_INFINITY};
    setrlimit(RLIMIT_AS, &limit);
    std::optional<int> told;
    const Job<int> job(work([](const Send& send) { send(1); }, [&](int event) { told = event; }));
    const bool atOnce = told.has_value();
    waitFor([&] { return told.has_value(); });
    std::_Exit(!atOnce && told == failure ? 0 : 1);
}

}  // namespace

TEST(Job, EventsArriveOnTheMainThreadInOrderAndComplete) {
    std::vector<int> seen;
    std::thread::id consumer;
    const Job<int> job(work(
        [](const Send& send) {
            for (int i = 0; i < 100'000; ++i) send(i);
        },
        [&](int event) {
            consumer = std::this_thread::get_id();
            seen.push_back(event);
        }));
    ASSERT_TRUE(waitFor([&] { return seen.size() == 100'000; }));
    std::vector<int> expected(100'000);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(consumer, std::this_thread::get_id());
}

TEST(Job, PassingEventsInARow_AreHandedOnAsTheLastOfThem) {
    std::vector<int> seen;
    std::latch sent(1);
    auto passing = work(
        [&](const Send& send) {
            for (const int event : {1, 2, 3, 100, 4, 5, 200}) send(event);
            sent.count_down();
        },
        [&](int event) { seen.push_back(event); });
    passing.isPassing = [](int event) { return event < 100; };
    const Job<int> job(std::move(passing));
    sent.wait();
    ASSERT_TRUE(waitFor([&] { return !seen.empty() && seen.back() == 200; }));
    EXPECT_EQ(seen, (std::vector{3, 100, 5, 200}));
}

TEST(Job, WorkThatThrows_EndsInItsFailureBehindWhatItSent) {
    std::vector<int> seen;
    const Job<int> job(work(
        [](const Send& send) {
            send(1);
            throw std::runtime_error("no");
        },
        [&](int event) { seen.push_back(event); }));
    ASSERT_TRUE(waitFor([&] { return seen.size() == 2; }));
    EXPECT_EQ(seen, (std::vector{1, failure}));
}

TEST(Job, ThreadThatCanNotBeStarted_IsAFailureToldLater) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer needs more room for addresses";
#endif
    EXPECT_EXIT(startWithoutRoom(), testing::ExitedWithCode(0), "");
}

TEST(Job, DroppedJob_RunsToItsEndUnseen) {
    std::atomic<bool> finished = false;
    std::latch dropped(1);
    int seen = 0;
    {
        std::optional<Job<int>> job(std::in_place, work(
                                                       [&](const Send& send) {
                                                           send(1);
                                                           dropped.wait();
                                                           send(2);
                                                           finished = true;
                                                       },
                                                       [&](int) { ++seen; }));
        job.reset();
        dropped.count_down();
    }
    ASSERT_TRUE(waitFor([&] { return finished.load(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(seen, 0);
}

TEST(Job, DroppedByWhatItCalls_HandsNothingMoreOn) {
    std::vector<int> seen;
    std::latch sent(1);
    std::optional<Job<int>> job;
    job.emplace(work(
        [&](const Send& send) {
            for (int i = 0; i < 10; ++i) send(i);
            sent.count_down();
        },
        [&](int event) {
            seen.push_back(event);
            if (event == 2) job.reset();
        }));
    sent.wait();
    ASSERT_TRUE(waitFor([&] { return seen.size() >= 3; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(seen, (std::vector{0, 1, 2}));
}

TEST(Job, ReplacedJob_IsUnseenAndTheNewOneIsSeen) {
    std::latch replaced(1);
    std::atomic<bool> sent = false;
    std::vector<int> seen;
    const auto consume = [&](int event) { seen.push_back(event); };
    std::optional<Job<int>> job(std::in_place, work(
                                                   [&](const Send& send) {
                                                       replaced.wait();
                                                       send(1);
                                                       sent = true;
                                                   },
                                                   consume));
    job = Job<int>(work([](const Send& send) { send(2); }, consume));
    replaced.count_down();
    ASSERT_TRUE(waitFor([&] { return !seen.empty() && sent; }));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(seen, std::vector<int>{2});
}

TEST(RunOnce, ValueOrItsFailure_IsTheOneAnswer) {
    std::vector<int> answers;
    const auto done = [&](int value) { answers.push_back(value); };
    const auto failed = [](const std::exception&) { return failure; };
    const auto good = keldo_app::runOnce<int>([] { return 7; }, done, failed);
    ASSERT_TRUE(waitFor([&] { return answers.size() == 1; }));
    const auto bad =
        keldo_app::runOnce<int>([]() -> int { throw std::runtime_error("no"); }, done, failed);
    ASSERT_TRUE(waitFor([&] { return answers.size() == 2; }));
    EXPECT_EQ(answers, (std::vector{7, failure}));
}
