#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// Names and paths that others gave, as a row can show them.
class PlainName : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    using QObject::QObject;

    /// `name` on one line, read from the left. A control character becomes its picture (a line feed
    /// "␊"), a mark that steers the direction of text its number ("[U+202E]"), and each part of a
    /// path that runs from the right stays in its place between the slashes.
    Q_INVOKABLE static QString oneLine(const QString& name);
};

}  // namespace keldo_app
