#pragma once

#include <string>

class ProjectElement;

// Everything of a cross toolchain that depends on the processor
// architecture.
class PlatformProjectSystem {
public:
    virtual ~PlatformProjectSystem() = default;
    virtual std::string platformName() const = 0;
    virtual int platformCode() const = 0;
    virtual std::string executableFileExtension(ProjectElement *element,
                                                const std::string &configuration) = 0;
};
