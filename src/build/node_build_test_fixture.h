#pragma once

// A loaded solution in a scratch directory, with a builder that records each
// call as one line, for the tests of the per-node build and the toolchains.

#include "build/builder.h"
#include "build/idler.h"
#include "build/standard_project_system.h"
#include "support/file_info.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <string>
#include <vector>

using Lines = std::vector<std::string>;

// One line per call; the scratch directory is written "@".
class RecordingBuilder : public Builder {
public:
    void beginStep(ProjectElement *, const std::string &title, const std::string &, int) override {
        add("begin " + title);
    }
    void endStep(ProjectElement *, const std::string &) override { add("end"); }
    void addCommand(const std::string &workingDirectory, const std::vector<std::string> &arguments,
                    const std::string &outputFile) override {
        add("command " + workingDirectory + " |" + joined(arguments) + " | " + outputFile);
    }
    void reportError(const std::string &text) override { add("error " + text); }
    void reportWarning(const std::string &text) override { add("warning " + text); }
    void reportMessage(const std::string &text) override { add("message " + text); }
    void reportOutcome(const std::string &text) override { add("outcome " + text); }
    void reportDetail(const std::string &text) override { add("detail " + text); }
    bool acceptOutputFile(const std::string &filePath) override {
        add("accept " + filePath);
        return accept;
    }
    void writeLines(const std::string &filePath, const std::vector<std::string> &content) override {
        add("write " + filePath + " |" + joined(content));
    }
    void deleteFile(const std::string &filePath, bool quiet) override {
        add((quiet ? "delete " : "delete! ") + filePath);
    }

    static std::string joined(const std::vector<std::string> &words) {
        std::string line;
        for (const std::string &word : words)
            line += " " + word;
        return line;
    }
    void add(const std::string &line) {
        // Copied piece by piece: replace() in place makes g++ 12 warn falsely
        // about overlapping copies at -O3.
        std::string shown;
        std::size_t from = 0;
        for (std::size_t at; !root.empty() && (at = line.find(root, from)) != std::string::npos;
             from = at + root.size()) {
            shown.append(line, from, at - from);
            shown += '@';
        }
        shown.append(line, from);
        lines.push_back(std::move(shown));
    }

    std::string root;
    Lines lines;
    bool accept = true;
};

class CountingIdler : public Idler {
public:
    void stepDone(ProjectElement *, const std::string &) override { ++steps; }
    int steps = 0;
};

// The toolchain's step stands out as one message.
class TestProjectSystem : public StandardProjectSystem {
public:
    using StandardProjectSystem::StandardProjectSystem;
    void buildStep(ProjectElement *, const std::string &, int step, const std::string &outputRelative,
                   const std::string &outputFile, const StringList &inputs, Builder *builder, BuildFlags) override {
        builder->reportMessage("step " + std::to_string(step) + " " + outputRelative + " " + outputFile + " <-" +
                               RecordingBuilder::joined(inputs));
    }
};

// A base time for file times: the files of a test are made at it or a few
// seconds around it.
constexpr std::int64_t baseTime = 1600000000;

class NodeBuildTest : public ::testing::Test {
protected:
    // A solution "S" with configuration Debug, the intermediate directory
    // "obj" and the output directory "out" for all, and the given body.
    void load(const std::string &body) {
        system.loadSolution(directory.write(
            "s.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\" version=\"2\">\n"
                     "  <configuration Name=\"Debug\" />\n  <configuration Name=\"Common\" "
                     "build_intermediate_directory=\"obj\" build_output_directory=\"out\" />\n" +
                         body + "</solution>\n"));
        recorder.root = directory.path();
    }

    // Writes a file below the scratch directory with the given time.
    std::string file(const std::string &relative, const std::string &content, std::int64_t seconds,
                     long nanoseconds = 0) {
        const std::string path = directory.write(relative, content);
        setTime(path, seconds, nanoseconds);
        return path;
    }
    static void setTime(const std::string &path, std::int64_t seconds, long nanoseconds = 0) {
        const timespec times[2] = {{static_cast<time_t>(seconds), nanoseconds},
                                   {static_cast<time_t>(seconds), nanoseconds}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
    }

    ProjectElement *node(const std::string &name) { return system.findElementByName(system.solution, name); }

    // The recorded lines of a build of the named node.
    Lines build(const std::string &name, BuildFlags flags) {
        recorder.lines.clear();
        result = system.buildElement(node(name), "Debug", &recorder, &idler, flags);
        return recorder.lines;
    }

    static std::string timeText(std::int64_t seconds) { return FileTime(seconds, 0).toText(); }

    TestDirectory directory;
    SystemMacros macros;
    TestProjectSystem system{&macros};
    RecordingBuilder recorder;
    CountingIdler idler;
    bool result = false;
};
