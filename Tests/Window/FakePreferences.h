#pragma once

#include "keldo-app/Support/Preferences.h"

#include <QMap>

namespace WindowSupport {

/// Preferences that live as long as the object.
class FakePreferences : public keldo_app::Preferences {
public:
    QMap<QString, QVariant> values;

    QVariant value(const QString& key) const override { return values.value(key); }
    void set(const QString& key, const QVariant& value) override { values[key] = value; }
};

}  // namespace WindowSupport
