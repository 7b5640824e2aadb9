#include "frontend/console_build.h"

#include "build/interrupt.h"
#include "build/project_system_builder.h"
#include "build/quillmake_builder.h"
#include "build/standard_project_system.h"
#include "frontend/console_progress.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

// The driver of a console build: an interrupt cancels the build, and the
// commands that run are stopped at once, their output files removed.
class ConsoleBuildDriver : public ProjectSystemBuilder {
public:
    using ProjectSystemBuilder::ProjectSystemBuilder;
    void idle() override {
        if (!interruptRequested() || cancelled)
            return;
        cancelled = true;
        for (QuillmakeBuilder *builder : consoleBuilders)
            builder->abandonCommand();
    }
    std::vector<QuillmakeBuilder *> consoleBuilders;
};

}  // namespace

ConsoleBuildResult runConsoleBuild(StandardProjectSystem &system, ProjectElement *selected,
                                   const ConsoleBuildOptions &options) {
    InterruptGuard interrupts;
    ConsoleBuildDriver driver(&system);
    auto *idler = new QuillmakeIdler;
    // Each slot costs a builder; past this many, more slots only cost
    // memory, and a huge -threadnum mustn't exhaust it.
    constexpr unsigned maximumSlots = 1024;
    const unsigned threads = std::clamp(options.threads, 1u, maximumSlots);
    std::vector<std::unique_ptr<QuillmakeBuilder>> slots;
    std::vector<Builder *> builders;
    for (unsigned i = 0; i < threads; ++i) {
        slots.push_back(std::make_unique<QuillmakeBuilder>(&driver, threads == 1 ? 0 : int(i + 1),
                                                           options.echo, options.show,
                                                           options.noStderr, options.verbose, idler));
        builders.push_back(slots.back().get());
        driver.consoleBuilders.push_back(slots.back().get());
    }

    const auto start = std::chrono::steady_clock::now();
    driver.build(selected, options.configuration, int(threads), builders, idler, options.flags, true,
                 options.batch);
    if (options.time) {
        const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - start);
        std::printf("build time %ld seconds\n", long(elapsed.count() / 1000));
    }
    std::fflush(stdout);

    // Destroying a builder hangs up a command that still runs.
    ConsoleBuildResult result;
    for (auto &slot : slots) {
        result.errors += slot->errorCount;
        slot.reset();
    }
    delete idler;
    result.interrupted = interruptRequested();
    return result;
}
