// The rows that the cross toolchain lists for a node: those of the GNU
// driver's lists that the installation's tools read, the Ost rows, which
// the step lists already hold, and then the platform's rows.

#include "toolchain/ostrand_gcc_project_system.h"

#include <algorithm>

namespace {

using Rows = std::vector<PropertyClass *>;

void appendRows(Rows &list, const Rows &rows) { list.insert(list.end(), rows.begin(), rows.end()); }

// Appends the rows of from that leftOut doesn't hold, in order.
void appendWithout(Rows &list, const Rows &from, const Rows &leftOut) {
    for (PropertyClass *property : from)
        if (std::find(leftOut.begin(), leftOut.end(), property) == leftOut.end())
            list.push_back(property);
}

// The rows that only choose what an external driver runs: the
// installation's own tools read none of them.
Rows externalDriverRows(const GCCProperties &gcc) {
    return {gcc.gccPrefix, gcc.useClangNotGcc, gcc.clangMultiLibConfig, gcc.clangGccToolchain};
}

// Compile-side rows that only one kind of source reads: the preprocessing
// of an assembly file is a compile of its own, so the two share most rows.
Rows assemblyOnlyRows(const OstProperties &ost) { return {ost.preprocessAssemblyCode}; }

Rows compilerOnlyRows(const OstProperties &ost) {
    return {ost.compilerVariant,      ost.brenlowCcNoUnsupportedArchitecture, ost.clangMachineOutliner,
            ost.clangThreadModel,     ost.generateStackSizes,                 ost.cAsmAdditionalOptions,
            ost.keepAssembly};
}

// The platform's compile rows that only the other kind of source reads.
// The step lists hold every compile row for C, C++ and assembly alike.
Rows platformRowsOfOtherKind(PlatformProjectSystem &platform, ProjectElement *element,
                             const std::string &configuration, bool forAssembly) {
    Rows c, assembly;
    platform.appendCProperties(element, configuration, c);
    platform.appendAssemblerProperties(element, configuration, assembly);
    Rows other;
    appendWithout(other, forAssembly ? c : assembly, forAssembly ? assembly : c);
    return other;
}

}  // namespace

void OstrandGCCProjectSystem::appendCProperties(ProjectElement *element, const std::string &configuration,
                                                PropertyClassList &list) {
    Rows rows;
    GCCProjectSystem::appendCProperties(element, configuration, rows);
    Rows leftOut = assemblyOnlyRows(ostProperties);
    appendRows(leftOut, platformRowsOfOtherKind(*platform(), element, configuration, false));
    if (!externalGcc(element, configuration))
        appendRows(leftOut, externalDriverRows(gccProperties));
    appendWithout(list, rows, leftOut);
    list.push_back(ostProperties.useExternalGcc);
    platform()->appendCProperties(element, configuration, list);
}

void OstrandGCCProjectSystem::appendAssemblerProperties(ProjectElement *element, const std::string &configuration,
                                                        PropertyClassList &list) {
    Rows rows;
    GCCProjectSystem::appendAssemblerProperties(element, configuration, rows);
    Rows leftOut = compilerOnlyRows(ostProperties);
    appendRows(leftOut, platformRowsOfOtherKind(*platform(), element, configuration, true));
    if (!externalGcc(element, configuration))
        appendRows(leftOut, externalDriverRows(gccProperties));
    appendWithout(list, rows, leftOut);
    list.push_back(ostProperties.useExternalGcc);
    platform()->appendAssemblerProperties(element, configuration, list);
}

void OstrandGCCProjectSystem::appendLinkerProperties(ProjectElement *element, const std::string &configuration,
                                                     PropertyClassList &list) {
    Rows rows;
    GCCProjectSystem::appendLinkerProperties(element, configuration, rows);
    appendWithout(list, rows, externalGcc(element, configuration) ? Rows() : externalDriverRows(gccProperties));
    // Compile rows that the link reads too: the driver form passes the
    // compiler variant, and link-time optimization keeps its assembly.
    appendRows(list, {ostProperties.compilerVariant, ostProperties.keepAssembly, ostProperties.useExternalGcc});
    platform()->appendLinkerProperties(element, configuration, list);
}

void OstrandGCCProjectSystem::appendLibraryProperties(ProjectElement *element, const std::string &configuration,
                                                      PropertyClassList &list) {
    // The archiver takes its members from a response file as a link does.
    appendRows(list, {gccProperties.useIndirectFiles, gccProperties.keepIndirectFiles, gccProperties.indirectFileName,
                      ostProperties.useExternalGcc});
    platform()->appendLibraryProperties(element, configuration, list);
}

void OstrandGCCProjectSystem::appendProjectTypeProperties(ProjectElement *element, const std::string &configuration,
                                                          PropertyClassList &set, const std::string &type) {
    GCCProjectSystem::appendProjectTypeProperties(element, configuration, set, type);
    // A project that the installation's tools build shows which tools
    // they are.
    if (type == "Executable" || type == "Library" || type == "Object file") {
        appendToolchainProperties(element, configuration, set);
        set.push_back(ostProperties.useExternalGcc);
    }
}

void OstrandGCCProjectSystem::appendDebugProperties(ProjectElement *element, const std::string &configuration,
                                                    PropertyClassList &list) {
    GCCProjectSystem::appendDebugProperties(element, configuration, list);
    const OstProperties &ost = ostProperties;
    appendRows(list, {ost.loadFileOffset, ost.loadFileOffsetLimit, ost.loadSections, ost.ignoreDebugAranges,
                      ost.ignoreDebugFrame, ost.restrictMemoryAccess, ost.reservedMemberName, ost.typeFile,
                      ost.typeFile2, ost.memoryUploadPageSize, ost.enableLtc, ost.ltccb, ost.ltcChannel,
                      ost.stackPointerStart});
    platform()->appendDebugProperties(element, configuration, list);
}

void OstrandGCCProjectSystem::appendToolchainProperties(ProjectElement *element, const std::string &configuration,
                                                        PropertyClassList &list) {
    appendRows(list, {gccProperties.gccTarget, gccProperties.gccVersion});
    platform()->appendToolchainProperties(element, configuration, list);
}
