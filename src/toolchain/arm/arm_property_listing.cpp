// The ARM rows that a node lists, by the kind of step that reads them.

#include "toolchain/arm/arm_platform_project_system.h"

namespace {

using Rows = std::vector<PropertyClass *>;

void appendRows(Rows &list, const Rows &rows) { list.insert(list.end(), rows.begin(), rows.end()); }

// The rows that say which target the code is for: the assembler reads
// them as the compiler does.
Rows targetRows(const ARMProperties &arm) {
    return {arm.instructionSet,     arm.architecture,  arm.coreType,        arm.fpuType,
            arm.advancedSimdType,   arm.fpAbi,         arm.abi,             arm.endian,
            arm.cm0HasSmallMultiplier, arm.v7HasDivideInstructions, arm.v8MHasCmse, arm.v8MHasDsp,
            arm.v8AHasCrc,          arm.v81MMveType,   arm.v81MHasPacbti,   arm.v8AArchitectureExtension,
            arm.v8AHasCrypto,       arm.v8AHasFp16,    arm.v8AHasFp16fml,   arm.v8AHasBf16,
            arm.v8AHasI8mm,         arm.arm64Abi};
}

// Code generation that only a compiler does.
Rows compilerRows(const ARMProperties &arm) {
    return {arm.advancedSimdAutoVectorize, arm.unalignedAccess,  arm.tlsModel,        arm.fp16Format,
            arm.arm64CodeModel,            arm.arm64OutlineAtomics, arm.arm64StrictAlign, arm.longCalls,
            arm.clangMergeGlobals,         arm.stackOverflowPrevention};
}

// The variant of the runtime libraries: a link chooses by them, and they
// shape $(LibExt), by which a library project may name its own variants.
Rows libraryRows(const ARMProperties &arm) {
    return {arm.libraryInstructionSet, arm.libraryOptimization, arm.libraryArchitecture};
}

}  // namespace

void ARMPlatformProjectSystem::appendAssemblerProperties(ProjectElement *, const std::string &,
                                                         PropertyClassList &list) {
    appendRows(list, targetRows(armProperties));
}

void ARMPlatformProjectSystem::appendCProperties(ProjectElement *, const std::string &, PropertyClassList &list) {
    appendRows(list, targetRows(armProperties));
    appendRows(list, compilerRows(armProperties));
}

void ARMPlatformProjectSystem::appendLinkerProperties(ProjectElement *, const std::string &,
                                                      PropertyClassList &list) {
    const ARMProperties &arm = armProperties;
    appendRows(list, libraryRows(arm));
    appendRows(list, {arm.linkDebugIoType, arm.stackSize, arm.irqStackSize, arm.fiqStackSize, arm.svcStackSize,
                      arm.abtStackSize, arm.undStackSize, arm.heapSize, arm.processStackSize,
                      arm.cmseImportLibraryFileName, arm.checkCmseImportLibraryFileName});
}

void ARMPlatformProjectSystem::appendLibraryProperties(ProjectElement *, const std::string &,
                                                       PropertyClassList &list) {
    appendRows(list, libraryRows(armProperties));
}

void ARMPlatformProjectSystem::appendDebugProperties(ProjectElement *, const std::string &,
                                                     PropertyClassList &list) {
    const ARMProperties &arm = armProperties;
    appendRows(list, {arm.debugIoImplementation, arm.displayDcc, arm.alternativeLdrDis, arm.customCpDis,
                      arm.hasMonitorMode, arm.hasHypervisorMode, arm.hasVectorCatch, arm.numInterruptPriorityBits,
                      arm.interruptNames, arm.targetDeviceName});
    appendRows(list, arm.debugCopies);
    appendRows(list, targetConnectionProperties());
}

void ARMPlatformProjectSystem::appendToolchainProperties(ProjectElement *, const std::string &,
                                                         PropertyClassList &list) {
    // What a debugger must know of a program that another tool built.
    const ARMProperties &arm = armProperties;
    appendRows(list, {arm.instructionSet, arm.architecture, arm.coreType, arm.fpuType, arm.fpAbi, arm.endian,
                      arm.targetDeviceName});
}
