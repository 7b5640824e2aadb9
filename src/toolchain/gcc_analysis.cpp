// How the driver's toolchain shows a file to tools that look at it without
// building it: its preprocessor and code model arguments, and the syntax
// check, a compile with -fsyntax-only.

#include "toolchain/gcc_project_system.h"

#include "build/builder.h"
#include "support/file_info.h"
#include "support/file_utils.h"
#include "toolchain/gcc_arguments.h"

using gcc_arguments::replaceAll;

int GCCProjectSystem::sourceKind(ProjectElement *element, const std::string &configuration) {
    const std::string type = fileTypeName(element, configuration);
    return type == "C" ? KindC : type == "C++" ? KindCpp : type == "Assembly" ? KindAssembly : KindNone;
}

void GCCProjectSystem::preprocessorArguments(ProjectElement *element, const std::string &configuration,
                                             StringList &list) {
    // No output: a tool that reads these writes no dependency file.
    appendPreprocessorOptions(element, configuration, sourceKind(element, configuration), std::string(), list);
}

void GCCProjectSystem::codeModelArguments(ProjectElement *element, const std::string &configuration,
                                          StringList &list) {
    StandardProjectSystem::codeModelArguments(element, configuration, list);
    auto value = [&](PropertyClass *property) {
        return getPropertyValue(element, property, configuration).value_or("None");
    };
    // The tool is clang but the code is compiled by gcc.
    if (supportsModuleScan(element, configuration))
        list.push_back("-U__clang__");
    const std::string type = fileTypeName(element, configuration);
    if (type == "C" && value(gccProperties.cLanguageStandard) != "None")
        list.push_back("-std=" + value(gccProperties.cLanguageStandard));
    if (type == "C++") {
        if (value(toolProperties.cppEnableExceptions) == "Yes")
            list.insert(list.end(), {"-fcxx-exceptions", "-fexceptions"});
        if (value(toolProperties.cppEnableRtti) == "No")
            list.push_back("-fno-rtti");
        if (value(gccProperties.cplusplusLanguageStandard) != "None")
            list.push_back("-std=" + value(gccProperties.cplusplusLanguageStandard));
        // The interfaces that clang has compiled for the imported modules;
        // while a scan is being prepared none exist yet.
        if (value(gccProperties.enableModules) == "Yes" && !moduleScan_.scanning) {
            ModuleList modules;
            collectModules(element, configuration, objectFilePath(element, configuration), modules);
            const std::string directory = projectDirectory(element, configuration);
            for (const auto &[name, file] : modules) {
                const std::string path = absolutePathFrom(directory, replaceAll(file, ".o", ".pcm"));
                if (FileInfo(path).exists())
                    list.push_back("-fmodule-file=" + name + "=" + path);
            }
        }
    }
    if (type == "C" || type == "C++") {
        ProjectElement *header = precompiledHeaderOf(element, configuration);
        if (header && header != element)
            list.insert(list.end(), {"-include", sourcePath(header, configuration)});
    }
}

void GCCProjectSystem::checkSyntax(ProjectElement *element, const std::string &configuration, Builder *builder) {
    const int kind = sourceKind(element, configuration);
    if (kind != KindC && kind != KindCpp)
        return;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    StringList arguments{expandProjectMacros(element, kind == KindCpp ? "$(GPLUSPLUS)" : "$(GCC)", configuration)};
    if (value(gccProperties.useClangNotGcc) == "Yes")
        arguments.push_back("--target=" + expandedValue(element, gccProperties.gccTarget, configuration));
    arguments.push_back("-c");
    if (kind == KindCpp) {
        if (value(toolProperties.cppEnableExceptions) == "No")
            arguments.push_back("-fno-exceptions");
        if (value(toolProperties.cppEnableRtti) == "No")
            arguments.push_back("-fno-rtti");
    }
    if (!appendDriverOptions(element, configuration, kind, std::string(), arguments))
        return;
    appendPreprocessorOptions(element, configuration, kind, std::string(), arguments);
    arguments.push_back("-fsyntax-only");
    arguments.push_back(relativeFileName(element, configuration));
    if (!builder)
        return;
    builder->beginStep(element, "Checking Syntax " + displayName(element), configuration, 0);
    builder->addCommand(projectDirectory(element, configuration), arguments, std::string());
    builder->endStep(element, configuration);
}
