#include "build/builder.h"

#include "support/file_utils.h"

#include <cstdio>
#include <filesystem>

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
    bool written = true;
    for (const auto &line : lines)
        written = written && std::fwrite(line.data(), 1, line.size(), file) == line.size() &&
                  std::fputc('\n', file) != EOF;
    if (std::fclose(file) != 0 || !written) {
        // A full disk must not leave a cut-off list that the next build reads
        // as whole. Only a regular file is removed: the path may be a device.
        std::error_code error;
        if (std::filesystem::is_regular_file(filePath, error))
            std::filesystem::remove(filePath, error);
        reportError("cannot write " + filePath);
        stopCommand();
    }
}

bool Builder::appendWaitDescriptors(std::vector<int> &) { return true; }
