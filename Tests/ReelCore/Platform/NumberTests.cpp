#include "ReelCore/Platform/Number.h"

#include "Support/CommaLocale.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(ParseDouble, WholeTextThatIsANumber_IsGiven) {
    const std::vector<std::pair<std::string, double>> cases{
        {"0", 0.0},       {"12.5", 12.5},      {"-2", -2.0},      {"+3", 3.0},
        {".5", 0.5},      {"5.", 5.0},         {"1e3", 1000.0},   {"1E-2", 0.01},
        {"0x10", 16.0},   {"0x1p-1", 0.5},     {"inf", infinity}, {"-infinity", -infinity},
        {"007.25", 7.25}, {"1e999", infinity}, {"1e-999", 0.0},   {"23.976", 23.976},
    };
    for (const auto& [text, number] : cases) EXPECT_EQ(parseDouble(text), number) << text;
    EXPECT_TRUE(std::isnan(parseDouble("nan").value()));
}

TEST(ParseDouble, AnythingElse_IsAbsent) {
    for (const std::string text : {"", " ", " 1", "1 ", "\n1", "1\n", "\v1", "1,5", "abc", "1.5x",
                                   "--1", "+-1", ".", "-", "e3", "1/2", "0x", "N/A", "1.2.3"}) {
        EXPECT_EQ(parseDouble(text), std::nullopt) << "\"" << text << "\"";
    }
    EXPECT_EQ(parseDouble(std::string("1\0", 2)), std::nullopt);
}

TEST(ParseDouble, PieceOfALongerText_EndsWhereThePieceDoes) {
    EXPECT_EQ(parseDouble(std::string_view("12345").substr(1, 2)), 23.0);
}

TEST(ParseInteger, WholeTextThatIsANumber_IsGiven) {
    const std::vector<std::pair<std::string, std::int64_t>> cases{
        {"0", 0},
        {"42", 42},
        {"+42", 42},
        {"-42", -42},
        {"-0", 0},
        {"007", 7},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
    };
    for (const auto& [text, number] : cases) EXPECT_EQ(parseInteger(text), number) << text;
}

TEST(ParseInteger, AnythingElse_IsAbsent) {
    for (const std::string text :
         {"", "+", "-", "+-1", "-+1", "++1", "--1", " 1", "1 ", "1\n", "1.0", "1e3", "0x10", "1a",
          "9223372036854775808", "-9223372036854775809", "\u0661"}) {
        EXPECT_EQ(parseInteger(text), std::nullopt) << "\"" << text << "\"";
    }
    EXPECT_EQ(parseInteger(std::string("1\0", 2)), std::nullopt);
}

TEST(ShortestDecimal, Number_HasAPointAndNoExponent) {
    const std::vector<std::pair<double, std::string>> cases{
        {12.5, "12.5"},      {3600.0, "3600.0"},
        {0.0, "0.0"},        {0.1, "0.1"},
        {-1.25, "-1.25"},    {1.0 / 3.0, "0.3333333333333333"},
        {1e-7, "0.0000001"}, {1e16, "10000000000000000.0"},
    };
    for (const auto& [number, text] : cases) EXPECT_EQ(shortestDecimal(number), text);
}

TEST(ShortestDecimal, AnyFiniteNumber_ReadsBackAsTheSame) {
    std::mt19937_64 random(7);
    std::vector<double> numbers{
        std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
        std::numeric_limits<double>::min(), std::numeric_limits<double>::denorm_min()};
    while (numbers.size() < 2000) {
        const auto number = std::bit_cast<double>(random());
        if (std::isfinite(number)) numbers.push_back(number);
    }

    for (const double number : numbers) {
        const std::string text = shortestDecimal(number);
        EXPECT_EQ(parseDouble(text), number) << text;
        EXPECT_EQ(text.find_first_not_of("-.0123456789"), text.npos) << text;
    }
}

TEST(Number, LocaleOfTheProcess_DoesNotMatter) {
    const TestSupport::CommaLocale locale;
    if (!locale.isThere())
        GTEST_SKIP() << "needs localedef and the sources of de_DE (package locales)";

    EXPECT_EQ(parseDouble("12.5"), 12.5);
    EXPECT_EQ(parseDouble("12,5"), std::nullopt);
    EXPECT_EQ(shortestDecimal(12.5), "12.5");
}

}  // namespace
