// Preprocessing one file on request, outside the build order, with the
// installation's compiler proper or clang.

#include "toolchain/ostrand_gcc_project_system.h"

#include "build/builder.h"
#include "support/file_path.h"

void OstrandGCCProjectSystem::preprocessFile(ProjectElement *element, const std::string &configuration,
                                             Builder *builder, bool dumpMacros, const StringList &extraOptions,
                                             std::string *resultFile) {
    if (!directForm(element, configuration)) {
        // The installation's own driver isn't there to run.
        if (externalGcc(element, configuration))
            GCCProjectSystem::preprocessFile(element, configuration, builder, dumpMacros, extraOptions, resultFile);
        else
            StandardProjectSystem::preprocessFile(element, configuration, builder, dumpMacros, extraOptions,
                                                  resultFile);
        return;
    }
    const std::string type = fileTypeName(element, configuration);
    const int step = type == "C++" ? KindCpp : type == "Assembly" ? KindAssembly : KindC;
    const std::string variant =
        getPropertyValue(element, step == KindAssembly ? ostProperties.assemblerVariant : ostProperties.compilerVariant,
                         configuration)
            .value_or("");
    if (variant.starts_with("Brenlow")) {
        StandardProjectSystem::preprocessFile(element, configuration, builder, dumpMacros, extraOptions, resultFile);
        return;
    }
    const bool isGcc = variant == "gcc";
    StringList list;
    appendLanguageOptions(element, configuration, step, isGcc, list);
    if (dumpMacros)
        list.push_back("-dM");
    list.push_back("-E");
    if (isGcc)
        list.push_back("-quiet");
    if (step == KindAssembly)
        platform()->appendPreprocessTargetOptions(isGcc, element, configuration, list);
    else
        platform()->appendCompilerTargetOptions(isGcc, element, configuration, list);
    appendDirectPreprocessorOptions(element, configuration, step, isGcc, std::string(), list);
    if (!appendDirectAdditionalOptions(element, configuration, step, isGcc ? "gcc" : "clang", builder, list))
        return;
    const std::string source = sourcePath(element, configuration);
    list.push_back(commandPath(element, configuration, source));
    std::string output;
    if (resultFile) {
        output = intermediateFilePath(element, configuration, source, "_PP." + FilePath(source).suffix(true));
        list.insert(list.end(), {"-o", commandPath(element, configuration, output)});
        *resultFile = output;
    }
    if (!builder)
        return;
    builder->beginStep(element, "Preprocessing " + displayName(element), configuration, 0);
    if (isGcc || clangSupported())
        builder->addCommand(projectDirectory(element, configuration), list, output);
    else
        builder->reportError(clangUnsupportedMessage());
    builder->endStep(element, configuration);
}
