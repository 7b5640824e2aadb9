#include "support/normalise_path.h"

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

// Sixteen bytes as one value: the compiler keeps it in a vector register.
using Block = unsigned char __attribute__((vector_size(16)));

// Whether a separator at one of at[0] to at[15] is followed by "/" or ".":
// the pairs of sixteen positions at once, from two overlapping loads.
bool blockHasSpecialPart(const char *at) {
    Block here, next;
    std::memcpy(&here, at, sizeof here);
    std::memcpy(&next, at + 1, sizeof next);
    const auto hits = (here == '/') & ((next == '/') | (next == '.'));
    std::uint64_t halves[2];
    std::memcpy(halves, &hits, sizeof halves);
    return (halves[0] | halves[1]) != 0;
}

}  // namespace

bool isPlainPath(std::string_view text) {
    if (text.empty() || text == "/")
        return true;
    if (text.front() == '.' || text.back() == '/')
        return false;
    // Only what follows a separator can be "/", "." or "..". Paths are asked
    // for every input and output of a build, so long ones are looked at
    // sixteen pairs of bytes at a time.
    const char *const at = text.data();
    const std::size_t size = text.size();
    if (size <= sizeof(Block)) {
        for (std::size_t i = 0; i + 1 < size; ++i)
            if (at[i] == '/' && (at[i + 1] == '/' || at[i + 1] == '.'))
                return false;
        return true;
    }
    // Each block reads one byte past its sixteen, so the last starts at
    // size - 17 and overlaps the one before it.
    std::size_t i = 0;
    for (; i + sizeof(Block) + 1 <= size; i += sizeof(Block))
        if (blockHasSpecialPart(at + i))
            return false;
    return i + 1 >= size || !blockHasSpecialPart(at + size - sizeof(Block) - 1);
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
