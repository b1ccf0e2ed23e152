#pragma once

#include "keldo-app/Support/EventChannel.h"

#include <functional>
#include <memory>
#include <thread>
#include <utility>

namespace keldo_app {

/// Long work on a thread of its own, seen from the main thread. The worker owns all that it needs
/// and touches no QObject; what it has to say it sends as events, which `consume` gets on the main
/// thread, in order and in batches. A job that is dropped goes on to its end, unseen.
///
/// Made, moved and dropped on the main thread.
template <class Event>
class Job {
public:
    using Send = std::function<void(Event)>;
    using Work = std::function<void(const Send&)>;

    Job(Work work, typename EventChannel<Event>::Consume consume)
        : channel_(std::make_shared<EventChannel<Event>>(std::move(consume))) {
        std::thread([work = std::move(work), channel = channel_] {
            work([&](Event event) { channel->send(std::move(event)); });
        }).detach();
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

}  // namespace keldo_app
