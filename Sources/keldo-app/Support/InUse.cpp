#include "keldo-app/Support/InUse.h"

#include "keldo-app/Support/Format.h"

#include <algorithm>

namespace keldo_app {

namespace {

using Purpose = InUse::Purpose;

bool liesIn(const ReelCore::URL& inner, const ReelCore::URL& outer) {
    return std::ranges::mismatch(outer, inner).in1 == outer.end();
}

bool excludes(const InUse::Use& one, const InUse::Use& other) {
    if (one.purpose == Purpose::reading && other.purpose == Purpose::reading) return false;
    return liesIn(one.place, other.place) || liesIn(other.place, one.place);
}

QString sentence(const InUse::Use& use) {
    const QString doing = use.purpose == Purpose::reading   ? "being copied"
                          : use.purpose == Purpose::writing ? "being written to"
                                                            : "being erased";
    return QStringLiteral("“%1” is %2. Wait until that has ended.")
        .arg(Format::name(use.place), doing);
}

}  // namespace

InUse& InUse::shared() {
    // Never destroyed: threads of jobs may let go while the process ends.
    static InUse& inUse = *new InUse;
    return inUse;
}

InUse::Token InUse::take(std::vector<Use> uses) {
    const std::lock_guard guard(lock_);
    const auto place = taken_.insert(taken_.end(), std::move(uses));
    return {&*place, [this, place](const void*) { release(place); }};
}

void InUse::release(std::list<std::vector<Use>>::iterator uses) {
    {
        const std::lock_guard guard(lock_);
        taken_.erase(uses);
    }
    waker_->post();
}

QString InUse::objection(const Use& wanted) const {
    const std::lock_guard guard(lock_);
    for (const auto& uses : taken_) {
        for (const Use& use : uses) {
            if (excludes(use, wanted)) return sentence(use);
        }
    }
    return {};
}

}  // namespace keldo_app
