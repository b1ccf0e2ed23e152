#include "ReelCore/Platform/Fatal.h"

#include <cmath>
#include <csignal>
#include <limits>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using namespace ReelCore;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

TEST(FatalDeathTest, Fatal_AbortsAndSaysWhatAndWhere) {
    EXPECT_EXIT(fatal("no application data"), testing::KilledBySignal(SIGABRT),
                "fatal: no application data in .*FatalTests\\.cpp:[0-9]+\\)");
}

TEST(FatalDeathTest, Fatal_CannotBeCaught) {
    const auto swallowing = [] {
        try {
            fatal("nothing to go on with");
        } catch (...) {
        }
    };

    EXPECT_EXIT(swallowing(), testing::KilledBySignal(SIGABRT), "nothing to go on with");
}

TEST(FatalDeathTest, Fatal_StandardErrorClosedOrFull_AbortsAllTheSame) {
    const auto withoutAnEar = [] {
        ::close(STDERR_FILENO);
        fatal("unheard");
    };
    const auto withAFullOne = [] {
        ::dup2(::open("/dev/full", O_WRONLY), STDERR_FILENO);
        fatal("unheard");
    };

    EXPECT_EXIT(withoutAnEar(), testing::KilledBySignal(SIGABRT), "^$");
    EXPECT_EXIT(withAFullOne(), testing::KilledBySignal(SIGABRT), "^$");
}

TEST(FatalDeathTest, Fatal_LongText_IsCut) {
    EXPECT_EXIT(fatal(std::string(5000, 'x')), testing::KilledBySignal(SIGABRT), "^fatal: x{900}");
}

TEST(FatalDeathTest, CheckedAdd_OverflowAtEitherEndIsFatalAndNamesTheCaller) {
    EXPECT_EXIT(checkedAdd(largest, 1), testing::KilledBySignal(SIGABRT),
                "arithmetic overflow in .*FatalTests\\.cpp");
    EXPECT_EXIT(checkedAdd(smallest, -1), testing::KilledBySignal(SIGABRT), "arithmetic overflow");
}

TEST(FatalDeathTest, CheckedSubtract_OverflowAtEitherEndIsFatalAndNamesTheCaller) {
    EXPECT_EXIT(checkedSubtract(smallest, 1), testing::KilledBySignal(SIGABRT),
                "arithmetic overflow in .*FatalTests\\.cpp");
    EXPECT_EXIT(checkedSubtract(0, smallest), testing::KilledBySignal(SIGABRT),
                "arithmetic overflow");
}

TEST(FatalDeathTest, CheckedMultiply_OverflowAtEitherEndIsFatalAndNamesTheCaller) {
    EXPECT_EXIT(checkedMultiply(largest / 2 + 1, 2), testing::KilledBySignal(SIGABRT),
                "arithmetic overflow in .*FatalTests\\.cpp");
    EXPECT_EXIT(checkedMultiply(smallest, -1), testing::KilledBySignal(SIGABRT),
                "arithmetic overflow");
}

TEST(FatalDeathTest, CheckedDivide_ByZeroAndOverflowAreFatalAndNameTheCaller) {
    EXPECT_EXIT(checkedDivide(1, 0), testing::KilledBySignal(SIGABRT),
                "division by zero in .*FatalTests\\.cpp");
    EXPECT_EXIT(checkedDivide(smallest, -1), testing::KilledBySignal(SIGABRT),
                "arithmetic overflow in .*FatalTests\\.cpp");
}

TEST(FatalDeathTest, CheckedInteger_NumberThat64BitsCannotHoldIsFatalAndNamesTheCaller) {
    for (const double value : {0x1p63, -0x1.0000000000001p63, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        EXPECT_EXIT(checkedInteger(value), testing::KilledBySignal(SIGABRT),
                    "impossible conversion in .*FatalTests\\.cpp")
            << value;
    }
}

TEST(CodeLocation, Current_IsWhereItIsAskedFor) {
    const CodeLocation here = CodeLocation::current();
    constexpr int lineAbove = __LINE__ - 1;

    EXPECT_EQ(here.line, lineAbove);
    EXPECT_STREQ(here.function, "TestBody");
}

TEST(CheckedAdd, SumThatFits_IsGiven) {
    EXPECT_EQ(checkedAdd(2, 3), 5);
    EXPECT_EQ(checkedAdd(largest - 1, 1), largest);
    EXPECT_EQ(checkedAdd(smallest, largest), -1);
}

TEST(CheckedSubtract, DifferenceThatFits_IsGiven) {
    EXPECT_EQ(checkedSubtract(2, 3), -1);
    EXPECT_EQ(checkedSubtract(-1, smallest), largest);
    EXPECT_EQ(checkedSubtract(smallest + 1, 1), smallest);
}

TEST(CheckedMultiply, ProductThatFits_IsGiven) {
    EXPECT_EQ(checkedMultiply(-2, 3), -6);
    EXPECT_EQ(checkedMultiply(smallest / 2, 2), smallest);
    EXPECT_EQ(checkedMultiply(largest, -1), smallest + 1);
}

TEST(CheckedDivide, Quotient_IsCutTowardZero) {
    EXPECT_EQ(checkedDivide(7, 2), 3);
    EXPECT_EQ(checkedDivide(-7, 2), -3);
    EXPECT_EQ(checkedDivide(7, -1), -7);
    EXPECT_EQ(checkedDivide(smallest, 1), smallest);
    EXPECT_EQ(checkedDivide(largest, -1), smallest + 1);
}

TEST(CheckedInteger, NumberThatFits_LosesItsFraction) {
    EXPECT_EQ(checkedInteger(2.9), 2);
    EXPECT_EQ(checkedInteger(-2.9), -2);
    EXPECT_EQ(checkedInteger(-0x1p63), smallest);
    EXPECT_EQ(checkedInteger(0x1.fffffffffffffp62), 9223372036854774784);
}

}  // namespace
