#include "Gallery/Gallery.h"

#include <QApplication>
#include <cstdlib>

/// keldobay-gallery: every component in each state, to look at and to try.
int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QQmlApplicationEngine engine;
    return Gallery::load(engine) ? QApplication::exec() : EXIT_FAILURE;
}
