// A C or C++ compile through the compiler driver: one run of $(GCC) or
// $(GPLUSPLUS) makes the object file. The order of the options is the
// order in which they are appended here.

#include "toolchain/gcc_project_system.h"

#include "build/builder.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/file_utils.h"
#include "toolchain/gcc_arguments.h"

#include <algorithm>
#include <cctype>
#include <fstream>

using gcc_arguments::appendSplit;
using gcc_arguments::either;

bool GCCProjectSystem::readOptionsFile(ProjectElement *element, const std::string &configuration,
                                       PropertyClass *property, Builder *builder, StringList &list) {
    const std::string name = expandedValue(element, property, configuration);
    if (name.empty())
        return true;
    const std::string path = absolutePathFrom(projectDirectory(element, configuration), name);
    std::ifstream in(path);
    if (!in) {
        if (builder) {
            builder->beginStep(element, "Locating Additional Options File", configuration, 0);
            builder->reportError("Additional options file '" + name + "' does not exist.");
            builder->endStep(element, configuration);
        }
        return false;
    }
    // Comments between /* and */ may span lines; each line that is left is
    // one argument. Lines are read up to 1,023 characters.
    bool inComment = false;
    std::string line;
    while (std::getline(in, line)) {
        if (line.size() > 1023)
            line.resize(1023);
        std::string kept;
        for (std::size_t i = 0; i < line.size();) {
            if (inComment) {
                const std::size_t end = line.find("*/", i);
                if (end == std::string::npos)
                    break;
                inComment = false;
                i = end + 2;
            } else {
                const std::size_t start = line.find("/*", i);
                kept += line.substr(i, start == std::string::npos ? std::string::npos : start - i);
                if (start == std::string::npos)
                    break;
                inComment = true;
                i = start + 2;
            }
        }
        if (!kept.empty() && kept.back() == '\r')
            kept.pop_back();
        if (!kept.empty())
            list.push_back(kept);
    }
    return true;
}

void GCCProjectSystem::appendCodeGeneration(ProjectElement *element, const std::string &configuration, int step,
                                            StringList &list) {
    const GCCProperties &gcc = gccProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    const bool cpp = step == KindCpp;
    if (cpp) {
        either(list, value(toolProperties.cppEnableExceptions), "-fexceptions", "-fno-exceptions");
        either(list, value(toolProperties.cppEnableRtti), "-frtti", "-fno-rtti");
    }
    appendAllWarnings(element, configuration, step, list);
    if (step == KindC || cpp)
        appendLanguageStandard(element, configuration, step, list);
    appendAnsiChecking(element, configuration, step, list);
    if (cpp) {
        if (value(gcc.enableModules) == "Yes")
            list.push_back("-fmodules-ts");
        if (value(gcc.enableCoroutines) == "Yes")
            list.push_back("-fcoroutines");
        if (value(gcc.useCxaAtExit) == "No")
            list.push_back("-fno-use-cxa-atexit");
        if (value(gcc.threadSafeStatics) == "No")
            list.push_back("-fno-threadsafe-statics");
    }
    either(list, value(gcc.omitFramePointer), "-fomit-frame-pointer", "-fno-omit-frame-pointer");
    either(list, value(gcc.noCommon), "-fno-common", "-fcommon");
    either(list, value(gcc.useBuiltins), "-fbuiltin", "-fno-builtin");
    either(list, value(gcc.mathErrno), "-fmath-errno", "-fno-math-errno");
    if (value(gcc.instrumentFunctions) == "Yes")
        list.push_back("-finstrument-functions");
    if (step == KindC) {
        const std::optional<std::string> unwind = value(gcc.unwindTables);
        if (unwind == "Yes")
            list.push_back("-funwind-tables");
        else if (unwind == "Asynchronous")
            list.push_back("-fasynchronous-unwind-tables");
    }
    if (value(gcc.useClangNotGcc) == "Yes") {
        either(list, value(gcc.colorDiagnostics), "-fcolor-diagnostics", "-fno-color-diagnostics");
        either(list, value(gcc.diagnosticsShowCaret), "-fcaret-diagnostics", "-fno-caret-diagnostics");
    } else {
        either(list, value(gcc.colorDiagnostics), "-fdiagnostics-color=always", "-fdiagnostics-color=never");
        either(list, value(gcc.diagnosticsShowCaret), "-fdiagnostics-show-caret", "-fno-diagnostics-show-caret");
    }
    if (value(gcc.functionSections) == "Yes")
        list.push_back("-ffunction-sections");
    if (value(gcc.dataSections) == "Yes")
        list.push_back("-fdata-sections");
    either(list, value(gcc.strictAliasing), "-fstrict-aliasing", "-fno-strict-aliasing");
    appendTlsModel(element, configuration, list);
    either(list, value(gcc.fastMath), "-ffast-math", "-fno-fast-math");
    if (value(gcc.linkTimeOptimization) == "Yes")
        list.push_back("-flto");
    if (value(nodeProperties.buildTreatWarningsAsErrors) == "Yes")
        list.push_back("-Werror");
    if (value(nodeProperties.buildSuppressWarnings) == "Yes")
        list.push_back("-w");
    if (value(nodeProperties.buildQuietly) != "Yes")
        list.push_back("-v");
}

void GCCProjectSystem::appendLanguageStandard(ProjectElement *element, const std::string &configuration, int step,
                                              StringList &list) {
    PropertyClass *property =
        step == KindCpp ? gccProperties.cplusplusLanguageStandard : gccProperties.cLanguageStandard;
    std::string standard = getPropertyValue(element, property, configuration).value_or("None");
    if (standard == "c++1z")
        standard = "c++17";
    else if (standard == "gnu++1z")
        standard = "gnu++17";
    if (standard != "None")
        list.push_back("-std=" + standard);
}

void GCCProjectSystem::appendAllWarnings(ProjectElement *element, const std::string &configuration, int step,
                                         StringList &list) {
    const GCCProperties &gcc = gccProperties;
    appendOptionLists(element, configuration, gcc.enableAllWarnings, gcc.allWarningsOptions,
                      step == KindCpp ? gcc.cppOnlyAllWarningsOptions : gcc.cOnlyAllWarningsOptions, list);
}

void GCCProjectSystem::appendAnsiChecking(ProjectElement *element, const std::string &configuration, int step,
                                          StringList &list) {
    const GCCProperties &gcc = gccProperties;
    appendOptionLists(element, configuration, toolProperties.cEnforceAnsiChecking, gcc.enforceAnsiCheckingOptions,
                      step == KindCpp ? gcc.cppOnlyEnforceAnsiCheckingOptions : gcc.cOnlyEnforceAnsiCheckingOptions,
                      list);
}

void GCCProjectSystem::appendOptionLists(ProjectElement *element, const std::string &configuration,
                                         PropertyClass *enable, PropertyClass *common, PropertyClass *language,
                                         StringList &list) {
    if (getPropertyValue(element, enable, configuration) == "Yes")
        appendSplit(list, expandedValue(element, common, configuration) + ";" +
                              expandedValue(element, language, configuration));
}

void GCCProjectSystem::appendTlsModel(ProjectElement *element, const std::string &configuration, StringList &list) {
    std::string tls = getPropertyValue(element, gccProperties.tlsModel, configuration).value_or("None");
    if (tls == "None")
        return;
    std::transform(tls.begin(), tls.end(), tls.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    list.push_back("-ftls-model=" + tls);
}

bool GCCProjectSystem::appendAdditionalOptions(ProjectElement *element, const std::string &configuration,
                                               int step, Builder *builder, StringList &list) {
    const ToolProperties &tools = toolProperties;
    auto options = [&](PropertyClass *property) {
        for (std::string &argument : splitCommandLine(expandedValue(element, property, configuration)))
            list.push_back(std::move(argument));
    };
    if (step == KindAssembly) {
        options(tools.asmAdditionalOptions);
        return readOptionsFile(element, configuration, tools.asmAdditionalOptionsFromFile, builder, list);
    }
    const bool cpp = step == KindCpp;
    options(tools.cAdditionalOptions);
    if (!readOptionsFile(element, configuration, tools.cAdditionalOptionsFromFile, builder, list))
        return false;
    options(cpp ? tools.cppOnlyAdditionalOptions : tools.cOnlyAdditionalOptions);
    return readOptionsFile(element, configuration,
                           cpp ? tools.cppOnlyAdditionalOptionsFromFile : tools.cOnlyAdditionalOptionsFromFile,
                           builder, list);
}

void GCCProjectSystem::appendDebugInformation(ProjectElement *element, const std::string &configuration,
                                              StringList &list) {
    if (getPropertyValue(element, nodeProperties.buildDebugInformation, configuration) != "Yes")
        return;
    if (isHostedToolchain()) {
        list.push_back("-g");
        return;
    }
    const GCCProperties &gcc = gccProperties;
    const std::string level = getPropertyValue(element, gcc.debuggingLevel, configuration).value_or("None");
    if (level == "None")
        return;
    const std::string version = getPropertyValue(element, gcc.dwarfVersion, configuration).value_or("None");
    if (version.size() == 7 && version.compare(0, 6, "dwarf-") == 0 && version[6] >= '2' && version[6] <= '5')
        list.push_back("-g" + version);
    if (level == "Level 1")
        list.push_back("-g1");
    else if (level == "Level 2")
        list.push_back("-g2");
    else if (level == "Level 3")
        list.push_back("-g3");
    if (getPropertyValue(element, gcc.dwarfGeneratePubnames, configuration) == "Yes")
        list.push_back("-gpubnames");
    if (getPropertyValue(element, gcc.dwarfGenerateDebugTypes, configuration) == "Yes")
        list.push_back("-fdebug-types-section");
}

void GCCProjectSystem::appendCharacterType(ProjectElement *element, const std::string &configuration,
                                           StringList &list) {
    const GCCProperties &gcc = gccProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    const std::optional<std::string> wchar = value(gcc.wcharSize);
    if (wchar == "16-Bit")
        list.push_back("-fshort-wchar");
    else if (wchar == "32-Bit")
        list.push_back("-fno-short-wchar");
    const std::optional<std::string> enums = value(gcc.shortEnum);
    if (enums == "Minimal Container Size")
        list.push_back("-fshort-enums");
    else if (enums == "Int Size")
        list.push_back("-fno-short-enums");
    either(list, value(gcc.signedChar), "-fsigned-char", "-fno-signed-char");
}

void GCCProjectSystem::appendOptimization(ProjectElement *element, const std::string &configuration,
                                          StringList &list) {
    appendOptimization(element, configuration,
                       getPropertyValue(element, gccProperties.hasOzOptimizationLevel, configuration) == "Yes", list);
}

void GCCProjectSystem::appendOptimization(ProjectElement *element, const std::string &configuration, bool oz,
                                          StringList &list) {
    const GCCProperties &gcc = gccProperties;
    const std::string level = getPropertyValue(element, gcc.optimizationLevel, configuration).value_or("None");
    const char *option = nullptr;
    if (level == "Debug")
        option = "-Og";
    else if (level == "Level 0")
        option = "-O0";
    else if (level == "Level 1")
        option = "-O1";
    else if (level == "Level 2" || level == "Level 2 for speed")
        option = "-O2";
    else if (level == "Level 2 balanced")
        option = oz ? "-Os" : "-O2";
    else if (level == "Level 2 for size" || level == "Optimize For More Size")
        option = oz ? "-Oz" : "-Os";
    else if (level == "Optimize For Size")
        option = "-Os";
    else if (level.compare(0, 7, "Level 3") == 0)
        option = "-O3";
    if (option)
        list.push_back(option);
    if (getPropertyValue(element, gcc.disableFunctionInlining, configuration) == "Yes")
        list.push_back("-fno-inline-functions");
}

void GCCProjectSystem::appendClangTarget(ProjectElement *element, const std::string &configuration,
                                         StringList &list) {
    const GCCProperties &gcc = gccProperties;
    if (getPropertyValue(element, gcc.useClangNotGcc, configuration) != "Yes")
        return;
    const std::string target = expandedValue(element, gcc.gccTarget, configuration);
    const std::string multiLib = expandedValue(element, gcc.clangMultiLibConfig, configuration);
    const std::string toolchain = expandedValue(element, gcc.clangGccToolchain, configuration);
    if (!target.empty())
        list.push_back("--target=" + target);
    if (!multiLib.empty())
        list.push_back("--multi-lib-config=" + multiLib);
    if (!toolchain.empty())
        list.push_back("--gcc-toolchain=" + toolchain);
}

void GCCProjectSystem::buildStep(ProjectElement *element, const std::string &configuration, int step,
                                 const std::string &outputRelative, const std::string &outputFile,
                                 const StringList &inputs, Builder *builder, BuildFlags flags) {
    if (step == KindLink) {
        linkStep(element, configuration, outputRelative, outputFile, inputs, builder);
        return;
    }
    if (step == KindArchive) {
        archiveStep(element, configuration, outputRelative, outputFile, inputs, builder);
        return;
    }
    if (step != KindC && step != KindCpp && step != KindAssembly) {
        StandardProjectSystem::buildStep(element, configuration, step, outputRelative, outputFile, inputs,
                                         builder, flags);
        return;
    }
    const GCCProperties &gcc = gccProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    StringList arguments;
    arguments.push_back(expandProjectMacros(element, step == KindCpp ? "$(GPLUSPLUS)" : "$(GCC)", configuration));
    appendClangTarget(element, configuration, arguments);
    arguments.push_back(step == KindC ? "-xc" : step == KindCpp ? "-xc++" : "-xassembler-with-cpp");
    arguments.push_back("-c");
    if (value(gcc.setMessageLengthToZero) == "Yes")
        arguments.push_back("-fmessage-length=0");
    if (!appendDriverOptions(element, configuration, step, outputRelative, arguments))
        return;
    appendPreprocessorOptions(element, configuration, step, outputRelative, arguments);
    appendCodeGeneration(element, configuration, step, arguments);
    if (step != KindAssembly) {
        appendGenericOptions(element, configuration, GenericOptionSet::Compiler, std::string(), arguments);
        appendGenericOptions(element, configuration,
                             step == KindCpp ? GenericOptionSet::CppCompiler : GenericOptionSet::CCompiler,
                             std::string(), arguments);
    }
    if (!appendAdditionalOptions(element, configuration, step, builder, arguments))
        return;
    if (step == KindCpp && value(gcc.enableModules) == "Yes")
        appendModuleOptions(element, configuration, outputFile, arguments);
    appendDebugInformation(element, configuration, arguments);
    appendCharacterType(element, configuration, arguments);
    appendOptimization(element, configuration, arguments);
    ProjectElement *header = step == KindAssembly ? nullptr : precompiledHeaderOf(element, configuration);
    if (header == element) {
        arguments.push_back("-x");
        arguments.push_back(step == KindCpp ? "c++-header" : "c-header");
    } else if (header) {
        arguments.push_back("-include");
        arguments.push_back(sourcePath(header, configuration));
        arguments.push_back("-Winvalid-pch");
    }
    if (fileTypeName(element, configuration) == "Preprocess")
        arguments.push_back("-E");
    if (!inputs.empty())
        arguments.push_back(inputs.front());
    // The driver writes a precompiled header beside the header, where its
    // includers look for it.
    if (header != element) {
        arguments.push_back("-o");
        arguments.push_back(outputRelative);
    }

    if (!builder)
        return;
    const std::string directory = projectDirectory(element, configuration);
    // A precompiled header lands beside the header, away from the
    // intermediate directory where its dependency file goes.
    if (header == element && value(nodeProperties.buildGenerateDependencyFile) != "No")
        makeDirectories(directoryOf(dependencyFilePath(element, configuration, outputRelative)));
    builder->beginStep(element, "Compiling '" + displayName(element) + "'", configuration, 0);
    builder->addCommand(directory, arguments, outputFile);
    if (value(toolProperties.asmGenerateListingFile) == "Yes")
        addListingCommand(element, configuration, outputRelative, inputs.empty() ? outputFile : inputs.front(),
                          builder);
    builder->endStep(element, configuration);
}

void GCCProjectSystem::addListingCommand(ProjectElement *element, const std::string &configuration,
                                         const std::string &object, const std::string &input, Builder *builder) {
    builder->addCommand(projectDirectory(element, configuration),
                        {expandProjectMacros(element, "$(OBJDUMP)", configuration), object, "-d", "-S", ">",
                         intermediateFilePath(element, configuration, input, ".lst")},
                        std::string());
}
