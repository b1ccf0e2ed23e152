#pragma once

#include <QObject>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <optional>

#include <QtQml/qqmlregistration.h>

namespace keldo_app {

/// What the user chose last, by key, kept from one start to the next. Main thread only.
class Preferences : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application hands its preferences in.")

public:
    using QObject::QObject;

    /// What is stored under `key`; invalid only if nothing is. What was stored as a number may come
    /// back as its text: the operations below read both.
    virtual QVariant value(const QString& key) const = 0;

    /// Stores a text, a whole number or a number, to be seen at once by whoever reads it anew, also
    /// if this process dies the next moment. Where it can't be stored it holds for this run.
    virtual void set(const QString& key, const QVariant& value) = 0;

    /// A finite number, in the notation of programs whatever the user's language. Absent if the
    /// value is none, as a text that the user put into the file by hand.
    static std::optional<double> number(const QVariant& value);

    /// A whole number that fits. Absent if the value is none.
    static std::optional<std::int64_t> wholeNumber(const QVariant& value);

    /// The value as text. Absent if it is none, as a list.
    static std::optional<QString> text(const QVariant& value);
};

}  // namespace keldo_app
