#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace keldo_app {

/// Calls a function on the main thread each time it is posted to. Made on the main thread; the
/// last owner may let go on any thread, and the object dies on its own.
class Waker : public QObject {
public:
    static std::shared_ptr<Waker> make() {
        return {new Waker, [](Waker* waker) { waker->deleteLater(); }};
    }

    /// Set, called and replaced on the main thread only.
    std::function<void()> onWake;

    /// Any thread.
    void post() {
        const std::lock_guard guard(handOver_);
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }

protected:
    void customEvent(QEvent*) override {
        { const std::lock_guard guard(handOver_); }
        // A copy, since what it calls may abandon the channel.
        if (const auto wake = onWake) wake();
    }

private:
    // The toolkit hands the event over by means that the thread sanitizer can't see. This it sees.
    std::mutex handOver_;

    Waker() = default;
};

/// An unbounded, ordered stream of events from one worker to the main thread. A sender never
/// waits and no event is lost. The main thread is woken once for all the events that have come
/// since it last looked, so that many small ones can't flood its event loop.
template <class Event>
class EventChannel {
public:
    using Consume = std::function<void(std::vector<Event>)>;

    /// Main thread. `consume` gets each batch on the main thread, until `abandon`.
    explicit EventChannel(Consume consume) {
        waker_->onWake = [this, consume = std::move(consume)] { consume(takeAll()); };
    }

    EventChannel(const EventChannel&) = delete;
    EventChannel& operator=(const EventChannel&) = delete;

    /// Any thread.
    void send(Event event) {
        {
            const std::lock_guard guard(lock_);
            pending_.push_back(std::move(event));
            if (std::exchange(isWaking_, true)) return;
        }
        waker_->post();
    }

    /// Main thread: from now on events vanish unseen.
    void abandon() { waker_->onWake = nullptr; }

private:
    std::vector<Event> takeAll() {
        const std::lock_guard guard(lock_);
        isWaking_ = false;
        return std::exchange(pending_, {});
    }

    const std::shared_ptr<Waker> waker_ = Waker::make();
    std::mutex lock_;
    std::vector<Event> pending_;
    bool isWaking_ = false;
};

}  // namespace keldo_app
