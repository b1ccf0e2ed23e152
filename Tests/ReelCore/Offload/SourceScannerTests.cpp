#include "ReelCore/Offload/SourceScanner.h"

#include "ReelCore/Offload/OffloadError.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"
#include "Support/Snapshot.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <thread>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;
using namespace std::chrono_literals;

namespace {

constexpr uid_t somebodyElse = 12345;

using Paths = std::vector<std::string>;

Paths pathsOf(const SourceScanner::ScanResult& scan) {
    Paths paths;
    for (const MediaFile& file : scan.files) paths.push_back(file.relativePath);
    return paths;
}

bool isNotFound(const URL& root) {
    try {
        SourceScanner::scan(root);
        return false;
    } catch (const OffloadError& error) {
        const auto* notFound = error.get<OffloadError::SourceNotFound>();
        return notFound && notFound->source.native() == root.native();
    }
}

class SourceScannerTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }
    URL card() const { return at("card"); }

    Paths scanned(const FolderTree& tree) const {
        writeTree(card(), tree);
        return pathsOf(SourceScanner::scan(card()));
    }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(SourceScannerTest, Scan_EmptyFolder_IsEmptyAndGeneric) {
    std::filesystem::create_directory(card());

    const auto scan = SourceScanner::scan(card());

    EXPECT_TRUE(scan.files.empty());
    EXPECT_EQ(scan.fileCount(), 0);
    EXPECT_EQ(scan.totalBytes(), 0);
    EXPECT_EQ(scan.cameraFormat, CameraFormat::generic);
}

TEST_F(SourceScannerTest, Scan_MissingRootOrAFile_IsNotFound) {
    writeFile(at("file"), "");

    EXPECT_TRUE(isNotFound(at("gone")));
    EXPECT_TRUE(isNotFound(at("file")));
    EXPECT_TRUE(isNotFound(at(std::string(256, 'n'))));
}

TEST_F(SourceScannerTest, Scan_RootThatCannotBeOpened_IsNotFound) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    writeTree(card(), {{"a", ""}});
    ASSERT_EQ(::chmod(at("").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(card().c_str(), 0700), 0);

    EXPECT_EQ(statusOfForked([&] {
                  if (::setuid(somebodyElse) != 0) return 2;
                  return isNotFound(card()) ? 0 : 1;
              }),
              0);
}

TEST_F(SourceScannerTest, Scan_RootThatCanBeEnteredButNotListed_IsNotFound) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back/bad"), {{"a", ""}});
    const FaultyFileSystem drive(at("back"), at("drive"), {.failListingOf = "bad"});

    EXPECT_TRUE(isNotFound(drive.path() / "bad"));
}

TEST_F(SourceScannerTest, Scan_Files_TellPathSizeAndDate) {
    writeTree(card(), {{"DCIM/100/A.MOV", "12345"}, {"B.XML", ""}});
    const Date date(1'700'000'000s + 123'456'789ns);
    setModificationDate(card() / "DCIM/100/A.MOV", date);
    setModificationDate(card() / "B.XML", Date(-5s));

    const auto scan = SourceScanner::scan(card());

    EXPECT_EQ(scan.root, card());
    EXPECT_EQ(scan.files,
              (std::vector<MediaFile>{{"B.XML", 0, Date(-5s)}, {"DCIM/100/A.MOV", 5, date}}));
    EXPECT_EQ(scan.fileCount(), 2);
    EXPECT_EQ(scan.totalBytes(), 5);
}

TEST_F(SourceScannerTest, Scan_RootAsGiven_IsKeptAsItIs) {
    writeTree(card(), {{"DCIM/a", ""}});
    const URL spelt = at("") / "x/.." / "card/";
    std::filesystem::create_directory(at("x"));

    const auto scan = SourceScanner::scan(spelt);

    EXPECT_EQ(scan.root.native(), spelt.native());
    EXPECT_EQ(pathsOf(scan), (Paths{"DCIM/a"}));
}

TEST_F(SourceScannerTest, Scan_IgnoredNames_AreTheSevenAndContributeNothingAtAnyDepth) {
    const Paths names{".DS_Store",
                      ".Spotlight-V100",
                      ".Trashes",
                      ".fseventsd",
                      ".TemporaryItems",
                      "System Volume Information",
                      ".DocumentRevisions-V100"};
    ASSERT_TRUE(std::ranges::equal(SourceScanner::ignoredNames, names));
    FolderTree tree{{"kept", ""}};
    for (const std::string& name : names) {
        tree["file/" + name] = "";
        tree["folder/" + name + "/a"] = "";
        tree[name + "/deep/b"] = "";
    }

    EXPECT_EQ(scanned(tree), (Paths{"kept"}));
}

TEST_F(SourceScannerTest, Scan_NamesThatAreOnlyAlike_AreKept) {
    EXPECT_EQ(scanned({{".ds_store", ""},
                       {".trashes/a", ""},
                       {"DS_Store", ""},
                       {".DS_Store.bak", ""},
                       {"system volume information/b", ""}}),
              (Paths{".DS_Store.bak", ".ds_store", ".trashes/a", "DS_Store",
                     "system volume information/b"}));
}

TEST_F(SourceScannerTest, Scan_HiddenAndCompanionFiles_AreOrdinaryFiles) {
    EXPECT_EQ(scanned({{"._A.MOV", ""}, {".hidden/.x", ""}, {"A.XML", ""}, {"P.app/in", ""}}),
              (Paths{"._A.MOV", ".hidden/.x", "A.XML", "P.app/in"}));
}

TEST_F(SourceScannerTest, Scan_Order_IsByCodePointsNeitherNumericNorByFolder) {
    EXPECT_EQ(scanned({{"clip09", ""},
                       {"clip010", ""},
                       {"a", ""},
                       {"Z", ""},
                       {"b/z", ""},
                       {"b.x", ""},
                       {"\u00e9", ""},
                       {"f", ""},
                       {"\U0001f3ac", ""},
                       {"\uffee", ""}}),
              (Paths{"Z", "a", "b.x", "b/z", "clip010", "clip09", "f", "\u00e9", "\uffee",
                     "\U0001f3ac"}));
}

TEST_F(SourceScannerTest, Scan_Order_LooksAtTheComposedFormAndKeepsTheBytes) {
    // "e" with a combining acute accent is the one letter U+00E9, which comes after "f".
    EXPECT_EQ(scanned({{"e\u0301", ""}, {"f", ""}, {"\u00ea", ""}}),
              (Paths{"f", "e\u0301", "\u00ea"}));
}

TEST_F(SourceScannerTest, Scan_Links_AreNotListed) {
    writeTree(card(), {{"real/a", ""}});
    std::filesystem::create_symlink("real/a", card() / "link");
    std::filesystem::create_directory_symlink("real", card() / "folder");
    ASSERT_EQ(::mkfifo((card() / "pipe").c_str(), 0666), 0);

    EXPECT_EQ(pathsOf(SourceScanner::scan(card())), (Paths{"real/a"}));
}

TEST_F(SourceScannerTest, Scan_UnreadableFolder_IsPassedOver) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"bad/b", ""}});
    const FaultyFileSystem drive(at("back"), at("drive"), {.failListingOf = "bad"});

    EXPECT_EQ(pathsOf(SourceScanner::scan(drive.path())), (Paths{"a"}));
}

TEST_F(SourceScannerTest, Scan_AttributesThatCannotBeRead_EndItWithThatError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"b", ""}});
    const FaultyFileSystem drive(at("back"), at("drive"), {.failAttributesOf = "b"});

    try {
        SourceScanner::scan(drive.path());
        FAIL() << "no error";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), EIO);
    }
}

TEST_F(SourceScannerTest, Scan_FolderWhoseAttributesCannotBeRead_EndsItWithThatError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"DCIM/b", ""}});
    const FaultyFileSystem drive(at("back"), at("drive"), {.failAttributesOf = "DCIM"});

    EXPECT_THROW(SourceScanner::scan(drive.path()), SystemError);
}

TEST_F(SourceScannerTest, Scan_CardGoesDuringTheWalk_IsNotFound) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {"DCIM/b", ""}});
    const FaultyFileSystem drive(at("back"), at("drive"), {.vanishAtListingOf = "DCIM"});

    EXPECT_TRUE(isNotFound(drive.path()));
}

TEST_F(SourceScannerTest, Scan_ProcessOutOfDescriptors_IsNotTakenForAMissingCard) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer needs descriptors of its own when an exception is thrown";
#endif
    writeTree(card(), {{"a", ""}});

    const int status = statusOfForked([&] {
        const rlimit none{0, 0};
        if (::setrlimit(RLIMIT_NOFILE, &none) != 0) return 254;
        try {
            SourceScanner::scan(card());
            return 0;
        } catch (const SystemError& error) {
            return error.code();
        }
    });

    EXPECT_EQ(status, EMFILE);
}

TEST_F(SourceScannerTest, Scan_RelativeRoot_GoesFromTheWorkingDirectory) {
    writeTree(card(), {{"DCIM/a", ""}});

    EXPECT_EQ(statusOfForked([&] {
                  std::filesystem::current_path(at(""));
                  const auto scan = SourceScanner::scan("card");
                  return scan.root == "card" && pathsOf(scan) == Paths{"DCIM/a"} ? 0 : 1;
              }),
              0);
}

TEST_F(SourceScannerTest, Scan_IgnoredFileWithUnreadableAttributes_DoesNotMatter) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    writeTree(at("back"), {{"a", ""}, {".DS_Store", ""}});
    const FaultyFileSystem drive(at("back"), at("drive"), {.failAttributesOf = ".DS_Store"});

    EXPECT_EQ(pathsOf(SourceScanner::scan(drive.path())), (Paths{"a"}));
}

TEST_F(SourceScannerTest, CameraFormat_LooksAtTopLevelNamesOnly_FilesFoldersAndIgnoredOnes) {
    const auto formatOf = [&](const std::string& name, const FolderTree& tree) {
        writeTree(at(name), tree);
        return SourceScanner::scan(at(name)).cameraFormat;
    };

    EXPECT_EQ(formatOf("1", {{"DCIM/a", ""}, {"CLIPS001/b", ""}, {"MISC/c", ""}}),
              CameraFormat::blackmagic);
    EXPECT_EQ(formatOf("2", {{"dcim", "a file"}, {"misc/c", ""}}), CameraFormat::canon);
    EXPECT_EQ(formatOf("3", {{"sub/A001.RDC/a", ""}}), CameraFormat::generic);
    EXPECT_EQ(formatOf("4", {{"A001.rdc/a", ""}}), CameraFormat::red);
}

TEST_F(SourceScannerTest, Scan_Card_LeavesNoTrace) {
    writeTree(card(), {{"DCIM/100/A.MOV", "12345"}, {".DS_Store", "x"}, {"B", ""}});
    ageAccessDates(card());
    const Snapshot before = snapshotOf(card());

    SourceScanner::scan(card());

    EXPECT_TRUE(snapshotOf(card()) == before);
}

TEST_F(SourceScannerTest, Scan_RootOfAllFolders_ListsNamesWithoutTheirFolders) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root to change the root folder";
    writeTree(card(), {{"DCIM/100/A.MOV", ""}, {"B", ""}});

    EXPECT_EQ(statusOfForked([&] {
                  if (::chroot(card().c_str()) != 0 || ::chdir("/") != 0) return 2;
                  return pathsOf(SourceScanner::scan("/")) == Paths{"A.MOV", "B"} ? 0 : 1;
              }),
              0);
}

TEST_F(SourceScannerTest, Scan_TwoAtOnce_AgreeWithEachOther) {
    FolderTree tree;
    for (int i = 0; i < 300; ++i)
        tree["DCIM/" + std::to_string(i % 7) + "/" + std::to_string(i)] = "x";
    writeTree(card(), tree);
    SourceScanner::ScanResult other;

    std::thread thread([&] { other = SourceScanner::scan(card()); });
    const auto one = SourceScanner::scan(card());
    thread.join();

    EXPECT_EQ(one.fileCount(), 300);
    EXPECT_EQ(one, other);
}

TEST(ScanResultDeathTest, TotalBytes_Overflow_IsAFatalFault) {
    SourceScanner::ScanResult scan;
    scan.files.assign(2, {"a", std::numeric_limits<std::int64_t>::max(), std::nullopt});

    EXPECT_DEATH(static_cast<void>(scan.totalBytes()), "arithmetic overflow");
}
