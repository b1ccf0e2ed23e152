#include "ReelCore/Platform/Fatal.h"

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

}  // namespace
