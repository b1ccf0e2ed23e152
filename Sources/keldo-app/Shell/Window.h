#pragma once

#include "keldo-app/Support/Desktop.h"

#include <QQmlApplicationEngine>

namespace keldo_app {

/// Gives `engine` the fonts, symbols and modules that every window of ours needs.
void prepareEngine(QQmlApplicationEngine& engine);

/// Loads the application's window, `ContentView`, into `engine` and shows it. `desktop` must
/// outlive the engine. False if the window could not be made.
bool loadWindow(QQmlApplicationEngine& engine, Desktop& desktop);

/// Runs the event loop until the last window is closed, then ends the process with its status. A
/// job that still runs unseen ends with the process; a child that it waits for gets three seconds
/// to end, and its files in the temporary folder are removed.
[[noreturn]] void runUntilClosed();

}  // namespace keldo_app
