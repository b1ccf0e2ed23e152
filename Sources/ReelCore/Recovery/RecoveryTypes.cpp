#include "ReelCore/Recovery/RecoveryTypes.h"

#include <algorithm>
#include <iterator>

namespace ReelCore {

std::vector<ClipReport> RecoveryScan::damaged() const {
    std::vector<ClipReport> found;
    std::ranges::copy_if(reports, std::back_inserter(found),
                         [](const ClipReport& one) { return one.diagnosis.isRepairable(); });
    return found;
}

std::vector<ClipReport> RecoveryScan::healthy() const {
    std::vector<ClipReport> found;
    std::ranges::copy_if(reports, std::back_inserter(found),
                         [](const ClipReport& one) { return one.diagnosis.isHealthy(); });
    return found;
}

}  // namespace ReelCore
