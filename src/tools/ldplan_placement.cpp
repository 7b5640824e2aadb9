// The section placement file of ldplan: which program sections go into which
// memory segment, in which order.

#include "ldplan_plan.h"

#include "project/memory_map.h"
#include "support/file_info.h"
#include "support/simple_expression_parser.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace {

// The segment of a name, else throws PlanError naming what refers to it.
const Region &findSegment(const std::vector<Region> &segments, const std::string &name, const std::string &what) {
    for (const Region &segment : segments)
        if (segment.name == name)
            return segment;
    if (name == "$(FLASH)" || name == "$(RAM)")
        throw PlanError(what + " names " + name + ", but there is no " +
                        (name == "$(FLASH)" ? "read-only" : "writable") + " memory segment");
    throw PlanError(what + " names memory segment '" + name + "', which doesn't exist");
}

bool isSectionName(const std::string &text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.' || c == '-';
    });
}

// Text that may stand in the script as it is: no statement ends, blocks or
// strings, and balanced parentheses.
bool isScriptText(const std::string &text) {
    int depth = 0;
    for (const char c : text) {
        if (c == ';' || c == '{' || c == '}' || c == '"' || c == '\n' || c == '\r' || c == '=')
            return false;
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (depth < 0)
            return false;
    }
    return depth == 0 && text.find_first_not_of(" \t") != std::string::npos;
}

// "*(.text .text.*) KEEP(*(.init))": the descriptions, split at blanks
// outside parentheses.
std::vector<std::string> inputDescriptions(const std::string &text) {
    std::vector<std::string> items;
    std::string item;
    int depth = 0;
    for (const char c : text) {
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (depth == 0 && (c == ' ' || c == '\t')) {
            if (!item.empty())
                items.push_back(std::move(item));
            item.clear();
        } else {
            item.push_back(c);
        }
    }
    if (!item.empty())
        items.push_back(std::move(item));
    return items;
}

std::vector<std::string> symbolNames(const MemoryMapElement &element, const char *attribute,
                                     const std::string &section) {
    std::vector<std::string> names;
    const char *text = element.text(attribute);
    std::istringstream in(text ? text : "");
    for (std::string name; in >> name;) {
        if (!isSymbolName(name))
            throw PlanError("bad " + std::string(attribute) + " '" + name + "' of section " + section);
        names.push_back(name);
    }
    return names;
}

// "Yes" or "No"; fallback when missing.
bool yesNo(const MemoryMapElement &element, const char *attribute, bool fallback, const std::string &section) {
    const char *text = element.text(attribute);
    if (!text || !*text)
        return fallback;
    if (std::string_view(text) == "Yes")
        return true;
    if (std::string_view(text) == "No")
        return false;
    throw PlanError("bad " + std::string(attribute) + " '" + text + "' of section " + section +
                    ": expected Yes or No");
}

// The region that a placement segment puts its sections into: the segment
// itself, or the part of it that start and size give, added to regions.
std::string placementRegion(const MemoryMapElement &element, const Region &segment, std::vector<Region> &regions,
                            int &parts) {
    if (!element.has("start") && !element.has("size"))
        return segment.name;
    const std::string what = "of the placement of segment '" + segment.name + "'";
    const std::uint64_t end = segment.start + segment.size;
    std::uint64_t start = segment.start;
    if (element.has("start")) {
        const std::string text = element.text("start");
        start = text[0] == '+' ? segment.start + evaluateNumber(text.substr(1), "start " + what)
                               : evaluateNumber(text, "start " + what);
    }
    if (start < segment.start || start > end)
        throw PlanError("start " + hex(start) + " " + what + " lies outside the segment");
    const std::uint64_t size = element.has("size") ? evaluateNumber(element.text("size"), "size " + what)
                                                   : end - start;
    if (size > end - start)
        throw PlanError("size " + hex(size) + " " + what + " goes beyond the segment's end");
    Region part = segment;
    part.name = segment.name + "_part" + std::to_string(++parts);
    part.start = start;
    part.size = size;
    regions.push_back(part);
    return part.name;
}

PlacedSection placeSection(const MemoryMapElement &element, const std::string &region,
                           const std::vector<Region> &segments) {
    PlacedSection section;
    section.name = element.name() ? element.name() : "";
    if (!isSectionName(section.name))
        throw PlanError("bad ProgramSection name '" + section.name + "' in segment " + region);
    const std::string of = " of section " + section.name;
    section.region = region;
    if (element.has("runin")) {
        section.loadRegion = region;
        section.region = findSegment(segments, element.text("runin"), "the runin of section " + section.name).name;
    }
    if (element.has("start")) {
        const std::string text = element.text("start");
        const bool relative = text[0] == '+';
        const std::uint64_t value = evaluateNumber(relative ? text.substr(1) : text, "start" + of);
        if (value > 0xFFFFFFFFu)
            throw PlanError("start '" + text + "'" + of + " goes beyond the 32-bit address space");
        section.start = relative ? "ORIGIN(" + section.region + ") + " + hex(value) : hex(value);
    }
    if (element.has("size")) {
        const std::string text = element.text("size");
        bool ok = false;
        const std::uint64_t value = SimpleExpressionParser().evaluateUnsigned(text, ok);
        // Not a number: an expression of the script's own symbols, such as
        // __HEAPSIZE__.
        if (ok)
            section.size = hex(value);
        else if (isScriptText(text))
            section.size = text;
        else
            throw PlanError("bad size '" + text + "'" + of);
    }
    if (element.has("alignment")) {
        section.alignment = evaluateNumber(element.text("alignment"), "alignment" + of);
        if (section.alignment == 0 || (section.alignment & (section.alignment - 1)))
            throw PlanError("alignment " + std::string(element.text("alignment")) + of + " is not a power of 2");
    }
    section.noLoad = !yesNo(element, "load", true, section.name);
    section.keep = yesNo(element, "keep", false, section.name);
    const std::string inputs =
        element.has("inputsections") ? element.text("inputsections") : "*(" + section.name + " " + section.name + ".*)";
    if (!isScriptText(inputs))
        throw PlanError("bad inputsections '" + inputs + "'" + of);
    section.inputs = inputDescriptions(inputs);
    if (element.has("fill")) {
        section.fill = element.text("fill");
        parseUnsigned(section.fill, "fill" + of);
    }
    section.addressSymbols = symbolNames(element, "address_symbol", section.name);
    section.endSymbols = symbolNames(element, "end_symbol", section.name);
    section.sizeSymbols = symbolNames(element, "size_symbol", section.name);
    section.loadSymbols = symbolNames(element, "load_address_symbol", section.name);
    return section;
}

} // namespace

Placement readPlacement(const std::string &fileName, const std::string &macros, const std::vector<Region> &segments) {
    if (!FileInfo(fileName).isFile())
        throw PlanError("section placement file '" + fileName + "' does not exist");
    // $(FLASH) and $(RAM) for placements that don't name the segments.
    std::string roles;
    for (const Region &segment : segments) {
        if (segment.readOnly && segment.attributes.find('r') != std::string::npos) {
            roles += "FLASH=" + segment.name + ";";
            break;
        }
    }
    for (const Region &segment : segments) {
        if (segment.attributes.find('w') != std::string::npos) {
            roles += "RAM=" + segment.name + ";";
            break;
        }
    }
    SystemMacros table;
    MemoryMap map(&table);
    if (!map.load(fileName, roles + macros, true))
        throw PlanError("section placement file '" + fileName + "' is not an XML document" +
                        (map.errorText.empty() ? "" : ": line " + std::to_string(map.errorLine + 1) + ": " +
                                                          map.errorText));

    Placement placement;
    placement.regions = segments;
    const MemoryMapElement *root = map.rootElement();
    placement.entry = root->has("entry") ? root->text("entry") : "";
    if (!placement.entry.empty() && !isSymbolName(placement.entry))
        throw PlanError("bad entry '" + placement.entry + "' of the section placement");
    std::vector<std::string> names;
    int parts = 0;
    // Placement segments from the root down (imported roots included), in
    // document order.
    std::vector<MemoryMapElement *> pending{map.rootElement()};
    while (!pending.empty()) {
        MemoryMapElement *node = pending.back();
        pending.pop_back();
        if (node->kind != MemoryMapElement::MemorySegment) {
            const std::size_t mark = pending.size();
            for (MemoryMapElement *child = node->firstChildElement(); child; child = child->nextSiblingElement())
                pending.push_back(child);
            std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(mark), pending.end());
            continue;
        }
        const std::string name = node->name() ? node->name() : "";
        const Region &segment = findSegment(segments, name, "the section placement");
        const std::string region = placementRegion(*node, segment, placement.regions, parts);
        for (MemoryMapElement *child = node->firstChildElement(); child; child = child->nextSiblingElement()) {
            if (child->kind != MemoryMapElement::ProgramSection)
                continue;
            placement.sections.push_back(placeSection(*child, region, segments));
            const std::string &placed = placement.sections.back().name;
            if (std::find(names.begin(), names.end(), placed) != names.end())
                throw PlanError("section " + placed + " is placed twice");
            names.push_back(placed);
        }
    }
    return placement;
}
