#include "toolchain/arm/arm_platform_project_system.h"

#include "project/tree_walk.h"
#include "support/file_info.h"
#include "toolchain/arm/arm_runtime_libraries.h"
#include "toolchain/ostrand_gcc_project_system.h"

ARMPlatformProjectSystem::ARMPlatformProjectSystem(OstrandGCCProjectSystem *owner)
    : armProperties(owner->propertyClasses), owner_(owner) {}

arm::Target ARMPlatformProjectSystem::target(ProjectElement *element, const std::string &configuration) {
    const ARMProperties &a = armProperties;
    const GCCProperties &gcc = owner_->gccProperties;
    const OstProperties &ost = owner_->ostProperties;
    arm::Target t;
    auto read = [&](PropertyClass *property, std::string &field) {
        if (std::optional<std::string> value = owner_->getPropertyValue(element, property, configuration))
            field = std::move(*value);
    };
    auto isSet = [&](PropertyClass *property) {
        std::optional<std::string> value;
        return owner_->isPropertySet(element, property, configuration, value);
    };

    std::string core, architecture;
    read(a.coreType, core);
    read(a.architecture, architecture);
    t.core = arm::coreNumber(core);
    t.architecture = t.core ? arm::coreArchitecture(t.core) : arm::architectureNumber(architecture);

    const std::pair<PropertyClass *, std::string *> fields[] = {
        {a.instructionSet, &t.instructionSet},
        {a.fpuType, &t.fpuType},
        {a.advancedSimdType, &t.advancedSimdType},
        {a.advancedSimdAutoVectorize, &t.advancedSimdAutoVectorize},
        {a.fpAbi, &t.fpAbi},
        {a.abi, &t.abi},
        {a.endian, &t.endian},
        {a.cm0HasSmallMultiplier, &t.cm0HasSmallMultiplier},
        {a.v7HasDivideInstructions, &t.v7HasDivideInstructions},
        {a.v8MHasCmse, &t.v8MHasCmse},
        {a.v8MHasDsp, &t.v8MHasDsp},
        {a.v8AHasCrc, &t.v8AHasCrc},
        {a.v81MMveType, &t.v81MMveType},
        {a.v81MHasPacbti, &t.v81MHasPacbti},
        {a.v8AArchitectureExtension, &t.v8AArchitectureExtension},
        {a.v8AHasCrypto, &t.v8AHasCrypto},
        {a.v8AHasFp16, &t.v8AHasFp16},
        {a.v8AHasFp16fml, &t.v8AHasFp16fml},
        {a.v8AHasBf16, &t.v8AHasBf16},
        {a.v8AHasI8mm, &t.v8AHasI8mm},
        {a.unalignedAccess, &t.unalignedAccessSetting},
        {a.tlsModel, &t.tlsModel},
        {a.fp16Format, &t.fp16Format},
        {a.arm64Abi, &t.arm64Abi},
        {a.arm64CodeModel, &t.arm64CodeModel},
        {a.arm64OutlineAtomics, &t.arm64OutlineAtomics},
        {a.arm64StrictAlign, &t.arm64StrictAlign},
        {a.longCalls, &t.longCalls},
        {a.clangMergeGlobals, &t.clangMergeGlobals},
        {a.libraryInstructionSet, &t.libraryInstructionSet},
        {a.libraryOptimization, &t.libraryOptimization},
        {a.libraryArchitecture, &t.libraryArchitecture},
        {a.linkDebugIoType, &t.linkDebugIoType},
        {a.heapSize, &t.linkerHeapSize},
        {a.stackSize, &t.linkerStackSize},
        {a.processStackSize, &t.linkerProcessStackSize},
        {a.irqStackSize, &t.linkerIrqStackSize},
        {a.fiqStackSize, &t.linkerFiqStackSize},
        {a.svcStackSize, &t.linkerSvcStackSize},
        {a.abtStackSize, &t.linkerAbtStackSize},
        {a.undStackSize, &t.linkerUndStackSize},
        {a.cmseImportLibraryFileName, &t.cmseImportLibraryFileName},
        {a.checkCmseImportLibraryFileName, &t.checkCmseImportLibraryFileName},
        {gcc.noEnumSizeWarning, &t.linkerNoEnumSizeWarning},
        {gcc.noWcharSizeWarning, &t.linkerNoWcharSizeWarning},
        {ost.linkerVariant, &t.linkerVariant},
        {ost.useCompilerDriver, &t.useCompilerDriver},
        {gcc.useClangNotGcc, &t.useClangNotGcc},
        {gcc.unwindTables, &t.unwindTables},
        {owner_->toolProperties.cppEnableExceptions, &t.cppEnableExceptions},
        {gcc.signedChar, &t.signedChar},
        {gcc.wcharSize, &t.wcharSize},
        {gcc.shortEnum, &t.shortEnum},
    };
    for (const auto &[property, field] : fields)
        read(property, *field);
    t.v8MHasDspSet = isSet(a.v8MHasDsp);
    t.v81MMveTypeSet = isSet(a.v81MMveType);
    return t;
}

// ---- Options.

void ARMPlatformProjectSystem::appendLinkerOptions(ProjectElement *element, const std::string &configuration,
                                                   StringList &list) {
    arm::linkerOptions(target(element, configuration), list);
}

void ARMPlatformProjectSystem::appendCompilerTargetOptions(bool forGcc, ProjectElement *element,
                                                           const std::string &configuration, StringList &list) {
    arm::compilerTargetOptions(target(element, configuration), forGcc, list);
}

void ARMPlatformProjectSystem::appendAssemblerTargetOptions(bool forGcc, ProjectElement *element,
                                                            const std::string &configuration, StringList &list) {
    arm::assemblerTargetOptions(target(element, configuration), forGcc, list);
}

void ARMPlatformProjectSystem::appendPreprocessTargetOptions(bool forGcc, ProjectElement *element,
                                                             const std::string &configuration, StringList &list) {
    arm::preprocessTargetOptions(target(element, configuration), forGcc, list);
}

void ARMPlatformProjectSystem::appendTargetDefines(ProjectElement *element, const std::string &configuration,
                                                   StringList &list) {
    arm::targetDefines(target(element, configuration),
                       owner_->expandProjectMacros(element, "-isystem$(PackagesDir)/include", configuration), list);
}

void ARMPlatformProjectSystem::appendBridgeTargetOptions(ProjectElement *element, const std::string &configuration,
                                                         StringList &list) {
    const arm::Target t = target(element, configuration);
    if (t.core)
        list.push_back("-mcpu=" + arm::cpuName(t.core));
    if (t.effectiveFpAbi() == "Hard")
        list.push_back("-float-abi=hard");
}

bool ARMPlatformProjectSystem::appendDriverTargetOptions(ProjectElement *element, const std::string &configuration,
                                                         int step, StringList &list) {
    return arm::driverTargetOptions(target(element, configuration), step, list);
}

void ARMPlatformProjectSystem::appendCodeModelOptions(ProjectElement *element, const std::string &configuration,
                                                      StringList &list) {
    // A clang-based tool runs for the host unless told the target.
    const arm::Target t = target(element, configuration);
    list.push_back("--target=" + (t.isArm64() ? std::string("aarch64-none-eabi") : arm::triple(t)));
    arm::preprocessTargetOptions(t, true, list);
}

std::string ARMPlatformProjectSystem::secondaryLinkOutput(ProjectElement *element,
                                                          const std::string &configuration) {
    const arm::Target t = target(element, configuration);
    if (t.architecture < 12 || t.v8MHasCmse != "Yes" || t.cmseImportLibraryFileName.empty())
        return std::string();
    return absolutePathFrom(owner_->projectDirectory(element, configuration),
                            owner_->expandProjectMacros(element, t.cmseImportLibraryFileName, configuration));
}

std::string ARMPlatformProjectSystem::executableFileExtension(ProjectElement *element,
                                                              const std::string &configuration) {
    return owner_->getPropertyValue(element, owner_->ostProperties.useExternalGcc, configuration) == "Yes" ? ".axf"
                                                                                                          : ".elf";
}

bool ARMPlatformProjectSystem::debugIoOrStackChanged(ProjectElement *element, const std::string &configuration,
                                                     FileTime time) {
    const ARMProperties &a = armProperties;
    return owner_->propertyChangedSince(element, configuration,
                                        {a.stackSize, a.processStackSize, a.irqStackSize, a.fiqStackSize,
                                         a.svcStackSize, a.abtStackSize, a.undStackSize, a.heapSize,
                                         a.linkDebugIoType},
                                        time);
}

// ---- Runtime libraries and macros.

void ARMPlatformProjectSystem::addTargetMacros(ProjectElement *element, const std::string &configuration,
                                               MacroMap &map) {
    const arm::Target t = target(element, configuration);
    const GCCProperties &gcc = owner_->gccProperties;
    auto add = [&](const std::string &name, const std::string &value) { owner_->addToolMacro(map, name, value); };
    auto expanded = [&](PropertyClass *property) {
        return owner_->expandedValue(element, property, configuration, map);
    };
    std::optional<std::string> own;
    add("GCCTarget", owner_->isPropertySet(element, gcc.gccTarget, configuration, own) ? expanded(gcc.gccTarget)
                     : t.isArm64()                                                      ? "aarch64-none-elf"
                                                                                        : "arm-none-eabi");
    add("GCCVersion", expanded(gcc.gccVersion));
    ProjectElement *project = ProjectSystem::projectOf(element);
    const bool executable =
        project && owner_->getPropertyValue(project, owner_->nodeProperties.projectType, configuration) == "Executable";
    arm::targetMacros(t, executable, add);
    if (!t.isArm64() && !map.count("DeviceName"))
        add("DeviceName", expanded(armProperties.targetDeviceName));
    add("GCCPrefix", expanded(gcc.gccPrefix));
}

void ARMPlatformProjectSystem::appendRuntimeLibraries(ProjectElement *element, const std::string &configuration,
                                                      StringList &libs) {
    arm::runtimeLibraries(target(element, configuration),
                          owner_->expandedValue(element, owner_->toolProperties.linkStandardLibrariesDirectory,
                                                configuration),
                          libs);
}

void ARMPlatformProjectSystem::appendLinkerSymbolDefinitions(ProjectElement *element,
                                                             const std::string &configuration, StringList &list) {
    const bool standardLibraries =
        owner_->getPropertyValue(element, owner_->ostProperties.useExternalGcc, configuration) != "Yes" &&
        owner_->getPropertyValue(element, owner_->toolProperties.linkIncludeStandardLibraries, configuration) != "No";
    arm::linkerSymbolDefinitions(target(element, configuration), standardLibraries, list);
}

void ARMPlatformProjectSystem::filterLinkerInputs(ProjectElement *, const std::string &, StringList &libs) {
    arm::filterLinkerInputs(owner_->installDirectory, libs);
}

void ARMPlatformProjectSystem::migrateValue(std::string &value) { arm::migrateValue(value); }

namespace {

// Directories and lists of them, such as the include directories.
bool isDirectoryValued(const PropertyClass &property) {
    const std::string &name = property.name();
    auto endsWith = [&](std::string_view tail) {
        return name.size() >= tail.size() && name.compare(name.size() - tail.size(), tail.size(), tail) == 0;
    };
    return property.type() == PropertyClass::DirPath || property.type() == PropertyClass::DirPathList ||
           endsWith("_directory") || endsWith("_directories") || name.find("_directories_") != std::string::npos;
}

}  // namespace

// The directory-valued properties of every node of the tree; a walk without
// a stack, as a tree may be deep. Only project elements are walked into.
void ARMPlatformProjectSystem::migrateElement(ProjectElement *root) {
    for (XMLNode *node = root; node;) {
        ProjectElement *element = ProjectElement::from(node);
        if (element) {
            // Setting an attribute that exists changes its value in place,
            // so the walk needs no copy of the attributes.
            for (const auto &[name, value] : element->attributes()) {
                // Only a value that names the old library folder can change:
                // it holds "$(StudioDir)/tskq" at least. Most values, file
                // names among them, are shorter.
                constexpr std::size_t shortest = std::string_view("$(StudioDir)/tskq").size();
                if (!value || value->size() < shortest || value->find("/tskq") == std::string::npos)
                    continue;
                const PropertyClass *property = owner_->propertyClasses.propertyClass(name);
                if (!property || !isDirectoryValued(*property))
                    continue;
                std::string migrated = *value;
                arm::migrateValue(migrated);
                if (migrated != *value)
                    element->setAttribute(name, migrated);
            }
        }
        node = nextInSubtree(node, root, element != nullptr);
    }
}

std::string ARMPlatformProjectSystem::describeLibraryVariant(ProjectElement *element,
                                                             const std::string &configuration) {
    const arm::Target t = target(element, configuration);
    if (t.isArm64())
        return "ARMv8-A AArch64" + std::string(t.arm64Abi == "ilp32" ? " ILP32" : "") +
               (t.libraryOptimization == "Small" ? ", optimized for size" : "");
    std::string text = arm::libArch(t) + ", " + t.effectiveFpAbi() + " float ABI";
    if (t.effectiveFpAbi() != "Soft" && t.fpuType != "None")
        text += " (" + t.fpuType + ")";
    text += arm::libExt(t).find("_t_") != std::string::npos ? ", Thumb" : ", ARM";
    text += t.isBigEndian() ? ", big endian" : ", little endian";
    if (t.libraryOptimization == "Small")
        text += ", optimized for size";
    return text;
}
