#pragma once

#include "Window/FakeDesktop.h"
#include "Window/WindowDriver.h"

#include <functional>
#include <string>
#include <vector>

namespace Tour {

/// Leads through the window: says each step, does it, and throws std::runtime_error with a plain
/// sentence where what must come does not.
class Guide {
public:
    /// Pictures go into the folder, with numbers in their order.
    explicit Guide(const ReelCore::URL& pictures);

    void press(const QString& name);

    /// Presses a button that opens a panel, which is answered with a folder or a file.
    void choose(const QString& button, const ReelCore::URL& answer);
    void chooseFiles(const QString& button, const std::vector<ReelCore::URL>& answer);

    void waitFor(const QString& name) const;

    /// Waits for an item to show a text other than the one before, which must be `text`.
    void waitForText(const QString& name, const QString& text, const QString& before = {}) const;

    void require(bool holds, const std::string& what) const;
    void requireText(const QString& name, const QString& text) const;

    /// Scrolls an item into view.
    void show(const QString& name);

    void picture(const std::string& name);

    static void say(const std::string& line);

    WindowSupport::FakeDesktop desktop;
    WindowSupport::WindowDriver driver;

private:
    ReelCore::URL pictures_;
    int count_ = 0;
};

}  // namespace Tour
