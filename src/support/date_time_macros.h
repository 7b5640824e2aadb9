#pragma once

#include <ctime>
#include <string>
#include <string_view>

// The nine macros whose value is the clock's: Date ("5 March 2026"),
// DateYear, DateMonth, DateDay, Time ("15:34:03"), TimeHour, TimeMinute,
// TimeSecond (all in local time, numbers but the year with two digits) and
// UnixTime (seconds since the epoch).

// For one of the nine names, writes its value now to `value` and returns
// true; returns false for any other name.
bool expandDateTimeMacro(std::string_view name, std::string &value);

// The same for the moment `when`.
bool dateTimeMacroValue(std::string_view name, std::time_t when, std::string &value);
