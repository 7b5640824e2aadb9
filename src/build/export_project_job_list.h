#pragma once

#include "build/project_job.h"

class Builder;
class Idler;
class ProjectSystemBuilder;
class StandardProjectSystem;

// The job list of an export run. It keeps no jobs: each job is carried out
// on the export builder as soon as it is appended, so the script follows the
// order in which the jobs are made. A begin job builds its whole element,
// files included; the file jobs that follow it add nothing.
class ExportProjectJobList : public ProjectJobList {
public:
    ExportProjectJobList(ProjectSystemBuilder *driver, Builder *builder, Idler *idler);

    void append(ProjectJob *job) override;

private:
    ProjectSystemBuilder *driver_;
    StandardProjectSystem *projectSystem_;
    Builder *builder_;
    Idler *idler_;
};
