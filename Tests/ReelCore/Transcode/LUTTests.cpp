#include "ReelCore/Transcode/LUT.h"

#include "ReelCore/Transcode/TranscodeError.h"
#include "Support/FolderTree.h"

#include <filesystem>
#include <optional>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace ReelCore {

namespace {

using TestSupport::TemporaryFolder;
using TestSupport::writeFile;

std::optional<TranscodeError> failureOf(const LUT& lut) {
    try {
        lut.validate();
        return std::nullopt;
    } catch (const TranscodeError& error) {
        return error;
    }
}

std::string unsupportedExtension(const URL& url) {
    const auto failure = failureOf(LUT{url});
    const auto* const unsupported =
        failure ? failure->get<TranscodeError::UnsupportedLUT>() : nullptr;
    return unsupported ? unsupported->extension : "(no such failure)";
}

TEST(LUT, Name_IsTheFilesWithoutItsExtension) {
    EXPECT_EQ(LUT{"/L/Show.cube"}.name(), "Show");
    EXPECT_EQ(LUT{"/L/Show.v2.cube"}.name(), "Show.v2");
    EXPECT_EQ(LUT{"/L.d/Show"}.name(), "Show");
    EXPECT_EQ(LUT{"/L/.cube"}.name(), ".cube");
}

TEST(LUT, Equality_IsThatOfTheURL) {
    EXPECT_EQ(LUT{"/L/a.cube"}, LUT{"/L/a.cube"});
    EXPECT_NE(LUT{"/L/a.cube"}, LUT{"/L/b.cube"});
}

TEST(LUTValidate, CubeAnd3DL_PassInUpperAndLowerCase) {
    const TemporaryFolder folder;
    for (const char* name : {"a.cube", "Show.CUBE", "a.3dl", "Show.3DL", "Show.Cube", "a.b.cube"}) {
        writeFile(folder.path() / name, "");
        EXPECT_NO_THROW(LUT{folder.path() / name}.validate()) << name;
    }
}

TEST(LUTValidate, OtherExtension_IsUnsupportedAndToldInLowerCase) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "Show.lut", "");
    writeFile(folder.path() / "Show.LOOK", "");
    writeFile(folder.path() / "Show.cube.bak", "");

    EXPECT_EQ(unsupportedExtension(folder.path() / "Show.lut"), "lut");
    EXPECT_EQ(unsupportedExtension(folder.path() / "Show.LOOK"), "look");
    EXPECT_EQ(unsupportedExtension(folder.path() / "Show.cube.bak"), "bak");
}

TEST(LUTValidate, NoExtension_IsUnsupportedAndEmpty) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "cube", "");
    writeFile(folder.path() / ".cube", "");

    EXPECT_EQ(unsupportedExtension(folder.path() / "cube"), "");
    EXPECT_EQ(unsupportedExtension(folder.path() / ".cube"), "");
}

TEST(LUTValidate, MissingFile_IsNotFoundWhateverItsExtension) {
    const TemporaryFolder folder;
    for (const char* name : {"a.cube", "a.lut", "a"}) {
        const auto failure = failureOf(LUT{folder.path() / name});
        ASSERT_TRUE(failure && failure->is<TranscodeError::LUTNotFound>()) << name;
        EXPECT_EQ(failure->get<TranscodeError::LUTNotFound>()->lut, folder.path() / name);
    }
}

TEST(LUTValidate, Links_AreFollowed) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "a.cube", "");
    std::filesystem::create_symlink("a.cube", folder.path() / "link.cube");
    std::filesystem::create_symlink("nowhere.cube", folder.path() / "dangling.cube");

    EXPECT_NO_THROW(LUT{folder.path() / "link.cube"}.validate());
    const auto failure = failureOf(LUT{folder.path() / "dangling.cube"});
    EXPECT_TRUE(failure && failure->is<TranscodeError::LUTNotFound>());
}

// ffmpeg would wait for a writer that never comes.
TEST(LUTValidate, PipesAndDevices_AreNotFound) {
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo((folder.path() / "pipe.cube").c_str(), 0600), 0);
    std::filesystem::create_symlink("pipe.cube", folder.path() / "to pipe.cube");
    std::filesystem::create_symlink("/dev/zero", folder.path() / "to device.3dl");

    for (const char* name : {"pipe.cube", "to pipe.cube", "to device.3dl"}) {
        const auto failure = failureOf(LUT{folder.path() / name});
        EXPECT_TRUE(failure && failure->is<TranscodeError::LUTNotFound>()) << name;
    }
}

TEST(LUTValidate, Content_IsNotLookedAt) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "a.cube", "\xFF no table");

    EXPECT_NO_THROW(LUT{folder.path() / "a.cube"}.validate());
}

}  // namespace

}  // namespace ReelCore
