#include "keldo-app/Support/Format.h"

#include "ReelCore/Platform/DateText.h"

#include <array>
#include <cmath>

#include <fmt/format.h>

namespace keldo_app {

QString Format::text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString Format::path(const ReelCore::URL& url) {
    return text(url.native());
}

QString Format::name(const ReelCore::URL& url) {
    const ReelCore::URL folder = url.has_filename() ? url : url.parent_path();
    return path(folder.has_filename() ? folder.filename() : folder);
}

QString Format::bytes(std::int64_t bytes) {
    static constexpr std::array units{"B", "KB", "MB", "GB", "TB"};
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (value >= 1024 && unit + 1 < units.size()) {
        value *= 0.0009765625;
        ++unit;
    }
    return text(fmt::format("{:.{}f} {}", value, unit == 0 ? 0 : 1, units[unit]));
}

QString Format::count(std::int64_t number, const QString& noun) {
    return QString::number(number) + " " + noun + (number == 1 ? "" : "s");
}

QString Format::percent(double fraction) {
    return text(fmt::format("{:.0f}%", std::trunc(fraction * 100) + 0.0));
}

QString Format::defaultReel(const ReelCore::URL& source) {
    return name(source) + "_" + text(ReelCore::DateText::localDay(ReelCore::now()));
}

}  // namespace keldo_app
