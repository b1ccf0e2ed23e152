#include "ReelCore/Platform/WorkerThread.h"

#include <system_error>
#include <utility>

namespace ReelCore {

WorkerThread::~WorkerThread() {
    finish();
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        isLeaving_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void WorkerThread::begin(std::function<void()> work) {
    finish();
    {
        const std::lock_guard lock(mutex_);
        work_ = std::move(work);
    }
    changed_.notify_all();
    if (thread_.joinable()) return;
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        // `finish` does the work, and the next piece tries again.
    }
}

void WorkerThread::finish() {
    std::unique_lock lock(mutex_);
    if (thread_.joinable()) {
        changed_.wait(lock, [&] { return !work_; });
    } else if (work_) {
        std::exchange(work_, nullptr)();
    }
}

void WorkerThread::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [&] { return work_ || isLeaving_; });
        if (!work_) return;
        lock.unlock();
        work_();
        lock.lock();
        work_ = nullptr;
        changed_.notify_all();
    }
}

}  // namespace ReelCore
