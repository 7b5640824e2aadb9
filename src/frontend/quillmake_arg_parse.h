#pragma once

#include "frontend/arg_parse.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class SystemMacros;

// The command line of quillmake: one member per option, filled by two passes
// of the parser over the process's arguments, then checked as a whole.
// Strings are null until their option is given; an empty string counts as
// given.
class QuillmakeArgParse : public QTx::ArgParse {
public:
    QuillmakeArgParse(ProgramLog *log, SystemMacros &macros);

    // The last plain argument is the solution file.
    void plainArgument(const std::string &text) override;

    // The whole sequence for the process's arguments, argv[0] first. Returns
    // with a valid command line, or ends the program: with the usage for too
    // few arguments, with status 1 after an error.
    void checkedParse(const std::vector<std::string> &arguments);

    // What comes between the two passes: the installation's configuration,
    // the root user directory and the environment settings, then the defaults
    // of -studiodir and -packagesdir.
    void prepareEnvironment();

    // The rules between options, in order. Reports the first broken rule and
    // returns false; with -batch and no -config, the configuration becomes
    // "Common".
    bool applyRules();

    // The banner on standard error, the usage and the option help on standard
    // output.
    void printUsage() const;
    // The option help as a table of the documentation's markup.
    bool writeHelpTable(const std::string &path);

    std::optional<std::string> configuration;
    std::optional<std::string> solutionFile;
    std::optional<std::string> projectName;
    std::optional<std::string> solutionName;
    std::optional<std::string> studioDirectory;
    std::optional<std::string> rootUserDirectory;
    std::optional<std::string> packagesDirectory;
    std::optional<std::string> templateName;
    std::optional<std::string> templatesFile;
    std::optional<std::string> projectType;
    std::optional<std::string> lockFile;
    std::optional<std::string> solutionConfiguration;
    std::vector<std::string> files;
    std::vector<std::string> projectProperties;
    std::vector<std::string> solutionProperties;
    bool batch = false;
    bool clean = false;
    bool echo = false;
    bool exportBuild = false;
    bool exportParallelBuild = false;
    bool exportIncludeProjectName = false;
    bool show = false;
    bool rebuild = false;
    bool verbose = false;
    bool noStderr = false;
    bool keepGoing = false;
    bool noUnity = false;
    bool order = false;
    bool host = false;
    bool time = false;
    bool fp = false;
    bool showConfigurations = false;
    // -D name=value; a name without "=" has a null value.
    std::map<std::string, std::optional<std::string>> globalMacros;
    unsigned threadCount = 0;
    SystemMacros &systemMacros;

private:
    void addGlobalMacro(const std::string &name, const std::optional<std::string> &value);
    void addFile(const std::string &name, const std::optional<std::string> &value);
    void addProjectProperty(const std::string &name, const std::optional<std::string> &value);
    void addSolutionProperty(const std::string &name, const std::optional<std::string> &value);
    void setThreadCount(const std::string &name, const std::optional<std::string> &value);
    void showHelp(const std::string &name, const std::optional<std::string> &value);
    void showHelpTable(const std::string &name, const std::optional<std::string> &value);
};

// A decimal number, perhaps with a "+" and with blanks around it. Anything else,
// and a number too large for 32 bits, gives 0.
unsigned toUnsigned(std::string_view text);

// The text of a string member; empty when it is null.
inline const std::string &text(const std::optional<std::string> &value) {
    static const std::string empty;
    return value ? *value : empty;
}
