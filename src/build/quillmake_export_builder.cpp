#include "build/quillmake_export_builder.h"

#include "build/project_system_builder.h"
#include "build/standard_project_system.h"
#include "environment/install_location.h"
#include "support/command_line.h"
#include "support/exceptions.h"

namespace {

bool hasBlank(const std::string &text) { return text.find(' ') != std::string::npos; }

std::string quotedIfBlank(const std::string &text) { return hasBlank(text) ? "\"" + text + "\"" : text; }

}  // namespace

QuillmakeExportBuilder::QuillmakeExportBuilder(ProjectSystemBuilder *driver_, bool parallelForm_,
                                               bool plainForm_, bool includeProjectName_, FILE *out)
    : driver(driver_),
      projectSystem(driver_ ? driver_->projectSystem : nullptr),
      parallelForm(parallelForm_),
      plainForm(plainForm_),
      includeProjectName(includeProjectName_),
      out_(out) {}

void QuillmakeExportBuilder::write(const std::string &text) {
    std::fwrite(text.data(), 1, text.size(), out_);
}

void QuillmakeExportBuilder::beginStep(ProjectElement *element, const std::string &,
                                       const std::string &configuration_, int) {
    configuration = configuration_;
    if (projectSystem && StandardProjectSystem::isProject(element))
        projectName = projectSystem->displayName(element);
}

void QuillmakeExportBuilder::addCommand(const std::string &workingDirectory,
                                        const std::vector<std::string> &arguments, const std::string &) {
    std::string heading = configuration;
    if (includeProjectName && !projectName.empty())
        heading += " - " + projectName;
    if (heading != lastHeading) {
        if (!plainForm) {
            if (!heading.empty())
                write("\n");
            write("# [" + heading + "]\n");
        }
        lastHeading = heading;
        currentDirectory.clear();
    }
    if (workingDirectory != currentDirectory) {
        write((hasBlank(workingDirectory) ? "cd \"" + workingDirectory + "\"" : "cd " + workingDirectory) +
              "\n");
        currentDirectory = workingDirectory;
    }
    std::vector<std::string> line = arguments;
    if (!line.empty() && !(parallelForm && (line.front() == "mkdir" || line.front() == "rm")))
        line.front() = toolPath(line.front());
    write(joinArguments(line) + "\n");
}

void QuillmakeExportBuilder::reportError(const std::string &text) {
    // The run's one error line adds its own "error: ".
    constexpr std::string_view prefix = "error: ";
    throw HException(text.starts_with(prefix) ? text.substr(prefix.size()) : text);
}

void QuillmakeExportBuilder::writeLines(const std::string &filePath, const std::vector<std::string> &lines) {
    for (std::size_t i = 0; i < lines.size(); ++i)
        write("echo '" + lines[i] + (i == 0 ? "'> " : "'>> ") + "\"" + filePath + "\"\n");
}

void QuillmakeExportBuilder::deleteFile(const std::string &filePath, bool quiet) {
    write((parallelForm ? std::string("rm") : quotedIfBlank(toolPath("rm"))) + (quiet ? " -f " : " ") +
          quotedIfBlank(filePath) + "\n");
}

void QuillmakeExportBuilder::jobCreated(ProjectElement *, const std::string &, unsigned, int jobNumber,
                                        const std::vector<int> &waitsFor) {
    if (!plainForm)
        return;
    std::string line = "# " + std::to_string(jobNumber);
    if (!waitsFor.empty())
        line += " wait";
    for (int number : waitsFor)
        line += " " + std::to_string(number);
    write(line + "\n");
}
