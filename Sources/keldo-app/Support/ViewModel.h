#pragma once

#include "ReelCore/Platform/URL.h"
#include "keldo-app/Support/Desktop.h"

#include <QObject>
#include <QString>
#include <QVariant>
#include <optional>

#include <QtQml/qqmlregistration.h>

/// A published field in one line: a property for QML to read, `name()` for C++, and `name_` for the
/// view model itself, which emits `changed` after it has altered fields.
#define KELDO_PUBLISHED(Type, name, ...)           \
    Q_PROPERTY(Type name READ name NOTIFY changed) \
public:                                            \
    const Type& name() const {                     \
        return name##_;                            \
    }                                              \
                                                   \
private:                                           \
    Type name##_ = __VA_ARGS__;

/// A published field that the user edits: QML writes it as well, through `setter`.
#define KELDO_EDITED(Type, name, setter, ...)                   \
    Q_PROPERTY(Type name READ name WRITE setter NOTIFY changed) \
public:                                                         \
    const Type& name() const {                                  \
        return name##_;                                         \
    }                                                           \
    void setter(const Type& name) {                             \
        if (name##_ == name) return;                            \
        name##_ = name;                                         \
        emit changed();                                         \
    }                                                           \
                                                                \
private:                                                        \
    Type name##_ = __VA_ARGS__;

/// A field of a gadget, read by QML and C++ alike.
#define KELDO_FIELD(Type, name)       \
    Q_PROPERTY(Type name MEMBER name) \
public:                               \
    Type name{};

namespace keldo_app {

/// All state and all actions of one screen. Main thread only. One signal tells that something has
/// changed: a screen has some dozens of bindings, and looking at all of them costs less than a
/// signal and a setter for each field costs a reader.
class ViewModel : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(keldo_app::Desktop* desktop MEMBER desktop NOTIFY changed REQUIRED)

public:
    using QObject::QObject;

    /// Must be set before an action and must outlive this.
    Desktop* desktop = nullptr;

signals:
    void changed();
};

/// What QML sees of a value that may be absent: `Facts::of` the value, or nothing.
template <class Facts, class Value>
QVariant factsOf(const std::optional<Value>& value) {
    return value ? QVariant::fromValue(Facts::of(*value)) : QVariant();
}

/// A place that a user has chosen, or none; QML sees its texts, which are empty where there is
/// none.
struct OptionalURL : std::optional<ReelCore::URL> {
    Q_GADGET
    QML_ANONYMOUS
    Q_PROPERTY(QString path READ path)
    Q_PROPERTY(QString name READ name)

public:
    using std::optional<ReelCore::URL>::optional;

    QString path() const;
    /// The last part of the path.
    QString name() const;
};

/// A file or a folder as a row shows it.
struct PlaceRow {
    Q_GADGET
    KELDO_FIELD(QString, name)  ///< The last part of the path.
    KELDO_FIELD(QString, path)

    static PlaceRow of(const ReelCore::URL& url);
};

}  // namespace keldo_app
