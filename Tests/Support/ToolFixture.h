#pragma once

#include "ReelCore/Platform/FileSystem.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace TestSupport {

/// A folder and a temporary folder of the test's own. However a run of a tool ends, nothing of it
/// may stay: no child, no log, no link.
class ToolFixture : public ::testing::Test {
protected:
    ToolFixture() { std::filesystem::create_directory(temporary()); }

    void TearDown() override {
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
        EXPECT_EQ(errno, ECHILD);
        EXPECT_EQ(leftBehind(), std::vector<std::string>{});
    }

    const ReelCore::URL& folder() const { return folder_.path(); }
    ReelCore::URL temporary() const { return folder() / "temporary"; }

    /// What stands in the temporary folder, but for the folders of the test's own tools.
    std::vector<std::string> leftBehind() const {
        std::vector<std::string> names = ReelCore::FileSystem::names(temporary());
        std::erase_if(names,
                      [](const std::string& name) { return name.starts_with("keldo-test"); });
        return names;
    }

private:
    TemporaryFolder folder_;
    EnvironmentVariable variable_{"TMPDIR", temporary().native()};
};

}  // namespace TestSupport
