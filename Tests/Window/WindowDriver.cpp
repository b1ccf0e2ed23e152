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

WindowDriver::WindowDriver(const Load& load) {
    complaints().clear();
    if (!load(engine_)) {
        throw std::runtime_error("no window: " + complaints().join("; ").toStdString());
    }
    window_ = qobject_cast<QQuickWindow*>(engine_.rootObjects().constFirst());
    window_->requestActivate();
    waitFor("the window to be active", [this] { return window_->isActive(); });
}

WindowDriver::~WindowDriver() = default;

QQuickItem* WindowDriver::find(const QString& name) const {
    return findBelow(window_->contentItem(), name);
}

QQuickItem& WindowDriver::at(const QString& name) const {
    QQuickItem* item = nullptr;
    waitFor(name.toStdString() + " to show", [&] { return (item = find(name)) != nullptr; });
    return *item;
}

bool WindowDriver::isEnabled(const QString& name) const {
    const QQuickItem* item = find(name);
    return item && item->isEnabled();
}

QString WindowDriver::text(const QString& name) const {
    const QQuickItem& item = at(name);
    const QVariant text = item.property("text");
    return text.isValid() ? text.toString() : item.property("title").toString();
}

Shown WindowDriver::shown(const QString& name) const {
    Shown shown;
    readBelow(at(name), shown);
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
    const QQuickItem& item = at(name);
    scrollTo(item);
    return item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint();
}

void WindowDriver::settle() const {
    if (!QQuickTest::qWaitForPolish(window_))
        throw std::runtime_error("the window does not settle");
}

void WindowDriver::scrollTo(const QQuickItem& item) {
    for (QQuickItem* view = item.parentItem(); view; view = view->parentItem()) {
        if (!view->inherits("QQuickFlickable")) continue;
        const double top = item.mapToItem(view, QPointF(0, 0)).y();
        const double bottom = top + item.height();
        const double now = view->property("contentY").toDouble();
        if (top < 0) view->setProperty("contentY", now + top);
        if (bottom > view->height()) view->setProperty("contentY", now + bottom - view->height());
    }
}

void WindowDriver::type(const QString& text) {
    for (const QChar character : text) {
        const bool isCapital = character.isUpper();
        QTest::keyClick(window_, character.toLatin1(),
                        isCapital ? Qt::ShiftModifier : Qt::NoModifier);
    }
}

void WindowDriver::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(window_, key, modifiers);
}

void WindowDriver::focus(const QString& name) {
    at(name).forceActiveFocus(Qt::TabFocusReason);
}

QString WindowDriver::focused() const {
    const QQuickItem* item = window_->activeFocusItem();
    while (item && item->objectName().isEmpty()) item = item->parentItem();
    return item ? item->objectName() : QString();
}

QStringList WindowDriver::tabRound() {
    constexpr int most = 300;
    QStringList names;
    while (names.size() < most) {
        key(Qt::Key_Tab);
        if (names.contains(focused())) break;
        names += focused();
    }
    return names;
}

void WindowDriver::wheel(const QString& name, int steps) {
    constexpr int eighths = 120;
    const QPoint place = reach(name);
    QWheelEvent event(place, window_->mapToGlobal(place), {}, QPoint(0, -steps * eighths),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window_, &event);
}

void WindowDriver::drag(QPoint from, QPoint to) {
    constexpr int steps = 10;
    QTest::mousePress(window_, Qt::LeftButton, Qt::NoModifier, from);
    for (int i = 1; i <= steps; ++i) QTest::mouseMove(window_, from + (to - from) * i / steps);
    QTest::mouseRelease(window_, Qt::LeftButton, Qt::NoModifier, to);
    QCoreApplication::processEvents();
}

AccessibleNode WindowDriver::accessible(const QString& name) const {
    return AccessibleNode::of(at(name));
}

void WindowDriver::accessiblePress(const QString& name) {
    AccessibleNode::act(at(name), "Press");
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

WindowDriver::Load application(keldo_app::Desktop& desktop) {
    return [&desktop](QQmlApplicationEngine& engine) {
        return keldo_app::loadWindow(engine, desktop);
    };
}

}  // namespace WindowSupport
