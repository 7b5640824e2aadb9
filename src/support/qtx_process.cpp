#include "support/qtx_process.h"

void QTxProcess::outputLine(bool fromStandardOutput, std::string_view text) {
    std::vector<std::string> *lines = fromStandardOutput ? standardOutput_ : standardError_;
    if (lines)
        lines->emplace_back(text);
}

int runTool(const std::vector<std::string> &arguments, bool capture, const std::string &workingDirectory,
            std::vector<std::string> *standardOutput, std::vector<std::string> *standardError) {
    QTxProcess process(standardOutput, standardError);
    const int started = process.startChild(arguments, workingDirectory, capture, false);
    if (!capture) {
        process.detachChild();
        return started;
    }
    // pollChild itself waits up to a millisecond for output, so the loop
    // doesn't spin.
    int status = started;
    while (process.pollChild(status) != 0) {
    }
    return status;
}
