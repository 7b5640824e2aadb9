#include "frontend/quillmake_arg_parse.h"

#include "environment/config_file.h"
#include "environment/environment_settings.h"
#include "environment/install_location.h"
#include "environment/user_directories.h"
#include "environment/version.h"
#include "frontend/program_log.h"
#include "project/xml/qxml_document.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

namespace {

using Handler = QTx::ArgOption::Handler;

template <typename Member>
Handler handler(Member member) {
    return static_cast<Handler>(member);
}

// The release text of the banner: short version, suffix, revision, build
// stamp, source revision.
std::string releaseText() {
    char text[128];
    std::snprintf(text, sizeof text, "%s%s.%s.%s.%s", Version::shortVersion, "",
                  std::to_string(Version::revision).c_str(), Version::buildStamp,
                  Version::sourceRevision);
    return text;
}

}  // namespace

unsigned toUnsigned(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\n\r\f\v");
    if (first == std::string_view::npos)
        return 0;
    text.remove_prefix(first);
    text.remove_suffix(text.size() - text.find_last_not_of(" \t\n\r\f\v") - 1);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    if (text.empty())
        return 0;
    unsigned long long value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return 0;
        value = value * 10 + static_cast<unsigned>(c - '0');
        if (value > std::numeric_limits<unsigned>::max())
            return 0;
    }
    return static_cast<unsigned>(value);
}

QuillmakeArgParse::QuillmakeArgParse(ProgramLog *log, SystemMacros &macros)
    : ArgParse(log), systemMacros(macros) {
    addFlagOption("-batch", &batch, "-batch: batch build");
    addFlagOption("-clean", &clean, "-clean: remove all output and intermediate files");
    addValueOption("-config", &configuration, "-config 'name': (batch) build in 'name' configuration");
    addHandlerOption("-D", handler(&QuillmakeArgParse::addGlobalMacro),
                     "-D 'name'='value': set global macro $('name') to 'value'");
    addFlagOption("-echo", &echo, "-echo: show command lines as they are executed");
    addFlagOption("-export-build", &exportBuild, "-export-build: show the command lines and dependencies");
    addFlagOption("-export-par-build", &exportParallelBuild, "");
    addFlagOption("-export-build-include-project-name", &exportIncludeProjectName, "");
    addFlagOption("-fp", &fp, "");
    addHandlerOption("-file", handler(&QuillmakeArgParse::addFile),
                     "-file 'name': add file 'name' to template-created project");
    QTx::ArgOption help;
    help.kind = QTx::ArgOption::Flag;
    help.hasHandler = true;
    help.handler = handler(&QuillmakeArgParse::showHelp);
    help.help = "-help: show help text";
    addOption("-help", help);
    addHandlerOption("-helpdg", handler(&QuillmakeArgParse::showHelpTable), "");
    addFlagOption("-host", &host, "-host: use hosted gnu tools for the build");
    addValueOption("-lock", &lockFile, "");
    addFlagOption("-nostderr", &noStderr, "-nostderr: redirect output from stderr to stdout");
    addFlagOption("-order", &order, "");
    addValueOption("-project", &projectName, "-project 'name': (batch) build 'name' project");
    addHandlerOption("-property", handler(&QuillmakeArgParse::addProjectProperty),
                     "-property 'name'='value': set project property 'name' to 'value'");
    addFlagOption("-rebuild", &rebuild, "-rebuild: always do the build steps");
    addFlagOption("-show", &show, "-show: show the build steps but don't execute them");
    addFlagOption("-showconfigs", &showConfigurations, "");
    addValueOption("-solution", &solutionName, "-solution 'name': (batch) build 'name' solution");
    addHandlerOption("-sproperty", handler(&QuillmakeArgParse::addSolutionProperty),
                     "-sproperty 'name'='value': set solution property 'name' to 'value'");
    addValueOption("-sconfig", &solutionConfiguration,
                   "-sconfig 'name': solution properties are set in 'name' configuration");
    addValueOption("-studiodir", &studioDirectory, "-studiodir 'name': set $(StudioDir) to 'name'");
    addValueOption("-StudioDir", &studioDirectory, "");
    addValueOption("-rootuserdir", &rootUserDirectory, "", 0);
    addValueOption("-packagesdir", &packagesDirectory, "-packagesdir 'name': set $(PackagesDir) to 'name'");
    addValueOption("-template", &templateName, "-template 'name': create the project from the template 'name'");
    addValueOption("-templatesfile", &templatesFile,
                   "-templatesfile 'path': get project template files from 'path'");
    addFlagOption("-time", &time, "-time: show time taken");
    addValueOption("-type", &projectType, "-type 'type': create the project from the project 'type'");
    addFlagOption("-verbose", &verbose, "-verbose: show build information");
    addFlagOption("-keepgoing", &keepGoing, "-keepgoing: keep building when errors occur");
    addFlagOption("-nounity", &noUnity, "-nounity: disable unity building");
    addHandlerOption("-threadnum", handler(&QuillmakeArgParse::setThreadCount),
                     "-threadnum 'n': use 'n' threads for build");
}

void QuillmakeArgParse::plainArgument(const std::string &text) { solutionFile = text; }

void QuillmakeArgParse::addGlobalMacro(const std::string &, const std::optional<std::string> &value) {
    const std::string &entry = text(value);
    const auto equals = entry.find('=');
    if (equals == std::string::npos)
        globalMacros[entry] = std::nullopt;
    else
        globalMacros[entry.substr(0, equals)] = entry.substr(equals + 1);
}

void QuillmakeArgParse::addFile(const std::string &, const std::optional<std::string> &value) {
    files.push_back(text(value));
}

void QuillmakeArgParse::addProjectProperty(const std::string &, const std::optional<std::string> &value) {
    projectProperties.push_back(text(value));
}

void QuillmakeArgParse::addSolutionProperty(const std::string &, const std::optional<std::string> &value) {
    solutionProperties.push_back(text(value));
}

void QuillmakeArgParse::setThreadCount(const std::string &, const std::optional<std::string> &value) {
    threadCount = toUnsigned(text(value));
}

void QuillmakeArgParse::showHelp(const std::string &, const std::optional<std::string> &) {
    printUsage();
    endProgram(0);
}

void QuillmakeArgParse::showHelpTable(const std::string &, const std::optional<std::string> &value) {
    endProgram(writeHelpTable(text(value)) ? 0 : 1);
}

void QuillmakeArgParse::printUsage() const {
    std::fprintf(stderr, "%s %s - Release %s\n", Version::productName, Version::toolDisplayName,
                 releaseText().c_str());
    for (const char *line : Version::noticeLines)
        std::fprintf(stderr, "%s\n", line);
    std::fputs("\n"
               "Usage: quillmake [option] <project>.tbp\n"
               "Usage: quillmake [option] -template 'name' -project 'name'\n"
               "Usage: quillmake [option] -type 'type' -project 'name'\n"
               "\n",
               stdout);
    for (const HelpEntry &entry : helpEntries())
        std::printf("  %-32s %s\n", entry.left.c_str(), entry.right.c_str());
}

bool QuillmakeArgParse::writeHelpTable(const std::string &path) {
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen(path.c_str(), "w"), std::fclose);
    if (!file) {
        reportError("can't write " + path + ": " + std::strerror(errno));
        return false;
    }
    std::fputs("\\table{1.5in,*}\n|| Option | Description\n", file.get());
    for (const HelpEntry &entry : helpEntries())
        std::fprintf(file.get(), "||\\tt %s | %s \n", entry.left.c_str(), entry.right.c_str());
    if (std::fflush(file.get()) != 0 || std::ferror(file.get())) {
        reportError("can't write " + path + ": " + std::strerror(errno));
        return false;
    }
    return true;
}

void QuillmakeArgParse::prepareEnvironment() {
    ConfigFile &config = ConfigFile::instance(systemMacros);
    config.load(installDirectory());
    setRootUserDirectory(!text(rootUserDirectory).empty() ? *rootUserDirectory
                                                          : config.setting("root-user-dir", ""));
    auto settings = std::make_unique<ARMTarnbenchEnvironmentSettings>(::rootUserDirectory(), studioUserDirectory());
    settings->applyConfiguration(config.document().root);
    // The packages default stays unexpanded: the macros it names don't exist yet.
    packagesDirectory = settings->packageDestinationDirectory->string();
    installEnvironmentSettings(std::move(settings));
    studioDirectory = installDirectory();
}

bool QuillmakeArgParse::applyRules() {
    const auto broken = [this](const char *message) {
        reportError(message);
        return false;
    };
    // Presence counts here: an empty name was given all the same.
    if (solutionName && projectName)
        return broken("-solution and -project are exclusive.");
    if (text(solutionFile).empty() && text(templateName).empty() && text(projectType).empty())
        return broken(".tbp file or -template or -type must be specified.");
    if (text(configuration).empty()) {
        if (!batch)
            return broken("-config must be specified.");
        configuration = "Common";
    }
    if (!text(templateName).empty() && text(projectName).empty())
        return broken("-project must be specified with -template.");
    if (!text(projectType).empty() && text(projectName).empty())
        return broken("-project must be specified with -type.");
    return true;
}

void QuillmakeArgParse::checkedParse(const std::vector<std::string> &arguments) {
    if (arguments.size() < 2) {
        printUsage();
        endProgram(0);
    }
    const std::vector<std::string> options(arguments.begin() + 1, arguments.end());
    parse(options, 0);
    if (programLog()->errorCount() != 0)
        endProgram(1);
    prepareEnvironment();
    parse(options, 1);
    if (programLog()->errorCount() != 0)
        endProgram(1);
    if (!applyRules())
        endProgram(1);
}
