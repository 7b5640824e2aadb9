// The text of the linker script that ldplan writes.

#include "ldplan_plan.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace {

// The symbols that the placements size sections with, when the command line
// doesn't give them.
const std::pair<const char *, const char *> defaultSymbols[] = {
    {"__STACKSIZE__", "1024"},
    {"__STACKSIZE_PROCESS__", "0"},
    {"__HEAPSIZE__", "1024"},
};

std::string trimmed(const std::string &text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") + 1 - first);
}

std::string regionEnd(const std::string &region) {
    return "ORIGIN(" + region + ") + LENGTH(" + region + ")";
}

void writeSection(std::ostringstream &out, const PlacedSection &section, const ScriptSettings &settings) {
    out << "  " << section.name;
    if (!section.start.empty())
        out << ' ' << section.start;
    if (section.noLoad)
        out << " (NOLOAD)";
    out << " :";
    if (section.alignment > 1)
        out << " ALIGN(" << section.alignment << ')';
    out << "\n  {\n";
    for (const std::string &symbol : section.addressSymbols)
        out << "    " << symbol << " = .;\n";
    // A sized section measures itself from a symbol at its start: inside a
    // section one linker reads "." as an offset, another as an address.
    std::string start;
    if (!section.size.empty()) {
        if (!section.addressSymbols.empty()) {
            start = section.addressSymbols.front();
        } else {
            start = "__ldplan_start";
            for (const char c : section.name)
                start += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
            out << "    " << start << " = .;\n";
        }
    }
    for (const std::string &input : section.inputs) {
        const bool wrap = section.keep && input.rfind("KEEP(", 0) != 0;
        out << "    " << (wrap ? "KEEP(" + input + ")" : input) << '\n';
    }
    if (!section.size.empty()) {
        if (settings.checkSectionOverflow)
            out << "    ASSERT(. - " << start << " <= " << section.size << ", \"section " << section.name
                << " is larger than its size " << section.size << "\");\n";
        out << "    . += . - " << start << " < " << section.size << " ? " << section.size << " - (. - " << start
            << ") : 0;\n";
    }
    for (const std::string &symbol : section.endSymbols)
        out << "    " << symbol << " = .;\n";
    if (settings.checkSegmentOverflow)
        out << "    ASSERT(. <= " << regionEnd(section.region) << ", \"section " << section.name
            << " does not fit in segment " << section.region << "\");\n";
    out << "  } > " << section.region;
    if (!section.loadRegion.empty())
        out << " AT > " << section.loadRegion;
    const std::string &fill = section.fill.empty() ? settings.defaultFill : section.fill;
    if (!fill.empty() && !section.noLoad)
        out << " =" << fill;
    out << '\n';
    for (const std::string &symbol : section.sizeSymbols)
        out << "  " << symbol << " = SIZEOF(" << section.name << ");\n";
    for (const std::string &symbol : section.loadSymbols)
        out << "  " << symbol << " = LOADADDR(" << section.name << ");\n";
    if (settings.checkSegmentOverflow && !section.loadRegion.empty())
        out << "  ASSERT(LOADADDR(" << section.name << ") + SIZEOF(" << section.name
            << ") <= " << regionEnd(section.loadRegion) << ", \"section " << section.name
            << " does not fit in segment " << section.loadRegion << "\")\n";
}

} // namespace

std::vector<std::pair<std::string, std::string>> parseSymbols(const std::string &list) {
    std::vector<std::pair<std::string, std::string>> symbols;
    std::istringstream items(list);
    for (std::string item; std::getline(items, item, ';');) {
        if (trimmed(item).empty())
            continue;
        const auto equals = item.find('=');
        const std::string name = trimmed(item.substr(0, equals));
        const std::string value = equals == std::string::npos ? "" : trimmed(item.substr(equals + 1));
        const bool goodValue = !value.empty() && value.find_first_of(";{}\"=\n") == std::string::npos &&
                               std::count(value.begin(), value.end(), '(') ==
                                   std::count(value.begin(), value.end(), ')');
        if (!isSymbolName(name) || !goodValue)
            throw PlanError("bad symbol '" + item + "': expected NAME=VALUE");
        symbols.emplace_back(name, value);
    }
    return symbols;
}

std::string writeScript(const Placement &placement, const ScriptSettings &settings) {
    std::ostringstream out;
    out << "/* Made by ldplan: changes are lost when it is made again. */\n\nMEMORY\n{\n";
    for (const Region &region : placement.regions) {
        out << "  " << region.name;
        if (!region.attributes.empty())
            out << " (" << region.attributes << ')';
        out << " : ORIGIN = " << hex(region.start) << ", LENGTH = " << hex(region.size) << '\n';
    }
    out << "}\n\n";

    std::vector<std::pair<std::string, std::string>> symbols = settings.symbols;
    for (const auto &[name, value] : defaultSymbols)
        if (std::none_of(symbols.begin(), symbols.end(), [&](const auto &symbol) { return symbol.first == name; }))
            symbols.emplace_back(name, value);
    // A definition on the linker's command line wins over these.
    for (const auto &[name, value] : symbols)
        out << "PROVIDE(" << name << " = " << value << ");\n";
    if (!placement.entry.empty())
        out << "\nENTRY(" << placement.entry << ")\n";

    out << "\nSECTIONS\n{\n";
    for (std::size_t i = 0; i < placement.sections.size(); ++i) {
        const PlacedSection &section = placement.sections[i];
        if (i)
            out << '\n';
        writeSection(out, section, settings);
    }
    out << "}\n";
    return out.str();
}
