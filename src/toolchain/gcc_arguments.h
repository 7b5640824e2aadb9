#pragma once

// Small helpers shared by the command lines of the GNU toolchains.

#include <vector>

#include <optional>
#include <string>

namespace gcc_arguments {

using StringList = std::vector<std::string>;

// Appends yes for "Yes" and no for "No"; any other value adds nothing.
inline void either(StringList &list, const std::optional<std::string> &value, const char *yes, const char *no) {
    if (value == "Yes")
        list.push_back(yes);
    else if (value == "No")
        list.push_back(no);
}

// The entries of a ";" list, each one argument; empty entries are dropped.
inline void appendSplit(StringList &list, const std::string &text) {
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(';', start);
        if (end == std::string::npos)
            end = text.size();
        if (end > start)
            list.push_back(text.substr(start, end - start));
        start = end + 1;
    }
}

// text with every occurrence of from replaced by to.
inline std::string replaceAll(std::string text, const std::string &from, const std::string &to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

}  // namespace gcc_arguments
