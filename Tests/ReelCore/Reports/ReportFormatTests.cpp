#include "ReelCore/Reports/ReportFormat.h"

#include "Support/Tool.h"

#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;

constexpr std::int64_t KB = 1024;
constexpr std::int64_t MB = 1024 * KB;
constexpr std::int64_t GB = 1024 * MB;
constexpr std::int64_t TB = 1024 * GB;

TEST(HumanBytes, BelowAThousandAndTwentyFour_IsWholeBytes) {
    EXPECT_EQ(humanBytes(0), "0 B");
    EXPECT_EQ(humanBytes(1), "1 B");
    EXPECT_EQ(humanBytes(1023), "1023 B");
}

TEST(HumanBytes, EachUnit_BeginsAtItsPowerWithTwoDecimals) {
    EXPECT_EQ(humanBytes(KB), "1.00 KB");
    EXPECT_EQ(humanBytes(MB), "1.00 MB");
    EXPECT_EQ(humanBytes(GB), "1.00 GB");
    EXPECT_EQ(humanBytes(TB), "1.00 TB");
    EXPECT_EQ(humanBytes(KB * 3 / 2), "1.50 KB");
    EXPECT_EQ(humanBytes(GB * 5 / 4), "1.25 GB");
}

TEST(HumanBytes, JustBelowAPower_RoundsInTheSmallerUnit) {
    EXPECT_EQ(humanBytes(MB - 1), "1024.00 KB");
    EXPECT_EQ(humanBytes(GB - 1), "1024.00 MB");
    EXPECT_EQ(humanBytes(TB - 1), "1024.00 GB");
}

TEST(HumanBytes, AboveTheLastUnit_StaysInIt) {
    EXPECT_EQ(humanBytes(1024 * TB), "1024.00 TB");
    EXPECT_EQ(humanBytes(std::numeric_limits<std::int64_t>::max()), "8388608.00 TB");
}

TEST(HumanBytes, BelowZero_StaysInBytes) {
    EXPECT_EQ(humanBytes(-1), "-1 B");
    EXPECT_EQ(humanBytes(-5 * GB), "-5368709120 B");
}

TEST(DateTime, IsWhatTheSystemSaysInLocalTime) {
    for (const std::int64_t second : {0, 951'782'400, 1'772'373'909, 1'782'914'709}) {
        const std::string said = TestSupport::outputOf(
            "date", {"--date=@" + std::to_string(second), "+%Y-%m-%d %H:%M:%S"});
        EXPECT_EQ(dateTime(Date(std::chrono::seconds(second))) + "\n", said);
    }
}

}  // namespace
