#include "project/project_system_process.h"

#include "project/project_load_progress_interface.h"
#include "support/file_utils.h"

ProjectSystemProcess::ProjectSystemProcess(ProjectLoadProgressInterface *progress,
                                           const std::vector<std::string> &arguments,
                                           const std::string &workingDirectory,
                                           const std::vector<std::string> &environment)
    : progress_(progress) {
    for (const std::string &pair : environment) {
        const size_t equals = pair.find('=');
        if (equals == std::string::npos)
            setEnvironment(pair, "");
        else
            setEnvironment(pair.substr(0, equals), pair.substr(equals + 1));
    }
    if (progress_) {
        std::string title;
        for (size_t i = 0; i < arguments.size(); ++i)
            title += (i ? " " : "") + arguments[i];
        progress_->beginTask(title, 1);
    }
    // A start that fails leaves no child, and pollChild answers at once.
    startChild(arguments, workingDirectory, true, false);
    int status = -1;
    while (pollChild(status) != 0) {
        if (progress_)
            progress_->processEvents();
    }
    // The caller tells a program that never ran from one that failed.
    setExitStatus(startFailed() ? -1 : status);
    if (progress_)
        progress_->endTask();
}

void ProjectSystemProcess::outputLine(bool, std::string_view text) {
    if (progress_)
        progress_->message(std::string(text));
}
