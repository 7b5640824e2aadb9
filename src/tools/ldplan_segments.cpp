// The memory segments of ldplan: from the command line or a memory map file.

#include "ldplan_plan.h"

#include "project/memory_map.h"
#include "support/file_info.h"
#include "support/simple_expression_parser.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string_view>

bool isSymbolName(const std::string &text) {
    if (text.empty() || !(text[0] == '_' || (text[0] >= 'a' && text[0] <= 'z') || (text[0] >= 'A' && text[0] <= 'Z')))
        return false;
    return std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
               c == '.';
    });
}

std::uint64_t evaluateNumber(const std::string &text, const std::string &what) {
    bool ok = false;
    const std::uint64_t value = SimpleExpressionParser().evaluateUnsigned(text, ok);
    if (!ok)
        throw PlanError("bad " + what + " '" + text + "'");
    return value;
}

std::string hex(std::uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%08" PRIX64, value);
    return text;
}

std::uint64_t parseUnsigned(const std::string &text, const std::string &what) {
    char *end = nullptr;
    errno = 0;
    const unsigned long long value = std::strtoull(text.c_str(), &end, 0);
    if (text.empty() || text[0] == '-' || *end != '\0' || errno == ERANGE)
        throw PlanError("bad " + what + " '" + text + "'");
    return value;
}

namespace {

// "R", "RX", "RW", "RWX" and the like, in either case, as ld's attributes.
std::string accessAttributes(const std::string &access, const std::string &segment) {
    const auto bad = [&] {
        return PlanError("bad access '" + access + "' of memory segment '" + segment +
                         "': expected R, RX, RW or RWX");
    };
    std::string seen;
    for (const char c : access) {
        const char letter = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
        if (std::string_view("rwx").find(letter) == std::string_view::npos ||
            seen.find(letter) != std::string::npos)
            throw bad();
        seen.push_back(letter);
    }
    if (seen.empty())
        throw bad();
    std::string attributes;
    for (const char letter : {'r', 'w', 'x'})
        if (seen.find(letter) != std::string::npos)
            attributes.push_back(letter);
    return attributes;
}

} // namespace

std::vector<Region> segmentsFromList(const std::string &list) {
    std::vector<Region> segments;
    std::istringstream items(list);
    for (std::string item; std::getline(items, item, ';');) {
        std::istringstream in(item);
        std::vector<std::string> fields;
        for (std::string field; in >> field;)
            fields.push_back(field);
        if (fields.empty())
            continue;
        if (fields.size() != 4)
            throw PlanError("bad memory segment '" + item + "': expected NAME ACCESS START SIZE");
        Region segment;
        segment.name = fields[0];
        segment.attributes = accessAttributes(fields[1], fields[0]);
        segment.readOnly = segment.attributes.find('w') == std::string::npos;
        segment.start = parseUnsigned(fields[2], "start of memory segment '" + fields[0] + "'");
        segment.size = parseUnsigned(fields[3], "size of memory segment '" + fields[0] + "'");
        if (segment.size)
            segments.push_back(std::move(segment));
    }
    return segments;
}

std::vector<Region> segmentsFromMemoryMap(const std::string &fileName, const std::string &macros) {
    if (!FileInfo(fileName).isFile())
        throw PlanError("memory map file '" + fileName + "' does not exist");
    // The tree is kept to the end of the process: ldplan reads one map, and
    // freeing a large one element by element would cost a tenth of the run.
    static SystemMacros table;
    static MemoryMap &map = *new MemoryMap(&table);
    if (!map.load(fileName, macros, true))
        throw PlanError("memory map file '" + fileName + "' is not an XML document" +
                        (map.errorText.empty() ? "" : ": line " + std::to_string(map.errorLine + 1) + ": " +
                                                          map.errorText));
    // Segments from the root down, not below a segment, in document order.
    std::vector<Region> segments;
    std::vector<MemoryMapElement *> pending{map.rootElement()};
    while (!pending.empty()) {
        MemoryMapElement *node = pending.back();
        pending.pop_back();
        if (node->kind == MemoryMapElement::MemorySegment) {
            const char *name = node->name();
            if (!name || !*name)
                throw PlanError("memory map file '" + fileName + "': a MemorySegment has no name");
            // ld's attributes of the access: "ReadOnly" is where code runs.
            static const char *const attributes[] = {"rwx", "rx", "w", ""};
            const MemoryMapElement::Access access = node->access();
            Region segment{name, attributes[access], node->start, node->size, access == MemoryMapElement::ReadOnly};
            if (segment.size)
                segments.push_back(std::move(segment));
            continue;
        }
        const std::size_t mark = pending.size();
        for (MemoryMapElement *child = node->firstChildElement(); child; child = child->nextSiblingElement())
            pending.push_back(child);
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(mark), pending.end());
    }
    return segments;
}

void checkSegments(const std::vector<Region> &segments) {
    if (segments.empty())
        throw PlanError("no memory segments");
    std::set<std::string> names;
    for (const Region &segment : segments) {
        if (!isSymbolName(segment.name))
            throw PlanError("bad memory segment name '" + segment.name + "'");
        if (!names.insert(segment.name).second)
            throw PlanError("memory segment '" + segment.name + "' is given twice");
        if (segment.start > 0xFFFFFFFFu || segment.size > 0x100000000u - segment.start)
            throw PlanError("memory segment '" + segment.name + "' (start " + hex(segment.start) + ", size " +
                            hex(segment.size) + ") goes beyond the 32-bit address space");
    }
    std::vector<const Region *> byStart;
    for (const Region &segment : segments)
        byStart.push_back(&segment);
    std::sort(byStart.begin(), byStart.end(),
              [](const Region *a, const Region *b) { return a->start < b->start; });
    for (std::size_t i = 1; i < byStart.size(); ++i)
        if (byStart[i]->start < byStart[i - 1]->start + byStart[i - 1]->size)
            throw PlanError("memory segments '" + byStart[i - 1]->name + "' and '" + byStart[i]->name +
                            "' overlap");
}
