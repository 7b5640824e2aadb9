// Preprocessing one file on request, outside the build order, through the
// compiler driver.

#include "toolchain/gcc_project_system.h"

#include "build/builder.h"
#include "support/file_path.h"
#include "toolchain/gcc_arguments.h"

void GCCProjectSystem::preprocessFile(ProjectElement *element, const std::string &configuration, Builder *builder,
                                      bool dumpMacros, const StringList &extraOptions, std::string *resultFile) {
    const GCCProperties &gcc = gccProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    const bool cpp = fileTypeName(element, configuration) == "C++";
    StringList list;
    if (cpp) {
        list.push_back(expandProjectMacros(element, "$(GPLUSPLUS)", configuration));
        appendClangTarget(element, configuration, list);
        list.push_back("-c");
        if (value(toolProperties.cppEnableExceptions) == "No")
            list.push_back("-fno-exceptions");
        if (value(toolProperties.cppEnableRtti) == "No")
            list.push_back("-fno-rtti");
    } else {
        list.push_back(expandProjectMacros(element, "$(GCC)", configuration));
        const std::string target = expandedValue(element, gcc.gccTarget, configuration);
        if (value(gcc.useClangNotGcc) == "Yes" && !target.empty())
            list.push_back("--target=" + target);
        list.push_back("-c");
    }
    list.push_back("-E");
    if (dumpMacros)
        list.push_back("-dM");
    const int step = cpp ? KindCpp : KindC;
    if (!appendDriverOptions(element, configuration, step, std::string(), list))
        return;
    appendPreprocessorOptions(element, configuration, step, std::string(), list);
    appendCharacterType(element, configuration, list);
    appendDebugInformation(element, configuration, list);
    appendOptimization(element, configuration, list);
    appendCodeGeneration(element, configuration, step, list);
    for (const std::string &options : extraOptions)
        gcc_arguments::appendSplit(list, options);
    const std::string source = sourcePath(element, configuration);
    list.push_back(source);
    std::string output;
    if (resultFile) {
        output = intermediateFilePath(element, configuration, source, "_PP." + FilePath(source).suffix(true));
        list.push_back("-o");
        list.push_back(output);
        *resultFile = output;
    }
    if (!builder)
        return;
    builder->beginStep(element, "Preprocessing " + displayName(element), configuration, 0);
    builder->addCommand(projectDirectory(element, configuration), list, output);
    builder->endStep(element, configuration);
}
