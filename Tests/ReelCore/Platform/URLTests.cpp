#include "ReelCore/Platform/URL.h"

#include "ReelCore/Platform/CompactURL.h"
#include "Support/Tool.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

/// The path's bytes as another program reads them out of the URL.
std::string pathReadByPython(const std::string& url) {
    return TestSupport::outputOf(
        "python3", {"-c",
                    "import sys, urllib.parse as p\n"
                    "sys.stdout.buffer.write(p.unquote_to_bytes(p.urlparse(sys.argv[1]).path))",
                    url});
}

TEST(CompactURL, AnyPath_ComesBackByteForByte) {
    for (const URL path : {"", "/", "a", "/a//b/../c/", "/a/\xFF\n"}) {
        const CompactURL kept = path;
        EXPECT_EQ(kept.native(), path.native());
        EXPECT_EQ(URL(kept).native(), path.native());
    }
}

TEST(CompactURL, OfTheSameText_AreEqual) {
    EXPECT_EQ(CompactURL(URL("/a/b")), CompactURL(URL("/a/b")));
    EXPECT_NE(CompactURL(URL("/a/b")), CompactURL(URL("/a/c")));
}

TEST(WithoutSlashAtEnd, Slashes_GoButTheRootStays) {
    EXPECT_EQ(withoutSlashAtEnd("/a/b/").native(), "/a/b");
    EXPECT_EQ(withoutSlashAtEnd("/a/b//").native(), "/a/b");
    EXPECT_EQ(withoutSlashAtEnd("/a/b").native(), "/a/b");
    EXPECT_EQ(withoutSlashAtEnd("/").native(), "/");
}

TEST(LastPathComponent, Name_WhetherOrNotASlashFollows) {
    EXPECT_EQ(lastPathComponent("/Cards/A001"), "A001");
    EXPECT_EQ(lastPathComponent("/Cards/A001/"), "A001");
    EXPECT_EQ(lastPathComponent("/Cards/A001//"), "A001");
    EXPECT_EQ(lastPathComponent("clip.mov"), "clip.mov");
    EXPECT_EQ(lastPathComponent("/a/\xFF\n"), "\xFF\n");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(LowerCasedExtension, BehindTheLastDot_InLowerCase) {
    EXPECT_EQ(lowerCasedExtension("/a/Clip.MOV"), "mov");
    EXPECT_EQ(lowerCasedExtension("/a/clip.tar.Gz"), "gz");
    EXPECT_EQ(lowerCasedExtension("/a/Folder.RDM/"), "rdm");
    EXPECT_EQ(lowerCasedExtension("/a/x.\u00C9"), "\u00E9");
}

TEST(LowerCasedExtension, NoneThere_IsEmpty) {
    for (const char* path : {"", "/", "/a/clip", "/a/clip.", "/a/.hidden", "/a.b/clip", "/a/.."}) {
        EXPECT_EQ(lowerCasedExtension(path), "") << path;
    }
}

TEST(AbsoluteString, CharactersThatAURLGivesAMeaning_AreEncoded) {
    const std::vector<std::pair<URL, std::string>> cases{
        {"/Cards/A001/clip.mov", "file:///Cards/A001/clip.mov"},
        {"/a b", "file:///a%20b"},
        {"/a&b", "file:///a%26b"},
        {"/\"a\"<b>", "file:///%22a%22%3Cb%3E"},
        {"/100%", "file:///100%25"},
        {"/a%20b", "file:///a%2520b"},
        {"/a#b?c", "file:///a%23b%3Fc"},
        {"/a;b", "file:///a%3Bb"},
        {"/[a]\\{b}^|`", "file:///%5Ba%5D%5C%7Bb%7D%5E%7C%60"},
        {"/caf\u00E9", "file:///caf%C3%A9"},
        {"/\xFF\n\x7F", "file:///%FF%0A%7F"},
        {"/-._~:@!$'()*+,=", "file:///-._~:@!$'()*+,="},
        {"/folder/", "file:///folder/"},
        {"/", "file:///"},
    };
    for (const auto& [path, text] : cases) EXPECT_EQ(absoluteString(path), text);
}

TEST(AbsoluteString, RelativePath_IsSeenFromTheWorkingFolder) {
    const URL here = std::filesystem::current_path();

    EXPECT_EQ(absoluteString("a b/c"), absoluteString(here / "a b/c"));
    EXPECT_TRUE(absoluteString("x").ends_with("/x"));
}

TEST(AbsoluteString, EveryByteOfAPath_IsReadBackByAnotherProgram) {
    std::string path = "/";
    for (int byte = 1; byte < 256; ++byte) path += static_cast<char>(byte);

    const std::string url = absoluteString(path);

    EXPECT_EQ(pathReadByPython(url), path);
    EXPECT_EQ(url.find_first_of("&<>\" \t\r\n"), url.npos) << "may stand in an XML attribute";
}

}  // namespace
