#pragma once

#include "project/macro_property_class.h"
#include "project/property_class.h"
#include "project/property_class_map.h"

#include <memory>
#include <vector>

// The rows that the ARM platform adds to its project system's table: core,
// architecture, FPU, ABI, byte order, library and memory area settings.
struct ARMProperties {
    explicit ARMProperties(PropertyClassMap &map);
    ARMProperties(const ARMProperties &) = delete;
    ARMProperties &operator=(const ARMProperties &) = delete;

    // C/C++, Code Generation Options
    PropertyClass *instructionSet, *architecture, *coreType, *fpuType, *advancedSimdType,
        *advancedSimdAutoVectorize, *fpAbi, *abi, *endian, *cm0HasSmallMultiplier, *v7HasDivideInstructions,
        *v8MHasCmse, *v8MHasDsp, *v8AHasCrc, *v81MMveType, *v81MHasPacbti, *v8AArchitectureExtension,
        *v8AHasCrypto, *v8AHasFp16, *v8AHasFp16fml, *v8AHasBf16, *v8AHasI8mm, *unalignedAccess, *tlsModel,
        *fp16Format, *arm64Abi, *arm64CodeModel, *arm64OutlineAtomics, *arm64StrictAlign, *longCalls,
        *clangMergeGlobals, *stackOverflowPrevention;
    // Debugging, Debugger Options
    PropertyClass *debugIoImplementation, *displayDcc, *alternativeLdrDis, *customCpDis, *hasMonitorMode,
        *hasHypervisorMode, *hasVectorCatch, *numInterruptPriorityBits, *interruptNames, *targetDeviceName;
    // Linker, Library Options
    PropertyClass *libraryInstructionSet, *libraryOptimization, *libraryArchitecture, *linkDebugIoType;
    // Linker, Runtime Memory Area Options
    PropertyClass *stackSize, *irqStackSize, *fiqStackSize, *svcStackSize, *abtStackSize, *undStackSize,
        *heapSize, *processStackSize;
    // Linker, Linker Options
    PropertyClass *cmseImportLibraryFileName, *checkCmseImportLibraryFileName;

    // CoreType, Arch, Arch2, Endian, FPU, FPU2, FPU3, FPABI and DeviceName.
    std::vector<MacroPropertyClass *> macros;
    // The copies of arm_instruction_set, arm_architecture, arm_core_type,
    // arm_endian, arm_fpu_type, arm_v8M_has_cmse and arm_v81M_mve_type on
    // the page "Debugging", group "Debugger Options", in that order: a
    // debugger shows the same values.
    std::vector<PropertyClass *> debugCopies;

    std::vector<std::unique_ptr<PropertyClass>> objects;
};

// The rows of the connection to a target (GDB server, loader, target
// scripts, JTAG chain), made once for the whole program so that a solution
// file keeps their values; no build step reads them.
const std::vector<PropertyClass *> &targetConnectionProperties();
