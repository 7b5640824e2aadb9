#include "build/quillmake_builder.h"

#include "build/project_system_builder.h"
#include "build/standard_project_system.h"
#include "environment/install_location.h"
#include "support/file_utils.h"

#include <csignal>

QuillmakeBuilder::QuillmakeBuilder(ProjectSystemBuilder *driver_, int prefixNumber_, bool echo_, bool show_,
                                   bool noStderr, bool verbose_, Idler *idler_, FILE *out, FILE *err)
    : driver(driver_),
      prefixNumber(prefixNumber_),
      echo(echo_),
      show(show_),
      errorStream(noStderr ? out : err),
      verbose(verbose_),
      idler(idler_),
      standardOutput_(out) {
    // A driven builder's loop waits for all slots' children at once
    // (appendWaitDescriptors), so its polls needn't wait themselves.
    if (driver)
        setPollTimeout(0);
}

void QuillmakeBuilder::writeLine(FILE *stream, std::string_view text) {
    if (prefixNumber > 0)
        std::fprintf(stream, "%d>", prefixNumber);
    // Tool output may hold any byte, NUL included: it goes out unchanged.
    if (!text.empty())
        std::fwrite(text.data(), 1, text.size(), stream);
    std::fputc('\n', stream);
    std::fflush(stream);
}

void QuillmakeBuilder::printLine(std::string_view text) { writeLine(standardOutput_, text); }

void QuillmakeBuilder::showPendingTitle() {
    if (verbose || !pendingTitle)
        return;
    printLine(*pendingTitle);
    pendingTitle.reset();
}

void QuillmakeBuilder::beginStep(ProjectElement *element, const std::string &title,
                                 const std::string &configuration_, int) {
    currentElement = element;
    configuration = configuration_;
    if (verbose) {
        if (driver && driver->projectCount >= 2) {
            // A step outside any project has no name to show, and isn't shown.
            ProjectElement *project = ProjectSystem::projectOf(element);
            const std::string name =
                project && driver->projectSystem ? driver->projectSystem->elementName(project) : "<NULL>";
            if (name != "<NULL>")
                printLine(title + " from project '" + name + "' in configuration '" + configuration + "'");
        } else {
            printLine(title);
        }
    }
    pendingTitle = title;
}

void QuillmakeBuilder::endStep(ProjectElement *, const std::string &) {
    currentElement = nullptr;
    configuration.clear();
    pendingTitle.reset();
}

void QuillmakeBuilder::addCommand(const std::string &workingDirectory, const std::vector<std::string> &arguments,
                                  const std::string &outputFile_) {
    abandoned_ = false;
    outputFile = outputFile_;
    if (!outputFile.empty()) {
        // A directory that can't be made shows up as the command's failure.
        const size_t slash = outputFile.rfind('/');
        if (slash != std::string::npos && slash > 0)
            makeDirectories(outputFile.substr(0, slash));
    }
    commandLine.clear();
    for (const std::string &argument : arguments) {
        if (&argument != &arguments.front())
            commandLine += ' ';
        commandLine += argument;
    }
    if (echo)
        printLine(commandLine);
    if (show)
        return;

    std::vector<std::string> argv = arguments;
    if (!argv.empty())
        argv.front() = toolPath(argv.front());
    // With capture the start fails only when no child could be made or
    // nothing is left to run; a program that can't be executed is a child
    // that ends with 255, and waitForCommand reports it.
    const int started = startChild(std::move(argv), workingDirectory, true, false);
    if (started != 0) {
        if (!outputFile.empty())
            removeFile(outputFile);
        if (started == -1) {
            showPendingTitle();
            printLine("can't execute command \"" + commandLine + "\"");
        }
        failCommand();
    }
}

bool QuillmakeBuilder::waitForCommand(ProjectElement *, const std::string &, int &exitStatus) {
    if (show)
        return true;
    int status = 0;
    if (pollChild(status) != 0)
        return false;
    if (status != 0 && !abandoned_) {
        showPendingTitle();
        printLine("Error executing " + commandLine);
        if (!outputFile.empty())
            removeFile(outputFile);
    }
    exitStatus = status;
    return true;
}

void QuillmakeBuilder::abandonCommand() {
    if (!running())
        return;
    terminateChild(SIGTERM);
    // The status says what stopped the command, whatever the child made of
    // the signal.
    setExitStatus(SIGTERM);
    if (!outputFile.empty())
        removeFile(outputFile);
    outputFile.clear();
    commandLine.clear();
    abandoned_ = true;
}

void QuillmakeBuilder::reportError(const std::string &text) {
    showPendingTitle();
    writeLine(errorStream, text);
    ++errorCount;
}

void QuillmakeBuilder::report(const std::string &text) {
    showPendingTitle();
    printLine(text);
}

void QuillmakeBuilder::deleteFile(const std::string &filePath, bool quiet) {
    if (echo)
        printLine("rm " + filePath);
    if (show)
        return;
    if (!removeFile(filePath) && !quiet) {
        // Counted twice: once as the reported error, once as a failed step.
        reportError("can't remove file \"" + filePath + "\"");
        failCommand();
    }
}

void QuillmakeBuilder::outputLine(bool fromStandardOutput, std::string_view text) {
    FILE *target = fromStandardOutput ? standardOutput_ : errorStream;
    if (!verbose && pendingTitle) {
        // The title goes with the line, without a prefix.
        std::fwrite(pendingTitle->data(), 1, pendingTitle->size(), target);
        std::fputc('\n', target);
        std::fflush(target);
        pendingTitle.reset();
    }
    writeLine(target, text);
}

void QuillmakeBuilder::failCommand() {
    if (driver)
        driver->failed = true;
    ++errorCount;
}
