// Parses arbitrary bytes with and without character data; whatever parses
// is written, parsed again and written again, which must give the same bytes.
#include "project/xml/xml_document.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void roundTrip(const std::string &text, bool keepText, int indent, int lineWidth) {
    XMLDocument document(keepText);
    if (!document.parse(text))
        return;
    std::string first;
    document.write(first, indent, lineWidth);

    XMLDocument again(keepText);
    if (!again.parse(first)) {
        std::fprintf(stderr, "written text doesn't parse: %s line %d\n%s\n",
                     again.errorText.c_str(), again.errorLine, first.c_str());
        std::abort();
    }
    std::string second;
    again.write(second, indent, lineWidth);
    if (second != first) {
        std::fprintf(stderr, "second write differs\nfirst:\n%s\nsecond:\n%s\n", first.c_str(),
                     second.c_str());
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    // The parser reads up to the first NUL, as it does with a file's bytes.
    const std::string text(reinterpret_cast<const char *>(data), size);
    for (bool keepText : {false, true}) {
        roundTrip(text, keepText, 2, 75);
        roundTrip(text, keepText, 0, 0);
        roundTrip(text, keepText, 1, 20);
    }
    return 0;
}
