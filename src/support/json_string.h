#pragma once

#include <string>
#include <string_view>

// text as a JSON string, between double quotes: the quote, the backslash,
// backspace, form feed, line feed, carriage return and tab are escaped, and
// every other byte is copied as it is.
inline std::string jsonString(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 2);
    result += '"';
    for (const char c : text) {
        switch (c) {
        case '"': result += "\\\""; break;
        case '\\': result += "\\\\"; break;
        case '\b': result += "\\b"; break;
        case '\f': result += "\\f"; break;
        case '\n': result += "\\n"; break;
        case '\r': result += "\\r"; break;
        case '\t': result += "\\t"; break;
        default: result += c;
        }
    }
    result += '"';
    return result;
}
