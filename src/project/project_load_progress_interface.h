#pragma once

#include <string>
#include <vector>

// What a load of a solution tells its front end. Steps nest: each beginTask
// is closed by an endTask.
class ProjectLoadProgressInterface {
public:
    virtual ~ProjectLoadProgressInterface() = default;

    // level: 0 mapping and templates, 1 a load command, 2 a file, 3 a
    // dynamic folder.
    virtual void beginTask(const std::string &text, int level) = 0;
    virtual void endTask() = 0;
    // A line of the pre-processor or of the template reader.
    virtual void message(const std::string &text) = 0;
    // A line that must be seen.
    virtual void warning(const std::string &text) = 0;
    // The number of open steps.
    virtual int depth() = 0;
    virtual void setProgress(int done, int total) = 0;
    // Called between polls of a load command's child.
    virtual void processEvents() = 0;
    virtual std::vector<std::string> collectedLines() = 0;
};
