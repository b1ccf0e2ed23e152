#include "keldo-app/Components/PlainName.h"

#include <QChar>
#include <QStringList>
#include <algorithm>

namespace keldo_app {

namespace {

constexpr QChar leftToRight(0x200E);
constexpr QChar firstStrongIsolate(0x2068);
constexpr QChar popIsolate(0x2069);

bool isInvisible(QChar character) {
    const bool joins = character == QChar(0x200C) || character == QChar(0x200D);
    const QChar::Category category = character.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph || (category == QChar::Other_Format && !joins);
}

QString shown(QChar character) {
    constexpr char16_t pictures = 0x2400;
    constexpr char16_t pictureOfDelete = 0x2421;
    const char16_t code = character.unicode();
    if (code < 0x20) return QChar(char16_t(pictures + code));
    if (code == 0x7F) return QChar(pictureOfDelete);
    if (!isInvisible(character)) return character;
    return QStringLiteral("[U+%1]").arg(code, 4, 16, QLatin1Char('0')).toUpper();
}

bool runsFromTheRight(char32_t character) {
    const QChar::Direction direction = QChar::direction(character);
    return direction == QChar::DirR || direction == QChar::DirAL || direction == QChar::DirAN;
}

}  // namespace

QString PlainName::oneLine(const QString& name) {
    QString line;
    line.reserve(name.size());
    for (const QChar character : name) line += shown(character);
    const auto letters = line.toUcs4();
    if (std::none_of(letters.begin(), letters.end(), runsFromTheRight)) return line;
    QStringList parts = line.split(QLatin1Char('/'));
    for (QString& part : parts) {
        if (!part.isEmpty()) part = firstStrongIsolate + part + popIsolate;
    }
    return leftToRight + parts.join(QLatin1Char('/'));
}

}  // namespace keldo_app
