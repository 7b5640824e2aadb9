// The rows that the GNU toolchains list for a C, C++, assembly or header
// node and for a link. The option list of each step already holds the rows
// that its command reads, and the options of the active generic option file,
// so a node lists its step's rows less those of the other languages. The
// hosted tools leave out the rows that only a target needs.

#include "toolchain/gcc_project_system.h"

#include <algorithm>

namespace {

using Rows = std::vector<PropertyClass *>;

void appendRows(Rows &list, const Rows &rows) { list.insert(list.end(), rows.begin(), rows.end()); }

// The rows of a step's option list that leftOut doesn't hold, in list order.
void appendStepRows(const PropertyClassMap &map, int step, const Rows &leftOut, Rows &list) {
    for (PropertyClass *property : map.toolProperties(step))
        if (std::find(leftOut.begin(), leftOut.end(), property) == leftOut.end())
            list.push_back(property);
}

// Compile-side rows that only C files read.
Rows cOnlyRows(const GCCProperties &gcc) {
    return {gcc.cLanguageStandard, gcc.cOnlyAllWarningsOptions, gcc.cOnlyEnforceAnsiCheckingOptions};
}

// Compile-side rows that only C++ files read.
Rows cppOnlyRows(const GCCProperties &gcc) {
    return {gcc.cplusplusLanguageStandard, gcc.cppOnlyAllWarningsOptions, gcc.cppOnlyEnforceAnsiCheckingOptions,
            gcc.enableCoroutines,          gcc.enableModules,             gcc.useCxaAtExit,
            gcc.threadSafeStatics,         gcc.isCppModule,               gcc.additionalModules};
}

// Code generation for a target: the machine's own compiler knows its
// character types, builtins and unwinding.
Rows targetCodeRows(const GCCProperties &gcc) {
    return {gcc.wcharSize,   gcc.shortEnum,           gcc.signedChar,  gcc.useBuiltins,
            gcc.mathErrno,   gcc.instrumentFunctions, gcc.unwindTables};
}

Rows targetCppRows(const GCCProperties &gcc) {
    return {gcc.enableCoroutines, gcc.enableModules, gcc.useCxaAtExit, gcc.threadSafeStatics};
}

// The link of a target: entry point, linker script and memory checks.
Rows targetLinkRows(const GCCProperties &gcc) {
    return {gcc.entryPoint,
            gcc.linkTimeOptimization,
            gcc.noEnumSizeWarning,
            gcc.noWcharSizeWarning,
            gcc.generateLinkerScript,
            gcc.checkMemorySegmentOverflow,
            gcc.checkMemorySectionOverflow,
            gcc.linkerScriptDefaultFillPattern,
            gcc.additionalLdplanOptions,
            gcc.keepLinkerScriptFile,
            gcc.linkerSymbolsFiles,
            gcc.printMemoryUsage};
}

// The rows that choose the programs a driver command runs: no step list
// holds them, yet every compile and link reads them.
Rows driverRows(const GCCProperties &gcc) {
    return {gcc.gccPrefix, gcc.gccTarget, gcc.useClangNotGcc, gcc.clangMultiLibConfig, gcc.clangGccToolchain};
}

} // namespace

void GCCProjectSystem::appendCProperties(ProjectElement *, const std::string &, PropertyClassList &list) {
    const GCCProperties &gcc = gccProperties;
    Rows leftOut = cppOnlyRows(gcc);
    leftOut.push_back(gcc.precompiledHeader);
    if (isHostedToolchain())
        appendRows(leftOut, targetCodeRows(gcc));
    appendStepRows(propertyClasses, KindC, leftOut, list);
    appendRows(list, driverRows(gcc));
}

void GCCProjectSystem::appendCppProperties(ProjectElement *, const std::string &, PropertyClassList &list) {
    const GCCProperties &gcc = gccProperties;
    Rows leftOut = cOnlyRows(gcc);
    leftOut.push_back(gcc.precompiledHeader);
    if (isHostedToolchain()) {
        appendRows(leftOut, targetCodeRows(gcc));
        appendRows(leftOut, targetCppRows(gcc));
    }
    appendStepRows(propertyClasses, KindCpp, leftOut, list);
    appendRows(list, driverRows(gcc));
}

void GCCProjectSystem::appendAssemblerProperties(ProjectElement *, const std::string &, PropertyClassList &list) {
    const GCCProperties &gcc = gccProperties;
    Rows leftOut = cOnlyRows(gcc);
    appendRows(leftOut, cppOnlyRows(gcc));
    // An assembly file neither is nor includes a precompiled header.
    leftOut.push_back(gcc.enablePrecompiledHeader);
    leftOut.push_back(gcc.precompiledHeader);
    if (isHostedToolchain())
        appendRows(leftOut, targetCodeRows(gcc));
    appendStepRows(propertyClasses, KindAssembly, leftOut, list);
    appendRows(list, driverRows(gcc));
}

void GCCProjectSystem::appendSourceFileProperties(ProjectElement *element, const std::string &configuration,
                                                  PropertyClassList &list) {
    if (getPropertyValue(element, gccProperties.enablePrecompiledHeader, configuration) == "Yes")
        list.push_back(gccProperties.precompiledHeader);
}

void GCCProjectSystem::appendLinkerProperties(ProjectElement *, const std::string &, PropertyClassList &list) {
    const GCCProperties &gcc = gccProperties;
    const bool hosted = isHostedToolchain();
    appendStepRows(propertyClasses, KindLink, hosted ? targetLinkRows(gcc) : Rows(), list);
    // A compile row that the link reads too.
    if (!hosted)
        list.push_back(gcc.linkTimeOptimization);
    appendRows(list, driverRows(gcc));
}
