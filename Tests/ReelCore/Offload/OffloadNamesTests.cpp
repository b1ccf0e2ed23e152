#include "OffloadFixture.h"
#include "Support/FaultyFileSystem.h"
#include "Support/Tool.h"

#include <sys/stat.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

const std::string longest(255, 'L');

/// Names that have broken copiers: each is a file of its own content.
FolderTree hardNames() {
    FolderTree tree;
    const std::string names[] = {"-rf",
                                 "--help",
                                 " leading",
                                 "trailing ",
                                 "dot.",
                                 "...",
                                 "line\nfeed",
                                 "tab\there",
                                 "bell\a",
                                 "\x7f",
                                 "quote'",
                                 "quotes\"",
                                 "back\\slash",
                                 "$HOME `id` *?[x]",
                                 "a&b<c>d;e&amp;",
                                 "]]>",
                                 "e\u0301",
                                 "\u00e9",
                                 "\U0001f3ac\u200d\U0001f468",
                                 "\u202egnp.exe",
                                 "\ufeffmark",
                                 "\xff\xfe",
                                 "latin\xe9",
                                 "cut\xe2\x82",
                                 "\xed\xa0\x80",
                                 longest,
                                 "folder\n \xff/-" + longest.substr(1),
                                 longest + "/" + longest + "/" + longest};
    unsigned seed = 0;
    for (const std::string& name : names) {
        ++seed;
        const bool isFolder = name == longest;
        tree[isFolder ? "top/" + name : name] = noise(1000 * seed, seed);
    }
    return tree;
}

/// What a tool says of the file's hash: the first word behind its progress, without the mark that
/// stands before the names it has to escape.
std::string hashBy(const std::string& tool, const URL& file) {
    std::string line = outputOf(tool, {file.native()});
    line.erase(0, line.rfind('\r') + 1);
    if (line.starts_with("\\")) line.erase(0, 1);
    return line.substr(0, line.find(' '));
}

class OffloadNamesTest : public OffloadTest {};

}  // namespace

TEST_F(OffloadNamesTest, HardNames_AreCopiedVerifiedAndListed) {
    makeCard(hardNames());

    const auto result = run(request({at("d1"), at("d2")}));

    EXPECT_TRUE(result.allVerified());
    EXPECT_EQ(result.files.size(), hardNames().size());
    for (const URL& drive : {at("d1"), at("d2")}) {
        EXPECT_TRUE(copiesOn(drive) == hardNames());
        EXPECT_EQ(outputOf("xmllint", {"--noout", (drive / "A001/A001.mhl").native()}), "");
    }
}

TEST_F(OffloadNamesTest, HardNames_AnotherCopierFindsNoDifference) {
    makeCard(hardNames());
    run(request({at("d1")}));
    forgetCard();

    const std::string differences =
        outputOf("rsync", {"-rcni", "--delete", "--exclude=/A001.mhl", "--no-whole-file",
                           card().native() + "/", at("d1/A001").native() + "/"});
    EXPECT_EQ(differences, "");

    std::filesystem::remove(at("d1/A001/-rf"));
    EXPECT_NE(outputOf("rsync", {"-rcni", card().native() + "/", at("d1/A001").native() + "/"}),
              "");
}

TEST_F(OffloadNamesTest, Hashes_OfAllAlgorithms_AgreeWithOtherTools) {
    makeCard(hardNames());
    const std::pair<HashAlgorithm, const char*> algorithms[] = {
        {HashAlgorithm::xxhash64, "xxh64sum"},
        {HashAlgorithm::md5, "md5sum"},
        {HashAlgorithm::sha256, "sha256sum"}};
    for (const auto& [algorithm, tool] : algorithms) {
        OffloadRequest wanted = request({at("d1")});
        wanted.algorithm = algorithm;

        const auto result = run(wanted);

        EXPECT_TRUE(result.allVerified());
        for (const FileVerification& one : result.files) {
            EXPECT_EQ(one.sourceHash, hashBy(tool, one.destinations.at(0).writtenURL)) << tool;
        }
    }
}

TEST_F(OffloadNamesTest, Names_ComposedAndDecomposed_StayTwoFiles) {
    makeCard({{"e\u0301", "decomposed"}, {"\u00e9", "composed"}});

    const auto result = run(request({at("d1")}));

    EXPECT_EQ(result.files.size(), 2U);
    EXPECT_EQ(copiesOn(at("d1")), (FolderTree{{"e\u0301", "decomposed"}, {"\u00e9", "composed"}}));
}

TEST_F(OffloadNamesTest, NamesThatADriveTakesForOne_EndTheRunBeforeTheProvedCopyIsReplaced) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    makeCard({{"B/CLIP.MOV", "first"}, {"C", ""}, {"b/clip.mov", "second"}});
    const FaultyFileSystem drive(at("back"), at("d2"), {.ignoreCase = true});

    EXPECT_EQ(descriptionOf(request({at("d1"), drive.path()})),
              "Failed writing to " + (drive.path() / "A001/b/clip.mov").native() +
                  ": another file of the card has this name here");

    EXPECT_EQ(readFile(at("back/a001/b/clip.mov")), "first");
    EXPECT_EQ(copiesOn(at("d1")), (FolderTree{{"B/CLIP.MOV", "first"}, {"C", ""}}));
}

TEST_F(OffloadNamesTest, NamesThatOnlySomeDrivesTakeForOne_AreTwoFilesElsewhere) {
    const FolderTree card{
        {"CLIP.MOV", "1"}, {"clip.mov", "2"}, {"clip.mov.", "3"}, {"x /a", "4"}, {"x/a", "5"}};
    makeCard(card);

    EXPECT_TRUE(run(request({at("d1")})).allVerified());
    EXPECT_TRUE(run(request({at("d1")})).allVerified()) << "onto the copies of before";

    EXPECT_EQ(copiesOn(at("d1")), card);
}

TEST_F(OffloadNamesTest, PathsOfCardAndDrives_MayHaveSuchNamesToo) {
    OffloadRequest wanted{at("card\n\xff '\""),
                          {at("-d \xfe"), at("d\u00e9\\")},
                          HashAlgorithm::xxhash64,
                          "reel\n\xff&<"};
    writeTree(wanted.source, {{"a", "content"}});
    noteCard(wanted.source);

    EXPECT_TRUE(run(wanted).allVerified());

    for (const URL& drive : wanted.destinations) {
        EXPECT_EQ(readFile(drive / wanted.reelName / "a"), "content");
        EXPECT_TRUE(std::filesystem::exists(drive / wanted.reelName / (wanted.reelName + ".mhl")));
    }
}

TEST_F(OffloadNamesTest, LinksPipesAndSockets_AreNeitherCopiedNorOpened) {
    writeTree(card(), {{"A", "a"}});
    std::filesystem::create_symlink("A", card() / "link");
    std::filesystem::create_symlink("/", card() / "linkToAll");
    std::filesystem::create_symlink("gone", card() / "dangling");
    ASSERT_EQ(::mkfifo((card() / "pipe").c_str(), 0666), 0);
    ASSERT_EQ(::mknod((card() / "socket").c_str(), S_IFSOCK | 0666, 0), 0);
    noteCard(card());

    EXPECT_TRUE(run(request({at("d1")})).allVerified());

    EXPECT_EQ(copiesOn(at("d1")), (FolderTree{{"A", "a"}}));
    EXPECT_EQ(events_.back().totalFiles, 1);
}

TEST_F(OffloadNamesTest, IgnoredNames_AreNotCopied) {
    makeCard({{"A", "a"}, {".DS_Store", "x"}, {"DCIM/.Trashes/B", "b"}, {"._A", "companion"}});

    run(request({at("d1")}));

    EXPECT_EQ(copiesOn(at("d1")), (FolderTree{{"A", "a"}, {"._A", "companion"}}));
}

TEST_F(OffloadNamesTest, ReelName_WithSlashesDotsAndBlanks_IsTakenAsItIs) {
    makeCard({{"A", "a"}});
    const std::pair<const char*, const char*> reels[] = {
        {"day 1/A001", "drive/day 1/A001/day 1_A001.mhl"},
        {"/A002", "drive/A002/_A002.mhl"},
        {" A003 ", "drive/ A003 / A003 .mhl"},
        {"../beside", "beside/.._beside.mhl"},
        {"new/../A004", "drive/A004/new_.._A004.mhl"},
        {"A005/", "drive/A005/A005_.mhl"}};
    std::filesystem::create_directory(at("drive"));
    for (const auto& [reel, list] : reels) {
        OffloadRequest wanted = request({at("drive")});
        wanted.reelName = reel;

        EXPECT_TRUE(run(wanted).allVerified()) << reel;

        EXPECT_TRUE(std::filesystem::exists(at(list))) << list;
        EXPECT_EQ(readFile(at(list).parent_path() / "A"), "a");
    }
}
