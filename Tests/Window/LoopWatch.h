#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>

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

}  // namespace WindowSupport
