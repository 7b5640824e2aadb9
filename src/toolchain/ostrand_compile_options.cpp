// The option lists of the direct form's compiles: the program and its
// language, the preprocessor, code generation and the additional options,
// each in the order in which the compiler proper is given them.

#include "toolchain/ostrand_gcc_project_system.h"

#include "environment/version.h"
#include "support/file_info.h"
#include "support/paths.h"
#include "toolchain/gcc_arguments.h"

using gcc_arguments::either;

namespace {

// A make target with each blank escaped.
std::string makeTarget(const std::string &path) {
    std::string target;
    for (char c : path) {
        if (c == ' ')
            target += '\\';
        target += c;
    }
    return target;
}

}  // namespace

std::string OstrandGCCProjectSystem::commandPath(ProjectElement *element, const std::string &configuration,
                                                 const std::string &path) {
    const std::string directory = projectDirectory(element, configuration);
    if (getPropertyValue(element, ostProperties.supplyAbsoluteFilePath, configuration) == "Yes")
        return absolutePathFrom(directory, path);
    return relativeOrAbsolute(directory, absolutePathFrom(directory, path));
}

void OstrandGCCProjectSystem::appendLanguageOptions(ProjectElement *element, const std::string &configuration,
                                                    int step, bool isGcc, StringList &list) {
    const GCCProperties &gcc = gccProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    const bool cpp = step == KindCpp, assembly = step == KindAssembly;
    const std::optional<std::string> unwind = value(gcc.unwindTables);
    const bool messageLength = value(gcc.setMessageLengthToZero) == "Yes";
    if (isGcc) {
        list.push_back(expandProjectMacros(element, cpp ? "$(CC1PLUS)" : "$(CC1)", configuration));
        if (messageLength)
            list.push_back("-fmessage-length=0");
        either(list, value(gcc.colorDiagnostics), "-fdiagnostics-color=always", "-fdiagnostics-color=never");
        either(list, value(gcc.diagnosticsShowCaret), "-fdiagnostics-show-caret", "-fno-diagnostics-show-caret");
        auto unwindTables = [&] {
            if (unwind == "Yes")
                list.push_back("-funwind-tables");
            else if (unwind == "Asynchronous")
                list.push_back("-fasynchronous-unwind-tables");
        };
        if (step == KindC)
            unwindTables();
        if (assembly)
            list.push_back("-lang-asm");
        else
            appendLanguageStandard(element, configuration, step, list);
        if (cpp) {
            if (value(toolProperties.cppEnableExceptions) != "Yes")
                list.push_back("-fno-exceptions");
            if (value(toolProperties.cppEnableRtti) != "Yes")
                list.push_back("-fno-rtti");
            unwindTables();
        }
        return;
    }
    list.insert(list.end(), {expandProjectMacros(element, "$(CLANG)", configuration), "-cc1", "-disable-free",
                             "-disable-llvm-verifier"});
    const std::string gnuVersion = value(ostProperties.clangGnuVersion).value_or("None");
    if (gnuVersion != "None" && gnuVersion != "Auto")
        list.push_back("-fgnuc-version=" + gnuVersion);
    const std::string relocation = value(ostProperties.clangRelocationModel).value_or("None");
    if (relocation != "None")
        list.insert(list.end(), {"-mrelocation-model", relocation});
    list.insert(list.end(), {"-mconstructor-aliases", "-x", cpp ? "c++" : assembly ? "assembler-with-cpp" : "c"});
    if (cpp) {
        // C++ always has unwind tables; clang 14's -cc1 knows no plain
        // -funwind-tables, and level 1 is what its driver makes of one.
        list.push_back("-funwind-tables=1");
        appendLanguageStandard(element, configuration, step, list);
        if (value(toolProperties.cppEnableExceptions) == "Yes")
            list.insert(list.end(), {"-fcxx-exceptions", "-fexceptions"});
        if (value(toolProperties.cppEnableRtti) != "Yes")
            list.push_back("-fno-rtti");
    } else if (!assembly) {
        appendLanguageStandard(element, configuration, step, list);
        if (unwind == "Yes")
            list.push_back("-funwind-tables=1");
        else if (unwind == "Asynchronous")
            list.push_back("-funwind-tables=2");
    }
    if (value(gcc.colorDiagnostics) == "Yes")
        list.insert(list.end(), {"-fcolor-diagnostics", "-fansi-escape-codes"});
    if (value(gcc.diagnosticsShowCaret) == "No")
        list.insert(list.end(), {"-fno-caret-diagnostics", "-fno-diagnostics-fixit-info"});
    if (messageLength)
        list.push_back("-fmessage-length=0");
}

void OstrandGCCProjectSystem::appendDirectPreprocessorOptions(ProjectElement *element,
                                                              const std::string &configuration, int step,
                                                              bool isGcc, const std::string &output,
                                                              StringList &list) {
    const ToolProperties &tools = toolProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    if (isGcc)
        list.push_back("-nostdinc");
    else
        list.insert(list.end(), {"-nostdsysteminc", "-nobuiltininc"});
    const bool groups = value(tools.addPropertyGroupIncludesDefines) == "Yes";
    if (value(tools.cIgnoreIncludes) == "No") {
        // The installation's C++ library headers come before its C headers
        // (they include_next the C ones), and only in a C++ compile that
        // keeps the installation's system directories.
        std::optional<std::string> own;
        if (step == KindCpp && !isPropertySet(element, tools.cSystemIncludeDirectories, configuration, own)) {
            StringList cpp;
            gcc_arguments::appendSplit(cpp, expandProjectMacros(element, "$(StudioCppIncDir)", configuration));
            for (const std::string &directory : cpp)
                list.push_back("-isystem" + directory);
        }
        for (const std::string &directory :
             preprocessorEntries(element, tools.cSystemIncludeDirectories, configuration))
            list.push_back("-isystem" + directory);
        appendUserIncludeDirectories(element, configuration, step, list);
        if (groups)
            groupIncludes(element, configuration, list);
    }
    const std::optional<std::string> wchar = value(gccProperties.wcharSize);
    if (wchar == "16-Bit")
        list.insert(list.end(), {"-D__SHORT_WCHAR", "-D__SIZEOF_WCHAR_T=2"});
    else if (wchar == "32-Bit")
        list.push_back("-D__SIZEOF_WCHAR_T=4");
    if (value(tools.cUndefineAllPreprocessorDefinitions) == "Yes")
        list.push_back("-undef");
    platform()->appendTargetDefines(element, configuration, list);
    list.push_back("-D__VELDANE_MAJOR_VERSION=" + std::to_string(Version::major));
    list.push_back("-D__VELDANE_MINOR_VERSION=" + std::to_string(Version::minor));
    list.push_back("-D__VELDANE_REVISION=" + std::to_string(Version::revision));
    if (groups)
        groupDefines(element, configuration, list);
    appendDefinesAndForcedIncludes(element, configuration, step, list);
    const std::string dependencies = value(nodeProperties.buildGenerateDependencyFile).value_or("Yes");
    if (output.empty() || dependencies == "No")
        return;
    const std::string file = commandPath(element, configuration, dependencyFilePath(element, configuration, output));
    if (isGcc) {
        list.insert(list.end(), {dependencies == "User Header Files Only" ? "-MMD" : "-MD", file, "-MQ", output});
        return;
    }
    list.insert(list.end(), {"-dependency-file", file});
    if (dependencies == "Yes")
        list.push_back("-sys-header-deps");
    list.insert(list.end(), {"-MT", makeTarget(output)});
}

void OstrandGCCProjectSystem::appendClangDebugInformation(ProjectElement *element, const std::string &configuration,
                                                          StringList &list) {
    const GCCProperties &gcc = gccProperties;
    auto value = [&](PropertyClass *property) {
        return getPropertyValue(element, property, configuration).value_or("");
    };
    const std::string level = value(gcc.debuggingLevel);
    if (value(nodeProperties.buildDebugInformation) != "Yes" || level == "None")
        return;
    const std::string version = value(gcc.dwarfVersion);
    if (version.size() == 7 && version.starts_with("dwarf-") && version[6] >= '2' && version[6] <= '5')
        list.push_back("-dwarf-version=" + version.substr(6));
    if (level == "Level 1")
        list.push_back("-debug-info-kind=line-tables-only");
    else if (level == "Level 2" || level == "Level 3")
        list.push_back("-debug-info-kind=standalone");
    if (level == "Level 3")
        list.push_back("-debug-info-macro");
    list.push_back("-debugger-tuning=gdb");
    if (value(gcc.dwarfGenerateAranges) == "Yes")
        list.insert(list.end(), {"-mllvm", "-generate-arange-section"});
    if (value(gcc.dwarfGeneratePubnames) == "Yes")
        list.push_back("-gpubnames");
    if (value(gcc.dwarfGenerateDebugTypes) == "Yes")
        list.insert(list.end(), {"-mllvm", "-generate-type-units"});
    list.push_back("-fno-dwarf-directory-asm");
}

void OstrandGCCProjectSystem::appendDirectCodeGeneration(ProjectElement *element, const std::string &configuration,
                                                         bool isGcc, StringList &list) {
    const GCCProperties &gcc = gccProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    if (isGcc)
        appendDebugInformation(element, configuration, list);
    else
        appendClangDebugInformation(element, configuration, list);
    // clang always knows -Oz.
    appendOptimization(element, configuration, !isGcc || value(gcc.hasOzOptimizationLevel) == "Yes", list);
    const std::optional<std::string> framePointer = value(gcc.omitFramePointer);
    if (isGcc && framePointer == "Yes")
        list.push_back("-fomit-frame-pointer");
    else if (!isGcc && framePointer == "No")
        list.push_back("-mframe-pointer=all");
    const std::optional<std::string> builtins = value(gcc.useBuiltins);
    if (isGcc && builtins == "Yes")
        list.push_back("-fbuiltin");
    else if (builtins == "No")
        list.push_back("-fno-builtin");
    if (isGcc)
        either(list, value(gcc.mathErrno), "-fmath-errno", "-fno-math-errno");
    if (value(gcc.functionSections) == "Yes")
        list.push_back("-ffunction-sections");
    if (value(gcc.dataSections) == "Yes")
        list.push_back("-fdata-sections");
    const std::optional<std::string> strictAliasing = value(gcc.strictAliasing);
    if (isGcc && strictAliasing == "Yes")
        list.push_back("-fstrict-aliasing");
    else if (strictAliasing == "No")
        list.push_back(isGcc ? "-fno-strict-aliasing" : "-relaxed-aliasing");
    appendTlsModel(element, configuration, list);
    either(list, value(gcc.fastMath), "-ffast-math", "-fno-fast-math");
    const std::optional<std::string> outliner = value(ostProperties.clangMachineOutliner);
    if (!isGcc && (outliner == "Yes" || outliner == "Always" || outliner == "Never"))
        list.insert(list.end(), {"-mllvm", outliner == "Yes"      ? "-enable-machine-outliner"
                                           : outliner == "Always" ? "-enable-machine-outliner=always"
                                                                  : "-enable-machine-outliner=never"});
    const std::pair<PropertyClass *, const char *> sections[] = {
        {toolProperties.defaultCodeSection, "-mtext="},
        {toolProperties.defaultDataSection, "-mdata="},
        {toolProperties.defaultZeroedSection, "-mbss="},
        {toolProperties.defaultConstSection, "-mrodata="}};
    for (const auto &[property, name] : sections) {
        const std::string section = value(property).value_or("");
        if (section != property->defaultValue().value_or(""))
            list.push_back(name + section);
    }
    if (isGcc) {
        appendCharacterType(element, configuration, list);
    } else {
        const std::optional<std::string> wchar = value(gcc.wcharSize);
        if (wchar == "16-Bit")
            list.push_back("-fwchar-type=short");
        else if (wchar == "32-Bit")
            list.push_back("-fwchar-type=int");
        if (value(gcc.shortEnum) == "Minimal Container Size")
            list.push_back("-fshort-enums");
        if (value(gcc.signedChar) == "No")
            list.push_back("-fno-signed-char");
    }
    either(list, value(gcc.noCommon), "-fno-common", "-fcommon");
    if (value(gcc.instrumentFunctions) == "Yes")
        list.push_back("-finstrument-functions");
}

void OstrandGCCProjectSystem::appendCharacterSets(ProjectElement *element, const std::string &configuration,
                                                  StringList &list) {
    std::string encoding = getPropertyValue(element, nodeProperties.fileCodec, configuration).value_or("");
    if (encoding.empty() || encoding == "Default")
        return;
    std::erase(encoding, ' ');
    if (getPropertyValue(element, ostProperties.supplyEditorInputCharset, configuration) != "No")
        list.push_back("-finput-charset=" + encoding);
    if (getPropertyValue(element, ostProperties.supplyEditorExecuteCharset, configuration) != "No")
        list.push_back("-fexec-charset=" + encoding);
}

bool OstrandGCCProjectSystem::appendDirectAdditionalOptions(ProjectElement *element,
                                                            const std::string &configuration, int step,
                                                            const std::string &tool, Builder *builder,
                                                            StringList &list) {
    if (step == KindAssembly) {
        appendGenericOptions(element, configuration, GenericOptionSet::Assembler, tool, list);
    } else {
        appendGenericOptions(element, configuration, GenericOptionSet::Compiler, tool, list);
        appendGenericOptions(element, configuration,
                             step == KindCpp ? GenericOptionSet::CppCompiler : GenericOptionSet::CCompiler, tool,
                             list);
    }
    return appendAdditionalOptions(element, configuration, step, builder, list);
}

void OstrandGCCProjectSystem::appendWarningSwitches(ProjectElement *element, const std::string &configuration,
                                                    StringList &list) {
    if (getPropertyValue(element, nodeProperties.buildTreatWarningsAsErrors, configuration) == "Yes")
        list.push_back("-Werror");
    if (getPropertyValue(element, nodeProperties.buildSuppressWarnings, configuration) == "Yes")
        list.push_back("-w");
}

void OstrandGCCProjectSystem::appendQuietOption(ProjectElement *element, const std::string &configuration,
                                                bool isGcc, StringList &list) {
    if (getPropertyValue(element, nodeProperties.buildQuietly, configuration) != "Yes")
        list.push_back("-v");
    else if (isGcc)
        list.push_back("-quiet");
}
