#pragma once

// What ldplan reads from its command line, memory map and section placement,
// and turns into a GNU ld linker script.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// A fault of the input; main prints "error: " and the text, writes nothing
// and exits with status 1.
class PlanError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct LdplanOptions {
    std::string segments;            // -memory-map-segments
    std::string memoryMapFile;       // -memory-map-file
    std::string memoryMapMacros;     // -memory-map-macros
    std::string placementFile;       // -section-placement-file
    std::string placementMacros;     // -section-placement-macros
    std::string symbols;             // -symbols
    std::string defaultFillPattern;  // -default-fill-pattern
    bool checkSegmentOverflow = false;
    bool checkSectionOverflow = false;
    bool verbose = false;
    bool help = false;
    std::string output;
};

// Reads the arguments behind the program name; throws PlanError for an
// unknown option, a missing value or a missing or second output path.
LdplanOptions parseLdplanArguments(const std::vector<std::string> &arguments);

// A region of the MEMORY block: a memory segment, or the part of one that a
// placement segment restricts itself to.
struct Region {
    std::string name;
    std::string attributes;  // "rx", "rwx" ...; empty for a segment without access
    std::uint64_t start = 0;
    std::uint64_t size = 0;
    bool readOnly = false;   // no "w": where code and constants go
};

// The memory segments, in the order given: from "NAME ACCESS START SIZE;..."
// or from a memory map file read with its macros. Throws PlanError for bad
// items, segments beyond 32 bits and overlapping segments.
std::vector<Region> segmentsFromList(const std::string &list);
std::vector<Region> segmentsFromMemoryMap(const std::string &fileName, const std::string &macros);
void checkSegments(const std::vector<Region> &segments);

// One output section of the script.
struct PlacedSection {
    std::string name;
    std::string region;      // where it runs
    std::string loadRegion;  // where it is loaded, when that is another region
    std::string start;       // address expression; empty: next free address
    std::string size;        // fixed size expression; empty: as large as its input
    std::uint64_t alignment = 0;
    bool noLoad = false;
    bool keep = false;
    std::vector<std::string> inputs;  // input section descriptions
    std::string fill;
    std::vector<std::string> addressSymbols, endSymbols, sizeSymbols, loadSymbols;
};

struct Placement {
    std::vector<Region> regions;  // the segments, then the restricted parts
    std::vector<PlacedSection> sections;
    std::string entry;
};

// Reads a section placement file against the segments. The pre-processor
// sees FLASH and RAM, the names of the first read-only and of the first
// writable segment, unless macros set them. Throws PlanError.
Placement readPlacement(const std::string &fileName, const std::string &macros,
                        const std::vector<Region> &segments);

// "NAME=VALUE;..." as pairs, in order; throws PlanError for a bad item.
std::vector<std::pair<std::string, std::string>> parseSymbols(const std::string &list);

struct ScriptSettings {
    std::vector<std::pair<std::string, std::string>> symbols;
    std::string defaultFill;
    bool checkSegmentOverflow = false;
    bool checkSectionOverflow = false;
};

// The text of the linker script.
std::string writeScript(const Placement &placement, const ScriptSettings &settings);

// Helpers shared by the readers.
bool isSymbolName(const std::string &text);
// A number or constant expression; throws PlanError naming what for a text
// that isn't one.
std::uint64_t evaluateNumber(const std::string &text, const std::string &what);
// A whole text read by strtoull with base 0; throws PlanError naming what.
std::uint64_t parseUnsigned(const std::string &text, const std::string &what);
std::string hex(std::uint64_t value);
