#include "ReelCore/Reports/ReportFormat.h"

#include "ReelCore/Models/Version.h"
#include "ReelCore/Platform/DateText.h"

#include <array>

#include <fmt/format.h>

namespace ReelCore {

std::string humanBytes(std::int64_t bytes) {
    static constexpr std::array units{"B", "KB", "MB", "GB", "TB"};
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (value >= 1024 && unit + 1 < units.size()) {
        value *= 0.0009765625;
        ++unit;
    }
    return fmt::format("{:.{}f} {}", value, unit == 0 ? 0 : 2, units[unit]);
}

std::string dateTime(Date date) {
    return DateText::localDateTime(date);
}

std::string toolOnPaper() {
    return fmt::format("{} {}", toolName, ReelCoreVersion);
}

}  // namespace ReelCore
