#include "build/builder.h"

#include "support/file_utils.h"

#include <cstdio>

bool Builder::waitForCommand(ProjectElement *, const std::string &, int &) { return true; }
void Builder::reportWarning(const std::string &) {}
void Builder::reportMessage(const std::string &) {}
void Builder::reportOutcome(const std::string &) {}
void Builder::reportDetail(const std::string &) {}
void Builder::stopCommand() {}
DiagnosticParser *Builder::diagnosticParser() { return nullptr; }
bool Builder::acceptOutputFile(const std::string &) { return true; }
void Builder::deleteFile(const std::string &, bool) {}
void Builder::jobCreated(ProjectElement *, const std::string &, unsigned, int,
                         const std::vector<int> &) {}

void Builder::writeLines(const std::string &filePath, const std::vector<std::string> &lines) {
    const auto slash = filePath.rfind('/');
    if (slash != std::string::npos && slash > 0) {
        const std::string directory = filePath.substr(0, slash);
        if (!makeDirectories(directory)) {
            reportError("cannot mkdir " + directory);
            stopCommand();
            return;
        }
    }
    FILE *file = std::fopen(filePath.c_str(), "w");
    if (!file) {
        reportError("cannot open " + filePath);
        stopCommand();
        return;
    }
    for (const auto &line : lines) {
        std::fwrite(line.data(), 1, line.size(), file);
        std::fputc('\n', file);
    }
    std::fclose(file);
}

bool Builder::appendWaitDescriptors(std::vector<int> &) { return true; }
