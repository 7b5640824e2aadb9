// Times the XML parser and writer on a generated solution file of 10,000
// files in 20 projects (about 1.5 MB), the size of a large real solution.
// Run by hand: see README.md.
#include "project/xml/xml_document.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <time.h>

namespace {

const int projectCount = 20;
const int filesPerProject = 500;
const int filesPerFolder = 50;

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

// The fastest of several runs, both as wall-clock time and as processor
// time of this thread (which a busy machine disturbs less), in milliseconds.
struct Timing {
    double wall = 1e300;
    double processor = 1e300;
};

double threadMilliseconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

template <typename Setup, typename Work> Timing best(int runs, Setup setup, Work work) {
    Timing fastest;
    for (int run = 0; run < runs; ++run) {
        setup();
        const auto start = std::chrono::steady_clock::now();
        const double processorStart = threadMilliseconds();
        work();
        const double processor = threadMilliseconds() - processorStart;
        const std::chrono::duration<double, std::milli> wall =
            std::chrono::steady_clock::now() - start;
        fastest.wall = std::min(fastest.wall, wall.count());
        fastest.processor = std::min(fastest.processor, processor);
    }
    return fastest;
}

void print(const char *what, const Timing &timing, int runs) {
    std::printf("%-28s %7.2f ms wall  %7.2f ms cpu  (best of %d)\n", what, timing.wall,
                timing.processor, runs);
}

} // namespace

int main(int argc, char **argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
    const std::string text = generateSolution();

    XMLDocument document;
    const Timing parseTime = best(runs, [] {}, [&] {
        if (!document.parse(text)) {
            std::fprintf(stderr, "parse failed: %s\n", document.errorText.c_str());
            std::exit(1);
        }
    });
    std::string written;
    const Timing writeTime = best(
        runs,
        [&] {
            written.clear();
            written.shrink_to_fit();
        },
        [&] { document.write(written, 2, 75); });
    if (written != text) {
        std::fprintf(stderr, "written text differs from the parsed one\n");
        return 1;
    }
    XMLDocument scratch;
    const Timing deleteTime = best(runs, [&] { scratch.parse(text); },
                                   [&] { delete scratch.takeRoot(); });

    std::printf("document: %zu bytes, %d projects, %d files\n", text.size(), projectCount,
                projectCount * filesPerProject);
    print("parse (keepText false)", parseTime, runs);
    print("write (indent 2, width 75)", writeTime, runs);
    print("delete tree", deleteTime, runs);
    return 0;
}
