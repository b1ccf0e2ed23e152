#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace ReelCore {

/// A thread that does one piece of work while its owner does another. It starts with the first
/// piece and sleeps between two; where the system has no thread left, `finish` does the work
/// itself, later but no less. Used by one thread.
class WorkerThread {
public:
    WorkerThread() = default;

    /// Waits for the work that was begun.
    ~WorkerThread();

    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    /// Begins a piece of work, which must not throw. One that was begun before is waited for.
    void begin(std::function<void()> work);

    /// Returns once the work is done, at once if there is none; what it wrote may then be read.
    void finish();

private:
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::function<void()> work_;  ///< Empty once it is done.
    bool isLeaving_ = false;
    std::thread thread_;
};

}  // namespace ReelCore
