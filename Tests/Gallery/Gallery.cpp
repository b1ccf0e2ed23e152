#include "Gallery/Gallery.h"

#include "keldo-app/Shell/Window.h"

namespace Gallery {

bool load(QQmlApplicationEngine& engine) {
    keldo_app::prepareEngine(engine);
    engine.load(QUrl("qrc:/gallery/Gallery.qml"));
    return !engine.rootObjects().isEmpty();
}

}  // namespace Gallery
