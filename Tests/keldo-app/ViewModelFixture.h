#pragma once

#include "Support/FolderTree.h"
#include "Window/FakeDesktop.h"

#include <QTest>
#include <filesystem>
#include <functional>
#include <string>

#include <gtest/gtest.h>

/// A screen's view model over a folder of the test's own, without a window.
template <class Model>
class ViewModelFixture : public testing::Test {
protected:
    using Stage = typename Model::Stage;

    ViewModelFixture() { model_.desktop = &desktop_; }

    ReelCore::URL place(const std::string& name) const { return folder_.path() / name; }

    ReelCore::URL madeFolder(const std::string& name) const {
        std::filesystem::create_directories(place(name));
        return place(name);
    }

    /// Presses what opens a panel, and chooses there.
    template <class Answer>
    void choose(void (Model::*action)(), const Answer& answer) {
        desktop_.answers = {answer};
        (model_.*action)();
    }

    static bool waitFor(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, 120'000);
    }

    bool waitForStage(Stage stage) const {
        return waitFor([&] { return model_.stage() == stage; });
    }

    TestSupport::TemporaryFolder folder_;
    WindowSupport::FakeDesktop desktop_;
    Model model_;
};
