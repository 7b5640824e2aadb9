// The compilation database that a project asks for with
// generate_compilation_database_file: the compile command of each file, as
// the build would run it, for editors and code tools.

#include "build/standard_project_system.h"

#include "support/file_info.h"
#include "support/file_utils.h"

#include <cstdio>

void StandardProjectSystem::writeCompilationDatabase(ProjectElement *project, const std::string &configuration) {
    const std::string name = expandedValue(project, nodeProperties.compilationDatabaseFile, configuration);
    if (name.empty())
        return;
    std::string text = "[";
    writeCompilationDatabaseEntry(project, configuration, text);
    text += "]";
    const std::string path = absolutePathFrom(projectDirectory(project, configuration), name);
    makeDirectories(directoryOf(path));
    FILE *file = std::fopen(path.c_str(), "w");
    if (!file)
        return;
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
}
