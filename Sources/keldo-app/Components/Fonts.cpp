#include "keldo-app/Components/Fonts.h"

#include <QFontDatabase>
#include <QFontInfo>

namespace keldo_app {

QString Fonts::textFamily() {
    if (QFontDatabase::hasFamily("Inter")) return "Inter";
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
}

QString Fonts::codeFamily() {
    if (QFontDatabase::hasFamily("JetBrains Mono")) return "JetBrains Mono";
    const QFontInfo ofTheDesktop(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    if (ofTheDesktop.fixedPitch()) return ofTheDesktop.family();
    QFont fixed("monospace");
    fixed.setStyleHint(QFont::Monospace);
    return QFontInfo(fixed).family();
}

}  // namespace keldo_app
