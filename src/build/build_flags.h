#pragma once

#include <cstdint>

// The word that describes a build to the build engine. main computes the low
// bits from the command line; the job list adds the job bits.
using BuildFlags = std::uint32_t;

enum : BuildFlags {
    BuildClean = 0x1,           // remove outputs instead of making them
    BuildAlways = 0x2,          // don't ask whether a step is out of date
    BuildCheckOnly = 0x4,       // check, but start no build step
    BuildQuietChecks = 0x8,     // don't announce each "Checking" step
    BuildFilesAreJobs = 0x10,   // the files of this project have jobs of their own
    BuildAnalyse = 0x40,        // the steps are analysis steps
    BuildKeepGoing = 0x80,      // a failed job doesn't stop the build
    BuildNoTitle = 0x100,       // a job has no title
    BuildExport = 0x200,        // commands are exported, not run
    BuildNoUnity = 0x400,       // unity building is off
    BuildBatch = 0x1000,        // projects are not split into per-file jobs
    BuildJobBegin = 0x2000,     // job that begins a project
    BuildJobEnd = 0x4000,       // job that ends a project
    BuildJobExtra = 0x10000,    // a job added for an export
};

// The options of a command line that decide the base value of the flags.
struct BuildFlagOptions {
    bool clean = false;
    bool rebuild = false;
    bool verbose = false;
    bool keepGoing = false;
    bool noUnity = false;
    bool order = false;
    bool batch = false;
    bool fp = false;
};

constexpr BuildFlags computeBuildFlags(const BuildFlagOptions &o) {
    BuildFlags flags;
    if (o.clean)
        flags = BuildClean | BuildAlways | BuildCheckOnly | BuildQuietChecks;
    else if (o.rebuild)
        flags = BuildAlways | BuildQuietChecks;
    else if (o.verbose)
        flags = 0;
    else
        flags = BuildQuietChecks;
    if (o.keepGoing)
        flags |= BuildKeepGoing;
    if (o.noUnity)
        flags |= BuildNoUnity;
    if (o.order)
        flags |= BuildCheckOnly;
    if (o.batch && !o.fp)
        flags |= BuildBatch;
    return flags;
}
