#pragma once

// Solutions under a toolchain for its unit tests, recorded by the build tests' RecordingBuilder.

#include "build/node_build_test_fixture.h"

#include <set>
#include <string>

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
        recorder.root = directory.path();
    }
    std::string expand(const std::string &text) { return system.expandProjectMacros(project, text, "Debug"); }
    // The recorded lines of a build step of the element, its output given
    // relative to the project's directory.
    Lines step(ProjectElement *element, int kind, const std::string &output, const StringList &inputs) {
        recorder.lines.clear();
        system.buildStep(element, "Debug", kind, output, directory / output, inputs, &recorder, 0);
        return recorder.lines;
    }
    TestDirectory directory;
    SystemMacros macros;
    System system{&macros};
    ProjectElement *project = nullptr;
    ProjectElement *source = nullptr;
    ProjectElement *header = nullptr;
    RecordingBuilder recorder;
};

using Names = std::set<std::string>;

// The names of `wanted` that the rows or values of a list have.
template <class List>
Names among(const List &list, const Names &wanted) {
    Names names;
    for (const auto &row : list)
        if (wanted.count(row->name()))
            names.insert(row->name());
    return names;
}
