#pragma once

#include "keldo-app/Support/Desktop.h"

#include <QQmlApplicationEngine>

namespace keldo_app {

/// Loads the application's window, `ContentView`, into `engine` and shows it. `desktop` must
/// outlive the engine. False if the window could not be made.
bool loadWindow(QQmlApplicationEngine& engine, Desktop& desktop);

}  // namespace keldo_app
