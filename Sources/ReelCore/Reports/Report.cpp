#include "ReelCore/Reports/Report.h"

#include <algorithm>

namespace ReelCore {

std::string Report::fileBase() const {
    std::string base = subtitle ? title + "_" + *subtitle : title;
    std::ranges::replace(base, '/', '_');
    std::ranges::replace(base, ' ', '_');
    return base;
}

}  // namespace ReelCore
