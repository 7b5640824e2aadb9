// ldplan: makes a GNU ld linker script from the memory segments of a target
// (a list, or a memory map file) and a section placement file. The link step
// of an executable runs it when the project has no linker script of its own.

#include "ldplan_plan.h"

#include "environment/install_location.h"
#include "support/exceptions.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <malloc.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

const char usage[] =
    "usage: ldplan [options] SCRIPT [options]\n"
    "Writes the GNU ld linker script SCRIPT.\n"
    "  -memory-map-segments \"NAME ACCESS START SIZE;...\"  the memory segments (ACCESS: R, RX, RW, RWX)\n"
    "  -memory-map-file FILE            the memory segments of a memory map file\n"
    "  -memory-map-macros \"A=1;B=2\"     macros for reading the memory map\n"
    "  -section-placement-file FILE     the section placement (default: the Cortex-M placement\n"
    "                                   of the installation)\n"
    "  -section-placement-macros \"A=1\"  macros for reading the section placement\n"
    "  -check-segment-overflow          the link fails when a section does not fit in its segment\n"
    "  -check-section-overflow          the link fails when a section outgrows its size\n"
    "  -symbols \"NAME=VALUE;...\"        symbols such as __STACKSIZE__ and __HEAPSIZE__\n"
    "  -default-fill-pattern VALUE      fills the gaps of sections without a fill of their own\n"
    "  -v                               says what it wrote\n"
    "  -help                            shows this text\n";

// A large memory map is tens of megabytes of small allocations, and a fresh
// process pays a page fault for every 4 KiB it touches. The heap grows in
// steps of 64 MiB instead, marked for transparent huge pages where the kernel
// has them: a map of 10,000 registers then takes a seventh of the faults.
void growHeapInLargeSteps() {
    constexpr std::size_t step = std::size_t(64) << 20;
    constexpr std::uintptr_t hugePage = std::uintptr_t(2) << 20;
    mallopt(M_TOP_PAD, static_cast<int>(step));
    // More than the first heap has left, less than what malloc maps apart.
    void *probe = std::malloc(std::size_t(120) << 10);
    const auto begin = (reinterpret_cast<std::uintptr_t>(probe) + hugePage - 1) & ~(hugePage - 1);
    const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
    if (probe && end > begin)
        madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE);
    std::free(probe);
}

// Writes text to path through a temporary file beside it, so that a failed
// run never leaves a partial script behind.
void writeFileAtomically(const std::string &path, const std::string &text) {
    std::string temporary = path + ".XXXXXX";
    const int descriptor = mkstemp(temporary.data());
    if (descriptor < 0)
        throw PlanError("cannot write '" + path + "'");
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
    std::FILE *stream = fdopen(descriptor, "w");
    bool written = stream && std::fwrite(text.data(), 1, text.size(), stream) == text.size();
    if (stream)
        written = std::fclose(stream) == 0 && written;
    else
        close(descriptor);
    if (!written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        std::remove(temporary.c_str());
        throw PlanError("cannot write '" + path + "'");
    }
}

int run(const LdplanOptions &options) {
    if (!options.memoryMapFile.empty() && !options.segments.empty())
        throw PlanError("-memory-map-file and -memory-map-segments are both given");
    if (options.memoryMapFile.empty() && options.segments.empty())
        throw PlanError("no memory segments: give -memory-map-segments or -memory-map-file");
    const std::vector<Region> segments = options.memoryMapFile.empty()
                                             ? segmentsFromList(options.segments)
                                             : segmentsFromMemoryMap(options.memoryMapFile, options.memoryMapMacros);
    checkSegments(segments);

    const std::string placementFile = options.placementFile.empty()
                                          ? installDirectory() + "/targets/Cortex_M/placement.xml"
                                          : options.placementFile;
    const Placement placement = readPlacement(placementFile, options.placementMacros, segments);

    ScriptSettings settings;
    settings.symbols = parseSymbols(options.symbols);
    if (!options.defaultFillPattern.empty()) {
        parseUnsigned(options.defaultFillPattern, "-default-fill-pattern");
        settings.defaultFill = options.defaultFillPattern;
    }
    settings.checkSegmentOverflow = options.checkSegmentOverflow;
    settings.checkSectionOverflow = options.checkSectionOverflow;
    writeFileAtomically(options.output, writeScript(placement, settings));
    if (options.verbose)
        std::cout << "ldplan: wrote " << options.output << " from " << segments.size() << " memory segments and "
                  << placement.sections.size() << " program sections of " << placementFile << '\n';
    return 0;
}

} // namespace

LdplanOptions parseLdplanArguments(const std::vector<std::string> &arguments) {
    LdplanOptions options;
    const std::pair<const char *, std::string LdplanOptions::*> valued[] = {
        {"-memory-map-segments", &LdplanOptions::segments},
        {"-memory-map-file", &LdplanOptions::memoryMapFile},
        {"-memory-map-macros", &LdplanOptions::memoryMapMacros},
        {"-section-placement-file", &LdplanOptions::placementFile},
        {"-section-placement-macros", &LdplanOptions::placementMacros},
        {"-symbols", &LdplanOptions::symbols},
        {"-default-fill-pattern", &LdplanOptions::defaultFillPattern},
    };
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument.empty() || argument[0] != '-') {
            if (!options.output.empty())
                throw PlanError("more than one script given: '" + options.output + "' and '" + argument + "'");
            options.output = argument;
            continue;
        }
        if (argument == "-check-segment-overflow") {
            options.checkSegmentOverflow = true;
            continue;
        }
        if (argument == "-check-section-overflow") {
            options.checkSectionOverflow = true;
            continue;
        }
        if (argument == "-v") {
            options.verbose = true;
            continue;
        }
        if (argument == "-help" || argument == "--help" || argument == "-h") {
            options.help = true;
            continue;
        }
        bool known = false;
        for (const auto &[name, field] : valued) {
            if (argument != name)
                continue;
            if (i + 1 == arguments.size())
                throw PlanError(argument + " needs a value");
            options.*field = arguments[++i];
            known = true;
        }
        if (!known)
            throw PlanError("unknown option '" + argument + "'");
    }
    if (options.output.empty() && !options.help)
        throw PlanError("no linker script to write");
    return options;
}

int main(int argc, char **argv) {
    try {
        const LdplanOptions options = parseLdplanArguments(std::vector<std::string>(argv + 1, argv + argc));
        if (options.help) {
            std::cout << usage;
            return 0;
        }
        setInstallDirectories(executablePath(argv[0]), 1);
        growHeapInLargeSteps();
        return run(options);
    } catch (const PlanError &error) {
        std::cerr << "ldplan: error: " << error.what() << '\n';
        return 1;
    } catch (const HException &error) {
        std::cerr << "ldplan: error: " << error.message() << '\n';
        return 1;
    } catch (const std::exception &error) {
        std::cerr << "ldplan: error: " << error.what() << '\n';
        return 1;
    }
}
