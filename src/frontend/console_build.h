#pragma once

#include "build/build_flags.h"

#include <string>

class ProjectElement;
class StandardProjectSystem;
// What the command line asks of a console build.
struct ConsoleBuildOptions {
    std::string configuration;
    unsigned threads = 1;
    BuildFlags flags = 0;
    bool echo = false;
    bool show = false;
    bool noStderr = false;
    bool verbose = false;
    bool batch = false;
    bool time = false;
};

struct ConsoleBuildResult {
    int errors = 0;            // the sum of the builders' error counts
    bool interrupted = false;  // SIGINT or SIGTERM stopped the build
};

// Builds the selected element with one console builder per slot. SIGINT or
// SIGTERM stops the build: the running commands are stopped and their
// output files removed.
ConsoleBuildResult runConsoleBuild(StandardProjectSystem &system, ProjectElement *selected,
                                   const ConsoleBuildOptions &options);
