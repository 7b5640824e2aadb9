#pragma once

#include "project/macro_property_class.h"
#include "project/property_class.h"
#include "project/property_class_map.h"

#include <memory>
#include <vector>

class ProjectPropertyClass;

// The defaults that a GNU toolchain gives its table and two rows of the
// standard table.
struct GCCTableFlags {
    bool linkerRequiresStartGroup = true;    // default of linker_requires_start_group
    bool removeUnusedSymbols = false;        // build_remove_unused_symbols defaults to "Yes"
    bool breakpadSymbols = false;            // default of linker_generate_breakpad_symbols
    bool indirectFilesAuto = true;           // linker_use_indirect_files "Auto", else "No"
    bool mapFile = true;                     // linker_map_file "Yes", else "No"
};

// The properties that the GNU toolchains add to the standard table, and the
// macros that name their tools.
struct GCCProperties {
    GCCProperties(PropertyClassMap &map, const GCCTableFlags &flags);
    GCCProperties(const GCCProperties &) = delete;
    GCCProperties &operator=(const GCCProperties &) = delete;

    // C/C++, Code Generation Options
    ProjectPropertyClass *optimizationLevel;
    PropertyClass *omitFramePointer, *noCommon, *debuggingLevel, *dwarfGenerateAranges, *dwarfVersion,
        *dwarfGeneratePubnames, *dwarfGenerateDebugTypes, *enableCoroutines, *enableModules,
        *useCxaAtExit, *threadSafeStatics, *wcharSize, *shortEnum, *signedChar, *useBuiltins,
        *mathErrno, *instrumentFunctions, *unwindTables, *linkTimeOptimization,
        *disableFunctionInlining, *isCppModule, *additionalModules, *enablePrecompiledHeader,
        *precompiledHeader, *functionSections, *dataSections, *strictAliasing, *tlsModel, *fastMath;
    // C/C++, Compiler Options
    PropertyClass *hasOzOptimizationLevel, *enableAllWarnings, *cLanguageStandard,
        *cplusplusLanguageStandard, *setMessageLengthToZero, *diagnosticsShowCaret, *colorDiagnostics,
        *allWarningsOptions, *cOnlyAllWarningsOptions, *cppOnlyAllWarningsOptions,
        *enforceAnsiCheckingOptions, *cOnlyEnforceAnsiCheckingOptions, *cppOnlyEnforceAnsiCheckingOptions;
    // Linker, Linker Options
    PropertyClass *entryPoint, *stripSymbols, *linkerStripDebugInformation, *generateBreakpadSymbols,
        *breakpadSymbolsDirectory, *requiresStartGroup, *useIndirectFiles, *keepIndirectFiles,
        *indirectFileName, *additionalSystemLibraries, *printMemoryUsage, *noEnumSizeWarning,
        *noWcharSizeWarning, *linkerTreatWarningsAsErrors, *noWarnOnMismatch, *noWarnOnRwxSegments,
        *noWarnOnExecutableStack, *allowMultipleDefinition, *emitRelocations, *linkerSearchPath,
        *noStartFiles, *wholeArchive, *keepLinkerScriptFile, *linkerSymbolsFiles, *generateLinkerScript,
        *checkMemorySegmentOverflow, *checkMemorySectionOverflow, *linkerScriptDefaultFillPattern,
        *additionalLdplanOptions;
    // General, Build Options
    PropertyClass *gccPrefix, *gccTarget, *gccVersion, *useClangNotGcc;
    // Compiler [clang], Build Options
    PropertyClass *clangMultiLibConfig, *clangGccToolchain;

    // The macros of the tools, filled by addToolMacros.
    std::vector<MacroPropertyClass *> macros;

    std::vector<std::unique_ptr<PropertyClass>> objects;
};
