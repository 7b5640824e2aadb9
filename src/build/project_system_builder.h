#pragma once

#include "build/build_flags.h"
#include "build/build_thread.h"
#include "build/project_job.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

class Builder;
class Idler;
class ProjectElement;
class StandardProjectSystem;

// The state of one build: the job graph made from the selected element, and
// the slots that run it. The driver calls idle() once per pass of the build
// loop and at each project visited while the graph is made, and reads
// `cancelled` right after.
class ProjectSystemBuilder {
public:
    // The final status of a build.
    enum Status { NothingBuilt = 0, Built = 1, Failed = 2, Cancelled = 3 };

    explicit ProjectSystemBuilder(StandardProjectSystem *system) : projectSystem(system) {}
    ProjectSystemBuilder(const ProjectSystemBuilder &) = delete;
    ProjectSystemBuilder &operator=(const ProjectSystemBuilder &) = delete;
    virtual ~ProjectSystemBuilder();

    virtual void idle() {}

    // Makes the job list of the element and runs it on the builders, one
    // per slot; returns a Status.
    int build(ProjectElement *element, const std::string &configuration, int threadCount,
              const std::vector<Builder *> &builders, Idler *idler, BuildFlags flags,
              bool followDependencies, bool batch);
    // Writes the whole build of the element as a script through builder:
    // the job list of a build, each job carried out as it is made, with
    // every step taken whatever the state of the files.
    void exportBuild(ProjectElement *element, const std::string &configuration, Builder *builder,
                     Idler *idler, bool noUnity, bool followDependencies, bool batch);
    void prepareBuild(ProjectElement *element, const std::string &configuration, int threadCount,
                      const std::vector<Builder *> &builders, Idler *idler, BuildFlags flags,
                      bool followDependencies, bool batch, ProjectJobList &list);
    // One pass over the slots: true while there is more to do; at the end
    // false, with the Status in status.
    bool stepBuild(int &status);

    void addSolutionJobs(ProjectElement *solution, const std::string &configuration, BuildFlags flags,
                         bool batch, bool noFileJobs, ProjectJobList &list);
    void addProjectJobs(ProjectElement *project, const std::string &configuration, BuildFlags flags,
                        bool batch, bool noFileJobs, bool followDependencies, ProjectJobList &list,
                        ProjectJobList &parentDependencies, ProjectElement *previousProject);
    void addFileJobs(ProjectElement *parent, const std::string &configuration, BuildFlags flags,
                     ProjectJobList &list);
    // Orders the file jobs of one project by their prerequisites; false on a
    // cycle, which has been reported.
    bool orderFileJobs(ProjectElement *project, const std::string &configuration,
                       const ProjectJobList &jobs, ProjectJobList &result);

    StandardProjectSystem *projectSystem;
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
    // One per slot, null for an empty slot.
    std::vector<std::unique_ptr<BuildThread>> workers;
    bool built = false;
    bool cancelled = false;
    bool failed = false;

private:
    ProjectJob *makeJob(ProjectElement *element, const std::string &configuration, BuildFlags flags);
    bool visitFileJob(ProjectJob *job);
    // Sleeps until a running child writes or ends, or briefly.
    void waitForChildren();
    // The projects that a project's jobs wait for, with the dependency
    // errors reported.
    std::vector<ProjectElement *> projectsToBuildFirst(ProjectElement *project,
                                                       const std::string &configuration,
                                                       ProjectElement *previousProject,
                                                       bool followDependencies);
    // The begin job, the file jobs and the end job of one project in one
    // configuration; false if the file jobs can't be ordered.
    bool addOwnJobs(ProjectElement *project, const std::string &configuration, BuildFlags flags,
                    bool noFileJobs, ProjectJobList &list, const ProjectJobList &before,
                    ProjectJobList &parentDependencies);
    // True if each of the two projects depends on the other, directly or
    // not: they lie in one strongly connected part of the dependency graph.
    bool dependOnEachOther(ProjectElement *a, ProjectElement *b, const std::string &configuration);
    int jobNumber_ = 0;
    // Per configuration, the strongly connected part of each project met.
    std::map<std::string, std::map<ProjectElement *, int>> components_;
};
