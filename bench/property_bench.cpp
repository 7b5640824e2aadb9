// Times the look-up of an expanded property for every file of the generated
// 10,000-file solution, the work a build does before it runs a command, and
// reports the memory that holding the loaded tree takes. Run by hand: see
// README.md.
#include "generated_solution.h"
#include "timing.h"

#include "environment/system_macros.h"
#include "build/standard_project_system.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

using namespace bench;

namespace {

long peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

}  // namespace

int main(int argc, char **argv) {
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
    const std::string fileName = "/tmp/quillmake-property-bench-" + std::to_string(getpid()) + ".tbp";
    {
        const std::string text = generateSolution();
        std::ofstream(fileName) << text;
    }
    const long before = peakKilobytes();

    SystemMacros macros;
    StandardProjectSystem system(&macros);
    system.loadSolution(fileName);
    std::remove(fileName.c_str());
    const long loaded = peakKilobytes();

    std::vector<ProjectElement *> files;
    for (ProjectElement *project = ProjectSystem::firstChild(system.rootOf()); project;
         project = ProjectSystem::nextSibling(project)) {
        for (ProjectElement *file : ProjectSystem::filesOf(project))
            files.push_back(file);
    }

    // Each run starts from a tree whose paths haven't been resolved, as the
    // first look-up of a build does.
    std::size_t bytes = 0;
    const Timing lookUp = best(
        runs, [&] { ProjectSystem::invalidatePaths(system.rootOf()); },
        [&] {
            bytes = 0;
            for (ProjectElement *file : files) {
                const auto value = system.getExpandedPropertyValue(
                    file, system.nodeProperties.buildObjectFileName, "Debug");
                bytes += value ? value->size() : 0;
            }
        });
    const Timing warm = best(runs, [] {}, [&] {
        for (ProjectElement *file : files)
            system.getExpandedPropertyValue(file, system.nodeProperties.buildObjectFileName, "Debug");
    });

    std::printf("solution: %d projects, %zu files\n", projectCount, files.size());
    std::printf("build_object_file_name of each file: %zu bytes in all, e.g. %s\n", bytes,
                system.getExpandedPropertyValue(files[1], system.nodeProperties.buildObjectFileName,
                                                "Debug")
                    .value_or("")
                    .c_str());
    print("first look-up of every file", lookUp, runs);
    print("again, paths resolved", warm, runs);
    std::printf("peak memory: %.1f MB before the load, %.1f MB with the tree (+%.1f MB)\n",
                before / 1024.0, loaded / 1024.0, (loaded - before) / 1024.0);
    return 0;
}
