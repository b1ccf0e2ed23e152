#pragma once

#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Transcode/TranscodeTypes.h"
#include "Support/Clip.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace ReelCore {

/// A LUT that makes every colour this one, red, green and blue from 0 to 1.
inline std::string flatCube(const std::string& colour) {
    std::string text = "LUT_3D_SIZE 2\n";
    for (int i = 0; i < 8; ++i) text += colour + "\n";
    return text;
}

/// A folder for the clips and a temporary folder of the test's own. However a job ends, nothing of
/// it may stay: no child, no log, no link.
class TranscodeFixture : public ::testing::Test {
protected:
    TranscodeFixture() { std::filesystem::create_directory(temporary()); }

    void TearDown() override {
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
        EXPECT_EQ(errno, ECHILD);
        EXPECT_EQ(leftBehind(), std::vector<std::string>{});
    }

    const URL& folder() const { return folder_.path(); }
    URL temporary() const { return folder() / "temporary"; }

    /// What stands in the temporary folder, but for the folders of the test's own tools.
    std::vector<std::string> leftBehind() const {
        std::vector<std::string> names = FileSystem::names(temporary());
        std::erase_if(names,
                      [](const std::string& name) { return name.starts_with("keldo-test"); });
        return names;
    }

    URL clip(const std::string& name, const TestSupport::ClipRecipe& recipe = {}) const {
        std::filesystem::create_directories((folder() / name).parent_path());
        TestSupport::makeClip(folder() / name, recipe);
        return folder() / name;
    }

    /// A job that needs no real clip, for a fake ffmpeg.
    TranscodeRequest anyJob() const {
        TestSupport::writeFile(folder() / "in/A001.mov", "picture");
        return {folder() / "in/A001.mov", folder() / "out", TranscodePreset::proRes422, {}, {}};
    }

private:
    TestSupport::TemporaryFolder folder_;
    TestSupport::EnvironmentVariable variable_{"TMPDIR", temporary().native()};
};

inline void ignoreProgress(const TranscodeProgress&) {}

}  // namespace ReelCore
