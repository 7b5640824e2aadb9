#pragma once

#include "build/builder.h"

#include <cstdio>
#include <string>
#include <vector>

class ProjectSystemBuilder;
class StandardProjectSystem;

// The builder of an export run: nothing runs, and every command of the build
// is written out as a line of a shell script that does the build. A heading
// "# [<configuration>]" opens each configuration (the parallel form), and a
// `cd` line precedes the first command in each directory.
class QuillmakeExportBuilder : public Builder {
public:
    // parallelForm is -export-par-build, plainForm -export-build and
    // includeProjectName -export-build-include-project-name; `out` stands for
    // the program's standard output.
    QuillmakeExportBuilder(ProjectSystemBuilder *driver, bool parallelForm, bool plainForm,
                           bool includeProjectName, FILE *out = stdout);

    void beginStep(ProjectElement *element, const std::string &title, const std::string &configuration,
                   int stepCount) override;
    void endStep(ProjectElement *, const std::string &) override {}
    void addCommand(const std::string &workingDirectory, const std::vector<std::string> &arguments,
                    const std::string &outputFile) override;
    // Ends the run: throws the text as an HException.
    void reportError(const std::string &text) override;
    // An `echo` line for each line: the first makes the file, the others add to it.
    void writeLines(const std::string &filePath, const std::vector<std::string> &lines) override;
    // An `rm` line, with -f when quiet.
    void deleteFile(const std::string &filePath, bool quiet) override;
    // In the plain form, "# <number>" and the jobs that it waits for.
    void jobCreated(ProjectElement *element, const std::string &configuration, unsigned flags,
                    int jobNumber, const std::vector<int> &waitsFor) override;

    ProjectSystemBuilder *driver;
    StandardProjectSystem *projectSystem;
    std::string configuration;
    std::string projectName;
    std::string lastHeading;
    std::string currentDirectory;
    bool parallelForm;
    bool plainForm;
    bool includeProjectName;

private:
    void write(const std::string &text);
    FILE *out_;
};
