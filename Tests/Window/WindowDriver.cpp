#include "Window/WindowDriver.h"

#include "keldo-app/Shell/Window.h"

#include <QApplication>
#include <QPalette>
#include <QQmlComponent>
#include <QTest>
#include <filesystem>
#include <memory>
#include <ostream>
#include <stdexcept>

#include <QtQuickTest/quicktest.h>

namespace WindowSupport {

namespace {

QStringList& complaints() {
    static QStringList list;
    return list;
}

void keepComplaints(QtMsgType type, const QMessageLogContext&, const QString& message) {
    // Said once by every program where no login session runs.
    if (message.startsWith("QStandardPaths: XDG_RUNTIME_DIR not set")) return;
    if (type != QtDebugMsg && type != QtInfoMsg) complaints().append(message);
    fprintf(stderr, "%s\n", qPrintable(message));
}

QQuickItem* findBelow(QQuickItem* item, const QString& name) {
    if (!item->isVisible()) return nullptr;
    if (item->objectName() == name) return item;
    for (QQuickItem* child : item->childItems()) {
        if (QQuickItem* found = findBelow(child, name)) return found;
    }
    return nullptr;
}

/// Text and symbol of the first text and the first picture at or below `item`.
void readBelow(const QQuickItem& item, Shown& shown) {
    if (!item.isVisible()) return;
    const QString source = item.property("source").toString();
    constexpr int ready = 1;
    if (shown.text.empty() && (item.inherits("QQuickText") || item.inherits("QQuickTextEdit"))) {
        shown.text = item.property("text").toString().toStdString();
        shown.textColor = item.property("color").value<QColor>().name().toStdString();
    } else if (shown.symbol.empty() && source.startsWith("image://symbol/") &&
               item.property("status").toInt() == ready) {
        shown.symbol = source.section('/', 3, 3).toStdString();
        shown.symbolColor = "#" + source.section('/', 4, 4).toStdString();
    }
    for (const QQuickItem* child : item.childItems()) readBelow(*child, shown);
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Shown& shown) {
    return stream << "“" << shown.text << "” in " << shown.textColor << ", symbol “" << shown.symbol
                  << "” in " << shown.symbolColor;
}

void startOffscreen(int& argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    qInstallMessageHandler(keepComplaints);
    new QApplication(argc, argv);
    setLook(Look::light);
}

void setLook(Look look) {
    const bool dark = look == Look::dark;
    QPalette palette;
    palette.setColor(QPalette::Window, dark ? QColor(40, 40, 40) : QColor(240, 240, 240));
    palette.setColor(QPalette::WindowText, dark ? Qt::white : Qt::black);
    QApplication::setPalette(palette);
}

WindowDriver::WindowDriver(keldo_app::Desktop& desktop) {
    complaints().clear();
    if (!keldo_app::loadWindow(engine_, desktop)) {
        throw std::runtime_error("no window: " + complaints().join("; ").toStdString());
    }
    window_ = qobject_cast<QQuickWindow*>(engine_.rootObjects().constFirst());
    window_->requestActivate();
    waitFor("the window to be active", [this] { return window_->isActive(); });
}

WindowDriver::~WindowDriver() = default;

keldo_app::OffloadViewModel* WindowDriver::offload() const {
    return window_->findChild<keldo_app::OffloadViewModel*>("offload");
}

QQuickItem* WindowDriver::find(const QString& name) const {
    return findBelow(window_->contentItem(), name);
}

bool WindowDriver::isEnabled(const QString& name) const {
    const QQuickItem* item = find(name);
    return item && item->isEnabled();
}

QString WindowDriver::text(const QString& name) const {
    const QQuickItem* item = find(name);
    if (!item) throw std::runtime_error("nothing to read: " + name.toStdString());
    const QVariant text = item->property("text");
    return text.isValid() ? text.toString() : item->property("title").toString();
}

Shown WindowDriver::shown(const QString& name) const {
    const QQuickItem* item = find(name);
    if (!item) throw std::runtime_error("nothing to look at: " + name.toStdString());
    Shown shown;
    readBelow(*item, shown);
    return shown;
}

QColor WindowDriver::themeColor(const QString& name) {
    QQmlComponent component(&engine_);
    component.setData(
        "import QtQuick\nimport Keldo.Components\n"
        "QtObject { property color value: Theme." +
            name.toUtf8() + " }",
        QUrl("qrc:/ThemeColor.qml"));
    const std::unique_ptr<QObject> holder(component.create());
    if (!holder) throw std::runtime_error(component.errorString().toStdString());
    return holder->property("value").value<QColor>();
}

void WindowDriver::press(const QString& name) {
    waitFor("something to press: " + name.toStdString(), [&] { return isEnabled(name); });
    QTest::mouseClick(window_, Qt::LeftButton, Qt::NoModifier, reach(name));
    QCoreApplication::processEvents();
}

void WindowDriver::hover(const QString& name) {
    QTest::mouseMove(window_, reach(name));
}

QPoint WindowDriver::reach(const QString& name) const {
    settle();
    QQuickItem* item = find(name);
    if (!item) throw std::runtime_error("nothing to point at: " + name.toStdString());
    scrollTo(*item);
    return item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
}

void WindowDriver::settle() const {
    if (!QQuickTest::qWaitForPolish(window_))
        throw std::runtime_error("the window does not settle");
}

void WindowDriver::scrollTo(QQuickItem& item) const {
    QQuickItem* scroll = find("offload.scroll");
    if (!scroll || !scroll->isAncestorOf(&item)) return;
    const double top = item.mapToItem(scroll, QPointF(0, 0)).y();
    const double bottom = top + item.height();
    const double now = scroll->property("contentY").toDouble();
    if (top < 0) scroll->setProperty("contentY", now + top);
    if (bottom > scroll->height()) {
        scroll->setProperty("contentY", now + bottom - scroll->height());
    }
}

void WindowDriver::type(const QString& text) {
    for (const QChar character : text) {
        const bool isCapital = character.isUpper();
        QTest::keyClick(window_, character.toLatin1(),
                        isCapital ? Qt::ShiftModifier : Qt::NoModifier);
    }
}

void WindowDriver::key(Qt::Key key) {
    QTest::keyClick(window_, key);
}

void WindowDriver::heldKey(Qt::Key key) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        qt_handleKeyEvent(window_, type, key, Qt::NoModifier, {}, true);
    }
}

void WindowDriver::waitFor(const std::string& what, const std::function<bool()>& condition,
                           int milliseconds) const {
    if (!QTest::qWaitFor(condition, milliseconds)) {
        throw std::runtime_error("waited in vain for " + what);
    }
}

void WindowDriver::waitForStage(keldo_app::OffloadViewModel::Stage stage, int milliseconds) const {
    waitFor(
        "stage " + std::to_string(static_cast<int>(stage)),
        [&] { return offload() && offload()->stage() == stage; }, milliseconds);
    QCoreApplication::processEvents();
}

void WindowDriver::resize(int width, int height) {
    window_->resize(width, height);
    const QSizeF size(width, height);
    waitFor("the new size", [&] { return window_->contentItem()->size() == size; });
    settle();
}

void WindowDriver::screenshot(const ReelCore::URL& path) const {
    std::filesystem::create_directories(path.parent_path());
    if (!window_->grabWindow().save(QString::fromStdString(path.native()))) {
        throw std::runtime_error("no screenshot at " + path.native());
    }
}

const QStringList& WindowDriver::warnings() const {
    return complaints();
}

}  // namespace WindowSupport
