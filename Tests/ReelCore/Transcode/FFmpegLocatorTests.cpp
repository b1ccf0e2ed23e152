#include "ReelCore/Transcode/FFmpegLocator.h"

#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/OwnMounts.h"

#include <array>
#include <filesystem>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::EnvironmentVariable;
using TestSupport::TemporaryFolder;

URL makeTool(const URL& path) {
    TestSupport::writeFile(path, "#!/bin/sh\n");
    std::filesystem::permissions(path, std::filesystem::perms(0755));
    return path;
}

/// The machine's own tools, whatever the test's environment says.
struct Installed {
    EnvironmentVariable noFFmpeg{"FFMPEG_PATH", std::nullopt};
    EnvironmentVariable noFFprobe{"FFPROBE_PATH", std::nullopt};
    std::optional<URL> ffmpeg = FFmpegLocator().ffmpeg();
    std::optional<URL> ffprobe = FFmpegLocator().ffprobe();
};

TEST(FFmpegLocator, VariablesThatNameExecutables_AreTakenAsTheyStand) {
    const TemporaryFolder folder;
    makeTool(folder.path() / "my ffmpeg");
    makeTool(folder.path() / "my ffprobe");
    const std::string named = folder.path().native() + "/./my ff";
    const EnvironmentVariable ffmpeg("FFMPEG_PATH", named + "mpeg");
    const EnvironmentVariable ffprobe("FFPROBE_PATH", named + "probe");

    EXPECT_EQ(FFmpegLocator().ffmpeg()->native(), named + "mpeg");
    EXPECT_EQ(FFmpegLocator().ffprobe()->native(), named + "probe");
}

TEST(FFmpegLocator, VariableOfTheOneTool_SaysNothingOfTheOther) {
    const Installed installed;
    const TemporaryFolder folder;
    const URL tool = makeTool(folder.path() / "tool");

    const EnvironmentVariable ffmpeg("FFMPEG_PATH", tool.native());

    EXPECT_EQ(FFmpegLocator().ffmpeg(), tool);
    EXPECT_EQ(FFmpegLocator().ffprobe(), installed.ffprobe);
}

TEST(FFmpegLocator, LinkToAnExecutable_IsTakenAsItStands) {
    const TemporaryFolder folder;
    makeTool(folder.path() / "tool");
    const URL link = folder.path() / "link";
    std::filesystem::create_symlink("tool", link);
    const EnvironmentVariable ffmpeg("FFMPEG_PATH", link.native());

    EXPECT_EQ(FFmpegLocator().ffmpeg(), link);
}

TEST(FFmpegLocator, RelativePath_IsTakenAsItStandsFromTheWorkingFolder) {
    const TemporaryFolder folder;
    makeTool(folder.path() / "bin" / "tool");
    const EnvironmentVariable ffmpeg("FFMPEG_PATH", "bin/tool");

    const int status = TestSupport::statusOfForked([&] {
        std::filesystem::current_path(folder.path());
        return FFmpegLocator().ffmpeg() == URL("bin/tool") ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST(FFmpegLocator, VariablesThatNameNoExecutable_ArePassedOver) {
    const Installed installed;
    const TemporaryFolder folder;
    const URL plain = folder.path() / "plain";
    TestSupport::writeFile(plain, "#!/bin/sh\n");
    const URL dangling = folder.path() / "dangling";
    std::filesystem::create_symlink("nowhere", dangling);

    for (const std::string& value : {plain.native(), folder.path().native(), dangling.native(),
                                     plain.native() + "/below", std::string()}) {
        const EnvironmentVariable ffmpeg("FFMPEG_PATH", value);
        const EnvironmentVariable ffprobe("FFPROBE_PATH", value);

        EXPECT_EQ(FFmpegLocator().ffmpeg(), installed.ffmpeg) << value;
        EXPECT_EQ(FFmpegLocator().ffprobe(), installed.ffprobe) << value;
    }
}

TEST(FFmpegLocator, IsAvailable_AsksForFFmpegAlone) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const TemporaryFolder folder;
    const URL tool = makeTool(folder.path() / "tool");
    const auto availableWith = [&](const char* variable) {
        return TestSupport::statusInOwnMounts([&] {
            TestSupport::hideMediaTools();
            const EnvironmentVariable named(variable, tool.native());
            return FFmpegLocator().isAvailable() ? 1 : 0;
        });
    };

    EXPECT_EQ(availableWith("FFMPEG_PATH"), 1);
    EXPECT_EQ(availableWith("FFPROBE_PATH"), 0);
}

TEST(FFmpegLocator, NoToolInTheFolders_IsAbsentThoughTheSearchPathHasOne) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    const TemporaryFolder folder;
    makeTool(folder.path() / "ffmpeg");
    makeTool(folder.path() / "ffprobe");

    const int found = TestSupport::statusInOwnMounts([&] {
        TestSupport::hideMediaTools();
        const EnvironmentVariable path("PATH", folder.path().native());
        std::filesystem::current_path(folder.path());
        const FFmpegLocator locator;
        return locator.ffmpeg() || locator.ffprobe() || locator.isAvailable() ? 1 : 0;
    });

    EXPECT_EQ(found, 0);
}

// One folder after the other gets its tools, the last to be asked first.
TEST(FFmpegLocator, Folders_AreAskedInOrderAndAnewEachTime) {
    if (const auto missing = TestSupport::ownMountsMissing(); !missing.empty()) {
        GTEST_SKIP() << missing;
    }
    static constexpr std::array<const char*, 4> lastFirst{"/usr/bin", "/opt/local/bin",
                                                          "/usr/local/bin", "/opt/homebrew/bin"};

    const int wrong = TestSupport::statusInOwnMounts([] {
        TestSupport::hideMediaTools();
        for (const char* folder : {"/opt", "/usr/local/bin", "/usr/bin"}) {
            TestSupport::mountEmptyFolder(folder);
        }
        int differences = 0;
        for (const URL folder : lastFirst) {
            const URL ffmpeg = makeTool(folder / "ffmpeg");
            if (FFmpegLocator().ffmpeg() != ffmpeg) ++differences;
            const URL ffprobe = makeTool(folder / "ffprobe");
            if (FFmpegLocator().ffprobe() != ffprobe) ++differences;
        }
        return differences;
    });

    EXPECT_EQ(wrong, 0);
}

}  // namespace

}  // namespace ReelCore
