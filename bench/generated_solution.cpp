#include "generated_solution.h"

#include "project/xml/xml_document.h"

namespace bench {

namespace {

XMLElement *configuration(const char *name) {
    auto *element = new XMLElement("configuration");
    element->setAttribute("Name", name);
    return element;
}

// Folders of 50 files under "Source Files", every third file with
// configurations of its own, as a solution made with an editor tends to be.
XMLElement *project(int index) {
    const std::string name = "Module" + std::to_string(index);
    auto *element = new XMLElement("project");
    element->setAttribute("Name", name);

    XMLElement *common = configuration("Common");
    common->setAttribute("project_type", index == 0 ? "Executable" : "Library");
    common->setAttribute("build_intermediate_directory", "Output/$(Configuration)/Obj/" + name);
    common->setAttribute("build_output_directory", "Output/$(Configuration)/Exe");
    common->setAttribute("c_user_include_directories",
                         "$(ProjectDir)/include;$(ProjectDir)/../common/include;"
                         "$(ProjectDir)/../drivers/include");
    common->setAttribute("c_preprocessor_definitions",
                         "MODULE_ID=" + std::to_string(index) + ";USE_HAL;STARTUP_FROM_RESET");
    common->setAttribute("arm_architecture", "v7EM");
    common->setAttribute("arm_core_type", "Cortex-M4");
    common->setAttribute("arm_fpu_type", "FPv4-SP-D16");
    common->setAttribute("gcc_optimization_level", "Level 1");
    element->appendChild(common);
    XMLElement *debug = configuration("Debug");
    debug->setAttribute("gcc_debugging_level", "Level 3");
    debug->setAttribute("c_preprocessor_definitions", "DEBUG;TRACE_LEVEL=2");
    element->appendChild(debug);

    auto *sources = new XMLElement("folder");
    sources->setAttribute("Name", "Source Files");
    sources->setAttribute("filter", "c;cpp;cxx;cc;h;s;asm;inc");
    element->appendChild(sources);
    for (int f = 0; f < filesPerProject / filesPerFolder; ++f) {
        auto *folder = new XMLElement("folder");
        folder->setAttribute("Name", "part" + std::to_string(f));
        if (f % 2 == 1) {
            XMLElement *folderCommon = configuration("Common");
            folderCommon->setAttribute("c_additional_options", "-Wno-unused-parameter");
            folder->appendChild(folderCommon);
        }
        sources->appendChild(folder);
        for (int i = 0; i < filesPerFolder; ++i) {
            const int number = f * filesPerFolder + i;
            auto *file = new XMLElement("file");
            file->setAttribute("file_name", "../src/" + name + "/part" + std::to_string(f) +
                                                "/unit_" + std::to_string(number) +
                                                (number % 7 == 0 ? ".cpp" : ".c"));
            if (number % 3 == 0) {
                XMLElement *release = configuration("Release");
                release->setAttribute("gcc_optimization_level", "Level 3 for more speed");
                release->setAttribute("c_additional_options", "-fno-strict-aliasing");
                release->setAttribute("c_preprocessor_definitions",
                                      "UNIT_ID=" + std::to_string(number));
                file->appendChild(release);
            }
            if (number % 9 == 0) {
                XMLElement *debugOnly = configuration("Debug");
                debugOnly->setAttribute("gcc_debugging_level", "None");
                file->appendChild(debugOnly);
            }
            folder->appendChild(file);
        }
    }
    auto *system = new XMLElement("folder");
    system->setAttribute("Name", "System Files");
    auto *startup = new XMLElement("file");
    startup->setAttribute("file_name", "$(StudioDir)/source/thumb_crt0.s");
    system->appendChild(startup);
    element->appendChild(system);
    return element;
}

}  // namespace

std::string generateSolution() {
    XMLDocument document;
    document.doctype = "Tarnbench_Project_File";
    auto *solution = new XMLElement("solution");
    solution->setAttribute("Name", "Bench");
    solution->setAttribute("target", "8");
    solution->setAttribute("version", "2");
    document.root = solution;
    XMLElement *common = configuration("Common");
    common->setAttribute("build_quietly", "No");
    common->setAttribute("gcc_c_language_standard", "gnu17");
    solution->appendChild(common);
    XMLElement *debug = configuration("Debug");
    debug->setAttribute("inherited_configurations", "Common");
    solution->appendChild(debug);
    XMLElement *release = configuration("Release");
    release->setAttribute("inherited_configurations", "Common");
    release->setAttribute("gcc_optimization_level", "Level 2");
    solution->appendChild(release);
    for (int p = 0; p < projectCount; ++p)
        solution->appendChild(project(p));
    std::string text;
    document.write(text, 2, 75);
    return text;
}

}  // namespace bench
