#pragma once

#include <mutex>

namespace keldo_app {

/// Tells a running job to stop. Any thread may call any operation; each takes the lock for just
/// as long as it touches the flag.
class CancellationFlag {
public:
    void cancel() { set(true); }
    void clear() { set(false); }

    bool isSet() const {
        const std::lock_guard guard(lock);
        return flag;
    }

private:
    void set(bool value) {
        const std::lock_guard guard(lock);
        flag = value;
    }

    mutable std::mutex lock;
    bool flag = false;
};

}  // namespace keldo_app
