#pragma once

#include "support/process.h"

#include <string>
#include <vector>

// A child whose output the program wants as lists of lines, such as a
// compiler asked for its predefined macros. Lines are kept as the bytes the
// child wrote.
class QTxProcess : public Process {
public:
    // A null list drops the lines of its stream.
    QTxProcess(std::vector<std::string> *standardOutput, std::vector<std::string> *standardError)
        : standardOutput_(standardOutput), standardError_(standardError) {}
    ~QTxProcess() override = default;

    void outputLine(bool fromStandardOutput, std::string_view text) override;

    // Lets a child started without capture outlive this object.
    using Process::detachChild;

private:
    std::vector<std::string> *standardOutput_;
    std::vector<std::string> *standardError_;
};

// Runs a short helper program. With capture it waits for the end and returns
// the exit status (-1 if nothing could be started), with the lines of the two
// streams appended to the lists. Without capture it only starts the program,
// which runs on by itself, and returns what startChild returned.
int runTool(const std::vector<std::string> &arguments, bool capture, const std::string &workingDirectory,
            std::vector<std::string> *standardOutput, std::vector<std::string> *standardError);
