// Parses arbitrary bytes as JSON. Whatever parses is written in both forms;
// unless a key holds a character that the writer leaves unescaped, each
// written text must parse again and give the same text, and every path
// query must end without harm.
#include "support/exceptions.h"
#include "support/json_value.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

bool keysAreWritable(const JSON::Value &value) {
    for (const auto &[key, member] : value.members())
        if (key.find_first_of("\"\\") != std::string::npos || !keysAreWritable(member))
            return false;
    for (const JSON::Value &element : value.elements())
        if (!keysAreWritable(element))
            return false;
    return true;
}

void roundTrip(const JSON::Value &value, bool compact) {
    std::string first;
    value.write(first, compact, 0);
    JSON::Value again;
    try {
        JSON::parse(first, again);
    } catch (const HException &e) {
        std::fprintf(stderr, "written text doesn't parse: %s\n%s\n", e.message().c_str(), first.c_str());
        std::abort();
    }
    std::string second;
    again.write(second, compact, 0);
    if (second != first) {
        std::fprintf(stderr, "second write differs\nfirst:\n%s\nsecond:\n%s\n", first.c_str(), second.c_str());
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    JSON::Value value;
    try {
        JSON::parse(text, value);
    } catch (const HException &) {
        return 0;
    }
    if (keysAreWritable(value)) {
        roundTrip(value, false);
        roundTrip(value, true);
    }
    // The text's own lines double as paths.
    std::vector<const JSON::Value *> results;
    std::size_t start = 0;
    for (int i = 0; i < 4 && start <= text.size(); ++i) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view path(text.data() + start, end - start);
        value.find(path, results);
        (void)value.at(path);
        start = end + 1;
    }
    return 0;
}
