#pragma once

#include "Support/FolderTree.h"
#include "Window/FakeDesktop.h"
#include "Window/WindowDriver.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace WindowSupport {

/// A test of a window. Every one ends by looking for complaints of the toolkit; one that fails
/// leaves a picture of what showed.
class WindowFixture : public testing::Test {
protected:
    void TearDown() override;

    /// Opens the application's window.
    void openWindow();

    /// Pictures of what the window shows, light and dark, at the smallest and at a large size.
    void keepPictures(const std::string& state);

    TestSupport::TemporaryFolder folder_;
    FakeDesktop desktop_;
    std::unique_ptr<WindowDriver> driver_;
};

}  // namespace WindowSupport
