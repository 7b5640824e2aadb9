#pragma once

#include "project/macro_property_class.h"
#include "project/property_class.h"
#include "project/property_class_map.h"

#include <array>
#include <memory>
#include <vector>

class ProjectPropertyClass;

// The rows that the installation's cross toolchain adds to the GNU table:
// the direct form's compiler, assembler and linker choices, the library and
// debugger settings that a solution keeps, and the macros of its tools.
struct OstProperties {
    explicit OstProperties(PropertyClassMap &map);
    OstProperties(const OstProperties &) = delete;
    OstProperties &operator=(const OstProperties &) = delete;

    // C/C++, Compiler Options
    PropertyClass *supplyAbsoluteFilePath, *keepAssembly, *cAsmAdditionalOptions, *keepPreprocessorOutput;
    ProjectPropertyClass *compilerVariant;
    PropertyClass *clangGnuVersion, *useCompilerDriver, *supplyEditorInputCharset,
        *supplyEditorExecuteCharset, *brenlowCcNoUnsupportedArchitecture;
    // Linker, Linker Options
    PropertyClass *additionalOutputFileGapFill, *linkerVariant, *linkerGapFill, *linkerLogFile,
        *supplyMemorySegments, *linkSectionHeaders, *linkDedupeCode, *linkDedupeData, *linkInline,
        *linkListAllUndefineds, *linkMergeSections, *linkMergeStrings, *linkMapFile, *linkMapFileFormat,
        *treatLibrariesAsObjectFiles, *supplyLibraryLinkerSymbols;
    // C/C++, Assembler Options
    ProjectPropertyClass *assemblerVariant;
    PropertyClass *preprocessAssemblyCode;
    // C/C++, Code Generation Options
    PropertyClass *clangRelocationModel, *clangMachineOutliner, *clangThreadModel, *generateStackSizes,
        *linkKeepLtoFiles, *ltoAdditionalOptions;
    // General, Build Options
    PropertyClass *useExternalGcc;
    // General, Library Options
    PropertyClass *libraryIoType, *libraryHeapType, *libraryHeapLocking, *libraryLocales;
    // Debugging, Loader Options
    PropertyClass *loadFileOffset, *loadFileOffsetLimit, *loadSections;
    // Debugging, Debugger Options
    PropertyClass *ignoreDebugAranges, *ignoreDebugFrame, *restrictMemoryAccess, *reservedMemberName,
        *typeFile, *typeFile2, *memoryUploadPageSize, *enableLtc, *ltccb, *ltcChannel, *stackPointerStart;
    // Linker, Library Options
    PropertyClass *dsoHandleValue;
    // Linker, Linker Options: link_pad_<group> and link_align_<group> for
    // the groups "ro", "rw", "rx" and "zi", in that order.
    static constexpr std::array<const char *, 4> sectionGroups{"ro", "rw", "rx", "zi"};
    std::array<PropertyClass *, 4> linkPad, linkAlign;

    // LibExt, LibArch, LibEndianExt, AS, CC1, CLANG, CC1PLUS, LD, LIBLTO,
    // LTO1, BASM, BCC and BLINK.
    std::vector<MacroPropertyClass *> macros;

    std::vector<std::unique_ptr<PropertyClass>> objects;
};
