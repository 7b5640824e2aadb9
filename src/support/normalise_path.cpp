#include "support/normalise_path.h"

#include <cstring>
#include <string_view>
#include <vector>

bool isPlainPath(std::string_view text) {
    if (text.empty() || text == "/")
        return true;
    if (text.front() == '.' || text.back() == '/')
        return false;
    // Only what follows a separator can be "/", "." or "..": jump from one
    // separator to the next.
    const char *at = text.data();
    const char *const end = at + text.size();
    while ((at = static_cast<const char *>(std::memchr(at, '/', std::size_t(end - at)))) && at + 1 < end) {
        if (at[1] == '/' || at[1] == '.')
            return false;
        ++at;
    }
    return true;
}

bool normalisePath(std::string &text) {
    // Most paths have nothing to remove.
    if (isPlainPath(text))
        return false;
    std::vector<std::string_view> parts;
    int levels = 0;  // real directory levels in `parts`, which ".." may remove
    bool changed = false;
    const std::string_view whole(text);
    size_t start = 0;
    for (;;) {
        const size_t end = whole.find('/', start);
        const std::string_view part =
            whole.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
        const bool first = start == 0;
        if (part == "..") {
            if (levels > 0) {
                parts.pop_back();
                --levels;
                changed = true;
            } else {
                parts.push_back(part);
            }
        } else if (part.empty() && !first) {
            changed = true;
        } else if (part == ".") {
            changed = true;
        } else {
            parts.push_back(part);
            if (!part.empty())
                ++levels;
        }
        if (end == std::string_view::npos)
            break;
        start = end + 1;
    }
    if (!changed)
        return false;

    // Only the root left: "/", "//", "/a/..".
    if (parts.size() == 1 && parts.front().empty()) {
        if (text.size() == 1)
            return false;  // "/" itself
        text.assign(1, '/');
        return true;
    }
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            result += '/';
        result += parts[i];
    }
    text = std::move(result);
    return true;
}
