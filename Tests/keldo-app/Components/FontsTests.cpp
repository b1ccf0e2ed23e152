#include "keldo-app/Components/Fonts.h"

#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"
#include "Window/FakeDesktop.h"
#include "keldo-app/Shell/Window.h"

#include <QFontInfo>
#include <QQmlComponent>
#include <cstdlib>

#include <gtest/gtest.h>

using keldo_app::Fonts;

namespace {

/// Prints the families that the window's theme really draws with, and ends the process.
[[noreturn]] void tellFamilies() {
    WindowSupport::FakeDesktop desktop;
    QQmlApplicationEngine engine;
    keldo_app::loadWindow(engine, desktop);
    QQmlComponent theme(&engine);
    theme.setData(
        "import QtQuick\nimport Keldo.Components\n"
        "QtObject { property font text: Theme.body; property font code: Theme.code }",
        QUrl("qrc:/ThemeFonts.qml"));
    const std::unique_ptr<QObject> fonts(theme.create());
    const QFontInfo text(fonts->property("text").value<QFont>());
    const QFontInfo code(fonts->property("code").value<QFont>());
    fprintf(stderr, "text %s, code %s\n", qPrintable(text.family()), qPrintable(code.family()));
    std::_Exit(EXIT_SUCCESS);
}

}  // namespace

TEST(Fonts, WhereTheyAreInstalled_AreInterAndJetBrainsMono) {
    EXPECT_EQ(Fonts::textFamily(), "Inter");
    EXPECT_EQ(Fonts::codeFamily(), "JetBrains Mono");
}

TEST(Fonts, WhereTheyAreMissing_TextIsTheSystemsAndCodeKeepsItsWidth) {
    const TestSupport::TemporaryFolder folder;
    TestSupport::writeFile(folder.path() / "fonts.conf",
                           "<?xml version='1.0'?><!DOCTYPE fontconfig SYSTEM 'fonts.dtd'>"
                           "<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir>"
                           "<include>/etc/fonts/conf.d</include></fontconfig>");
    // The process that ends begins anew, and reads this before it has any font.
    const TestSupport::EnvironmentVariable fonts("FONTCONFIG_FILE", folder.path() / "fonts.conf");
    EXPECT_EXIT(tellFamilies(), testing::ExitedWithCode(0),
                "text DejaVu Sans, code DejaVu Sans Mono\n");
}
