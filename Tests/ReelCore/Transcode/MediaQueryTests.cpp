#include "ReelCore/Transcode/MediaQuery.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/FakeTool.h"
#include "Support/FolderTree.h"
#include "Support/Forked.h"

#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using TestSupport::FakeTool;
using Calls = std::vector<std::vector<std::string>>;

std::string answer(const std::string& script) {
    const FakeTool ffprobe("FFPROBE_PATH", script);
    return answerOf(ffprobe.path(), {"-v", "error"}, "/media/clip.mov");
}

TEST(MediaQuery, ToolPath_OfAnAbsolutePath_IsThatPathByteForByte) {
    EXPECT_EQ(toolPath("/media/../a b/./\xFF:%d.mov"), "/media/../a b/./\xFF:%d.mov");
}

TEST(MediaQuery, ToolPath_OfARelativePath_BeginsAtTheRoot) {
    const TestSupport::TemporaryFolder folder;

    const int status = TestSupport::statusOfForked([&] {
        std::filesystem::current_path(folder.path());
        const std::string here = std::filesystem::current_path().native();
        const bool isAbsolute = toolPath("-i.mov") == here + "/-i.mov" &&
                                toolPath("http:clip.mov") == here + "/http:clip.mov";
        return isAbsolute ? 0 : 1;
    });

    EXPECT_EQ(status, 0);
}

TEST(MediaQuery, AnswerOf_AsksOnceWithTheFileLast) {
    const FakeTool ffprobe("FFPROBE_PATH");

    answerOf(ffprobe.path(), {"-v", "error", "", "two words"}, "/media/a b.mov");

    EXPECT_EQ(ffprobe.calls(), (Calls{{"-v", "error", "", "two words", "/media/a b.mov"}}));
}

TEST(MediaQuery, AnswerOf_HasNoWhiteSpaceAtItsEnds) {
    EXPECT_EQ(answer(R"(printf ' \t\r\n25/1 \n\n24/1\302\240\n')"), "25/1 \n\n24/1");
    EXPECT_EQ(answer(R"(printf ' \n')"), "");
    EXPECT_EQ(answer(""), "");
}

TEST(MediaQuery, LineThatIsRepeated_IsGivenOnce) {
    EXPECT_EQ(answer(R"(printf '25/1\n25/1\n')"), "25/1");
    EXPECT_EQ(answer(R"(printf '320x180\n\n\n320x180\n')"), "320x180");
    EXPECT_EQ(answer(R"(printf '1\n2\n1\n2\n')"), "1\n2");
    EXPECT_EQ(answer(R"(printf '1\n11\n1')"), "1\n11");
}

TEST(MediaQuery, AnswerThatIsNotUTF8_IsEmpty) {
    EXPECT_EQ(answer(R"(printf '01:00:00:00\377')"), "");
}

TEST(MediaQuery, WhatTheToolSaysOfErrors_IsNoPartOfTheAnswer) {
    EXPECT_EQ(answer("echo complaint >&2; echo 25/1; head -c 10000000 /dev/zero >&2"), "25/1");
}

TEST(MediaQuery, HowTheToolEnds_IsNotAsked) {
    EXPECT_EQ(answer("echo 25/1; exit 1"), "25/1");
    EXPECT_EQ(answer("echo 25/1; kill -KILL $$"), "25/1");
}

TEST(MediaQuery, ToolThatCannotBeStarted_IsAFailure) {
    const TestSupport::TemporaryFolder folder;
    const URL text = folder.path() / "text";
    TestSupport::writeFile(text, "no program");
    std::filesystem::permissions(text, std::filesystem::perms(0755));

    try {
        answerOf(text, {}, "/media/clip.mov");
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), ENOEXEC);
    }
}

}  // namespace

}  // namespace ReelCore
