#include "ReelCore/Platform/ChildProcess.h"
#include "keldo-app/Shell/Window.h"
#include "keldo-app/Support/SystemDesktop.h"

#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <cstdlib>

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationName("keldobay");
    QApplication::setDesktopFileName("keldobay");

    keldo_app::SystemDesktop desktop;
    QQmlApplicationEngine engine;
    if (!keldo_app::loadWindow(engine, desktop)) return EXIT_FAILURE;
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    window->raise();
    window->requestActivate();
    const int status = QApplication::exec();

    // A job may still be running unseen. It ends here with the process, and its child with it;
    // unwinding the process beneath it would not be safe.
    ReelCore::ChildProcess::endAll();
    std::_Exit(status);
}
