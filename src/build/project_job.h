#pragma once

#include "build/build_flags.h"

#include <string>
#include <vector>

class ProjectElement;
struct ProjectJob;

// A list of jobs, not owning them. Appending is virtual so that an export can
// act on each job as soon as it is made.
class ProjectJobList {
public:
    virtual ~ProjectJobList() = default;
    virtual void append(ProjectJob *job) { jobs_.push_back(job); }

    void clear() { jobs_.clear(); }
    std::size_t size() const { return jobs_.size(); }
    bool empty() const { return jobs_.empty(); }
    ProjectJob *at(std::size_t i) const { return jobs_[i]; }
    auto begin() const { return jobs_.begin(); }
    auto end() const { return jobs_.end(); }

private:
    std::vector<ProjectJob *> jobs_;
};

// One unit of work: one element in one configuration.
struct ProjectJob {
    ProjectElement *element = nullptr;
    std::string configuration;
    // The build's flags with the job's bits; a begin job keeps its step count
    // in the top 16 bits.
    BuildFlags flags = 0;
    bool done = false;
    ProjectJobList dependencies;
    int number = 0;  // 1, 2, 3 ... in order of creation within a build
};
