#pragma once

#include "keldo-app/Support/Preferences.h"

#include <QSettings>

namespace keldo_app {

/// The user's preferences where the system keeps them, under the names of the organisation and the
/// application. On Linux that is a text file, `~/.config/keldobay/keldobay.conf`.
class SystemPreferences : public Preferences {
    Q_OBJECT

public:
    SystemPreferences();

    QVariant value(const QString& key) const override;
    void set(const QString& key, const QVariant& value) override;

private:
    QSettings settings_;
};

}  // namespace keldo_app
