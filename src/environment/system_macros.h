#pragma once

#include "support/macro_expansion.h"

#include <string>
#include <vector>

class FilePath;

// A described system macro, as a property listing shows it.
struct MacroDescription {
    std::string name;
    std::string description;
};

// The macros that hold for the whole process: the system macros (host,
// clock, studio and packages values) and the user's global macros. One table
// is made at start-up and handed to everything that expands macros.
class SystemMacros : public MacroTable {
public:
    // Fills the host and clock macros.
    SystemMacros();
    SystemMacros(const SystemMacros &) = delete;
    SystemMacros &operator=(const SystemMacros &) = delete;
    ~SystemMacros();

    // Inserts or replaces `name`. A non-empty description is also listed in
    // macroDescriptions(), once per call.
    void addSystemMacro(const std::string &name, const std::string &value,
                        const std::string &description);
    // As addSystemMacro, with the path's normalised text as the value.
    void addPathSystemMacro(const std::string &name, const FilePath &path,
                            const std::string &description);

    // The described macros, in the order they were added, for listings.
    const std::vector<MacroDescription> &macroDescriptions() const { return macroDescriptions_; }

private:
    std::vector<MacroDescription> macroDescriptions_;
};

// Adds the studio macros: version, names, $(StudioDir) from `studioDir`,
// $(StudioUserDir) and the user's home directories. Then replaces the global
// macros with `globalMacroList`, the "name=value" items of the user's
// global macros setting (a later name wins; no "=" means an empty value).
void addStudioMacros(SystemMacros &macros, const std::string &studioDir,
                     const std::vector<std::string> &globalMacroList);

// Points $(PackagesDir), $(TargetsDir) and $(SamplesDir) at `directory`,
// expanded with the global and system macros. Makes the targets directory and
// its frequencies.xml if they are missing; throws HException
// "cannot create <targets>/frequencies.xml" if that fails. May run more than
// once; an earlier directory is left as it is.
void setPackagesDirectory(SystemMacros &macros, const std::string &directory);
