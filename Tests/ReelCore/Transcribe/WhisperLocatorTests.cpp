#include "ReelCore/Transcribe/WhisperLocator.h"

#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"
#include "Support/OwnMounts.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::EnvironmentVariable;
using TestSupport::TemporaryFolder;

/// The user's data in a folder of the test's own, and no variable that names a tool or a model.
class WhisperLocatorTest : public ::testing::Test {
protected:
    URL models() const { return folder_.path() / "keldobay/models"; }

    URL addModel(const std::string& name, std::size_t bytes = 1) const {
        TestSupport::writeFile(models() / name, std::string(bytes, 'm'));
        return models() / name;
    }

    std::vector<URL> asListed() const {
        std::vector<URL> paths;
        for (const auto& entry : std::filesystem::directory_iterator(models())) {
            paths.push_back(entry.path());
        }
        return paths;
    }

    const URL& folder() const { return folder_.path(); }
    const WhisperLocator locator{};

private:
    TemporaryFolder folder_;
    EnvironmentVariable data_{"XDG_DATA_HOME", folder_.path().native()};
    EnvironmentVariable tool_{"KELDO_WHISPER_CLI", std::nullopt};
    EnvironmentVariable model_{"KELDO_WHISPER_MODEL", std::nullopt};
};

URL makeTool(const URL& path) {
    TestSupport::writeFile(path, "#!/bin/sh\n");
    std::filesystem::permissions(path, std::filesystem::perms(0755));
    return path;
}

TEST_F(WhisperLocatorTest, ModelsDirectory_IsInTheUsersDataAndNeedNotBeThere) {
    EXPECT_EQ(WhisperLocator::modelsDirectory(), models());
    EXPECT_FALSE(std::filesystem::exists(models()));
}

TEST_F(WhisperLocatorTest, ToolNamedByTheVariable_IsTakenAsItStands) {
    makeTool(folder() / "my whisper");
    const std::string named = folder().native() + "/./my whisper";
    const EnvironmentVariable variable("KELDO_WHISPER_CLI", named);

    EXPECT_EQ(locator.whisperCLI()->native(), named);
}

TEST_F(WhisperLocatorTest, VariableThatNamesNoExecutable_IsPassedOver) {
    const auto installed = locator.whisperCLI();
    TestSupport::writeFile(folder() / "plain", "#!/bin/sh\n");

    for (const URL& value : {folder() / "plain", folder() / "missing", folder(), URL()}) {
        const EnvironmentVariable variable("KELDO_WHISPER_CLI", value.native());
        EXPECT_EQ(locator.whisperCLI(), installed) << value;
    }
}

// One folder after the other gets the tool, the last to be asked first.
TEST_F(WhisperLocatorTest, Folders_AreAskedInOrderAndAnewEachTimeAndNeverTheSearchPath) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    static constexpr std::array lastFirst{"/usr/bin", "/opt/local/bin", "/usr/local/bin",
                                          "/opt/homebrew/bin"};

    const int wrong = TestSupport::statusInOwnMounts([&] {
        for (const char* place : {"/opt", "/usr/local/bin", "/usr/bin"}) {
            TestSupport::mountEmptyFolder(place);
        }
        makeTool(folder() / "bin/whisper-cli");
        const EnvironmentVariable path("PATH", folder() / "bin");
        int differences = locator.whisperCLI() ? 1 : 0;
        for (const URL place : lastFirst) {
            const URL tool = makeTool(place / "whisper-cli");
            if (locator.whisperCLI() != tool) ++differences;
        }
        return differences;
    });

    EXPECT_EQ(wrong, 0);
}

TEST_F(WhisperLocatorTest, NoModelsDirectory_HasNoModel) {
    EXPECT_EQ(locator.model(), std::nullopt);
    EXPECT_TRUE(locator.availableModels().empty());
}

TEST_F(WhisperLocatorTest, FileInPlaceOfTheModelsDirectory_HasNoModel) {
    TestSupport::writeFile(models(), "no folder");

    EXPECT_EQ(locator.model(), std::nullopt);
    EXPECT_TRUE(locator.availableModels().empty());
}

TEST_F(WhisperLocatorTest, OnlyNamesThatEndInBin_AreModels) {
    for (const char* name : {"ggml-base.en.txt", "ggml-base.en.BIN", "ggml-base.en.bin.part",
                             ".bin", "bin", "ggml-base.enbin"}) {
        addModel(name);
    }
    EXPECT_EQ(locator.model(), std::nullopt);
    EXPECT_TRUE(locator.availableModels().empty());

    const URL model = addModel("ggml-base.bin");

    EXPECT_EQ(locator.model(), model);
    EXPECT_EQ(locator.availableModels(), std::vector{model});
}

TEST_F(WhisperLocatorTest, EnglishOnlyModel_IsChosenWhileTheLargeOneIsListedFirst) {
    const URL large = addModel("ggml-large-v3.bin", 3000);
    const URL english = addModel("ggml-base.en.bin", 140);

    EXPECT_EQ(locator.model(), english);
    EXPECT_EQ(locator.availableModels(), (std::vector{large, english}));
}

TEST_F(WhisperLocatorTest, SeveralOfAKind_TheFirstListedIsChosen) {
    for (const char* name : {"d.bin", "a.bin", "c.bin", "b.bin"}) addModel(name);
    EXPECT_EQ(locator.model(), asListed().front());

    for (const char* name : {"z.en.bin", "m.en.bin", "y.en.bin"}) addModel(name);
    const auto listed = asListed();
    EXPECT_EQ(locator.model(), *std::ranges::find_if(listed, WhisperLocator::isEnglishOnly));
}

TEST_F(WhisperLocatorTest, ModelsOfOneSize_StayInListingOrderAndAnUnknownSizeIsZero) {
    for (const char* name : {"d.bin", "a.bin", "c.bin", "b.bin"}) addModel(name, 100);
    const auto listed = asListed();
    const URL large = addModel("e.bin", 101);
    std::filesystem::create_symlink("nowhere", models() / "dangling.bin");

    std::vector<URL> expected{large};
    expected.insert(expected.end(), listed.begin(), listed.end());
    expected.push_back(models() / "dangling.bin");
    EXPECT_EQ(locator.availableModels(), expected);
}

TEST_F(WhisperLocatorTest, ModelNamedByTheVariable_IsTakenIfAFileIsThere) {
    const URL listed = addModel("ggml-base.en.bin");
    const URL named = folder() / "mine";
    const EnvironmentVariable variable("KELDO_WHISPER_MODEL", named.native());

    EXPECT_EQ(locator.model(), listed);

    TestSupport::writeFile(named, "model");
    EXPECT_EQ(locator.model(), named);
}

TEST_F(WhisperLocatorTest, IsAvailable_AsksForToolAndModel) {
    if (locator.whisperCLI()) GTEST_SKIP() << "this machine has a whisper-cli of its own";
    EXPECT_FALSE(locator.isAvailable());
    addModel("ggml-base.bin");
    EXPECT_FALSE(locator.isAvailable());

    const EnvironmentVariable variable("KELDO_WHISPER_CLI", makeTool(folder() / "tool").native());
    EXPECT_TRUE(locator.isAvailable());

    std::filesystem::remove(models() / "ggml-base.bin");
    EXPECT_FALSE(locator.isAvailable());
}

TEST(WhisperLocatorNames, DisplayName_IsWithoutFolderExtensionAndFormat) {
    EXPECT_EQ(WhisperLocator::displayName("/m/ggml-base.en.bin"), "base.en");
    EXPECT_EQ(WhisperLocator::displayName("ggml-ggml-large-v3.bin"), "large-v3");
    EXPECT_EQ(WhisperLocator::displayName("/ggml-x/my-ggml-tiny"), "my-tiny");
    EXPECT_EQ(WhisperLocator::displayName("/m/ggmlggml--a.bin"), "ggml-a");
    EXPECT_EQ(WhisperLocator::displayName("/m/caf\xE9.bin"), "caf\uFFFD");
}

TEST(WhisperLocatorNames, EnglishOnly_IsToldByTheNameAlone) {
    EXPECT_TRUE(WhisperLocator::isEnglishOnly("/m/ggml-base.en.bin"));
    EXPECT_TRUE(WhisperLocator::isEnglishOnly("/m/ggml-base.en-q5_1.bin"));
    EXPECT_FALSE(WhisperLocator::isEnglishOnly("/my.en/ggml-base.bin"));
    EXPECT_FALSE(WhisperLocator::isEnglishOnly("/m/ggml-english.bin"));
    EXPECT_FALSE(WhisperLocator::isEnglishOnly("/m/ggml-base.EN.bin"));
}

}  // namespace

}  // namespace ReelCore
