#include "keldo-app/Support/SystemPreferences.h"

namespace keldo_app {

SystemPreferences::SystemPreferences() {
    settings_.setFallbacksEnabled(false);
}

QVariant SystemPreferences::value(const QString& key) const {
    return settings_.value(key);
}

void SystemPreferences::set(const QString& key, const QVariant& value) {
    settings_.setValue(key, value);
    settings_.sync();
}

}  // namespace keldo_app
