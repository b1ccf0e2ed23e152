#pragma once

#include "OffloadDriver.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Window/WindowFixture.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace WindowSupport {

/// The application's window over a small card and drives.
class OffloadFixture : public WindowFixture {
protected:
    using Stage = keldo_app::OffloadViewModel::Stage;

    OffloadFixture();
    void TearDown() override;

    ReelCore::URL card() const { return folder_.path() / "A001_C003"; }
    ReelCore::URL drive(const std::string& name) const { return folder_.path() / name; }

    keldo_app::OffloadViewModel* offload() const { return offloadOf(*driver_); }
    void waitForStage(Stage stage, int milliseconds = 120'000) const {
        WindowSupport::waitForStage(*driver_, stage, milliseconds);
    }

    void chooseCard(const ReelCore::URL& source);
    void addDrive(const ReelCore::URL& drive);

    /// A window with the card and both drives chosen and the reel named "A001".
    void setUpOffload();
    void runToEnd();

    /// Shows the result of the run anew, as one in which the drives had these states.
    void showResultWith(const std::vector<ReelCore::DestinationState>& states);

    /// Mounts a faulty drive, unmounted when the test ends.
    ReelCore::URL faultyDrive(const TestSupport::FaultyFileSystem::Faults& faults);

    std::unique_ptr<TestSupport::FaultyFileSystem> faulty_;
};

}  // namespace WindowSupport
