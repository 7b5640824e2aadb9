#pragma once

#include <string>

class ProjectElement;

// The progress channel of a build. The base class ignores everything; a front
// end derives from it to show progress.
class Idler {
public:
    virtual ~Idler() = default;
    // Told the total number of steps before a build runs.
    virtual void setStepCount(int) {}
    virtual void projectStarted(ProjectElement *, const std::string & /*title*/,
                                const std::string & /*configuration*/, int /*stepCount*/) {}
    // Called for each step that is reached, whether it runs or not.
    virtual void stepDone(ProjectElement *, const std::string & /*configuration*/) {}
    virtual void projectFinished(ProjectElement *, const std::string & /*configuration*/) {}
};
