// An export run: the job list of a build, with each job carried out at once
// on a builder that writes the commands as a script instead of running them.

#include "build/export_project_job_list.h"
#include "build/project_system_builder.h"
#include "build/standard_project_system.h"

ExportProjectJobList::ExportProjectJobList(ProjectSystemBuilder *driver, Builder *builder, Idler *idler)
    : driver_(driver), projectSystem_(driver->projectSystem), builder_(builder), idler_(idler) {}

void ExportProjectJobList::append(ProjectJob *job) {
    StandardProjectSystem &system = *projectSystem_;
    // The commands go through a shell: the toolchain quotes the include
    // and define entries for it, here and not in the compilation database
    // that the job graph may write.
    system.exportQuoting = true;
    struct QuotingOff {
        bool &flag;
        ~QuotingOff() { flag = false; }
    } quotingOff{system.exportQuoting};
    if (driver_->directoryJobs.count(job))
        system.directoryStep(job->element, job->configuration, builder_);
    // The top 16 bits of a begin job hold its step count, not flags.
    const BuildFlags flags = job->flags & 0xFFFFu;
    if (flags & BuildJobBegin) {
        system.preBuildStep(job->element, job->configuration, builder_, flags);
        system.buildElement(job->element, job->configuration, builder_, idler_, flags);
    }
    if (flags & BuildJobEnd)
        system.postBuildStep(job->element, job->configuration, builder_, true);
}

void ProjectSystemBuilder::exportBuild(ProjectElement *element, const std::string &configuration,
                                       Builder *builder, Idler *buildIdler, bool noUnity,
                                       bool followDependencies, bool batch) {
    BuildFlags flags = BuildAlways | BuildQuietChecks | BuildKeepGoing | BuildExport;
    if (noUnity)
        flags |= BuildNoUnity;
    jobList.clear();
    jobs.clear();
    directoryJobs.clear();
    ExportProjectJobList list(this, builder, buildIdler);
    // The caches that prepareBuild switches on are off again afterwards,
    // also when an error has ended the export.
    struct CachesOff {
        StandardProjectSystem *system;
        ~CachesOff() {
            system->setMacroCacheEnabled(false);
            system->setDependencyCacheEnabled(false);
            system->fileStatusCache().setEnabled(false);
        }
    } cachesOff{projectSystem};
    prepareBuild(element, configuration, 1, {builder}, buildIdler, flags, followDependencies, batch, list);
    workers.clear();
    jobs.clear();
    directoryJobs.clear();
}
