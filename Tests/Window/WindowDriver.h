#pragma once

#include "ReelCore/Platform/URL.h"
#include "Window/AccessibleNode.h"
#include "keldo-app/Support/Desktop.h"

#include <QColor>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStringList>
#include <functional>
#include <string>

namespace WindowSupport {

enum class Look { light, dark };

/// What a label or a button shows: its text and its symbol, and the colours that both are drawn in
/// as "#rrggbb". Empty where it has none, or where the symbol has not become a picture.
struct Shown {
    std::string text;
    std::string textColor;
    std::string symbol;
    std::string symbolColor;

    bool operator==(const Shown&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Shown& shown);

/// The toolkit for one process that shows no window on any display. Made first, once.
void startOffscreen(int& argc, char** argv);

/// Gives the application a light or a dark system palette.
void setLook(Look look);

/// A window, used as a person would use it: things are found by their names, pressed where they
/// stand and read as they show. It knows no screen. Whatever does not come in time is thrown as
/// std::runtime_error, with what was waited for.
class WindowDriver {
public:
    /// Loads a window into the engine and shows it; false if it could not be made.
    using Load = std::function<bool(QQmlApplicationEngine&)>;

    explicit WindowDriver(const Load& load);
    ~WindowDriver();

    WindowDriver(const WindowDriver&) = delete;
    WindowDriver& operator=(const WindowDriver&) = delete;

    QQuickWindow& window() const { return *window_; }

    /// The visible item of that name, or null.
    QQuickItem* find(const QString& name) const;

    /// The visible item of that name, which may take a moment to show; throws std::runtime_error if
    /// it does not.
    QQuickItem& at(const QString& name) const;

    bool isShown(const QString& name) const { return find(name) != nullptr; }
    bool isEnabled(const QString& name) const;

    /// The text that the item shows: its own, or its label's.
    QString text(const QString& name) const;

    /// What is drawn of the item of that name; throws std::runtime_error if it does not show.
    Shown shown(const QString& name) const;

    /// The theme's colour of that name, in the look that is set.
    QColor themeColor(const QString& name);

    /// Waits until the item is there and enabled, scrolls it into view and clicks on its middle.
    void press(const QString& name);

    /// Scrolls the item into view and rests the pointer on its middle.
    void hover(const QString& name);

    /// Types into whatever has the focus.
    void type(const QString& text);
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// Gives the item the focus as Tab would.
    void focus(const QString& name);

    /// The name of what has the focus, or of the nearest thing around it that has a name.
    QString focused() const;

    /// The names that Tab reaches from where the focus is, in their order, once around.
    QStringList tabRound();

    /// Turns the wheel over the item's middle: positive steps show what is further down.
    void wheel(const QString& name, int steps);

    /// Presses the left button at one place of the window and lets it go at another.
    void drag(QPoint from, QPoint to);

    /// What an assistive tool is told of the item, and the tool's press.
    AccessibleNode accessible(const QString& name) const;
    void accessiblePress(const QString& name);

    /// A key that was pressed elsewhere and is held: all that comes of it are its repeats.
    void heldKey(Qt::Key key);

    void waitFor(const std::string& what, const std::function<bool()>& condition,
                 int milliseconds = 30'000) const;

    void resize(int width, int height);
    void screenshot(const ReelCore::URL& path) const;

    /// What the toolkit had to complain about since the start.
    const QStringList& warnings() const;

private:
    /// Waits until everything has its place.
    void settle() const;
    static void scrollTo(const QQuickItem& item);
    /// Scrolls the item into view; where its middle is then.
    QPoint reach(const QString& name) const;

    QQmlApplicationEngine engine_;
    QQuickWindow* window_ = nullptr;
};

/// Loads the application's window over a desktop, which must outlive it.
WindowDriver::Load application(keldo_app::Desktop& desktop);

}  // namespace WindowSupport
