#pragma once

// Small text helpers that both pre-processors use on attribute values.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

// True if `item` is one of the ","-separated items of `list`; empty items
// count, so "" holds the empty item.
inline bool listHolds(std::string_view list, std::string_view item) {
    size_t start = 0;
    for (;;) {
        const size_t end = list.find(',', start);
        if (list.substr(start, end == std::string_view::npos ? end : end - start) == item)
            return true;
        if (end == std::string_view::npos)
            return false;
        start = end + 1;
    }
}

// The items between separators, empty ones kept. An empty separator splits
// at ",".
inline std::vector<std::string> splitList(std::string_view text, std::string_view separator) {
    if (separator.empty())
        separator = ",";
    std::vector<std::string> items;
    size_t start = 0;
    for (;;) {
        const size_t end = text.find(separator, start);
        if (end == std::string_view::npos) {
            items.emplace_back(text.substr(start));
            return items;
        }
        items.emplace_back(text.substr(start, end - start));
        start = end + separator.size();
    }
}

inline std::string withoutLineBreaks(std::string text) {
    std::erase_if(text, [](char c) { return c == '\n' || c == '\r'; });
    return text;
}

// The text of an attribute, empty if it is missing.
inline const std::string &textOf(const std::string *text) {
    static const std::string empty;
    return text ? *text : empty;
}
