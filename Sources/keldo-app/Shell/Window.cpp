#include "keldo-app/Shell/Window.h"

#include "ReelCore/Platform/ProcessCleanup.h"
#include "keldo-app/Components/SymbolProvider.h"

#include <QGuiApplication>
#include <cstdlib>

#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Keldo_ComponentsPlugin)
Q_IMPORT_QML_PLUGIN(Keldo_ShellPlugin)
Q_IMPORT_QML_PLUGIN(Keldo_SupportPlugin)

namespace keldo_app {

void prepareEngine(QQmlApplicationEngine& engine) {
    engine.addImportPath("qrc:/qt/qml");
    engine.addImageProvider("symbol", new SymbolProvider);
}

bool loadWindow(QQmlApplicationEngine& engine, Desktop& desktop) {
    prepareEngine(engine);
    engine.setInitialProperties({{"desktop", QVariant::fromValue(&desktop)}});
    engine.load(QUrl("qrc:/qt/qml/Keldo/Shell/ContentView.qml"));
    return !engine.rootObjects().isEmpty();
}

void runUntilClosed() {
    const int status = QGuiApplication::exec();
    ReelCore::ProcessCleanup::shared().run();
    // Not by unwinding: what the jobs' threads still use must stay to the last.
    std::_Exit(status);
}

}  // namespace keldo_app
