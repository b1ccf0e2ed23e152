#pragma once

#include "Window/WindowFixture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace WindowSupport {

/// The application's window on one of its screens, over files of the test's own.
class ScreenFixture : public WindowFixture {
protected:
    ReelCore::URL place(const std::string& name) const { return folder_.path() / name; }

    ReelCore::URL madeFolder(const std::string& name) const {
        std::filesystem::create_directories(place(name));
        return place(name);
    }

    void openMode(const QString& mode) {
        if (!driver_) openWindow();
        driver_->press("mode." + mode);
    }

    /// Presses what opens a panel, and chooses there.
    void choose(const QString& button, const ReelCore::URL& answer) {
        desktop_.answers = {answer};
        driver_->press(button);
    }

    void addClips(const std::vector<ReelCore::URL>& clips) {
        desktop_.filesAnswers = {clips};
        driver_->press("transcode.add");
    }

    void waitUntilShown(const QString& name, int milliseconds = 120'000) const {
        driver_->waitFor(
            name.toStdString(), [&] { return driver_->isShown(name); }, milliseconds);
    }
};

}  // namespace WindowSupport
