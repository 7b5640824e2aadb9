#pragma once

#include <ctime>
#include <string>
#include <string_view>

// The nine macros whose value is the clock's: Date ("5 March 2026"),
// DateYear, DateMonth, DateDay, Time ("15:34:03"), TimeHour, TimeMinute,
// TimeSecond (all in local time, numbers but the year with two digits) and
// UnixTime (seconds since the epoch).

// For one of the nine names, writes its value at the moment `when` to
// `value` and returns true; returns false for any other name.
bool dateTimeMacroValue(std::string_view name, std::time_t when, std::string &value);

// Whether name may be one of the nine: every macro reference of an expansion
// asks, and nearly every name is turned away by its first letter.
inline bool mayBeDateTimeMacro(std::string_view name) {
    return !name.empty() && (name[0] == 'D' || name[0] == 'T' || name[0] == 'U');
}

// dateTimeMacroValue now; the clock is read only for a name that may be one
// of the nine.
inline bool expandDateTimeMacro(std::string_view name, std::string &value) {
    return mayBeDateTimeMacro(name) && dateTimeMacroValue(name, std::time(nullptr), value);
}
