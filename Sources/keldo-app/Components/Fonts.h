#pragma once

#include <QObject>
#include <QString>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// The font families that there are on this machine. Made after the application, main thread.
class Fonts : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString textFamily READ textFamily CONSTANT)
    Q_PROPERTY(QString codeFamily READ codeFamily CONSTANT)

public:
    /// Inter, else the family that the system has for text.
    static QString textFamily();

    /// JetBrains Mono, else the system's family in which all characters are equally wide.
    static QString codeFamily();
};

}  // namespace keldo_app
