// The compilation database that the module scanner reads: each file with a
// job of its own, seen through its code model arguments, and the object
// that its compile makes, by which the scanner's answer names it.

#include "build/standard_project_system.h"

#include "build/sibling_walk.h"
#include "support/json_string.h"

#include <cstdio>

bool StandardProjectSystem::writeScanDatabase(const std::string &path, ProjectElement *project,
                                              const std::string &configuration) {
    const std::string directory = jsonString(projectDirectory(project, configuration));
    std::string text = "[";
    walkFromSibling(firstChild(project), [&](ProjectElement *node) {
        if (!isFile(node))
            return true;
        if (!hasOwnJob(node, configuration, BuildFlags(0)))
            return false;
        const std::string source = jsonString(sourcePath(node, configuration));
        StringList arguments;
        codeModelArguments(node, configuration, arguments);
        if (text.size() > 1)
            text += ',';
        text += "{\"file\":" + source + ",\"directory\":" + directory + ",\"arguments\":[\"clang\"";
        for (const std::string &argument : arguments)
            text += "," + jsonString(argument);
        text += "," + source + "],\"output\":" + jsonString(objectFilePath(node, configuration)) + "}";
        return false;
    });
    text += "]";
    FILE *file = std::fopen(path.c_str(), "w");
    if (!file)
        return false;
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && written;
}
