#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
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
        // A copy, since what it calls may replace it.
        if (const auto wake = onWake) wake();
    }

private:
    // The toolkit hands the event over by means that the thread sanitizer can't see. This it sees.
    std::mutex handOver_;

    Waker() = default;
};

/// What a job does, and who hears of it.
template <class Event>
struct Work {
    using Send = std::function<void(Event)>;

    /// Runs on a thread of its own. It owns all that it needs and touches no QObject; what it has
    /// to say it sends.
    std::function<void(const Send&)> run;

    /// Gets each event on the main thread, in order.
    std::function<void(Event)> consume;

    /// The event that tells of what `run` threw, or that no thread could be started. Any thread.
    std::function<Event(const std::exception&)> failed;

    /// True for an event that says nothing once another of its sort has come: of several that wait
    /// in a row for the main thread, only the last is handed on. Main thread.
    std::function<bool(const Event&)> isPassing = [](const Event&) { return false; };
};

/// An unbounded, ordered stream of events from one worker to the main thread. A sender never
/// waits. The main thread is woken once for all the events that have come since it last looked, so
/// that many small ones can't flood its event loop.
template <class Event>
class EventChannel : public std::enable_shared_from_this<EventChannel<Event>> {
public:
    using Consume = std::function<void(Event)>;
    using IsPassing = std::function<bool(const Event&)>;

    /// Main thread.
    static std::shared_ptr<EventChannel> open(Consume consume, IsPassing isPassing) {
        const auto channel = std::make_shared<EventChannel>();
        channel->consume_ = std::move(consume);
        channel->isPassing_ = std::move(isPassing);
        channel->waker_->onWake = [weak = channel->weak_from_this()] {
            if (const auto self = weak.lock()) self->handOn();
        };
        return channel;
    }

    /// Any thread.
    void send(Event event) {
        {
            const std::lock_guard guard(lock_);
            pending_.push_back(std::move(event));
            if (std::exchange(isWaking_, true)) return;
        }
        waker_->post();
    }

    /// Main thread: from now on events vanish unseen, also those of the batch under way.
    void abandon() {
        consume_ = nullptr;
        waker_->onWake = nullptr;
    }

private:
    void handOn() {
        for (Event& event : withoutPassed(takeAll())) {
            const auto consume = consume_;
            if (!consume) return;
            consume(std::move(event));
        }
    }

    std::vector<Event> takeAll() {
        const std::lock_guard guard(lock_);
        isWaking_ = false;
        return std::exchange(pending_, {});
    }

    std::vector<Event> withoutPassed(std::vector<Event> events) const {
        std::vector<Event> kept;
        for (Event& event : events) {
            if (!kept.empty() && isPassing_(kept.back()) && isPassing_(event)) kept.pop_back();
            kept.push_back(std::move(event));
        }
        return kept;
    }

    const std::shared_ptr<Waker> waker_ = Waker::make();
    Consume consume_;
    IsPassing isPassing_;
    std::mutex lock_;
    std::vector<Event> pending_;
    bool isWaking_ = false;
};

/// Long work on a thread of its own, seen from the main thread. A job that is dropped, also from
/// within what it calls, goes on to its end unseen: nothing more of it is handed on.
///
/// Made, moved and dropped on the main thread.
template <class Event>
class Job {
public:
    /// Starts at once. Whatever fails comes as an event; nothing is thrown here.
    explicit Job(Work<Event> work)
        : channel_(EventChannel<Event>::open(std::move(work.consume), std::move(work.isPassing))) {
        auto run = [run = std::move(work.run), failed = work.failed, channel = channel_] {
            try {
                run([&](Event event) { channel->send(std::move(event)); });
            } catch (const std::exception& error) {
                channel->send(failed(error));
            }
        };
        try {
            std::thread(std::move(run)).detach();
        } catch (const std::exception& error) {
            channel_->send(work.failed(error));
        }
    }
    ~Job() {
        if (channel_) channel_->abandon();
    }

    Job(Job&&) = default;
    Job& operator=(Job&& other) {
        std::swap(channel_, other.channel_);
        return *this;
    }

private:
    std::shared_ptr<EventChannel<Event>> channel_;
};

/// A large result shared by a job and its screen. It can take longer to take apart than the window
/// may stand still, so the last owner leaves that to a thread of its own, where one can be had.
template <class Value>
std::shared_ptr<const Value> shareLarge(Value value) {
    return {new Value(std::move(value)), [](const Value* last) {
                try {
                    std::thread([last] { delete last; }).detach();
                } catch (const std::exception&) {
                    delete last;
                }
            }};
}

/// Work with one answer: `work` on a thread of its own, its value or that of `failed` to `done` on
/// the main thread.
template <class Value>
Job<Value> runOnce(std::function<Value()> work, std::function<void(Value)> done,
                   std::function<Value(const std::exception&)> failed) {
    return Job<Value>({.run = [work = std::move(work)](const auto& send) { send(work()); },
                       .consume = std::move(done),
                       .failed = std::move(failed)});
}

}  // namespace keldo_app
