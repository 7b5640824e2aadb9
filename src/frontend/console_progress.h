#pragma once

#include "build/idler.h"
#include "project/project_load_progress_interface.h"
#include "project/project_system_helpers.h"

#include <cstdio>
#include <string>
#include <vector>

// What a console run shows of a solution load: the pre-processor's and the
// template reader's lines, indented by the open tasks unless quiet. Lines
// about the target properties that every template sets are dropped.
class QuillmakeProjectLoadProgress : public ProjectLoadProgressInterface {
public:
    explicit QuillmakeProjectLoadProgress(bool quiet, std::FILE *out = stdout)
        : quiet_(quiet), out_(out) {}

    void beginTask(const std::string &text, int level) override;
    void endTask() override;
    void message(const std::string &text) override { printLine(text); }
    void warning(const std::string &text) override { printLine(text); }
    int depth() override { return quiet_ ? 0 : depth_; }
    void setProgress(int, int) override {}
    void processEvents() override {}
    std::vector<std::string> collectedLines() override { return {}; }

private:
    void printLine(const std::string &text);

    bool quiet_;
    int depth_ = 0;
    std::FILE *out_;
};

// The project system's warnings: "title messages" on standard output, or on
// standard error with -nostderr (the builders' error stream goes the other
// way).
class QuillmakeWarning : public ProjectSystemHelpers {
public:
    explicit QuillmakeWarning(bool noStderr, std::FILE *out = stdout, std::FILE *err = stderr)
        : noStderr_(noStderr), out_(out), err_(err) {}

    void warning(ProjectElement *element, const std::string &configuration, const std::string &title,
                 const std::vector<std::string> &messages) override;

private:
    bool noStderr_;
    std::FILE *out_;
    std::FILE *err_;
};

// A build's progress counts; a console run doesn't show them.
class QuillmakeIdler : public Idler {
public:
    void setStepCount(int count) override { stepCount = count; }
    void stepDone(ProjectElement *, const std::string &) override { ++stepsDone; }

    int stepCount = 0;
    int stepsDone = 0;
};
