#include "frontend/console_export.h"

#include "build/idler.h"
#include "build/project_system_builder.h"
#include "build/quillmake_export_builder.h"

#include <chrono>
#include <cstdio>

void runConsoleExport(StandardProjectSystem &system, ProjectElement *selected,
                      const ConsoleExportOptions &options) {
    // A script runs to many thousands of lines. The buffer outlives this
    // call: an error thrown out of the export leaves its text to be flushed
    // at exit.
    static char buffer[0x80000];
    std::fflush(stdout);
    std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);

    ProjectSystemBuilder driver(&system);
    QuillmakeExportBuilder builder(&driver, options.parallelForm, options.plainForm, options.includeProjectName);
    Idler idler;
    const auto start = std::chrono::steady_clock::now();
    driver.exportBuild(selected, options.configuration, &builder, &idler, options.noUnity, true, options.batch);
    if (options.time) {
        const auto elapsed =
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
        std::fprintf(stderr, "export time %ld seconds\n", long(elapsed.count() / 1000));
    }
    std::fflush(stdout);
}
