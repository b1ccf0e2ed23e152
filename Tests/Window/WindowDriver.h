#pragma once

#include "ReelCore/Platform/URL.h"
#include "keldo-app/Offload/OffloadViewModel.h"
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

/// The real window, used as a person would use it: things are found by their names, pressed where
/// they stand and read as they show. Whatever does not come in time is thrown as
/// std::runtime_error, with what was waited for.
class WindowDriver {
public:
    explicit WindowDriver(keldo_app::Desktop& desktop);
    ~WindowDriver();

    WindowDriver(const WindowDriver&) = delete;
    WindowDriver& operator=(const WindowDriver&) = delete;

    QQuickWindow& window() const { return *window_; }

    /// The Offload screen's view model; null while another mode shows.
    keldo_app::OffloadViewModel* offload() const;

    /// The visible item of that name, or null.
    QQuickItem* find(const QString& name) const;

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
    void key(Qt::Key key);

    /// A key that was pressed elsewhere and is held: all that comes of it are its repeats.
    void heldKey(Qt::Key key);

    void waitFor(const std::string& what, const std::function<bool()>& condition,
                 int milliseconds = 30'000) const;
    void waitForStage(keldo_app::OffloadViewModel::Stage stage, int milliseconds = 120'000) const;

    void resize(int width, int height);
    void screenshot(const ReelCore::URL& path) const;

    /// What the toolkit had to complain about since the start.
    const QStringList& warnings() const;

private:
    /// Waits until everything has its place.
    void settle() const;
    void scrollTo(QQuickItem& item) const;
    /// Scrolls the item into view; where its middle is then.
    QPoint reach(const QString& name) const;

    QQmlApplicationEngine engine_;
    QQuickWindow* window_ = nullptr;
};

}  // namespace WindowSupport
