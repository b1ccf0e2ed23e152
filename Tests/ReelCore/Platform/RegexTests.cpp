#include "ReelCore/Platform/Regex.h"

#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using ReelCore::Regex;

/// The matched piece; absent where there is none.
std::optional<std::string> found(const Regex& regex, std::string_view text, std::size_t from = 0) {
    const auto match = regex.find(text, from);
    if (!match) return std::nullopt;
    return std::string(text.substr(match->begin, match->end - match->begin));
}

TEST(Regex, FirstMatch_IsGivenByItsBytes) {
    const Regex regex("[0-9]+");

    const auto match = regex.find("é 12 und 345");

    ASSERT_TRUE(match);
    EXPECT_EQ(match->begin, 3U);
    EXPECT_EQ(match->end, 5U);
}

TEST(Regex, NoMatch_IsAbsent) {
    EXPECT_EQ(found(Regex("x+"), "abc"), std::nullopt);
    EXPECT_EQ(found(Regex("x"), ""), std::nullopt);
}

TEST(Regex, Case_DoesNotMatter) {
    EXPECT_EQ(found(Regex("<track>"), "a<TRACK>b"), "<TRACK>");
    EXPECT_EQ(found(Regex("É"), "café"), "é");
}

TEST(Regex, Dot_MatchesLineEnds) {
    EXPECT_EQ(found(Regex("<a>.*?</a>"), "<a>1\r\n2</a></a>"), "<a>1\r\n2</a>");
}

TEST(Regex, From_PassesOverWhatBeginsBefore) {
    const Regex regex("[a-z][0-9]");

    EXPECT_EQ(found(regex, "a1 b2 c3", 0), "a1");
    EXPECT_EQ(found(regex, "a1 b2 c3", 1), "b2");
    EXPECT_EQ(found(regex, "a1 b2 c3", 6), "c3");
    EXPECT_EQ(found(regex, "a1 b2 c3", 7), std::nullopt);
    EXPECT_EQ(found(regex, "a1 b2 c3", 8), std::nullopt);
}

TEST(Regex, EmptyMatch_HasAPlace) {
    const auto match = Regex("$").find("ab");

    ASSERT_TRUE(match);
    EXPECT_EQ(match->begin, 2U);
    EXPECT_EQ(match->end, 2U);
}

TEST(Regex, Groups_AreWhatTheyTook) {
    const auto match = Regex("(a+)(b)?(?:c)(d*)").find("xé aac");

    ASSERT_TRUE(match);
    ASSERT_EQ(match->groups.size(), 3U);
    EXPECT_EQ(match->groups[0], "aa");
    EXPECT_EQ(match->groups[1], std::nullopt);
    EXPECT_EQ(match->groups[2], "");
}

TEST(Regex, SearchWithoutEnd_EndsWithoutAMatch) {
    const std::string blanks(100'000, ' ');

    EXPECT_EQ(found(Regex("x\\s*y?\\s*z"), "x" + blanks), std::nullopt);
    EXPECT_EQ(found(Regex("x\\s*y?\\s*z"), "x" + blanks + "z"), "x" + blanks + "z");
}

TEST(Regex, OneRegexInManyThreads_FindsInEachText) {
    const Regex regex("[0-9]+");
    std::vector<int> hits(4);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < hits.size(); ++i) {
        threads.emplace_back([&, i] {
            const std::string number = std::to_string(100 + i);
            for (int k = 0; k < 500; ++k) hits[i] += found(regex, "a" + number) == number ? 1 : 0;
        });
    }
    for (std::thread& one : threads) one.join();

    EXPECT_EQ(hits, std::vector<int>(4, 500));
}

TEST(RegexDeathTest, ExpressionThatDoesNotCompile_IsFatal) {
    EXPECT_EXIT(Regex("(open"), testing::KilledBySignal(SIGABRT),
                "fatal: a regular expression does not compile");
}

}  // namespace
