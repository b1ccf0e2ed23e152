#include "ReelCore/Diarize/DiarizationModels.h"

#include "ReelCore/Diarize/Diarizer.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"
#include "Support/OwnMounts.h"

#include <array>
#include <filesystem>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::EnvironmentVariable;

URL makeTool(const URL& path) {
    TestSupport::writeFile(path, "#!/bin/sh\n");
    std::filesystem::permissions(path, std::filesystem::perms(0755));
    return path;
}

class DiarizationModelsTest : public ::testing::Test {
protected:
    const URL& folder() const { return folder_.path(); }

    const DiarizationModels models{};

private:
    TestSupport::TemporaryFolder folder_;
    EnvironmentVariable data_{"XDG_DATA_HOME", folder_.path().native()};
    EnvironmentVariable python_{"KELDO_PYTHON", std::nullopt};
};

TEST_F(DiarizationModelsTest, Files_StandInTheFolderOfSpeechModels) {
    const URL place = folder() / "keldobay/models/diarization";

    EXPECT_EQ(DiarizationModels::directory(), place);
    EXPECT_EQ(models.segmentation(), place / "segmentation.onnx");
    EXPECT_EQ(models.embedding(), place / "embedding.onnx");
}

TEST_F(DiarizationModelsTest, ModelsPresent_AsksForBoth) {
    EXPECT_FALSE(models.modelsPresent());

    TestSupport::writeFile(models.segmentation(), "model");
    EXPECT_FALSE(models.modelsPresent());

    TestSupport::writeFile(models.embedding(), "model");
    EXPECT_TRUE(models.modelsPresent());

    std::filesystem::remove(models.segmentation());
    EXPECT_FALSE(models.modelsPresent());
}

TEST_F(DiarizationModelsTest, IsAvailable_AsksForPythonAndModelsAlone) {
    const EnvironmentVariable python("KELDO_PYTHON", makeTool(folder() / "any tool").native());
    TestSupport::writeFile(models.segmentation(), "model");
    EXPECT_FALSE(models.isAvailable());
    EXPECT_FALSE(Diarizer().isAvailable());

    TestSupport::writeFile(models.embedding(), "model");
    EXPECT_TRUE(models.isAvailable());
    EXPECT_TRUE(Diarizer().isAvailable());
}

// Resolved, the python of an environment would lose its packages.
TEST_F(DiarizationModelsTest, PythonNamedByTheVariable_IsTakenAsItStands) {
    makeTool(folder() / "python3.11");
    const URL link = folder() / "bin/../python3";
    std::filesystem::create_directory(folder() / "bin");
    std::filesystem::create_symlink("python3.11", link);
    const EnvironmentVariable named("KELDO_PYTHON", link.native());

    EXPECT_EQ(models.python()->native(), link.native());
}

TEST_F(DiarizationModelsTest, VariableThatNamesNoExecutable_IsPassedOver) {
    const auto installed = models.python();
    TestSupport::writeFile(folder() / "plain", "#!/bin/sh\n");

    for (const URL& value : {folder() / "plain", folder() / "missing", folder(), URL()}) {
        const EnvironmentVariable named("KELDO_PYTHON", value.native());
        EXPECT_EQ(models.python(), installed) << value;
    }
}

// One folder after the other gets its python, the last to be asked first.
TEST_F(DiarizationModelsTest, Folders_AreThreeAndAskedInOrder) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    static constexpr std::array lastFirst{"/usr/bin", "/usr/local/bin", "/opt/homebrew/bin"};

    const int wrong = TestSupport::statusInOwnMounts([&] {
        for (const char* place : {"/opt", "/usr/local/bin", "/usr/bin"}) {
            TestSupport::mountEmptyFolder(place);
        }
        makeTool("/opt/local/bin/python3");
        const EnvironmentVariable path("PATH", "/opt/local/bin");
        int differences = models.python() ? 1 : 0;
        for (const URL place : lastFirst) {
            const URL tool = makeTool(place / "python3");
            if (models.python() != tool) ++differences;
        }
        return differences;
    });

    EXPECT_EQ(wrong, 0);
}

}  // namespace

}  // namespace ReelCore
