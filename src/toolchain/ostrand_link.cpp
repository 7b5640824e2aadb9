// The link of an executable in the direct form: the build runs ld or ld.lld
// itself, with the installation's runtime libraries and a linker script that
// ldplan generates unless the project has its own.

#include "toolchain/ostrand_gcc_project_system.h"

#include "build/builder.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/file_path.h"
#include "support/text_split.h"

#include <cstdio>
#include <cstdlib>

namespace {

// A byte value of a fill property as objcopy takes it: "0x" and at least
// two hexadecimal digits; empty when the value is empty, or 0 and zero
// means none.
std::string fillByte(const std::string &value, bool zeroIsNone) {
    if (value.empty())
        return {};
    const unsigned long byte = std::strtoul(value.c_str(), nullptr, 0);
    if (byte == 0 && zeroIsNone)
        return {};
    char text[32];
    std::snprintf(text, sizeof text, "0x%02lx", byte);
    return text;
}

}  // namespace

bool OstrandGCCProjectSystem::generatesLinkerScript(ProjectElement *element, const std::string &configuration) {
    if (!directForm(element, configuration))
        return GCCProjectSystem::generatesLinkerScript(element, configuration);
    return !usesBrenlowLinker(element, configuration);
}

bool OstrandGCCProjectSystem::linkerScriptInputsChanged(ProjectElement *element, const std::string &configuration,
                                                        FileTime time) {
    if (platform()->debugIoOrStackChanged(element, configuration, time))
        return true;
    // The link's control files name the memory map only; the placement file
    // that a generated script is also made from is compared here.
    std::string script, placement;
    if (!generatesLinkerScript(element, configuration) || !hasLinkerScript(element, configuration, script, nullptr) ||
        !script.empty() || !locateSectionPlacementFile(element, configuration, placement, nullptr))
        return false;
    return FileInfo(absolutePathFrom(projectDirectory(element, configuration), placement))
        .lastModified()
        .laterInSecondsThan(time);
}

bool OstrandGCCProjectSystem::mapFilePath(ProjectElement *element, const std::string &configuration,
                                          const std::string &linkOutput, std::string &path) {
    if (!usesBrenlowLinker(element, configuration))
        return GCCProjectSystem::mapFilePath(element, configuration, linkOutput, path);
    const std::string detail = getPropertyValue(element, ostProperties.linkMapFile, configuration).value_or("None");
    if (detail == "None" || detail.empty())
        return false;
    const bool html = getPropertyValue(element, ostProperties.linkMapFileFormat, configuration) == "HTML";
    const FilePath output(absolutePathFrom(projectDirectory(element, configuration), linkOutput));
    path = output.path() + "/" + output.baseName(true) + (html ? ".htm" : ".map");
    return true;
}

std::string OstrandGCCProjectSystem::unavailableLink(ProjectElement *element, const std::string &configuration) {
    if (usesBrenlowLinker(element, configuration))
        return "error: the Brenlow linker (arm_linker_variant) is not available yet";
    if (getPropertyValue(element, gccProperties.linkTimeOptimization, configuration) == "Yes")
        return "error: link-time optimization with the installation's linker (link_time_optimization) is not "
               "available yet; set use_external_gcc to \"Yes\" to link with an external GNU toolchain";
    return {};
}

StringList OstrandGCCProjectSystem::linkLibraries(ProjectElement *element, const std::string &configuration,
                                                  const StringList &inputs) {
    StringList libs = inputs;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    const ToolProperties &tools = toolProperties;
    if (value(tools.linkIncludeStandardLibraries) == "Yes") {
        const std::string directory = expandedValue(element, tools.linkStandardLibrariesDirectory, configuration);
        auto library = [&](const char *name) {
            libs.push_back(expandProjectMacros(element, directory + "/" + name + "$(LibExt)", configuration) + ".a");
        };
        library("libm");
        library("libc");
        platform()->appendRuntimeLibraries(element, configuration, libs);
        if (isCppProject(element, configuration))
            library(value(tools.cppEnableExceptions) == "Yes" ? "libcxxabi" : "libcxxabi_noexcept");
        if (value(gccProperties.unwindTables) != "No")
            library("libunwind");
    }
    platform()->filterLinkerInputs(element, configuration, libs);
    return libs;
}

bool OstrandGCCProjectSystem::appendDirectLinkOptions(ProjectElement *element, const std::string &configuration,
                                                      const std::string &script, const std::string &output,
                                                      Builder *builder, StringList &list) {
    const GCCProperties &gcc = gccProperties;
    const ToolProperties &tools = toolProperties;
    auto yes = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration) == "Yes"; };
    auto path = [&](const std::string &file) { return commandPath(element, configuration, file); };

    if (getPropertyValue(element, ostProperties.linkerVariant, configuration) == "LLVM")
        list.push_back(expandProjectMacros(element, "$(LLD:$(StudioDir)/llvm/bin/ld.lld$(HostEXE))", configuration));
    else
        list.insert(list.end(), {expandProjectMacros(element, "$(LD)", configuration), "-X", "--omagic"});
    const std::string entry = expandedValue(element, gcc.entryPoint, configuration);
    if (!entry.empty() && entry != "None")
        list.push_back("-e" + entry);
    platform()->appendLinkerOptions(element, configuration, list);
    if (!yes(nodeProperties.buildQuietly))
        list.push_back("-v");
    if (yes(nodeProperties.buildTreatWarningsAsErrors) || yes(gcc.linkerTreatWarningsAsErrors))
        list.push_back("--fatal-warnings");
    const std::pair<PropertyClass *, const char *> quiet[] = {{gcc.noWarnOnMismatch, "--no-warn-mismatch"},
                                                              {gcc.noWarnOnRwxSegments, "--no-warn-rwx-segments"},
                                                              {gcc.noWarnOnExecutableStack, "--no-warn-execstack"}};
    for (const auto &[property, option] : quiet)
        if (yes(property))
            list.push_back(option);
    for (std::string &argument : splitCommandLine(expandedValue(element, tools.linkerAdditionalOptions, configuration)))
        list.push_back(std::move(argument));
    if (!readOptionsFile(element, configuration, tools.linkerAdditionalOptionsFromFile, builder, list))
        return false;
    if (yes(nodeProperties.buildRemoveUnusedSymbols))
        list.push_back("--gc-sections");
    for (const std::string &directory : expandedList(element, gcc.linkerSearchPath, configuration))
        list.push_back("-L" + directory);
    list.push_back(concat("-T", path(script)));
    std::string mapFile;
    if (mapFilePath(element, configuration, output, mapFile))
        list.insert(list.end(), {"-Map", path(mapFile)});
    StringList definitions = expandedList(element, tools.linkSymbolDefinitions, configuration);
    linkerSymbolDefinitions(element, configuration, definitions);
    for (const std::string &definition : definitions)
        list.push_back("--defsym=" + definition);
    for (const std::string &symbol : expandedList(element, tools.linkerKeepSymbols, configuration))
        list.push_back("-u" + symbol);
    list.insert(list.end(), {"-o", output});
    if (yes(gcc.allowMultipleDefinition))
        list.push_back("--allow-multiple-definition");
    if (yes(gcc.emitRelocations))
        list.push_back("--emit-relocs");
    const std::string symbolsFiles = expandedValue(element, gcc.linkerSymbolsFiles, configuration);
    if (!symbolsFiles.empty())
        list.push_back("--just-symbols=" + symbolsFiles);
    appendGenericOptions(element, configuration, GenericOptionSet::Linker, "gnu", list);
    return true;
}

void OstrandGCCProjectSystem::linkStepDirect(ProjectElement *element, const std::string &configuration,
                                             const std::string &outputRelative, const std::string &outputFile,
                                             const StringList &inputs, Builder *builder, BuildFlags flags) {
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    std::string script;
    if (!hasLinkerScript(element, configuration, script, builder))
        return;
    if (script.empty() && usesBrenlowLinker(element, configuration)) {
        if (builder) {
            builder->beginStep(element, "Checking Linker Control Files", configuration, 0);
            builder->reportError("linker script must be specified");
            builder->endStep(element, configuration);
        }
        return;
    }
    const std::string unavailable = unavailableLink(element, configuration);
    if (!unavailable.empty()) {
        unavailableStep(element, configuration, KindLink, builder, unavailable);
        return;
    }
    std::string generated;
    if (script.empty()) {
        script = generated = linkerScriptPath(element, configuration, builder, outputFile, flags);
        if (script.empty())
            return;
    }

    const std::string output = value(ostProperties.supplyAbsoluteFilePath) == "Yes" ? outputFile : outputRelative;
    StringList list;
    if (!appendDirectLinkOptions(element, configuration, script, output, builder, list))
        return;
    StringList libs = linkLibraries(element, configuration, inputs);
    for (std::string &library : libs)
        library = commandPath(element, configuration, library);
    const bool wholeArchives = value(ostProperties.treatLibrariesAsObjectFiles) == "Yes";
    list.push_back(wholeArchives ? "--whole-archive" : "--start-group");
    std::string indirect;
    if (usesIndirectFile(element, configuration, libs.size(), 100)) {
        indirect = indFileName(element, configuration, outputFile, "_files.ind");
        list.push_back(concat("@", commandPath(element, configuration, indirect)));
    } else {
        // Every library is whole already when libraries count as objects.
        for (std::string &entry : wholeArchives ? libs : linkEntries(element, configuration, libs, false, false))
            list.push_back(entry);
    }
    list.push_back(wholeArchives ? "--no-whole-archive" : "--end-group");
    for (const std::string &library :
         splitCommandLine(expandedValue(element, gccProperties.additionalSystemLibraries, configuration)))
        list.push_back("-l" + library);
    if (!builder)
        return;

    builder->beginStep(element, concat("Linking '", FilePath(outputFile).fileName()) + "'", configuration, 0);
    if (!indirect.empty())
        writeIndirect(element, configuration, libs, indirect, false, builder);
    builder->addCommand(projectDirectory(element, configuration), list, outputFile);
    LinkOutputs made;
    made.output = output;
    made.outputFile = outputFile;
    made.indirect = indirect;
    made.script = generated;
    made.direct = true;
    made.gapFill = fillByte(expandedValue(element, ostProperties.linkerGapFill, configuration), true);
    made.outputFileGapFill =
        fillByte(expandedValue(element, ostProperties.additionalOutputFileGapFill, configuration), false);
    postLinkCommands(element, configuration, made, builder);
    builder->endStep(element, configuration);
}
