#pragma once

#include <string>

class ProjectElement;
class StandardProjectSystem;

// What the command line asks of an export run.
struct ConsoleExportOptions {
    std::string configuration;
    bool parallelForm = false;        // -export-par-build
    bool plainForm = false;           // -export-build
    bool includeProjectName = false;  // -export-build-include-project-name
    bool noUnity = false;
    bool batch = false;
    bool time = false;
};

// Writes the build of the selected element as a shell script on standard
// output, which is fully buffered for the run, and with `time` the export's
// duration on standard error. An error of the build is thrown as an
// HException; what was written before it stays.
void runConsoleExport(StandardProjectSystem &system, ProjectElement *selected,
                      const ConsoleExportOptions &options);
