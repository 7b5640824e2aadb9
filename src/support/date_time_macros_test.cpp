#include "support/date_time_macros.h"

#include "support/scoped_variable.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

// Local time as in time zone `zone` for the life of the object.
class TimeZone {
public:
    explicit TimeZone(const char *zone) : variable_("TZ", zone) { tzset(); }
    ~TimeZone() { tzset(); }

private:
    ScopedVariable variable_;
};

std::string valueAt(std::string_view name, std::time_t when) {
    std::string value = "unchanged";
    EXPECT_TRUE(dateTimeMacroValue(name, when, value)) << name;
    return value;
}

}  // namespace

TEST(DateTimeMacros, TheNineNamesInLocalTime) {
    TimeZone utc("UTC0");
    const std::time_t when = 1772723643;  // 2026-03-05 15:14:03 UTC
    EXPECT_EQ(valueAt("Date", when), "5 March 2026");
    EXPECT_EQ(valueAt("DateYear", when), "2026");
    EXPECT_EQ(valueAt("DateMonth", when), "03");
    EXPECT_EQ(valueAt("DateDay", when), "05");
    EXPECT_EQ(valueAt("Time", when), "15:14:03");
    EXPECT_EQ(valueAt("TimeHour", when), "15");
    EXPECT_EQ(valueAt("TimeMinute", when), "14");
    EXPECT_EQ(valueAt("TimeSecond", when), "03");
    EXPECT_EQ(valueAt("UnixTime", when), "1772723643");

    TimeZone east("XYZ-10");
    EXPECT_EQ(valueAt("Date", when), "6 March 2026");
    EXPECT_EQ(valueAt("Time", when), "01:14:03");
    EXPECT_EQ(valueAt("UnixTime", when), "1772723643");
}

TEST(DateTimeMacros, MonthNamesAndTwoDigitFields) {
    TimeZone utc("UTC0");
    EXPECT_EQ(valueAt("Date", 1734220800), "15 December 2024");
    EXPECT_EQ(valueAt("Date", 1704067199), "31 December 2023");
    EXPECT_EQ(valueAt("Time", 1704067199), "23:59:59");
    EXPECT_EQ(valueAt("Date", 0), "1 January 1970");
    EXPECT_EQ(valueAt("Time", 0), "00:00:00");
    EXPECT_EQ(valueAt("DateDay", 0), "01");
}

TEST(DateTimeMacros, OtherNamesAreNotTheClocks) {
    std::string value = "unchanged";
    for (const char *name : {"", "date", "DATE", "Dates", "Timer", "HostOS", "Unix", "D", "TimeZone"})
        EXPECT_FALSE(dateTimeMacroValue(name, 0, value)) << name;
    EXPECT_EQ(value, "unchanged");
}

TEST(DateTimeMacros, NowIsTheClock) {
    const std::time_t before = std::time(nullptr);
    std::string value;
    ASSERT_TRUE(expandDateTimeMacro("UnixTime", value));
    const std::time_t now = std::stoll(value);
    EXPECT_GE(now, before);
    EXPECT_LE(now, std::time(nullptr));
}
