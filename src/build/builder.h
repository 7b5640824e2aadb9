#pragma once

#include <string>
#include <vector>

class ProjectElement;
class DiagnosticParser;

// Everything that a build does to the outside world goes through a Builder:
// announcing a step, running a command, reporting, writing and deleting files.
// The build logic never touches a process or a terminal itself.
//
// A step is a beginStep ... endStep pair; between them come addCommand and
// waitForCommand pairs and reports. reportError counts one error and fails
// the job that reports it; the other reports are only words.
class Builder {
public:
    virtual ~Builder() = default;

    virtual void beginStep(ProjectElement *element, const std::string &title,
                           const std::string &configuration, int stepCount) = 0;
    virtual void endStep(ProjectElement *element, const std::string &configuration) = 0;
    // Starts a command; the first argument is the program. outputFile is the
    // file the command makes (empty if none); it is deleted if the command fails.
    virtual void addCommand(const std::string &workingDirectory,
                            const std::vector<std::string> &arguments,
                            const std::string &outputFile) = 0;
    // True when the command has ended. Synchronous builders answer at once and
    // leave exitStatus as it is.
    virtual bool waitForCommand(ProjectElement *element, const std::string &configuration,
                                int &exitStatus);
    virtual void reportError(const std::string &text) = 0;
    virtual void reportWarning(const std::string &text);
    virtual void reportMessage(const std::string &text);
    virtual void reportOutcome(const std::string &text);
    virtual void reportDetail(const std::string &text);
    virtual void stopCommand();
    virtual DiagnosticParser *diagnosticParser();
    // Asked after an output file has been made; false counts as a failure.
    virtual bool acceptOutputFile(const std::string &filePath);
    // Makes a small text file, creating its directory first.
    virtual void writeLines(const std::string &filePath, const std::vector<std::string> &lines);
    // Removes a file; a failure counts only if quiet is false.
    virtual void deleteFile(const std::string &filePath, bool quiet);
    virtual void jobCreated(ProjectElement *element, const std::string &configuration,
                            unsigned flags, int jobNumber, const std::vector<int> &waitsFor);

    // For a builder whose commands run as children: the descriptors whose
    // activity ends a wait for them, as Process::appendWaitDescriptors. The
    // build loop sleeps on these rather than polling each slot in turn.
    // Other builders add nothing and answer true.
    virtual bool appendWaitDescriptors(std::vector<int> &descriptors);
};

// Does nothing at all: handed to a per-element build to learn only whether
// something would be built.
class NullBuilder : public Builder {
public:
    void beginStep(ProjectElement *, const std::string &, const std::string &, int) override {}
    void endStep(ProjectElement *, const std::string &) override {}
    void addCommand(const std::string &, const std::vector<std::string> &,
                    const std::string &) override {}
    void reportError(const std::string &) override {}
};
