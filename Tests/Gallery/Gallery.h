#pragma once

#include <QQmlApplicationEngine>

namespace Gallery {

/// Loads the window with all components into `engine` and shows it. False if it could not be made.
bool load(QQmlApplicationEngine& engine);

}  // namespace Gallery
