#pragma once

#include "ReelCore/Platform/URL.h"
#include "keldo-app/Support/Jobs.h"

#include <QObject>
#include <QString>
#include <list>
#include <memory>
#include <mutex>
#include <vector>

namespace keldo_app {

/// What the jobs of this process work on. A job goes on after its screen is gone, and whoever would
/// work on the same place asks here first.
class InUse : public QObject {
    Q_OBJECT

public:
    enum class Purpose { reading, writing, erasing };

    struct Use {
        ReelCore::URL place;
        Purpose purpose = Purpose::reading;
    };

    /// Ends the uses that it stands for when its last owner lets go, on any thread.
    using Token = std::shared_ptr<const void>;

    /// First asked for on the main thread.
    static InUse& shared();

    /// Any thread.
    [[nodiscard]] Token take(std::vector<Use> uses);

    /// Why a place can't be used for a purpose now, as a sentence; empty if nothing stands against
    /// it. A place is in the way of what lies in it and of what it lies in, and only reading goes
    /// together with reading. Any thread.
    QString objection(const Use& wanted) const;

signals:
    /// Main thread.
    void changed();

private:
    InUse() {
        waker_->onWake = [this] { emit changed(); };
    }
    void release(std::list<std::vector<Use>>::iterator uses);

    const std::shared_ptr<Waker> waker_ = Waker::make();
    mutable std::mutex lock_;
    std::list<std::vector<Use>> taken_;
};

}  // namespace keldo_app
