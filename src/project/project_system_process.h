#pragma once

#include "support/process.h"

#include <string>
#include <vector>

class ProjectLoadProgressInterface;

// Runs one load command of a solution to its end, in the constructor. The
// child's output, both streams, goes to the progress object's message.
//
// exitStatus() is the command's exit status, or -1 when the program couldn't
// be started at all (not found, not executable, no working directory).
class ProjectSystemProcess : public Process {
public:
    // environment holds "name=value" pairs, set in this program's own
    // environment before the start, so that this child and every later one
    // inherits them. progress may be null.
    ProjectSystemProcess(ProjectLoadProgressInterface *progress, const std::vector<std::string> &arguments,
                         const std::string &workingDirectory, const std::vector<std::string> &environment);
    ~ProjectSystemProcess() override = default;

    void outputLine(bool fromStandardOutput, std::string_view text) override;

private:
    ProjectLoadProgressInterface *progress_;
};
