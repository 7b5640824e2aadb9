#pragma once

#include "build/builder.h"
#include "support/process.h"

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class Idler;
class ProjectElement;
class ProjectSystemBuilder;

// The builder of a command-line build, one per build slot: it prints the
// step titles and messages of a build, runs each command as its own child
// and passes the child's output on line by line.
//
// Titles stay hidden until something is worth showing: the first output
// line or report of a step brings its title out first, and a step that runs
// quietly leaves no trace. With verbose, each title is printed as its step
// begins. In a build of several slots every line carries "N>" with the
// slot's number, so that the interleaved output of the slots stays apart.
class QuillmakeBuilder : public Builder, public Process {
public:
    // prefixNumber is 0 in a one-slot build, else the slot's number from 1.
    // With noStderr, error output goes to standard output. The driver may
    // be null, for a builder that runs on its own. `out` and `err` stand for
    // the program's standard output and standard error.
    QuillmakeBuilder(ProjectSystemBuilder *driver, int prefixNumber, bool echo, bool show, bool noStderr,
                     bool verbose, Idler *idler, FILE *out = stdout, FILE *err = stderr);

    void beginStep(ProjectElement *element, const std::string &title, const std::string &configuration,
                   int stepCount) override;
    void endStep(ProjectElement *element, const std::string &configuration) override;
    void addCommand(const std::string &workingDirectory, const std::vector<std::string> &arguments,
                    const std::string &outputFile) override;
    bool waitForCommand(ProjectElement *element, const std::string &configuration, int &exitStatus) override;
    void reportError(const std::string &text) override;
    void reportWarning(const std::string &text) override { report(text); }
    void reportMessage(const std::string &text) override { report(text); }
    void reportOutcome(const std::string &text) override { report(text); }
    void reportDetail(const std::string &text) override { report(text); }
    void deleteFile(const std::string &filePath, bool quiet) override;

    // A line of the running command's output, on standard output or on the
    // error stream as it came.
    void outputLine(bool fromStandardOutput, std::string_view text) override;

    // Stops the running command for an interrupted build: the child is sent
    // SIGTERM (and SIGKILL if it lingers), its remaining output is dropped
    // and its output file removed, so that nothing half-written survives.
    // The next waitForCommand answers true at once with the signal's number
    // as the status, and prints nothing.
    void abandonCommand();

    bool appendWaitDescriptors(std::vector<int> &descriptors) override {
        return Process::appendWaitDescriptors(descriptors);
    }

    ProjectSystemBuilder *driver;
    int prefixNumber;
    bool echo;
    bool show;
    FILE *errorStream;
    int errorCount = 0;
    std::string outputFile;
    bool verbose;
    ProjectElement *currentElement = nullptr;
    std::string configuration;
    Idler *idler;
    std::string commandLine;
    std::optional<std::string> pendingTitle;

private:
    // Prints a line on standard output, with the slot's prefix.
    void printLine(std::string_view text);
    // Writes the slot's prefix, the text and a newline, and flushes.
    void writeLine(FILE *stream, std::string_view text);
    // The words of warnings, messages, outcomes and details: shown with the
    // step's title, and counted as nothing.
    void report(const std::string &text);
    // Prints the title of the step if it hasn't been shown yet.
    void showPendingTitle();
    void failCommand();

    FILE *standardOutput_;
    bool abandoned_ = false;
};
