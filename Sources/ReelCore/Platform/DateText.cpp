#include "ReelCore/Platform/DateText.h"

#include <ctime>

#include <fmt/chrono.h>

namespace ReelCore {

namespace {

std::time_t wholeSeconds(Date date) {
    return std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
}

std::tm local(Date date) {
    return fmt::localtime(wholeSeconds(date));
}

}  // namespace

std::string DateText::localDateTime(Date date) {
    return fmt::format("{:%Y-%m-%d %H:%M:%S}", local(date));
}

std::string DateText::localDay(Date date) {
    return fmt::format("{:%Y-%m-%d}", local(date));
}

std::string DateText::utc(Date date) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(wholeSeconds(date)));
}

}  // namespace ReelCore
