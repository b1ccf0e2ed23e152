#include "ReelCore/Platform/TemporaryPath.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/EnvironmentVariable.h"
#include "Support/FolderTree.h"

#include <regex>
#include <set>

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

/// The system's temporary folder is the test's own.
class TemporaryPathTest : public testing::Test {
protected:
    const URL& folder() const { return folder_.path(); }

private:
    TemporaryFolder folder_;
    EnvironmentVariable variable_{"TMPDIR", folder_.path().native()};
};

}  // namespace

TEST_F(TemporaryPathTest, Name_IsPrefixUUIDInUpperCaseAndSuffix) {
    const TemporaryPath path("keldo-", ".wav");
    const std::regex uuid(
        "keldo-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\.wav");

    EXPECT_TRUE(std::regex_match(path.url().filename().native(), uuid)) << path.url();
    EXPECT_EQ(path.url().parent_path(), folder());
}

TEST_F(TemporaryPathTest, ManyNames_AllDiffer) {
    std::set<std::string> names;
    for (int i = 0; i < 1000; ++i) names.insert(TemporaryPath("", "").url().native());

    EXPECT_EQ(names.size(), 1000U);
}

TEST_F(TemporaryPathTest, NothingMade_NothingIsThereBeforeOrAfter) {
    {
        const TemporaryPath path("a", "");
        EXPECT_TRUE(std::filesystem::is_empty(folder()));
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder()));
}

TEST_F(TemporaryPathTest, FileOrFolderMade_GoesAndNothingElse) {
    writeFile(folder() / "other", "stays");
    {
        const TemporaryPath file("a", ".wav");
        const TemporaryPath tree("b", "");
        writeFile(file.url(), "sound");
        writeTree(tree.url(), {{"deep/er/still.jpg", "picture"}});
        EXPECT_EQ(readTree(folder()).size(), 3U);
    }
    EXPECT_EQ(readTree(folder()), (FolderTree{{"other", "stays"}}));
}

TEST_F(TemporaryPathTest, LinkMade_GoesAloneAndWhatItNamesStays) {
    writeTree(folder(), {{"card/clip.mov", "precious"}});
    {
        const TemporaryPath path("link", "");
        std::filesystem::create_directory_symlink(folder() / "card", path.url());
    }
    EXPECT_EQ(readTree(folder()), (FolderTree{{"card/clip.mov", "precious"}}));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder()), {}), 1);
}

TEST_F(TemporaryPathTest, NoTemporaryFolder_SaysSo) {
    const EnvironmentVariable missing("TMPDIR", (folder() / "gone").native());

    EXPECT_THROW(TemporaryPath("a", ""), SystemError);
}
