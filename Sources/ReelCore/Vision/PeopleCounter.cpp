#include "ReelCore/Vision/PeopleCounter.h"

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Transcode/Transcoder.h"

#include <algorithm>

namespace ReelCore {

namespace {

/// In pixels of the longer edge: twice what the larger of the nets takes.
constexpr std::int64_t enoughToCount = 832;

}  // namespace

std::optional<std::int64_t> PeopleCounter::count(const Histogram& histogram,
                                                 std::int64_t minFrames) {
    std::optional<std::int64_t> most;
    for (auto entry = histogram.rbegin(); entry != histogram.rend() && entry->first > 0; ++entry) {
        if (entry->second >= minFrames) return entry->first;
        if (!most) most = entry->first;
    }
    return most;
}

std::optional<PeopleCounter::Estimate> PeopleCounter::estimate(
    const URL& url, std::int64_t samples, std::int64_t minFrames,
    const std::function<bool()>& isCancelled) const try {
    if (!grabber.isAvailable()) return std::nullopt;
    const double duration = Transcoder().probeDuration(url);
    if (!(duration > 0.0)) return std::nullopt;

    const TemporaryPath folder("keldobay-count-", "");
    const std::int64_t slices = std::max<std::int64_t>(samples, 1);
    Histogram histogram;
    for (std::int64_t i = 0; i < slices && !isCancelled(); ++i) {
        const double middle =
            duration * (static_cast<double>(i) + 0.5) / static_cast<double>(slices);
        const auto image = grabber.still(url, middle, folder.url(), enoughToCount);
        if (image) ++histogram[vision.peopleInFrame(*image)];
    }
    const auto people = count(histogram, minFrames);
    if (!people) return std::nullopt;
    return Estimate{*people, std::move(histogram)};
} catch (const Error&) {
    return std::nullopt;
}

}  // namespace ReelCore
