// The helpers that every branch of a node's build shares.

#include "build/node_build.h"

#include "support/command_line.h"
#include "support/file_info.h"
#include "support/paths.h"

NodeBuild::NodeBuild(StandardProjectSystem &projectSystem, ProjectElement *node,
                     const std::string &config, Builder *realBuilder, Builder *nullBuilder,
                     Idler *progress, BuildFlags buildFlags, bool forced)
    : system(projectSystem),
      element(node),
      configuration(config),
      builder(realBuilder ? realBuilder : nullBuilder),
      hasBuilder(realBuilder != nullptr),
      idler(progress),
      flags(buildFlags),
      force(forced),
      quiet(buildFlags & BuildQuietChecks),
      projectDirectory(projectSystem.projectDirectory(node, config)),
      name(projectSystem.displayName(node)) {}

void NodeBuild::beginStep(const std::string &title) {
    builder->beginStep(element, title, configuration, 0);
}

void NodeBuild::endStep() { builder->endStep(element, configuration); }

void NodeBuild::beginCheck() {
    if (!quiet)
        beginStep("Checking '" + name + "'");
}

void NodeBuild::endCheck() {
    if (!quiet)
        endStep();
}

bool NodeBuild::upToDate(const char *suffix) {
    if (!quiet) {
        builder->reportOutcome("'" + name + suffix);
        endStep();
    }
    return false;
}

void NodeBuild::clean(const StringList &files) {
    beginStep("Cleaning '" + name + "'");
    for (const std::string &file : files)
        if (!file.empty())
            builder->deleteFile(file, true);
    endStep();
}

std::string NodeBuild::expanded(PropertyClass *property, const MacroMap &extra) {
    return extra.empty() ? system.expandedValue(element, property, configuration)
                         : system.expandedValue(element, property, configuration, extra);
}

std::string NodeBuild::workingDirectory(PropertyClass *property) {
    const std::string directory = expanded(property);
    return directory.empty() ? projectDirectory : absolutePathFrom(projectDirectory, directory);
}

std::string NodeBuild::relative(const std::string &path) const {
    return path.empty() ? path : relativeOrAbsolute(projectDirectory, path);
}

void NodeBuild::addCommands(const StringList &parts, const std::string &directory,
                            const std::string &outputFile) {
    for (const std::string &part : parts) {
        const StringList arguments = splitCommandLine(part);
        if (!arguments.empty())
            builder->addCommand(directory, arguments, outputFile);
    }
}

void NodeBuild::setReadonly(PropertyClass *property, const std::string &directory,
                            const std::string &target) {
    const std::string value =
        system.getPropertyValue(element, property, configuration).value_or("No");
    if (value != "Don't")
        builder->addCommand(directory, {"chmod", value == "Yes" ? "-w" : "+w", target}, {});
}

std::string quotedList(const StringList &items) {
    std::string text;
    for (const std::string &item : items)
        text += (text.empty() ? "\"" : " \"") + item + "\"";
    return text;
}

std::string joinedList(const StringList &items) {
    std::string text;
    for (const std::string &item : items)
        text += (text.empty() ? "" : " ") + item;
    return text;
}
