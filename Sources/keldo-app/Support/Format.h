#pragma once

#include "ReelCore/Models/Enumeration.h"
#include "ReelCore/Platform/URL.h"

#include <QString>
#include <QStringList>
#include <cstdint>

namespace keldo_app {

/// Texts for the screen.
struct Format {
    /// A byte count in powers of 1024 up to TB: "512 B", "1.5 KB". Below 1024, also below zero, it
    /// stays in bytes.
    static QString bytes(std::int64_t bytes);

    /// A number and what is counted, with an "s" unless it is one: "1 clip", "2 clips".
    static QString count(std::int64_t number, const QString& noun);

    /// A fraction in whole percent, cut: "47%" from 0.479.
    static QString percent(double fraction);

    /// The name that a card's reel gets unless the user types another: the folder's name, "_" and
    /// today's date in the local time zone as "yyyy-MM-dd".
    static QString defaultReel(const ReelCore::URL& source);

    /// A path or a name from the file system; bytes that are no UTF-8 show as U+FFFD.
    static QString path(const ReelCore::URL& url);

    /// The last part of a path.
    static QString name(const ReelCore::URL& url);

    static QString text(std::string_view text);

    /// The raw values of an enumeration, in the order of its cases.
    template <class Enumeration>
    static QStringList rawValues() {
        QStringList values;
        for (const Enumeration one : ReelCore::allCases<Enumeration>()) {
            values.append(text(rawValue(one)));
        }
        return values;
    }
};

}  // namespace keldo_app
