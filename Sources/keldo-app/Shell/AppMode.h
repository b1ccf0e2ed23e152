#pragma once

#include "ReelCore/Models/Enumeration.h"

#include <QObject>
#include <QStringList>
#include <string_view>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// The application's modes, in the order of the mode switch. The raw value is the label.
enum class AppMode { plan, offload, transcode, transcript, sync, recover };

std::string_view rawValue(AppMode mode);

/// The mode switch as the window sees it: modes are positions in `labels`.
class AppModes : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QStringList labels READ labels CONSTANT)
    Q_PROPERTY(int offload READ offload CONSTANT)

public:
    using QObject::QObject;

    QStringList labels() const;

    /// The screen of a mode: the file `<label>Screen.qml` of the module of that name.
    Q_INVOKABLE QString screen(const QString& label) const;
    int offload() const { return static_cast<int>(AppMode::offload); }
};

}  // namespace keldo_app

template <>
std::span<const keldo_app::AppMode> ReelCore::allCases<keldo_app::AppMode>();
