#include "support/date_time_macros.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace {

enum class Clock { Date, DateYear, DateMonth, DateDay, Time, TimeHour, TimeMinute, TimeSecond, UnixTime };

constexpr std::pair<std::string_view, Clock> clockMacros[] = {
    {"Date", Clock::Date},         {"DateYear", Clock::DateYear},     {"DateMonth", Clock::DateMonth},
    {"DateDay", Clock::DateDay},   {"Time", Clock::Time},             {"TimeHour", Clock::TimeHour},
    {"TimeMinute", Clock::TimeMinute}, {"TimeSecond", Clock::TimeSecond}, {"UnixTime", Clock::UnixTime},
};

const char *const monthNames[] = {"January", "February", "March",     "April",   "May",      "June",
                                  "July",    "August",   "September", "October", "November", "December"};

}  // namespace

bool dateTimeMacroValue(std::string_view name, std::time_t when, std::string &value) {
    if (!mayBeDateTimeMacro(name))
        return false;
    const auto macro = std::find_if(std::begin(clockMacros), std::end(clockMacros),
                                    [name](const auto &entry) { return entry.first == name; });
    if (macro == std::end(clockMacros))
        return false;
    std::tm local{};
    if (!localtime_r(&when, &local))
        return false;
    const int year = local.tm_year + 1900;
    char text[64];
    switch (macro->second) {
    case Clock::Date:
        std::snprintf(text, sizeof text, "%d %s %04d", local.tm_mday, monthNames[local.tm_mon], year);
        break;
    case Clock::DateYear:
        std::snprintf(text, sizeof text, "%04d", year);
        break;
    case Clock::DateMonth:
        std::snprintf(text, sizeof text, "%02d", local.tm_mon + 1);
        break;
    case Clock::DateDay:
        std::snprintf(text, sizeof text, "%02d", local.tm_mday);
        break;
    case Clock::Time:
        std::snprintf(text, sizeof text, "%02d:%02d:%02d", local.tm_hour, local.tm_min, local.tm_sec);
        break;
    case Clock::TimeHour:
        std::snprintf(text, sizeof text, "%02d", local.tm_hour);
        break;
    case Clock::TimeMinute:
        std::snprintf(text, sizeof text, "%02d", local.tm_min);
        break;
    case Clock::TimeSecond:
        std::snprintf(text, sizeof text, "%02d", local.tm_sec);
        break;
    case Clock::UnixTime:
        std::snprintf(text, sizeof text, "%lld", static_cast<long long>(when));
        break;
    }
    value = text;
    return true;
}
