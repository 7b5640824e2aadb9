// How the installation's toolchain shows a file to tools that look at it
// without building it. With an external gcc or the compiler driver the
// driver's forms serve; the direct form has its own.

#include "toolchain/ostrand_gcc_project_system.h"

#include "build/builder.h"
#include "support/paths.h"

void OstrandGCCProjectSystem::preprocessorArguments(ProjectElement *element, const std::string &configuration,
                                                    StringList &list) {
    if (!directForm(element, configuration)) {
        GCCProjectSystem::preprocessorArguments(element, configuration, list);
        return;
    }
    // The outside tool is a driver: the gcc spelling of the options serves
    // it whichever compiler builds.
    appendDirectPreprocessorOptions(element, configuration, sourceKind(element, configuration), true,
                                    std::string(), list);
}

void OstrandGCCProjectSystem::codeModelArguments(ProjectElement *element, const std::string &configuration,
                                                 StringList &list) {
    GCCProjectSystem::codeModelArguments(element, configuration, list);
    if (fileTypeName(element, configuration) == "C++")
        list.insert(list.end(), {"-Xclang", "-mthread-model", "-Xclang", "single"});
    const std::string gnuVersion =
        getPropertyValue(element, ostProperties.clangGnuVersion, configuration).value_or("None");
    if (gnuVersion != "None" && gnuVersion != "Auto")
        list.push_back("-fgnuc-version=" + gnuVersion);
    platform()->appendCodeModelOptions(element, configuration, list);
}

void OstrandGCCProjectSystem::checkSyntax(ProjectElement *element, const std::string &configuration,
                                          Builder *builder) {
    if (!directForm(element, configuration)) {
        GCCProjectSystem::checkSyntax(element, configuration, builder);
        return;
    }
    const int kind = sourceKind(element, configuration);
    if (kind != KindC && kind != KindCpp)
        return;
    const bool isGcc = getPropertyValue(element, ostProperties.compilerVariant, configuration) == "gcc";
    // The compiler proper ("$(CC1)", or "$(CLANG) -cc1"), the target, then
    // the rest of the language options.
    StringList language;
    appendLanguageOptions(element, configuration, kind, isGcc, language);
    const std::size_t program = isGcc ? 1 : 2;
    StringList arguments(language.begin(), language.begin() + std::min(program, language.size()));
    platform()->appendCompilerTargetOptions(isGcc, element, configuration, arguments);
    arguments.insert(arguments.end(), language.begin() + std::min(program, language.size()), language.end());
    arguments.push_back("-fsyntax-only");
    if (isGcc)
        arguments.push_back("-quiet");
    const std::string directory = projectDirectory(element, configuration);
    arguments.push_back(relativeOrAbsolute(directory, sourcePath(element, configuration)));
    if (!builder)
        return;
    builder->beginStep(element, "Checking Syntax " + displayName(element), configuration, 0);
    builder->addCommand(directory, arguments, std::string());
    builder->endStep(element, configuration);
}
