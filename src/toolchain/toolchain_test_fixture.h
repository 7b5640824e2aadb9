#pragma once

// A loaded one-project solution under a toolchain, and a builder that keeps
// what a step asks of it, for the toolchains' unit tests.

#include "build/builder.h"
#include "support/test_directory.h"

#include <string>
#include <vector>

// A solution of one project with the files m.cpp and h.h, loaded by the
// project system under test; configuration holds attributes of the
// project's "Common" configuration.
template <class System>
struct Toolchain {
    explicit Toolchain(const std::string &configuration = "") {
        system.installDirectory = "/studio";
        const std::string file = directory.write(
            "s.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\">\n"
                     "  <configuration Name=\"Debug\" />\n  <project Name=\"P\">\n"
                     "    <configuration Name=\"Common\" build_intermediate_directory=\"obj\" " +
                         configuration +
                         " />\n    <file file_name=\"m.cpp\" />\n    <file file_name=\"h.h\" />\n"
                         "  </project>\n</solution>\n");
        system.loadSolution(file);
        project = system.findProject(system.solution, "P");
        source = system.findFileByPath(project, "m.cpp");
        header = system.findFileByPath(project, "h.h");
    }
    std::string expand(const std::string &text) {
        return system.expandProjectMacros(project, text, "Debug");
    }
    TestDirectory directory;
    SystemMacros macros;
    System system{&macros};
    ProjectElement *project = nullptr;
    ProjectElement *source = nullptr;
    ProjectElement *header = nullptr;
};

// Keeps the commands it is given, one line each: the arguments joined by
// blanks, then " => " and the output file. Files written and deleted, and
// errors, get lines of their own.
class CommandBuilder : public Builder {
public:
    void beginStep(ProjectElement *, const std::string &title, const std::string &, int) override {
        lines.push_back("begin " + title);
    }
    void endStep(ProjectElement *, const std::string &) override { lines.push_back("end"); }
    void addCommand(const std::string &, const std::vector<std::string> &arguments,
                    const std::string &output) override {
        std::string line;
        for (const std::string &argument : arguments)
            line += (line.empty() ? "" : " ") + argument;
        lines.push_back(line + " => " + output);
    }
    void reportError(const std::string &text) override { lines.push_back("error " + text); }
    void writeLines(const std::string &filePath, const std::vector<std::string> &written) override {
        lines.push_back("write " + filePath);
        files.push_back(written);
    }
    void deleteFile(const std::string &filePath, bool quiet) override {
        lines.push_back(std::string(quiet ? "delete quietly " : "delete ") + filePath);
    }
    std::vector<std::string> lines;
    std::vector<std::vector<std::string>> files;
};
