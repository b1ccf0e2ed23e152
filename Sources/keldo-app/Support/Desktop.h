#pragma once

#include "ReelCore/Platform/URL.h"

#include <QObject>
#include <QString>
#include <optional>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// What a view model may ask of the desktop around it. Main thread only. The toolkit's panels know
/// only names that are text, so a folder whose name is not UTF-8 can't be chosen there.
class Desktop : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application hands its desktop in.")

public:
    using QObject::QObject;

    /// A modal folder picker that shows `message`: one folder, new ones may be made there. Nothing
    /// if the user dismisses it.
    virtual std::optional<ReelCore::URL> chooseFolder(const QString& message) = 0;

    /// Shows a file in the file manager.
    virtual void reveal(const ReelCore::URL& file) = 0;
};

}  // namespace keldo_app
