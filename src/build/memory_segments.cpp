// The memory map and section placement files of a project, and the memory
// regions of its target.

#include "build/builder.h"
#include "build/standard_project_system.h"
#include "project/memory_map.h"
#include "support/file_info.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace {

struct LocateNames {
    const char *fileType;
    const char *stepTitle;
    const char *messageStart;
};

constexpr LocateNames memoryMapNames{"Memory Map", "Locating Memory Map File", "Memory map file '"};
constexpr LocateNames placementNames{"Section Placement", "Locating Section Placement File",
                                     "Section placement file '"};

using Region = StandardProjectSystem::MemoryRegion;

// Puts region into regions (sorted by start); with merge, regions of the same
// access that overlap or touch it are taken out and it is widened over them.
void addRegion(std::vector<Region> &regions, Region region, bool merge) {
    if (merge) {
        // Takes out every region of the access that joins, widening region
        // over it, until none is left.
        auto absorb = [&](auto joins) {
            for (bool changed = true; changed;) {
                const auto taken = std::stable_partition(regions.begin(), regions.end(), [&](const Region &other) {
                    return other.access != region.access || !joins(other);
                });
                changed = taken != regions.end();
                for (auto it = taken; it != regions.end(); ++it) {
                    region.start = std::min(region.start, it->start);
                    region.end = std::max(region.end, it->end);
                }
                regions.erase(taken, regions.end());
            }
        };
        absorb([&](const Region &other) { return other.start <= region.end && region.start <= other.end; });
        // A range that ends at the top or starts at 0 has no neighbour on
        // that side.
        const auto joins = [](const Region &first, const Region &second) {
            return first.end != 0xFFFFFFFFu && second.start != 0 && second.start == first.end + 1;
        };
        absorb([&](const Region &other) { return joins(region, other) || joins(other, region); });
    }
    const auto at = std::upper_bound(regions.begin(), regions.end(), region.start,
                                     [](std::uint64_t start, const Region &other) { return start < other.start; });
    regions.insert(at, std::move(region));
}

// The resolved path of the first file of the project, active in the
// configuration, whose file type is fileType.
bool findFileOfType(StandardProjectSystem &system, ProjectElement *element, const std::string &configuration,
                    const char *fileType, std::string &path) {
    std::vector<ProjectElement *> pending{StandardProjectSystem::projectOf(element)};
    while (!pending.empty()) {
        ProjectElement *node = pending.back();
        pending.pop_back();
        if (!node)
            continue;
        if (StandardProjectSystem::isFile(node) && system.fileTypeName(node, configuration) == fileType &&
            system.getPropertyValue(node, system.nodeProperties.buildExcludeFromBuild, configuration) != "Yes") {
            path = system.sourcePath(node, configuration);
            return true;
        }
        // Children in order: the stack takes them last first.
        const std::size_t mark = pending.size();
        for (XMLNode *child = node->firstChild; child; child = child->nextSibling)
            if (ProjectElement *below = ProjectElement::from(child);
                below && (StandardProjectSystem::isFile(below) || StandardProjectSystem::isFolder(below)))
                pending.push_back(below);
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(mark), pending.end());
    }
    return false;
}

bool locateFile(StandardProjectSystem &system, ProjectElement *element, const std::string &configuration,
                PropertyClass *property, const LocateNames &names, std::string &path, Builder *builder) {
    if (findFileOfType(system, element, configuration, names.fileType, path))
        return true;
    const std::string named = system.getPropertyValue(element, property, configuration).value_or("");
    path = named;
    if (path.empty())
        return false;
    path = system.expandWith(element, path, configuration, {});
    if (FileInfo(path).isFile())
        return true;
    path = system.projectDirectory(StandardProjectSystem::projectOf(element), configuration) + "/" + path;
    if (FileInfo(path).isFile())
        return true;
    if (builder) {
        builder->beginStep(element, names.stepTitle, configuration, 0);
        builder->reportError(names.messageStart + named + "' does not exist.");
        builder->endStep(element, configuration);
    }
    return false;
}

} // namespace

bool StandardProjectSystem::locateMemoryMapFile(ProjectElement *element, const std::string &configuration,
                                                std::string &path, Builder *builder) {
    return locateFile(*this, element, configuration, toolProperties.linkerMemoryMapFile, memoryMapNames, path,
                      builder);
}

bool StandardProjectSystem::locateSectionPlacementFile(ProjectElement *element, const std::string &configuration,
                                                       std::string &path, Builder *builder) {
    return locateFile(*this, element, configuration, toolProperties.linkerSectionPlacementFile, placementNames,
                      path, builder);
}

bool StandardProjectSystem::memorySegments(ProjectElement *element, const std::string &configuration, bool merge,
                                           std::vector<MemoryRegion> &regions) {
    std::string path;
    if (locateMemoryMapFile(element, configuration, path, nullptr)) {
        MemoryMap map(macros);
        if (map.load(path, expandedValue(element, toolProperties.linkerMemoryMapMacros, configuration), true)) {
            // Segments from the root down, not below a segment.
            std::vector<MemoryMapElement *> segments;
            std::vector<MemoryMapElement *> pending{map.rootElement()};
            while (!pending.empty()) {
                MemoryMapElement *node = pending.back();
                pending.pop_back();
                if (node->kind == MemoryMapElement::MemorySegment) {
                    segments.push_back(node);
                    continue;
                }
                const std::size_t mark = pending.size();
                for (MemoryMapElement *child = node->firstChildElement(); child;
                     child = child->nextSiblingElement())
                    pending.push_back(child);
                std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(mark), pending.end());
            }
            for (auto it = segments.rbegin(); it != segments.rend(); ++it) {
                const MemoryMapElement &segment = **it;
                if (segment.size == 0)
                    continue;
                const char *name = segment.name();
                addRegion(regions, {segment.start, segment.start + segment.size - 1, segment.access(), name ? name : ""},
                          merge);
            }
            return true;
        }
    }
    const StringList items =
        getPropertyList("", element, toolProperties.linkerSectionPlacementsSegments, configuration, true, false, false);
    if (items.empty())
        return false;
    for (auto it = items.rbegin(); it != items.rend(); ++it) {
        std::istringstream in(*it);
        std::vector<std::string> fields;
        for (std::string field; in >> field;)
            fields.push_back(field);
        if (fields.size() != 4)
            continue;
        const std::uint64_t start = std::strtoull(fields[2].c_str(), nullptr, 0);
        const std::uint64_t size = std::strtoull(fields[3].c_str(), nullptr, 0);
        const int access = fields[1] == "R" || fields[1] == "RX" ? 1 : 0;
        if (size != 0)
            addRegion(regions, {start, start + size - 1, access, fields[0]}, merge);
    }
    return true;
}
