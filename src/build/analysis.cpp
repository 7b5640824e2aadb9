// What every toolchain does to look at a file without building it: the
// arguments by which an outside clang-based tool sees the file as the
// compiler does, and the analysis step that runs clang-tidy or the user's
// own analyzer on it.

#include "build/standard_project_system.h"

#include "build/builder.h"
#include "support/command_line.h"
#include "support/text_split.h"

namespace {

// A StringList property's value, expanded, without empty entries.
StringList expandedEntries(StandardProjectSystem &system, ProjectElement *element, PropertyClass *property,
                           const std::string &configuration) {
    return splitAtAny(system.expandedValue(element, property, configuration), ";");
}

std::string joined(const StringList &list, const char *separator) {
    std::string text;
    for (const std::string &entry : list) {
        if (!text.empty())
            text += separator;
        text += entry;
    }
    return text;
}

std::string quotedIfBlank(const std::string &argument) {
    return argument.find(' ') == std::string::npos ? argument : "\"" + argument + "\"";
}

}  // namespace

std::string StandardProjectSystem::fileTypeName(ProjectElement *element, const std::string &configuration) {
    if (element && element == typeNameElement_)
        return typeNameOverride_;
    NodeAnswers *answers = nodeAnswers(element, configuration);
    if (!answers)
        return ProjectSystem::fileTypeName(element, configuration);
    if (!answers->typeKnown) {
        answers->typeName = ProjectSystem::fileTypeName(element, configuration);
        answers->typeKnown = true;
    }
    return answers->typeName;
}

bool StandardProjectSystem::canAnalyze(ProjectElement *element, const std::string &configuration) {
    const std::string type = fileTypeName(element, configuration);
    if (type == "C" || type == "C++")
        return true;
    return type == "Header" &&
           getPropertyValue(element, toolProperties.analyzeHeaders, configuration) == "Yes";
}

void StandardProjectSystem::codeModelArguments(ProjectElement *element, const std::string &configuration,
                                               StringList &list) {
    list.clear();
    const std::string type = fileTypeName(element, configuration);
    if (type == "C")
        list = {"-x", "c"};
    else if (type == "C++")
        list = {"-x", "c++"};
    else if (type == "Assembly")
        list = {"-x", "c", "-E"};
    // A header is seen as a source file of the project's language while its
    // preprocessor options are made.
    const bool header = type == "Header";
    if (header) {
        const bool cpp = isCppProject(element, configuration);
        list.push_back(cpp ? "-xc++-header" : "-xc-header");
        typeNameElement_ = element;
        typeNameOverride_ = cpp ? "C++" : "C";
    }
    StringList preprocessor;
    preprocessorArguments(element, configuration, preprocessor);
    if (header)
        typeNameElement_ = nullptr;
    list.insert(list.end(), preprocessor.begin(), preprocessor.end());
    for (std::string &option : expandedEntries(*this, element, nodeProperties.codeCompletionOptions, configuration))
        list.push_back(std::move(option));
}

void StandardProjectSystem::analyzeFile(ProjectElement *element, const std::string &configuration,
                                        Builder *builder) {
    const std::string type = fileTypeName(element, configuration);
    if (type == "Header" && getPropertyValue(element, toolProperties.analyzeHeaders, configuration) == "No")
        return;
    const std::string path = sourcePath(element, configuration);
    const bool isC = type == "C";
    PropertyClass *userOptions =
        isC ? toolProperties.analyzeCommandCOptions : toolProperties.analyzeCommandCppOptions;
    const std::string command =
        getPropertyValue(element, toolProperties.analyzeCommand, configuration).value_or(std::string());
    StringList arguments;
    if (command.empty()) {
        arguments.push_back(expandProjectMacros(element, "$(CLANGTIDY)", configuration));
        arguments.push_back(path);
        arguments.push_back(
            "-checks=" +
            joined(expandedEntries(*this, element,
                                   isC ? toolProperties.clangTidyChecksC : toolProperties.clangTidyChecksCpp,
                                   configuration),
                   ","));
        arguments.push_back("-quiet");
        for (std::string &option : expandedEntries(*this, element, userOptions, configuration))
            arguments.push_back(std::move(option));
        arguments.push_back("--");
        StringList model;
        codeModelArguments(element, configuration, model);
        // clang-tidy is clang: it must keep its own __clang__.
        for (std::string &argument : model)
            if (argument != "-U__clang__")
                arguments.push_back(std::move(argument));
    } else {
        StringList preprocessor;
        preprocessorArguments(element, configuration, preprocessor);
        StringList defines, includes;
        for (std::size_t i = 0; i < preprocessor.size(); ++i) {
            const std::string &argument = preprocessor[i];
            if (argument.starts_with("-D"))
                defines.push_back(quotedIfBlank(argument));
            else if (argument.starts_with("-I"))
                includes.push_back(quotedIfBlank(argument));
            else if (argument == "-isystem" && i + 1 < preprocessor.size())
                includes.push_back(quotedIfBlank("-I" + preprocessor[++i]));
            else if (argument.starts_with("-isystem"))
                includes.push_back(quotedIfBlank("-I" + argument.substr(8)));
        }
        std::string definesText;
        for (const char c : joined(defines, " ")) {
            if (c == '"')
                definesText += '\\';
            definesText += c;
        }
        const MacroMap extra{{"DEFINES", definesText}, {"INCLUDES", joined(includes, " ")}};
        arguments = splitCommandLine(expandWith(element, command, configuration, extra));
        for (std::string &option : expandedEntries(*this, element, userOptions, configuration))
            arguments.push_back(std::move(option));
    }
    if (!builder)
        return;
    builder->beginStep(element, "Analyzing " + displayName(element), configuration, 0);
    builder->addCommand(projectDirectory(element, configuration), arguments, std::string());
    builder->endStep(element, configuration);
}
