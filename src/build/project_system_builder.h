#pragma once

#include "build/project_job.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

class Builder;
class BuildThread;
class Idler;
class ProjectSystem;

// The state of one build: the job graph made from the selected element, and
// the slots that run it. The driver calls idle() once per pass of the build
// loop and reads `cancelled` right after.
class ProjectSystemBuilder {
public:
    explicit ProjectSystemBuilder(ProjectSystem *projectSystem) : projectSystem(projectSystem) {}
    ProjectSystemBuilder(const ProjectSystemBuilder &) = delete;
    ProjectSystemBuilder &operator=(const ProjectSystemBuilder &) = delete;
    virtual ~ProjectSystemBuilder() = default;

    virtual void idle() {}

    ProjectSystem *projectSystem;
    // Working sets and result of the file-job ordering.
    std::set<ProjectJob *> visited, visiting;
    std::vector<ProjectJob *> sorted;
    // Each element's last job per configuration, so that a shared dependency
    // is built once.
    std::map<ProjectElement *, std::map<std::string, ProjectJob *>> jobMemo;
    std::map<std::string, ProjectJob *> prerequisiteJobs;
    std::map<ProjectJob *, std::string> directoryJobs;
    // Owns every job of the build; jobList holds them in list order.
    std::vector<std::unique_ptr<ProjectJob>> jobs;
    ProjectJobList jobList;
    std::size_t nextJob = 0;
    int threadCount = 1;
    std::vector<Builder *> builders;
    Idler *idler = nullptr;
    int stepCount = 0;
    int projectCount = 0;
    std::vector<BuildThread *> workers;
    bool built = false;
    bool cancelled = false;
    bool failed = false;
};
