// Runs a job list on the build slots: each pass hands a free slot the next
// job and advances every busy slot's job as far as it goes without waiting.

#include "build/project_system_builder.h"

#include "build/build_thread.h"
#include "build/builder.h"
#include "build/idler.h"
#include "build/standard_project_system.h"

#include <cstdio>
#include <poll.h>

ProjectSystemBuilder::~ProjectSystemBuilder() = default;

int ProjectSystemBuilder::build(ProjectElement *element, const std::string &configuration,
                                int threads, const std::vector<Builder *> &slotBuilders,
                                Idler *buildIdler, BuildFlags flags, bool followDependencies,
                                bool batch) {
    jobList.clear();
    jobs.clear();
    prepareBuild(element, configuration, threads, slotBuilders, buildIdler, flags,
                 followDependencies, batch, jobList);
    int status = NothingBuilt;
    while (stepBuild(status)) {
        idle();
        if (cancelled) {
            // One more pass ends the build with the slots stopped.
            stepBuild(status);
            break;
        }
    }
    return status;
}

bool ProjectSystemBuilder::stepBuild(int &status) {
    const std::size_t slots = workers.size();
    // Whether this pass changed anything that the next one can act on at
    // once; if not, the loop sleeps until a child speaks or ends.
    bool progress = false;
    for (std::size_t slot = 0; slot < slots && !cancelled; ++slot) {
        std::unique_ptr<BuildThread> &worker = workers[slot];
        if (!worker) {
            if (nextJob < jobList.size() && !failed) {
                worker = std::make_unique<BuildThread>(this, jobList.at(nextJob), builders[slot],
                                                       idler);
                ++nextJob;
                progress = true;
            }
            continue;
        }
        int exitStatus = 0;
        if (!worker->poll(exitStatus))
            continue;
        ProjectJob *job = worker->job();
        if (worker->built())
            built = true;
        if (worker->errorSeen()) {
            failed = true;
            exitStatus = 1;
        }
        if (exitStatus != 0) {
            char hex[16];
            std::snprintf(hex, sizeof hex, "%x", unsigned(exitStatus));
            if (job->flags & BuildKeepGoing) {
                builders[slot]->reportError(
                    std::string("Build failed, exit status 0x") + hex + " '" +
                    projectSystem->displayName(job->element) + "' in configuration '" +
                    job->configuration + "' continuing because 'keep going on error' has been enabled");
                failed = false;
            } else {
                builders[slot]->reportError(std::string("Build failed, exit status 0x") + hex);
                failed = true;
            }
        }
        job->done = true;
        worker.reset();
        progress = true;
    }

    bool busy = false;
    for (const auto &worker : workers)
        busy = busy || worker != nullptr;
    if (!failed && !cancelled && (busy || nextJob < jobList.size())) {
        if (!progress)
            waitForChildren();
        return true;
    }

    for (std::size_t slot = 0; slot < slots; ++slot) {
        std::unique_ptr<BuildThread> &worker = workers[slot];
        if (!worker)
            continue;
        if (failed || cancelled) {
            builders[slot]->stopCommand();
            if (idler)
                idler->projectFinished(worker->job()->element, worker->job()->configuration);
        }
        worker.reset();
    }
    workers.clear();
    jobList.clear();
    jobs.clear();
    status = cancelled ? Cancelled : failed ? Failed : built ? Built : NothingBuilt;
    projectSystem->setMacroCacheEnabled(false);
    projectSystem->setDependencyCacheEnabled(false);
    projectSystem->fileStatusCache().setEnabled(false);
    return false;
}

void ProjectSystemBuilder::waitForChildren() {
    // Output or the end of a child shows on its pipes. A child that has
    // closed them (or left them to a process of its own) only shows by
    // waitpid, so with such a child the wait is a millisecond; otherwise
    // it is longer, as a bound for a child whose pipes outlive it.
    std::vector<int> descriptors;
    bool allTracked = true;
    for (std::size_t slot = 0; slot < workers.size(); ++slot)
        if (workers[slot])
            allTracked = builders[slot]->appendWaitDescriptors(descriptors) && allTracked;
    std::vector<pollfd> waitSet;
    for (int descriptor : descriptors)
        waitSet.push_back({descriptor, POLLIN, 0});
    poll(waitSet.data(), waitSet.size(), allTracked && !waitSet.empty() ? 10 : 1);
}
