#include "keldo-app/Support/Preferences.h"

#include <cmath>

namespace keldo_app {

std::optional<QString> Preferences::text(const QVariant& value) {
    if (!value.canConvert<QString>() || value.typeId() == QMetaType::QStringList) {
        return std::nullopt;
    }
    return value.toString();
}

std::optional<double> Preferences::number(const QVariant& value) {
    bool isNumber = false;
    const double number = text(value).value_or(QString()).toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number)) return std::nullopt;
    return number;
}

std::optional<std::int64_t> Preferences::wholeNumber(const QVariant& value) {
    bool isNumber = false;
    const std::int64_t number = text(value).value_or(QString()).toLongLong(&isNumber);
    if (!isNumber) return std::nullopt;
    return number;
}

}  // namespace keldo_app
