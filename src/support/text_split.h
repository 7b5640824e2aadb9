#pragma once

#include <string>
#include <string_view>
#include <vector>

// The items of `text` between any of the `separators`, empty items dropped.
inline std::vector<std::string> splitAtAny(std::string_view text, std::string_view separators) {
    std::vector<std::string> items;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find_first_of(separators, start);
        if (end == std::string_view::npos)
            end = text.size();
        if (end > start)
            items.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return items;
}

// The items of `text` between occurrences of `separator`, empty items
// dropped.
inline std::vector<std::string> splitAtText(std::string_view text, std::string_view separator) {
    std::vector<std::string> items;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = separator.empty() ? std::string_view::npos : text.find(separator, start);
        if (end == std::string_view::npos)
            end = text.size();
        if (end > start)
            items.emplace_back(text.substr(start, end - start));
        start = end + separator.size();
        if (separator.empty())
            break;
    }
    return items;
}

// `a` followed by `b`. Use it for a literal before a temporary string: g++ 12
// at -O3 warns falsely about overlapping copies in "literal" + temporary.
inline std::string concat(std::string_view a, std::string_view b) {
    std::string text;
    text.reserve(a.size() + b.size());
    text.append(a);
    text.append(b);
    return text;
}

// The items joined with `separator` between them.
inline std::string joinItems(const std::vector<std::string> &items, std::string_view separator) {
    std::string text;
    for (size_t i = 0; i < items.size(); ++i) {
        if (i)
            text += separator;
        text += items[i];
    }
    return text;
}

// The text `count` times over.
inline std::string repeat(std::string_view text, size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (size_t i = 0; i < count; ++i)
        result += text;
    return result;
}
