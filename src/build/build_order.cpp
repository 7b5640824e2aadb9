// The job list of a build: per project a begin job, a job for each file that
// is built on its own, and an end job; dependencies between projects become
// dependencies between the end job of one and the begin job of the other.

#include "build/project_system_builder.h"

#include "build/build_thread.h"
#include "build/idler.h"
#include "build/standard_project_system.h"
#include "project/project_system_helpers.h"

#include <algorithm>
#include <deque>
#include <vector>
#include <fnmatch.h>
#include <set>

ProjectJob *ProjectSystemBuilder::makeJob(ProjectElement *element, const std::string &configuration,
                                          BuildFlags flags) {
    auto job = std::make_unique<ProjectJob>();
    job->element = element;
    job->configuration = configuration;
    job->flags = flags;
    job->number = ++jobNumber_;
    jobs.push_back(std::move(job));
    return jobs.back().get();
}

namespace {

// The step count rides in the top 16 bits of a begin job's flags.
BuildFlags withStepCount(BuildFlags flags, int count) {
    const unsigned clamped = count < 0 ? 0u : count > 0xFFFF ? 0xFFFFu : unsigned(count);
    return (flags & 0xFFFFu) | (BuildFlags(clamped) << 16);
}

bool isExcluded(StandardProjectSystem &system, ProjectElement *element,
                const std::string &configuration) {
    return system.getPropertyValue(element, system.nodeProperties.buildExcludeFromBuild,
                                   configuration) != "No";
}

}  // namespace

void ProjectSystemBuilder::prepareBuild(ProjectElement *element, const std::string &configuration,
                                        int threads, const std::vector<Builder *> &slotBuilders,
                                        Idler *buildIdler, BuildFlags flags, bool followDependencies,
                                        bool batch, ProjectJobList &list) {
    threadCount = threads < 1 ? 1 : threads;
    builders = slotBuilders;
    // A slot needs a builder of its own.
    if (!builders.empty() && threadCount > int(builders.size()))
        threadCount = int(builders.size());
    idler = buildIdler;
    built = cancelled = failed = false;
    stepCount = projectCount = 0;
    jobMemo.clear();
    components_.clear();
    jobNumber_ = 0;
    workers.clear();
    projectSystem->setMacroCacheEnabled(true);
    projectSystem->setDependencyCacheEnabled(true);
    projectSystem->fileStatusCache().setEnabled(true);

    if (StandardProjectSystem::isSolution(element)) {
        addSolutionJobs(element, configuration, flags, batch, flags & BuildBatch, list);
    } else if (StandardProjectSystem::isFile(element)) {
        stepCount = projectSystem->stepCount(element, configuration, flags);
        list.append(makeJob(element, configuration, withStepCount(flags | BuildJobBegin, stepCount)));
        list.append(makeJob(element, configuration, flags | BuildJobEnd));
        threadCount = 1;
    } else if (StandardProjectSystem::isProject(element) || StandardProjectSystem::isFolder(element)) {
        bool noFileJobs = flags & (BuildBatch | BuildFilesAreJobs);
        if (!noFileJobs)
            noFileJobs = projectSystem->isUnityFolder(element, configuration, flags & BuildNoUnity);
        if (!noFileJobs && StandardProjectSystem::isProject(element) &&
            projectSystem->getPropertyValue(element, projectSystem->nodeProperties.projectType,
                                            configuration) == "Staging")
            noFileJobs = !projectSystem
                              ->expandedValue(element, projectSystem->toolProperties.stagePostBuildCommand,
                                              configuration)
                              .empty();
        ProjectJobList parentDependencies;
        addProjectJobs(element, configuration, flags, batch, noFileJobs, followDependencies, list,
                       parentDependencies, nullptr);
    }
    workers.resize(std::size_t(threadCount));

    if (idler)
        idler->setStepCount(stepCount);
    built = false;
    nextJob = cancelled ? list.size() : 0;
}

void ProjectSystemBuilder::addSolutionJobs(ProjectElement *solution, const std::string &configuration,
                                           BuildFlags flags, bool batch, bool noFileJobs,
                                           ProjectJobList &list) {
    // A solution's folders and nested solutions come first, each with all
    // it holds, then its own projects: those that name dependencies before
    // those that don't. Folders may nest as deep as the file says, so the
    // walk keeps its own stack.
    struct Frame {
        std::vector<ProjectElement *> nested;  // folders, then solutions
        std::size_t next = 0;
        std::vector<ProjectElement *> projects;
    };
    auto frameOf = [&](ProjectElement *element) {
        Frame frame;
        std::vector<ProjectElement *> solutions, without;
        for (ProjectElement *child = StandardProjectSystem::firstChild(element); child;
             child = StandardProjectSystem::nextSibling(child)) {
            if (StandardProjectSystem::isFolder(child))
                frame.nested.push_back(child);
            else if (StandardProjectSystem::isSolution(child))
                solutions.push_back(child);
            else if (StandardProjectSystem::isProject(child))
                (projectSystem->getPropertyValue(child, projectSystem->nodeProperties.projectDependencies,
                                                 configuration)
                     ? frame.projects
                     : without)
                    .push_back(child);
        }
        frame.nested.insert(frame.nested.end(), solutions.begin(), solutions.end());
        frame.projects.insert(frame.projects.end(), without.begin(), without.end());
        return frame;
    };
    std::vector<Frame> stack;
    stack.push_back(frameOf(solution));
    while (!stack.empty()) {
        if (stack.back().next < stack.back().nested.size()) {
            ProjectElement *nested = stack.back().nested[stack.back().next++];
            stack.push_back(frameOf(nested));
            continue;
        }
        ProjectJobList parentDependencies;
        for (ProjectElement *project : stack.back().projects) {
            addProjectJobs(project, configuration, flags, batch, noFileJobs, true, list,
                           parentDependencies, nullptr);
            if (cancelled)
                return;
        }
        stack.pop_back();
    }
}

namespace {

// One project being added, in one of its configurations at a time. The
// projects it depends on are added first, each on a frame of its own above
// it, so that a chain of dependencies as long as the solution doesn't
// deepen the call stack.
struct ProjectFrame {
    ProjectFrame(ProjectElement *element, StringList configurationList, ProjectJobList *parents,
                 ProjectElement *previous)
        : project(element),
          configurations(std::move(configurationList)),
          parentDependencies(parents),
          previousProject(previous) {}

    ProjectElement *project;
    StringList configurations;
    std::size_t configuration = 0;
    ProjectJobList *parentDependencies;
    ProjectElement *previousProject;
    // The configuration in hand: the projects to build first, the next of
    // them to add, and the end jobs they left.
    bool started = false;
    std::vector<ProjectElement *> first;
    std::size_t nextFirst = 0;
    ProjectJobList before;
    bool parallel = true;
    ProjectElement *chained = nullptr;
};

}  // namespace

void ProjectSystemBuilder::addProjectJobs(ProjectElement *project, const std::string &configuration,
                                          BuildFlags flags, bool batch, bool noFileJobs,
                                          bool followDependencies, ProjectJobList &list,
                                          ProjectJobList &parentDependencies,
                                          ProjectElement *previousProject) {
    StandardProjectSystem &system = *projectSystem;
    auto configurationsOf = [&](ProjectElement *element, const std::string &config) {
        return batch ? system.batchBuildConfigurations(element, config) : StringList{config};
    };
    // A deque keeps each frame in place while frames are pushed above it.
    std::deque<ProjectFrame> stack;
    stack.emplace_back(project, configurationsOf(project, configuration), &parentDependencies,
                       previousProject);
    while (!stack.empty()) {
        ProjectFrame &frame = stack.back();
        if (frame.configuration == frame.configurations.size()) {
            stack.pop_back();
            continue;
        }
        const std::string config = frame.configurations[frame.configuration];
        if (!frame.started) {
            if (isExcluded(system, frame.project, config)) {
                ++frame.configuration;
                continue;
            }
            ++projectCount;
            idle();
            if (cancelled)
                return;
            auto memo = jobMemo[frame.project].find(config);
            if (memo != jobMemo[frame.project].end()) {
                frame.parentDependencies->append(memo->second);
                ++frame.configuration;
                continue;
            }
            frame.started = true;
            frame.first = projectsToBuildFirst(frame.project, config, frame.previousProject,
                                               followDependencies);
            frame.nextFirst = 0;
            frame.before.clear();
            frame.parallel = system.canBuildInParallel(frame.project, config);
            frame.chained = nullptr;
            continue;
        }
        if (frame.nextFirst < frame.first.size()) {
            idle();
            if (cancelled)
                return;
            ProjectElement *dependency = frame.first[frame.nextFirst++];
            ProjectElement *previous = frame.parallel ? nullptr : frame.chained;
            frame.chained = dependency;
            stack.emplace_back(dependency, configurationsOf(dependency, config), &frame.before, previous);
            continue;
        }
        if (!addOwnJobs(frame.project, config, flags, noFileJobs, list, frame.before,
                        *frame.parentDependencies))
            return;
        frame.started = false;
        ++frame.configuration;
    }
}

std::vector<ProjectElement *> ProjectSystemBuilder::projectsToBuildFirst(ProjectElement *project,
                                                                         const std::string &config,
                                                                         ProjectElement *previousProject,
                                                                         bool followDependencies) {
    StandardProjectSystem &system = *projectSystem;
    std::vector<ProjectElement *> first;
    if (previousProject)
        first.push_back(previousProject);
    if (!followDependencies)
        return first;
    StringList messages;
    for (const std::string &name : system.projectDependencyNames(project, config)) {
        ProjectElement *dependency = system.findProject(project, name);
        if (!dependency) {
            messages.push_back("Can't find project '" + name + "'");
        } else if (!system.configurationApplies(dependency, config)) {
            messages.push_back("Configuration '" + config + "' doesn't apply to dependent project '" +
                               system.elementName(dependency) + "'");
        } else if (dependOnEachOther(project, dependency, config)) {
            // The project is among the dependency's dependencies exactly
            // when the two close a cycle.
            messages.push_back("Project '" + system.elementName(project) +
                               "' has cyclic dependency on project '" + system.elementName(dependency) +
                               "'");
        } else {
            first.push_back(dependency);
        }
    }
    if (!messages.empty() && system.helpers)
        system.helpers->warning(project, config,
                                "Dependency error detected in '" + system.displayName(project) + "'",
                                messages);
    return first;
}

bool ProjectSystemBuilder::addOwnJobs(ProjectElement *project, const std::string &config,
                                      BuildFlags flags, bool noFileJobs, ProjectJobList &list,
                                      const ProjectJobList &before,
                                      ProjectJobList &parentDependencies) {
    StandardProjectSystem &system = *projectSystem;
    if (system.getPropertyValue(project, system.nodeProperties.generateCompilationDatabaseFile, config) == "Yes")
        system.writeCompilationDatabase(project, config);
    ProjectJob *directoryJob = nullptr;
    if (flags & BuildExport) {
        const std::string type =
            system.getPropertyValue(project, system.nodeProperties.projectType, config).value_or("");
        if (type == "Executable" || type == "Library" || type == "Object file") {
            directoryJob = makeJob(project, config, flags | BuildJobExtra);
            directoryJobs[directoryJob] = system.elementName(project) + "|" + config;
            list.append(directoryJob);
        }
    }

    const int steps = system.stepCount(project, config, flags);
    stepCount += steps;
    ProjectJob *begin = makeJob(project, config, withStepCount(flags | BuildJobBegin, steps));
    if (directoryJob)
        begin->dependencies.append(directoryJob);
    for (ProjectJob *job : before)
        begin->dependencies.append(job);
    list.append(begin);

    ProjectJob *end = nullptr;
    if (!noFileJobs) {
        ProjectJobList fileJobs;
        if (!system.scanModuleDependencies(project, config)) {
            addFileJobs(project, config, flags, fileJobs);
        } else {
            ProjectJobList scratch;
            addFileJobs(project, config, flags, scratch);
            if (!orderFileJobs(project, config, scratch, fileJobs)) {
                cancelled = true;
                return false;
            }
        }
        end = makeJob(project, config, flags | BuildJobEnd | BuildFilesAreJobs);
        for (ProjectJob *job : fileJobs) {
            list.append(job);
            job->dependencies.append(begin);
            end->dependencies.append(job);
        }
    } else {
        end = makeJob(project, config, flags | BuildJobEnd);
    }
    end->dependencies.append(begin);
    list.append(end);
    parentDependencies.append(end);
    jobMemo[project][config] = end;
    return true;
}

void ProjectSystemBuilder::addFileJobs(ProjectElement *parent, const std::string &configuration,
                                       BuildFlags flags, ProjectJobList &list) {
    StandardProjectSystem &system = *projectSystem;
    // Tree order without recursion: folders are entered unless they are
    // unity folders, whose job builds their contents.
    ProjectElement *node = StandardProjectSystem::firstChild(parent);
    while (node) {
        bool descend = false;
        if (StandardProjectSystem::isFolder(node)) {
            if (!isExcluded(system, node, configuration) &&
                system.isUnityFolder(node, configuration, flags & BuildNoUnity))
                list.append(makeJob(node, configuration, flags));
            else
                descend = StandardProjectSystem::firstChild(node) != nullptr;
        } else if (StandardProjectSystem::isFile(node)) {
            if (!isExcluded(system, node, configuration) && system.hasOwnJob(node, configuration, flags))
                list.append(makeJob(node, configuration, flags));
        }
        if (descend) {
            node = StandardProjectSystem::firstChild(node);
            continue;
        }
        while (node && node != parent && !StandardProjectSystem::nextSibling(node))
            node = StandardProjectSystem::parent(node);
        node = node && node != parent ? StandardProjectSystem::nextSibling(node) : nullptr;
    }
}

bool ProjectSystemBuilder::orderFileJobs(ProjectElement *, const std::string &,
                                         const ProjectJobList &fileJobs, ProjectJobList &result) {
    StandardProjectSystem &system = *projectSystem;
    std::map<ProjectElement *, std::vector<ProjectJob *>> byElement;
    for (ProjectJob *job : fileJobs)
        byElement[job->element].push_back(job);
    for (ProjectJob *job : fileJobs)
        for (ProjectElement *node : system.filePrerequisites(job->element, job->configuration)) {
            auto found = byElement.find(node);
            if (found != byElement.end())
                for (ProjectJob *prerequisite : found->second)
                    job->dependencies.append(prerequisite);
        }
    visited.clear();
    visiting.clear();
    sorted.clear();
    while (visited.size() < fileJobs.size()) {
        for (ProjectJob *job : fileJobs)
            if (!visited.count(job) && !visitFileJob(job))
                return false;
    }
    for (ProjectJob *job : sorted)
        result.append(job);
    return true;
}

// Depth-first, with an explicit stack: a chain of modules as long as the
// project's file list must not exhaust the call stack.
bool ProjectSystemBuilder::visitFileJob(ProjectJob *start) {
    struct Frame {
        ProjectJob *job;
        std::size_t next;
    };
    if (visited.count(start))
        return true;
    if (visiting.count(start))
        return false;
    std::vector<Frame> stack{{start, 0}};
    visiting.insert(start);
    while (!stack.empty()) {
        Frame &frame = stack.back();
        if (frame.next < frame.job->dependencies.size()) {
            ProjectJob *dependency = frame.job->dependencies.at(frame.next++);
            if (visited.count(dependency))
                continue;
            if (!visiting.count(dependency)) {
                visiting.insert(dependency);
                stack.push_back({dependency, 0});
                continue;
            }
            // A cycle: each job on the path that closes it reports it.
            StandardProjectSystem &system = *projectSystem;
            for (auto it = stack.rbegin(); it != stack.rend(); ++it) {
                ProjectJob *job = it->job;
                ProjectJob *failedOn = it == stack.rbegin()
                                           ? dependency
                                           : job->dependencies.at((it)->next - 1);
                if (system.helpers)
                    system.helpers->warning(job->element, job->configuration,
                                            "Cyclic Dependency Detected",
                                            {"Cycle between '" +
                                             system.moduleNameOf(job->element, job->configuration) +
                                             "' and '" +
                                             system.moduleNameOf(failedOn->element,
                                                                 failedOn->configuration) +
                                             "'"});
            }
            return false;
        }
        visiting.erase(frame.job);
        visited.insert(frame.job);
        sorted.push_back(frame.job);
        stack.pop_back();
    }
    return true;
}

bool ProjectSystemBuilder::dependOnEachOther(ProjectElement *a, ProjectElement *b,
                                             const std::string &configuration) {
    // Tarjan's algorithm from `a`, with an explicit stack, over the edges
    // that allDependencies follows; each project is numbered once per build.
    std::map<ProjectElement *, int> &component = components_[configuration];
    if (!component.count(a)) {
        struct Node {
            int index, low;
            bool onStack;
        };
        struct Frame {
            ProjectElement *project;
            std::vector<ProjectElement *> successors;
            std::size_t next;
        };
        std::map<ProjectElement *, Node> nodes;
        std::vector<ProjectElement *> stack;
        std::vector<Frame> frames;
        int counter = 0;
        int components = int(component.size());
        auto successorsOf = [&](ProjectElement *project) {
            std::vector<ProjectElement *> successors;
            for (const std::string &name : projectSystem->projectDependencyNames(project, configuration))
                if (ProjectElement *found = projectSystem->findProject(project, name))
                    successors.push_back(found);
            return successors;
        };
        auto enter = [&](ProjectElement *project) {
            nodes[project] = {counter, counter, true};
            ++counter;
            stack.push_back(project);
            frames.push_back({project, successorsOf(project), 0});
        };
        enter(a);
        while (!frames.empty()) {
            Frame &frame = frames.back();
            if (frame.next < frame.successors.size()) {
                ProjectElement *next = frame.successors[frame.next++];
                if (component.count(next))
                    continue;  // finished in an earlier walk
                auto found = nodes.find(next);
                if (found == nodes.end())
                    enter(next);
                else if (found->second.onStack)
                    nodes[frame.project].low = std::min(nodes[frame.project].low, found->second.index);
                continue;
            }
            ProjectElement *project = frame.project;
            const Node node = nodes[project];
            frames.pop_back();
            if (!frames.empty())
                nodes[frames.back().project].low = std::min(nodes[frames.back().project].low, node.low);
            if (node.low == node.index) {
                ProjectElement *member = nullptr;
                do {
                    member = stack.back();
                    stack.pop_back();
                    nodes[member].onStack = false;
                    component[member] = components;
                } while (member != project);
                ++components;
            }
        }
    }
    if (!component.count(b))
        return false;
    return component[a] == component[b];
}

// ---- What the order asks of the project system.

StringList StandardProjectSystem::projectDependencyNames(ProjectElement *project,
                                                         const std::string &configuration) {
    std::string value =
        getPropertyValue(project, nodeProperties.projectDependencies, configuration).value_or("");
    std::erase_if(value, [](char c) { return c == '\n' || c == '\r'; });
    StringList names;
    ProjectElement *solutionElement = solutionOf(project);
    std::size_t start = 0;
    while (start <= value.size()) {
        std::size_t end = value.find(';', start);
        if (end == std::string::npos)
            end = value.size();
        const std::string entry = value.substr(start, end - start);
        start = end + 1;
        if (entry.empty())
            continue;
        if (entry.find('*') == std::string::npos || !solutionElement) {
            names.push_back(entry);
            continue;
        }
        for (const auto &[name, element] : solutionElement->projects)
            if (fnmatch(entry.c_str(), name.c_str(), 0) == 0)
                names.push_back(name);
    }
    return names;
}

bool StandardProjectSystem::configurationApplies(ProjectElement *project,
                                                 const std::string &configuration) {
    return configuration == "Common" || findConfiguration(project, configuration, true) != nullptr;
}

std::vector<ProjectElement *> StandardProjectSystem::allDependencies(ProjectElement *project,
                                                                     const std::string &configuration) {
    // Depth first in the order of the names, each project once; a cycle
    // ends where it meets a project already seen. The project itself is
    // among the result only if it lies on a cycle.
    std::vector<ProjectElement *> result;
    std::set<ProjectElement *> seen;
    std::vector<std::pair<StringList, std::size_t>> stack;
    std::vector<ProjectElement *> owners{project};
    stack.emplace_back(projectDependencyNames(project, configuration), 0);
    while (!stack.empty()) {
        auto &[names, next] = stack.back();
        if (next == names.size()) {
            stack.pop_back();
            owners.pop_back();
            continue;
        }
        ProjectElement *dependency = findProject(owners.back(), names[next++]);
        if (!dependency || !seen.insert(dependency).second)
            continue;
        result.push_back(dependency);
        owners.push_back(dependency);
        stack.emplace_back(projectDependencyNames(dependency, configuration), 0);
    }
    return result;
}

bool StandardProjectSystem::canBuildInParallel(ProjectElement *project,
                                               const std::string &configuration) {
    const std::string value =
        getPropertyValue(project, nodeProperties.projectCanBuildInParallel, configuration)
            .value_or("Default");
    if (value == "Default") {
        const std::string type =
            getPropertyValue(project, nodeProperties.projectType, configuration).value_or("");
        return type != "Staging" && type != "Combining";
    }
    return value == "Yes";
}

std::string StandardProjectSystem::stepTitle(ProjectElement *element, const std::string &configuration,
                                             BuildFlags flags) {
    if (flags & BuildNoTitle)
        return {};
    std::string title;
    if ((flags & 0xD) == 0xC)
        title = "Checking";
    else if (flags & BuildClean)
        title = "Cleaning";
    else if (flags & BuildAlways)
        title = "Rebuilding";
    else if (flags & BuildAnalyse)
        title = "Analyzing";
    else
        title = "Building";
    title += ' ';
    if (isFile(element) || isFolder(element))
        title += "'" + elementName(element) + "' from project ";
    title += "'" + elementName(projectOf(element)) + "' from solution '" +
             elementName(solutionOf(element)) + "' in configuration '" + configuration + "'";
    return title;
}
