// Turns the options of an existing link command into properties, for
// projects made from other build systems.

#include "toolchain/gcc_project_system.h"

namespace {

bool startsWith(const std::string &text, const char *prefix, std::string &rest) {
    const std::string_view head(prefix);
    if (text.compare(0, head.size(), head) != 0)
        return false;
    rest = text.substr(head.size());
    return true;
}

std::string unquoted(std::string text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    return text;
}

}  // namespace

void GCCProjectSystem::importLinkerOption(ProjectElement *element, const std::string &configuration,
                                          StringList &options) {
    const ToolProperties &tools = toolProperties;
    auto set = [&](PropertyClass *property, const std::string &value) {
        setPropertyValue(element, property, configuration, value);
    };
    // A list collects the stores above the node by itself: only the node's
    // own text is extended.
    auto append = [&](PropertyClass *property, const std::string &value) {
        const std::string old = getOwnPropertyValue(element, property, configuration).value_or("");
        set(property, old.empty() ? value : old + ";" + value);
    };
    auto script = [&](const std::string &file) {
        set(tools.linkUseLinkerScriptFile, "Yes");
        set(tools.linkLinkerScriptFile, file);
    };
    auto mapFile = [&](const std::string &file) {
        set(tools.linkerMapFile, "Yes");
        set(tools.linkerMapFileName, file);
    };
    // The options that no property takes stay in the list, in their order.
    StringList rest;
    for (std::size_t i = 0; i < options.size(); ++i) {
        const std::string &option = options[i];
        const bool hasNext = i + 1 < options.size();
        std::string value;
        if ((option == "-T" || option == "-L") && hasNext) {
            if (option == "-T")
                script(options[++i]);
            else
                append(gccProperties.linkerSearchPath, options[++i]);
        } else if (startsWith(option, "-Wl,--script=", value) || startsWith(option, "-T", value)) {
            script(value);
        } else if (startsWith(option, "-L", value)) {
            append(gccProperties.linkerSearchPath, value);
        } else if (startsWith(option, "-Wl,-Map=", value) || startsWith(option, "-Wl,-Map,", value)) {
            mapFile(value);
        } else if (startsWith(option, "-Wl,--defsym=", value)) {
            append(tools.linkSymbolDefinitions, value);
        } else if (startsWith(option, "-Wl,-e,", value) || startsWith(option, "-Wl,-e", value) ||
                   startsWith(option, "-Wl,e", value) || startsWith(option, "-e", value)) {
            set(gccProperties.entryPoint, value);
        } else if (option == "-Xlinker" && hasNext) {
            const std::string &next = options[++i];
            if (startsWith(next, "--script=", value))
                script(value);
            else if (startsWith(next, "-Map=", value))
                mapFile(value);
            else {
                rest.push_back(option);
                rest.push_back(next);
            }
        } else if (startsWith(option, "--target=", value)) {
            set(gccProperties.gccTarget, value);
        } else if (startsWith(option, "--multi-lib-config=", value)) {
            set(gccProperties.clangMultiLibConfig, unquoted(value));
        } else if (startsWith(option, "--gcc-toolchain=", value)) {
            set(gccProperties.clangGccToolchain, unquoted(value));
        } else {
            rest.push_back(option);
        }
    }
    options = std::move(rest);
}
