#include "ReelCore/Platform/DateText.h"

#include <cstdlib>
#include <ctime>
#include <optional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace std::chrono_literals;

/// The local time zone for one test.
class TimeZone {
public:
    explicit TimeZone(const char* name) {
        if (const char* old = std::getenv("TZ")) old_ = old;
        ::setenv("TZ", name, 1);
        ::tzset();
    }
    ~TimeZone() {
        if (old_) {
            ::setenv("TZ", old_->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
        ::tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::optional<std::string> old_;
};

// Zones as rules, so that they need no zone files.
constexpr const char* zurich = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* newfoundland = "NST3:30";

const Date springAfternoon = std::chrono::sys_days(2026y / 3 / 1) + 14h + 5min + 9s;

TEST(DateTextUTC, IsInternetDateAndTimeWithAllDigits) {
    EXPECT_EQ(DateText::utc(springAfternoon), "2026-03-01T14:05:09Z");
    EXPECT_EQ(DateText::utc(Date()), "1970-01-01T00:00:00Z");
    EXPECT_EQ(DateText::utc(std::chrono::sys_days(2024y / 2 / 29)), "2024-02-29T00:00:00Z");
}

TEST(DateTextUTC, TakesNoNoticeOfTheLocalZone) {
    const TimeZone zone(newfoundland);

    EXPECT_EQ(DateText::utc(springAfternoon), "2026-03-01T14:05:09Z");
}

TEST(DateTextUTC, Fractions_AreCutNotRoundedAlsoBeforeTheEpoch) {
    EXPECT_EQ(DateText::utc(springAfternoon + 999'999'999ns), "2026-03-01T14:05:09Z");
    EXPECT_EQ(DateText::utc(Date(-1ns)), "1969-12-31T23:59:59Z");
}

TEST(DateTextUTC, EndsOfWhatADateHolds) {
    EXPECT_EQ(DateText::utc(Date::min()), "1677-09-21T00:12:43Z");
    EXPECT_EQ(DateText::utc(Date::max()), "2262-04-11T23:47:16Z");
}

TEST(DateTextLocal, FollowsTheZoneAndItsSummerTime) {
    const TimeZone zone(zurich);

    EXPECT_EQ(DateText::localDateTime(springAfternoon), "2026-03-01 15:05:09");
    EXPECT_EQ(DateText::localDateTime(springAfternoon + 24h * 122), "2026-07-01 16:05:09");
}

TEST(DateTextLocal, HoursHaveTwoDigitsAndRunFromZero) {
    const TimeZone zone("UTC0");

    EXPECT_EQ(DateText::localDateTime(std::chrono::sys_days(2026y / 1 / 2) + 3min),
              "2026-01-02 00:03:00");
}

TEST(DateTextLocal, Day_IsTheLocalOne) {
    const Date lateEvening = std::chrono::sys_days(2026y / 3 / 1) + 23h + 30min;
    {
        const TimeZone zone(zurich);
        EXPECT_EQ(DateText::localDay(lateEvening), "2026-03-02");
    }
    const TimeZone zone(newfoundland);
    EXPECT_EQ(DateText::localDay(lateEvening), "2026-03-01");
}

TEST(DateTextLocal, ManyThreads_GetTheirOwnDates) {
    const TimeZone zone("UTC0");
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i, &wrong] {
            const Date date = std::chrono::sys_days(2020y / 1 / (i + 1));
            const std::string expected = "2020-01-0" + std::to_string(i + 1) + " 00:00:00";
            for (int round = 0; round < 2'000; ++round) {
                wrong[static_cast<std::size_t>(i)] += DateText::localDateTime(date) != expected;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

}  // namespace
