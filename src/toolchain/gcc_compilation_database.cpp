// The compilation database entries of the driver form: each file's real
// compile command, caught from the build step without running it.

#include "toolchain/gcc_project_system.h"

#include "build/builder.h"
#include "build/sibling_walk.h"
#include "support/json_string.h"
#include "support/paths.h"

namespace {

// Keeps the arguments of the first command it is given, as a JSON array.
class FirstCommandBuilder : public Builder {
public:
    void beginStep(ProjectElement *, const std::string &, const std::string &, int) override {}
    void endStep(ProjectElement *, const std::string &) override {}
    void reportError(const std::string &) override {}
    void writeLines(const std::string &, const std::vector<std::string> &) override {}
    void addCommand(const std::string &, const std::vector<std::string> &arguments, const std::string &) override {
        if (seen)
            return;
        seen = true;
        text = "\"arguments\":[";
        for (const std::string &argument : arguments) {
            if (&argument != &arguments.front())
                text += ',';
            text += jsonString(argument);
        }
        text += "],";
    }
    bool seen = false;
    std::string text;
};

}  // namespace

void GCCProjectSystem::writeCompilationDatabaseEntry(ProjectElement *element, const std::string &configuration,
                                                     std::string &text) {
    const std::string directory = projectDirectory(element, configuration);
    auto entry = [&](ProjectElement *node) {
        const int kind = buildKind(node, configuration, 0);
        if (kind != KindC && kind != KindCpp && kind != KindAssembly)
            return;
        const std::string source = sourcePath(node, configuration);
        const std::string output = outputFilePath(kind, node, configuration);
        FirstCommandBuilder builder;
        buildStep(node, configuration, kind, relativeOrAbsolute(directory, output), output, {source}, &builder, 0);
        if (!builder.seen)
            return;
        if (text.empty() || text.back() != '[')
            text += ',';
        text += "{\"file\":" + jsonString(source) + ",\"directory\":\"" + directory + "\"," + builder.text +
                "\"output\":" + jsonString(output) + "}";
    };
    // Children before the node itself, as the files come in the project.
    std::vector<ProjectElement *> nodes;
    if (ProjectElement *child = firstChild(element))
        walkFromSibling(child, [&](ProjectElement *node) {
            nodes.push_back(node);
            return true;
        });
    for (ProjectElement *node : nodes)
        entry(node);
    entry(element);
}
