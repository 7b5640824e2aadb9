// Locating the memory map and section placement files, and the memory
// regions of a project.

#include "build/node_build_test_fixture.h"

namespace {

class MemorySegments : public NodeBuildTest {
protected:
    ProjectElement *project(const std::string &properties, const std::string &files = "") {
        load("<project Name=\"App\"><configuration Name=\"Common\" project_type=\"Executable\" " + properties +
             " />" + files + "</project>\n");
        return node("App");
    }
    // The regions as "NAME start-end access", joined by ", "; "none" for a
    // false result.
    std::string regions(const std::string &properties, bool merge) {
        std::vector<StandardProjectSystem::MemoryRegion> list;
        if (!system.memorySegments(project(properties), "Debug", merge, list))
            return "none";
        std::string text;
        for (const auto &region : list) {
            char line[96];
            std::snprintf(line, sizeof line, "%s%s %llx-%llx %d", text.empty() ? "" : ", ", region.name.c_str(),
                          static_cast<unsigned long long>(region.start), static_cast<unsigned long long>(region.end),
                          region.access);
            text += line;
        }
        return text;
    }
};

TEST_F(MemorySegments, FilesAreLocatedAndAMissingOneIsReported) {
    directory.write("map.xml", "<Root/>");
    const std::string typed = "<file file_name=\"gone/typed.xml\"><configuration Name=\"Common\" file_type=\"Memory "
                              "Map\" /></file><file file_name=\"p.xml\"><configuration Name=\"Common\" "
                              "file_type=\"Section Placement\" build_exclude_from_build=\"Yes\" /></file>";
    const struct {
        std::string properties, files;
        bool placement, found;
        const char *path;
        Lines lines;
    } cases[] = {
        {"", "", false, false, "", {}},
        // A project file of the type wins, whether it exists or not.
        {"linker_memory_map_file=\"map.xml\"", typed, false, true, "@/gone/typed.xml", {}},
        {"linker_memory_map_file=\"map.xml\"", "", false, true, "@/map.xml", {}},
        {"linker_memory_map_file=\"$(ProjectDir)/map.xml\"", "", false, true, "@/map.xml", {}},
        // An absolute name is tried under the project directory too.
        {"linker_memory_map_file=\"/map.xml\"", "", false, true, "@//map.xml", {}},
        {"linker_memory_map_file=\"$(ProjectName).xml\"", "", false, false, "@/App.xml",
         {"begin Locating Memory Map File", "error Memory map file '$(ProjectName).xml' does not exist.", "end"}},
        // An excluded file doesn't count.
        {"linker_section_placement_file=\"gone.xml\"", typed, true, false, "@/gone.xml",
         {"begin Locating Section Placement File", "error Section placement file 'gone.xml' does not exist.",
          "end"}},
    };
    for (const auto &c : cases) {
        ProjectElement *app = project(c.properties, c.files);
        recorder.lines.clear();
        std::string path;
        const bool found = c.placement ? system.locateSectionPlacementFile(app, "Debug", path, &recorder)
                                       : system.locateMemoryMapFile(app, "Debug", path, &recorder);
        EXPECT_EQ(found, c.found) << c.properties;
        EXPECT_EQ(path.empty() ? "" : path.replace(0, directory.path().size(), "@"), c.path) << c.properties;
        EXPECT_EQ(recorder.lines, c.lines) << c.properties;
    }
}

TEST_F(MemorySegments, RegionsComeFromTheMapElseFromTheProperty) {
    directory.write("map.xml", R"x(<Root><MemorySegment name="$(N)" start="0x8000000" size="0x1000" access="ReadOnly">
  <MemorySegment name="inner" start="0x8000000" size="0x10"/></MemorySegment>
  <RegisterGroup><MemorySegment name="RAM" start="0x20000000" size="0x100" access="None"/></RegisterGroup>
  <MemorySegment name="EMPTY" start="0x30000000" size="0"/><MemorySegment name="W" start="0x40000000" size="1" access="WriteOnly"/></Root>)x");
    const std::string list = "linker_section_placements_segments=\"B RX 0x100 0x100;A R 0x0 0x100;C RW 0x80 0x100;"
                             "X 1 2;Z R 0x300 0;HI R 0xFFFFFF00 0x100;NEXT R 0x100000000 0x10\"";
    const struct {
        std::string properties;
        bool merge;
        const char *regions;
    } cases[] = {
        {"", false, "none"},
        {list, false,
         "A 0-ff 1, C 80-17f 0, B 100-1ff 1, HI ffffff00-ffffffff 1, NEXT 100000000-10000000f 1"},
        // Same access and overlapping or touching: one region, though not
        // across the end of the 32-bit space.
        {list, true, "B 0-1ff 1, C 80-17f 0, HI ffffff00-ffffffff 1, NEXT 100000000-10000000f 1"},
        {list + " linker_memory_map_file=\"map.xml\" linker_memory_map_macros=\"N=FLASH\"", false,
         "FLASH 8000000-8000fff 1, RAM 20000000-200000ff 3, W 40000000-40000000 2"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(regions(c.properties, c.merge), c.regions) << c.properties << " merge " << c.merge;

    // $(MemorySegments) of a project with a map, in the property's form.
    EXPECT_EQ(system.memorySegmentsText(
                  project("linker_memory_map_file=\"map.xml\" linker_memory_map_macros=\"N=FLASH\""), "Debug"),
              "FLASH RX 0x08000000 0x00001000;RAM RWX 0x20000000 0x00000100;W RWX 0x40000000 0x00000001");
}

} // namespace
