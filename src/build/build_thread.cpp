#include "build/build_thread.h"

#include "build/project_job.h"
#include "build/project_system_builder.h"
#include "build/standard_project_system.h"

BuildThread::BuildThread(ProjectSystemBuilder *driver, ProjectJob *job, Builder *builder, Idler *idler)
    : driver_(driver),
      job_(job),
      builder_(builder),
      idler_(idler),
      diagnosticParser_(builder->diagnosticParser()),
      projectSystem_(driver->projectSystem) {
    std::vector<int> waitsFor;
    for (const ProjectJob *dependency : job->dependencies)
        waitsFor.push_back(dependency->number);
    builder->jobCreated(job->element, job->configuration, job->flags, job->number, waitsFor);
}

// ---- Recording.

BuildStep &BuildThread::record(int type, ProjectElement *element) {
    BuildStep &step = steps_.emplace_back();
    step.type = type;
    step.element = element ? element : currentElement_;
    step.configuration = currentConfiguration_;
    return step;
}

void BuildThread::beginStep(ProjectElement *element, const std::string &title,
                            const std::string &configuration, int stepCount) {
    currentElement_ = element;
    currentConfiguration_ = configuration;
    BuildStep &step = record(BuildStep::BeginStep, element);
    step.text = title;
    step.number = stepCount;
}

void BuildThread::endStep(ProjectElement *element, const std::string &configuration) {
    currentElement_ = element;
    currentConfiguration_ = configuration;
    record(BuildStep::EndStep, element);
}

void BuildThread::addCommand(const std::string &workingDirectory,
                             const std::vector<std::string> &arguments,
                             const std::string &outputFile) {
    BuildStep &command = record(BuildStep::AddCommand);
    command.workingDirectory = workingDirectory;
    command.arguments = arguments;
    command.path = outputFile;
    record(BuildStep::WaitForCommand);
}

void BuildThread::reportError(const std::string &text) { record(BuildStep::ReportError).text = text; }
void BuildThread::reportWarning(const std::string &text) { record(BuildStep::ReportWarning).text = text; }
void BuildThread::reportMessage(const std::string &text) { record(BuildStep::ReportMessage).text = text; }
void BuildThread::reportOutcome(const std::string &text) { record(BuildStep::ReportOutcome).text = text; }
void BuildThread::reportDetail(const std::string &text) { record(BuildStep::ReportDetail).text = text; }

bool BuildThread::acceptOutputFile(const std::string &filePath) {
    record(BuildStep::AcceptOutputFile).path = filePath;
    return true;
}

void BuildThread::writeLines(const std::string &filePath, const std::vector<std::string> &lines) {
    BuildStep &step = record(BuildStep::WriteLines);
    step.path = filePath;
    step.arguments = lines;
}

void BuildThread::deleteFile(const std::string &filePath, bool quiet) {
    record(quiet ? BuildStep::DeleteFileQuietly : BuildStep::DeleteFile).path = filePath;
}

void BuildThread::projectStarted(ProjectElement *element, const std::string &title,
                                 const std::string &configuration, int stepCount) {
    BuildStep &step = record(BuildStep::ProjectStarted, element);
    step.configuration = configuration;
    step.text = title;
    step.number = stepCount;
}

void BuildThread::stepDone(ProjectElement *element, const std::string &configuration) {
    record(BuildStep::StepDone, element).configuration = configuration;
}

void BuildThread::projectFinished(ProjectElement *element, const std::string &configuration) {
    record(BuildStep::ProjectFinished, element).configuration = configuration;
}

// ---- Replay.

void BuildThread::start() {
    ProjectElement *element = job_->element;
    const std::string &configuration = job_->configuration;
    const BuildFlags flags = job_->flags;
    const bool userSteps = !(flags & (BuildClean | BuildAnalyse));
    currentElement_ = element;
    currentConfiguration_ = configuration;
    if (flags & BuildJobBegin) {
        projectStarted(element, projectSystem_->stepTitle(element, configuration, flags),
                       configuration, int(flags >> 16));
        if (userSteps)
            projectSystem_->preBuildStep(element, configuration, this, flags);
    } else {
        built_ = projectSystem_->buildElement(element, configuration, this, this, flags);
        if (userSteps && (flags & BuildJobEnd))
            projectSystem_->postBuildStep(element, configuration, this, built_);
    }
    started_ = true;
    cursor_ = 0;
}

void BuildThread::filesChanged() {
    // The checks of the jobs after this one must see the files as they are
    // now, not as an earlier check found them.
    projectSystem_->fileStatusCache().clear();
}

bool BuildThread::poll(int &exitStatus) {
    for (const ProjectJob *dependency : job_->dependencies)
        if (!dependency->done)
            return false;
    if (!started_)
        start();

    while (cursor_ < steps_.size()) {
        const BuildStep &step = steps_[cursor_];
        switch (step.type) {
        case BuildStep::BeginStep:
            builder_->beginStep(step.element, step.text, step.configuration, step.number);
            break;
        case BuildStep::EndStep:
            builder_->endStep(step.element, step.configuration);
            break;
        case BuildStep::AddCommand:
            // The wait that follows doesn't block: a command shown and not
            // run is over at once, and a child's end is found later.
            builder_->addCommand(step.workingDirectory, step.arguments, step.path);
            break;
        case BuildStep::WaitForCommand:
            if (!builder_->waitForCommand(step.element, step.configuration, exitStatus))
                return false;
            filesChanged();
            if (exitStatus != 0 || driver_->failed || driver_->cancelled) {
                idler_->projectFinished(step.element, step.configuration);
                cursor_ = steps_.size();
                return true;
            }
            break;
        case BuildStep::ProjectStarted:
            idler_->projectStarted(step.element, step.text, step.configuration, step.number);
            break;
        case BuildStep::StepDone:
            idler_->stepDone(step.element, step.configuration);
            break;
        case BuildStep::ProjectFinished:
            idler_->projectFinished(step.element, step.configuration);
            break;
        case BuildStep::AcceptOutputFile:
            if (!builder_->acceptOutputFile(step.path)) {
                builder_->deleteFile(step.path, true);
                filesChanged();
                driver_->failed = true;
            }
            break;
        case BuildStep::ReportError:
            builder_->reportError(step.text);
            errorSeen_ = true;
            break;
        case BuildStep::ReportWarning:
            builder_->reportWarning(step.text);
            break;
        case BuildStep::ReportMessage:
            builder_->reportMessage(step.text);
            break;
        case BuildStep::ReportOutcome:
            builder_->reportOutcome(step.text);
            break;
        case BuildStep::ReportDetail:
            builder_->reportDetail(step.text);
            break;
        case BuildStep::WriteLines:
            builder_->writeLines(step.path, step.arguments);
            filesChanged();
            break;
        case BuildStep::DeleteFile:
            builder_->deleteFile(step.path, false);
            filesChanged();
            break;
        case BuildStep::DeleteFileQuietly:
            builder_->deleteFile(step.path, true);
            filesChanged();
            break;
        }
        ++cursor_;
    }
    if (job_->flags & BuildJobEnd)
        idler_->projectFinished(job_->element, job_->configuration);
    return true;
}

