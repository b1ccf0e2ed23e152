#pragma once

#include <algorithm>
#include <ctime>

namespace TestSupport {

/// How many times the processor time of `twice` is that of `once`; the least of three each, so that
/// what else runs on the machine counts little.
template <class Twice, class Once>
double timeRatio(Twice twice, Once once) {
    const auto timeOf = [](auto& run) {
        const std::clock_t start = std::clock();
        run();
        return static_cast<double>(std::clock() - start);
    };
    double longer = timeOf(twice);
    double shorter = timeOf(once);
    for (int i = 0; i < 2; ++i) {
        longer = std::min(longer, timeOf(twice));
        shorter = std::min(shorter, timeOf(once));
    }
    return longer / shorter;
}

}  // namespace TestSupport
