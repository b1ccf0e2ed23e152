#pragma once

#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Window/FakeDesktop.h"
#include "Window/WindowDriver.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace WindowSupport {

/// The real window over a small card and two drives. Every test ends by looking for complaints of
/// the toolkit.
class WindowFixture : public testing::Test {
protected:
    using Stage = keldo_app::OffloadViewModel::Stage;

    WindowFixture();
    void TearDown() override;

    ReelCore::URL card() const { return folder_.path() / "A001_C003"; }
    ReelCore::URL drive(const std::string& name) const { return folder_.path() / name; }

    void openWindow();
    void chooseCard(const ReelCore::URL& source);
    void addDrive(const ReelCore::URL& drive);

    /// A window with the card and both drives chosen and the reel named "A001".
    void setUpOffload();
    void runToEnd();

    /// Shows the result of the run anew, as one in which the drives had these states.
    void showResultWith(const std::vector<ReelCore::DestinationState>& states);

    /// Mounts a faulty drive, unmounted when the test ends.
    ReelCore::URL faultyDrive(const TestSupport::FaultyFileSystem::Faults& faults);

    /// Pictures of what the window shows, light and dark, at the smallest and at a large size.
    void keepPictures(const std::string& state);

    TestSupport::TemporaryFolder folder_;
    std::unique_ptr<TestSupport::FaultyFileSystem> faulty_;
    FakeDesktop desktop_;
    std::unique_ptr<WindowDriver> driver_;
};

}  // namespace WindowSupport
