// The link of an executable through the compiler driver, its response file,
// and the commands that follow a link.

#include "toolchain/gcc_project_system.h"

#include "build/builder.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/paths.h"
#include "support/text_split.h"
#include "toolchain/gcc_arguments.h"

#include <algorithm>
#include <cstdio>
#include <set>

using gcc_arguments::either;

void GCCProjectSystem::linkerLibraryDirectories(ProjectElement *element, const std::string &configuration,
                                                StringList &list) {
    for (std::string &directory : expandedList(element, gccProperties.linkerSearchPath, configuration))
        list.push_back(std::move(directory));
}

void GCCProjectSystem::linkerSymbolFiles(ProjectElement *element, const std::string &configuration,
                                         StringList &list) {
    for (std::string &file : expandedList(element, gccProperties.linkerSymbolsFiles, configuration))
        list.push_back(absolutePathFrom(projectDirectory(element, configuration), file));
}

bool GCCProjectSystem::usesIndirectFile(ProjectElement *element, const std::string &configuration,
                                        std::size_t count, std::size_t limit) {
    const std::string use = getPropertyValue(element, gccProperties.useIndirectFiles, configuration).value_or("");
    return use == "Yes" || (use == "Auto" && count > limit);
}

std::string GCCProjectSystem::indFileName(ProjectElement *element, const std::string &configuration,
                                          const std::string &output, const std::string &suffix) {
    const std::string named = expandedValue(element, gccProperties.indirectFileName, configuration);
    if (!named.empty())
        return absolutePathFrom(projectDirectory(element, configuration), named);
    return intermediateFilePath(element, configuration, output, suffix);
}

StringList GCCProjectSystem::linkEntries(ProjectElement *element, const std::string &configuration,
                                         const StringList &files, bool forDriver, bool quoted) {
    const StringList wholeArchive =
        splitCommandLine(expandedValue(element, gccProperties.wholeArchive, configuration));
    const std::set<std::string> whole(wholeArchive.begin(), wholeArchive.end());
    StringList entries;
    entries.reserve(files.size());
    for (const std::string &file : files) {
        const std::string entry = quoted ? "\"" + file + "\"" : file;
        if (whole.empty() || (!whole.count(file) && !whole.count(FilePath(file).fileName()))) {
            entries.push_back(entry);
            continue;
        }
        entries.push_back(forDriver ? "-Wl,--whole-archive" : "--whole-archive");
        entries.push_back(entry);
        entries.push_back(forDriver ? "-Wl,--no-whole-archive" : "--no-whole-archive");
    }
    return entries;
}

void GCCProjectSystem::writeIndirect(ProjectElement *element, const std::string &configuration,
                                     const StringList &files, const std::string &name, bool forDriver,
                                     Builder *builder) {
    builder->writeLines(name, linkEntries(element, configuration, files, forDriver, true));
}

void GCCProjectSystem::linkStep(ProjectElement *element, const std::string &configuration,
                                const std::string &outputRelative, const std::string &outputFile,
                                const StringList &inputs, Builder *builder) {
    const GCCProperties &gcc = gccProperties;
    const ToolProperties &tools = toolProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    auto yes = [&](PropertyClass *property) { return value(property) == "Yes"; };
    const std::string directory = projectDirectory(element, configuration);

    std::string script, generated;
    if (!isHostedToolchain()) {
        if (!hasLinkerScript(element, configuration, script, builder))
            return;
        if (script.empty() && generatesLinkerScript(element, configuration)) {
            // The driver form has no flags to pass on: the script is made
            // again when it is stale.
            script = generated = linkerScriptPath(element, configuration, builder, outputFile, 0);
            if (script.empty())
                return;
        }
    }

    StringList list;
    const bool cpp = isCppProject(element, configuration);
    list.push_back(expandProjectMacros(element, cpp ? "$(GPLUSPLUS)" : "$(GCC)", configuration));
    appendClangTarget(element, configuration, list);
    if (cpp) {
        either(list, value(tools.cppEnableExceptions), "-fexceptions", "-fno-exceptions");
        either(list, value(tools.cppEnableRtti), "-frtti", "-fno-rtti");
    }
    if (!yes(nodeProperties.buildQuietly))
        list.push_back("-v");
    if (yes(nodeProperties.buildDebugInformation))
        list.push_back("-g");
    if (yes(gcc.noStartFiles))
        list.push_back("-nostartfiles");
    if (value(tools.linkIncludeStandardLibraries) == "No")
        list.push_back("-nodefaultlibs");
    appendCharacterType(element, configuration, list);
    if (yes(gcc.linkTimeOptimization))
        list.push_back("-flto");
    if (yes(nodeProperties.buildTreatWarningsAsErrors) || yes(gcc.linkerTreatWarningsAsErrors))
        list.push_back("-Wl,--fatal-warnings");
    const std::pair<PropertyClass *, const char *> switches[] = {
        {gcc.noWarnOnMismatch, "-Wl,--no-warn-mismatch"},
        {gcc.noWarnOnRwxSegments, "-Wl,--no-warn-rwx-segments"},
        {gcc.noWarnOnExecutableStack, "-Wl,--no-warn-execstack"},
        {gcc.noEnumSizeWarning, "-Wl,--no-enum-size-warning"},
        {gcc.noWcharSizeWarning, "-Wl,--no-wchar-size-warning"},
        {gcc.allowMultipleDefinition, "-Wl,--allow-multiple-definition"},
        {gcc.emitRelocations, "-Wl,--emit-relocs"},
    };
    for (const auto &[property, option] : switches)
        if (yes(property))
            list.push_back(option);
    const std::string symbolsFiles = expandedValue(element, gcc.linkerSymbolsFiles, configuration);
    if (!symbolsFiles.empty())
        list.push_back("-Wl,--just-symbols=" + symbolsFiles);
    std::optional<std::string> own;
    if (hasOwnValue(element, gcc.entryPoint, configuration, own)) {
        const std::string entry = expandedValue(element, gcc.entryPoint, configuration);
        if (entry != "None" && !entry.empty())
            list.push_back("-Wl,-e" + entry);
    }
    if (hasOwnValue(element, tools.linkSymbolDefinitions, configuration, own)) {
        StringList definitions = expandedList(element, tools.linkSymbolDefinitions, configuration);
        linkerSymbolDefinitions(element, configuration, definitions);
        for (const std::string &definition : definitions)
            list.push_back("-Wl,--defsym=" + definition);
    }
    if (hasOwnValue(element, tools.linkerKeepSymbols, configuration, own))
        for (const std::string &symbol : expandedList(element, tools.linkerKeepSymbols, configuration))
            list.push_back("-Wl,-u" + symbol);
    either(list, value(nodeProperties.buildRemoveUnusedSymbols), "-Wl,--gc-sections", "-Wl,--no-gc-sections");
    for (const std::string &path : expandedList(element, gcc.linkerSearchPath, configuration))
        list.push_back("-L" + path);
    std::string mapFile;
    if (mapFilePath(element, configuration, outputFile, mapFile))
        list.push_back("-Wl,-Map," + relativeOrAbsolute(directory, mapFile));
    const bool group = yes(gcc.requiresStartGroup);
    if (group)
        list.push_back("-Wl,--start-group");
    std::string indirect;
    if (usesIndirectFile(element, configuration, inputs.size(), 99)) {
        indirect = indFileName(element, configuration, outputFile);
        list.push_back(concat("@", relativeOrAbsolute(directory, indirect)));
    } else {
        for (std::string &entry : linkEntries(element, configuration, inputs, true, false))
            list.push_back(std::move(entry));
    }
    if (group)
        list.push_back("-Wl,--end-group");
    for (std::string &argument : splitCommandLine(expandedValue(element, tools.linkerAdditionalOptions, configuration)))
        list.push_back(std::move(argument));
    list.push_back("-o");
    list.push_back(outputRelative);
    if (!appendDriverOptions(element, configuration, KindLink, outputRelative, list))
        return;
    if (!script.empty())
        list.push_back("-T" + script);
    for (std::string &library : splitCommandLine(expandedValue(element, gcc.additionalSystemLibraries, configuration)))
        list.push_back("-l" + library);

    if (!builder)
        return;
    builder->beginStep(element, "Linking '" + FilePath(outputFile).fileName() + "'", configuration, 0);
    if (!indirect.empty())
        writeIndirect(element, configuration, inputs, indirect, true, builder);
    builder->addCommand(directory, list, outputFile);
    LinkOutputs made;
    made.output = outputRelative;
    made.outputFile = outputFile;
    made.indirect = indirect;
    made.script = generated;
    postLinkCommands(element, configuration, made, builder);
    builder->endStep(element, configuration);
}

void GCCProjectSystem::postLinkCommands(ProjectElement *element, const std::string &configuration,
                                        const LinkOutputs &made, Builder *builder) {
    const GCCProperties &gcc = gccProperties;
    const ToolProperties &tools = toolProperties;
    auto yes = [&](PropertyClass *property) {
        return getPropertyValue(element, property, configuration) == "Yes";
    };
    auto tool = [&](const char *macro) { return expandProjectMacros(element, macro, configuration); };
    const std::string directory = projectDirectory(element, configuration);
    const std::string &output = made.output;

    if (!made.indirect.empty() && getPropertyValue(element, gcc.keepIndirectFiles, configuration) == "No")
        builder->deleteFile(made.indirect, true);
    if (!made.script.empty() && getPropertyValue(element, gcc.keepLinkerScriptFile, configuration) == "No")
        builder->deleteFile(made.script, true);
    if (!made.gapFill.empty())
        builder->addCommand(directory, {tool("$(OBJCOPY)"), output, output, "--gap-fill", made.gapFill},
                            made.outputFile);
    if (!made.direct && yes(gcc.generateBreakpadSymbols)) {
        const std::string symbols = expandedValue(element, gcc.breakpadSymbolsDirectory, configuration);
        if (!symbols.empty())
            builder->addCommand(directory,
                                {installDirectory + "/bin/symplan", "-extract-symbols-to-dir", output, symbols},
                                std::string());
    }
    const std::string patch = expandWith(
        element, getPropertyValue(element, tools.linkerPatchBuildCommand, configuration).value_or(""),
        configuration, {{"TargetPath", made.outputFile}, {"RelTargetPath", output}});
    const StringList patchCommand = splitCommandLine(patch);
    if (!patchCommand.empty()) {
        const std::string wd = expandedValue(element, tools.linkerPatchBuildCommandWd, configuration);
        builder->addCommand(wd.empty() ? directory : absolutePathFrom(directory, wd), patchCommand,
                            made.outputFile);
    }
    if (yes(gcc.stripSymbols))
        builder->addCommand(directory, {tool("$(STRIP)"), output}, made.outputFile);
    if (yes(gcc.linkerStripDebugInformation))
        builder->addCommand(directory, {tool("$(STRIP)"), "-S", output, "-o", output}, made.outputFile);
    // A program of the machine itself has no memory segments to report on.
    if (yes(gcc.printMemoryUsage) && !isHostedToolchain())
        builder->addCommand(directory, memoryUsageCommand(element, configuration, output), std::string());
    const std::string format = getPropertyValue(element, tools.linkerOutputFormat, configuration).value_or("None");
    if (format != "None" && !format.empty()) {
        auto converted = [&](const std::string &path) {
            const FilePath program(path);
            return program.path() + "/" + program.baseName(true) + "." + format;
        };
        StringList list{tool("$(OBJCOPY)"), output, converted(output),
                        format == "bin" ? "-Obinary" : format == "hex" ? "-Oihex" : "-O" + format};
        if (!made.outputFileGapFill.empty())
            list.insert(list.end(), {"--gap-fill", made.outputFileGapFill});
        builder->addCommand(directory, list, converted(made.outputFile));
    }
}

StringList GCCProjectSystem::memoryUsageCommand(ProjectElement *element, const std::string &configuration,
                                                const std::string &output) {
    std::vector<MemoryRegion> segments;
    memorySegments(element, configuration, false, segments);
    std::stable_sort(segments.begin(), segments.end(), [](const MemoryRegion &a, const MemoryRegion &b) {
        return a.start != b.start ? a.start < b.start : a.end < b.end;
    });
    std::string text;
    for (const MemoryRegion &segment : segments) {
        char numbers[48];
        std::snprintf(numbers, sizeof numbers, ",0x%llx,0x%llx", static_cast<unsigned long long>(segment.start),
                      static_cast<unsigned long long>(segment.end + 1 - segment.start));
        text += (text.empty() ? "" : ",") + segment.name + numbers;
    }
    return {expandProjectMacros(element, installDirectory + "/bin/imagedump$(HostEXE)", configuration), output,
            "-memory-usage", text};
}

void GCCProjectSystem::appendIntermediateFiles(ProjectElement *element, const std::string &configuration,
                                               int step, const std::string &output, StringList &list) {
    if (step == KindCpp && getPropertyValue(element, gccProperties.enableModules, configuration) == "Yes") {
        for (const std::string &file :
             {moduleInterfaceFilePath(element, configuration),
              intermediateFilePath(element, configuration, sourcePath(element, configuration), ".modmap")})
            if (FileInfo(file).exists())
                list.push_back(file);
        return;
    }
    if (step != KindLink && step != KindArchive)
        return;
    auto add = [&](PropertyClass *kept, const std::string &file) {
        if (getPropertyValue(element, kept, configuration) == "Yes" && FileInfo(file).exists())
            list.push_back(file);
    };
    add(gccProperties.keepIndirectFiles, indFileName(element, configuration, output));
    if (step == KindLink)
        add(gccProperties.keepLinkerScriptFile, intermediateFilePath(element, configuration, output, ".ld"));
}
