#pragma once

#include "Support/FolderTree.h"
#include "Window/FakeDesktop.h"
#include "keldo-app/Offload/OffloadViewModel.h"

#include <QTest>

#include <gtest/gtest.h>

/// A view model over a small card and two drives, without a window.
class OffloadViewModelFixture : public testing::Test {
protected:
    using Stage = keldo_app::OffloadViewModel::Stage;

    OffloadViewModelFixture() {
        TestSupport::writeTree(card(), {{"XDROOT/Clip/A.MXF", "picture"}, {"sound.wav", "sound"}});
        std::filesystem::create_directories(one());
        std::filesystem::create_directories(two());
        model_.desktop = &desktop_;
    }

    ReelCore::URL card() const { return folder_.path() / "card"; }
    ReelCore::URL one() const { return folder_.path() / "one"; }
    ReelCore::URL two() const { return folder_.path() / "two"; }

    void choose(const ReelCore::URL& source) {
        desktop_.answers = {source};
        model_.chooseSource();
        ASSERT_TRUE(waitForStage(Stage::setup));
    }

    void add(const ReelCore::URL& drive) {
        desktop_.answers = {drive};
        model_.addDestination();
    }

    void runToEnd() {
        model_.start();
        ASSERT_TRUE(waitForStage(Stage::finished));
    }

    bool waitForStage(Stage stage) const {
        return QTest::qWaitFor([&] { return model_.stage() == stage; }, 60'000);
    }

    TestSupport::TemporaryFolder folder_;
    WindowSupport::FakeDesktop desktop_;
    keldo_app::OffloadViewModel model_;
};
