#pragma once

#include "build/builder.h"
#include "build/idler.h"

#include <string>
#include <vector>

class ProjectSystemBuilder;
class StandardProjectSystem;
struct ProjectJob;

// One recorded call of a job's build.
struct BuildStep {
    enum Type : int {
        BeginStep = 0,
        EndStep = 1,
        AddCommand = 2,
        WaitForCommand = 3,
        ProjectStarted = 4,
        StepDone = 5,
        ProjectFinished = 6,
        AcceptOutputFile = 7,
        ReportError = 8,
        ReportWarning = 9,
        ReportMessage = 10,
        ReportOutcome = 11,
        ReportDetail = 12,
        WriteLines = 13,
        DeleteFile = 14,
        DeleteFileQuietly = 15,
    };

    int type = BeginStep;
    ProjectElement *element = nullptr;
    std::string configuration;
    std::string text;              // title or message
    int number = -1;               // step count of beginStep and projectStarted
    std::string workingDirectory;  // of a command
    std::vector<std::string> arguments;  // of a command, or the lines of a file
    std::string path;              // output file, or the file to write or delete
};

// A build slot's job. When the job first polls, the whole build of its
// element runs against this object, which records every call instead of
// acting on it; the records are then replayed on the slot's real builder one
// at a time, so that the slot's command runs while other slots decide and
// replay theirs. Everything happens on the one thread.
class BuildThread : public Builder, public Idler {
public:
    BuildThread(ProjectSystemBuilder *driver, ProjectJob *job, Builder *builder, Idler *idler);

    // Advances the job as far as it can go without waiting. True when the job
    // has finished; exitStatus then holds the failing command's status, or
    // stays as it was.
    bool poll(int &exitStatus);

    ProjectJob *job() const { return job_; }
    bool built() const { return built_; }
    bool errorSeen() const { return errorSeen_; }

    // ---- Recording.
    void beginStep(ProjectElement *element, const std::string &title, const std::string &configuration,
                   int stepCount) override;
    void endStep(ProjectElement *element, const std::string &configuration) override;
    void addCommand(const std::string &workingDirectory, const std::vector<std::string> &arguments,
                    const std::string &outputFile) override;
    void reportError(const std::string &text) override;
    void reportWarning(const std::string &text) override;
    void reportMessage(const std::string &text) override;
    void reportOutcome(const std::string &text) override;
    void reportDetail(const std::string &text) override;
    DiagnosticParser *diagnosticParser() override { return diagnosticParser_; }
    bool acceptOutputFile(const std::string &filePath) override;
    void writeLines(const std::string &filePath, const std::vector<std::string> &lines) override;
    void deleteFile(const std::string &filePath, bool quiet) override;

    void projectStarted(ProjectElement *element, const std::string &title,
                        const std::string &configuration, int stepCount) override;
    void stepDone(ProjectElement *element, const std::string &configuration) override;
    void projectFinished(ProjectElement *element, const std::string &configuration) override;

private:
    BuildStep &record(int type, ProjectElement *element = nullptr);
    void start();
    // After a replayed step that may have written or deleted files.
    void filesChanged();
    // The element and configuration of the step being recorded.
    ProjectElement *currentElement_ = nullptr;
    std::string currentConfiguration_;

    ProjectSystemBuilder *driver_;
    std::vector<BuildStep> steps_;
    ProjectJob *job_;
    Builder *builder_;
    Idler *idler_;
    DiagnosticParser *diagnosticParser_;
    bool built_ = false;
    bool started_ = false;
    std::size_t cursor_ = 0;
    StandardProjectSystem *projectSystem_;
    bool errorSeen_ = false;
};
