// imagedump: what a linked image holds. With -memory-usage it tells, for
// each memory segment of the target, how many of its bytes the image uses.
//
// A section counts where it runs, and also where the image keeps it when
// that is elsewhere: initialised data takes room in flash and in RAM alike.
// Zeroed data (.bss) takes room where it runs only.

#include "imagedump_elf.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

const char usage[] = "usage: imagedump <image> -memory-usage NAME,START,SIZE[,NAME,START,SIZE...]\n";

struct Segment {
    std::string name;
    std::uint64_t start = 0, size = 0, used = 0;
};

int fail(const std::string &message) {
    std::fprintf(stderr, "error: %s\n", message.c_str());
    return 1;
}

bool parseNumber(const std::string &text, std::uint64_t &value) {
    if (text.empty() || text[0] == '-' || text[0] == '+' || text[0] == ' ')
        return false;
    char *end = nullptr;
    errno = 0;
    value = std::strtoull(text.c_str(), &end, 0);
    return errno == 0 && *end == '\0';
}

// "NAME,START,SIZE,..." into segments; an empty list has none.
bool parseSegments(const std::string &list, std::vector<Segment> &segments) {
    std::vector<std::string> fields;
    for (std::size_t start = 0; !list.empty();) {
        const std::size_t comma = list.find(',', start);
        fields.push_back(list.substr(start, comma - start));
        if (comma == std::string::npos)
            break;
        start = comma + 1;
    }
    if (fields.size() % 3 != 0)
        return false;
    for (std::size_t i = 0; i < fields.size(); i += 3) {
        Segment segment;
        segment.name = fields[i];
        if (segment.name.empty() || !parseNumber(fields[i + 1], segment.start) ||
            !parseNumber(fields[i + 2], segment.size))
            return false;
        segments.push_back(segment);
    }
    return true;
}

// The bytes of [start, start + size) that fall in the segment.
std::uint64_t overlap(std::uint64_t start, std::uint64_t size, const Segment &segment) {
    auto end = [](std::uint64_t from, std::uint64_t length) {
        return from > UINT64_MAX - length ? UINT64_MAX : from + length;
    };
    const std::uint64_t low = std::max(start, segment.start);
    const std::uint64_t high = std::min(end(start, size), end(segment.start, segment.size));
    return high > low ? high - low : 0;
}

// 1234567 as "1,234,567".
std::string grouped(std::uint64_t value) {
    std::string digits = std::to_string(value), text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            text += ',';
        text += digits[i];
    }
    return text;
}

std::string formatted(const char *format, ...) __attribute__((format(printf, 1, 2)));
std::string formatted(const char *format, ...) {
    char text[64];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

// One line a segment, the columns aligned:
//   FLASH  0x00000000  12,345 of 524,288 bytes   2.4%
void printUsage(const std::string &image, const std::vector<Segment> &segments) {
    std::printf("Memory usage of %s\n", image.c_str());
    if (segments.empty()) {
        std::printf("  no memory segments\n");
        return;
    }
    bool wide = false;
    std::size_t nameWidth = 0, usedWidth = 0, sizeWidth = 0, percentWidth = 0;
    std::vector<std::string> percents;
    for (const Segment &segment : segments) {
        wide = wide || segment.start > 0xffffffffu;
        nameWidth = std::max(nameWidth, segment.name.size());
        usedWidth = std::max(usedWidth, grouped(segment.used).size());
        sizeWidth = std::max(sizeWidth, grouped(segment.size).size());
        percents.push_back(segment.size == 0 ? std::string("-")
                                             : formatted("%.1Lf%%", 100.0L * static_cast<long double>(segment.used) /
                                                                       static_cast<long double>(segment.size)));
        percentWidth = std::max(percentWidth, percents.back().size());
    }
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const Segment &segment = segments[i];
        std::printf("  %-*s  0x%0*llx  %*s of %*s bytes  %*s\n", static_cast<int>(nameWidth), segment.name.c_str(),
                    wide ? 16 : 8, static_cast<unsigned long long>(segment.start), static_cast<int>(usedWidth),
                    grouped(segment.used).c_str(), static_cast<int>(sizeWidth), grouped(segment.size).c_str(),
                    static_cast<int>(percentWidth), percents[i].c_str());
    }
}

}  // namespace

int main(int argc, char **argv) {
    std::string image, segmentList;
    bool memoryUsage = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "-help" || argument == "--help") {
            std::fputs(usage, stdout);
            return 0;
        }
        if (argument == "-memory-usage") {
            if (i + 1 == argc)
                return fail("-memory-usage needs the list of memory segments");
            memoryUsage = true;
            segmentList = argv[++i];
        } else if (argument.size() > 1 && argument[0] == '-') {
            std::fputs(usage, stderr);
            return fail("unknown option '" + argument + "'");
        } else if (!image.empty()) {
            return fail("more than one image given: '" + image + "' and '" + argument + "'");
        } else {
            image = argument;
        }
    }
    if (image.empty()) {
        std::fputs(usage, stderr);
        return fail("no image given");
    }
    if (!memoryUsage)
        return fail("nothing to show: give -memory-usage with the memory segments");
    std::vector<Segment> segments;
    if (!parseSegments(segmentList, segments))
        return fail("bad memory segment list '" + segmentList + "': each segment is NAME,START,SIZE");

    std::vector<imagedump::AllocatedSection> sections;
    std::string error;
    if (!imagedump::readAllocatedSections(image, sections, error))
        return fail(error);
    for (Segment &segment : segments) {
        for (const imagedump::AllocatedSection &section : sections) {
            segment.used += overlap(section.runAddress, section.size, segment);
            if (section.loaded && section.loadAddress != section.runAddress)
                segment.used += overlap(section.loadAddress, section.size, segment);
        }
    }
    printUsage(image, segments);
    return 0;
}
