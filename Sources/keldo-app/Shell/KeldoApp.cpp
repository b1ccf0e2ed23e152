#include "ReelCore/Platform/ProcessSignals.h"
#include "keldo-app/Shell/Window.h"
#include "keldo-app/Support/SystemDesktop.h"

#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <cstdlib>

int main(int argc, char* argv[]) {
    ReelCore::cleanUpOnSignals();
    QApplication application(argc, argv);
    QApplication::setOrganizationName("keldobay");
    QApplication::setApplicationName("keldobay");
    QApplication::setDesktopFileName("keldobay");

    keldo_app::SystemDesktop desktop;
    QQmlApplicationEngine engine;
    if (!keldo_app::loadWindow(engine, desktop)) return EXIT_FAILURE;
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    window->raise();
    window->requestActivate();
    keldo_app::runUntilClosed();
}
