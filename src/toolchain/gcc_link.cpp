// The link of an executable through the compiler driver, its response file,
// and the commands that follow a link.

#include "toolchain/gcc_project_system.h"

#include "build/builder.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/paths.h"
#include "support/text_split.h"
#include "toolchain/gcc_arguments.h"

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
                                          const std::string &output) {
    const std::string named = expandedValue(element, gccProperties.indirectFileName, configuration);
    if (!named.empty())
        return absolutePathFrom(projectDirectory(element, configuration), named);
    return intermediateFilePath(element, configuration, output, ".ind");
}

namespace {

// The inputs as the linker takes them, with each library that is named in
// wholeArchive (by path or by file name) between the two switches.
StringList linkEntries(const StringList &files, const StringList &wholeArchive, bool forDriver, bool quoted) {
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

}  // namespace

void GCCProjectSystem::writeIndirect(ProjectElement *element, const std::string &configuration,
                                     const StringList &files, const std::string &name, bool forDriver,
                                     Builder *builder) {
    const StringList whole = splitCommandLine(expandedValue(element, gccProperties.wholeArchive, configuration));
    builder->writeLines(name, linkEntries(files, whole, forDriver, true));
}

void GCCProjectSystem::linkStep(ProjectElement *element, const std::string &configuration,
                                const std::string &outputRelative, const std::string &outputFile,
                                const StringList &inputs, Builder *builder) {
    const GCCProperties &gcc = gccProperties;
    const ToolProperties &tools = toolProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    auto yes = [&](PropertyClass *property) { return value(property) == "Yes"; };
    const std::string directory = projectDirectory(element, configuration);

    if (yes(gcc.printMemoryUsage)) {
        if (builder) {
            builder->beginStep(element, "Linking '" + FilePath(outputFile).fileName() + "'", configuration, 0);
            builder->reportError("printing the memory usage of a link is not available yet");
            builder->endStep(element, configuration);
        }
        return;
    }
    std::string script;
    if (!isHostedToolchain() && !linkerScriptOfDriver(element, configuration, builder, script))
        return;

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
        const StringList whole =
            splitCommandLine(expandedValue(element, gcc.wholeArchive, configuration));
        for (std::string &entry : linkEntries(inputs, whole, true, false))
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
    if (!indirect.empty() && value(gcc.keepIndirectFiles) == "No")
        builder->deleteFile(indirect, true);
    postLinkCommands(element, configuration, outputRelative, outputFile, builder);
    builder->endStep(element, configuration);
}

bool GCCProjectSystem::hasLinkerScript(ProjectElement *element, const std::string &configuration,
                                       std::string &path, Builder *builder) {
    // A linker script among the project's files wins.
    std::vector<ProjectElement *> pending{projectOf(element)};
    while (!pending.empty()) {
        ProjectElement *node = pending.back();
        pending.pop_back();
        if (!node)
            continue;
        if (isFile(node) && fileTypeName(node, configuration) == "Linker Script" &&
            getPropertyValue(node, nodeProperties.buildExcludeFromBuild, configuration) != "Yes") {
            path = sourcePath(node, configuration);
            return true;
        }
        for (XMLNode *child = node->firstChild; child; child = child->nextSibling)
            if (ProjectElement *below = ProjectElement::from(child); below && (isFile(below) || isFolder(below)))
                pending.push_back(below);
    }
    const ToolProperties &tools = toolProperties;
    if (!usesBrenlowLinker(element, configuration) &&
        getPropertyValue(element, tools.linkUseLinkerScriptFile, configuration) != "Yes")
        return true;
    const std::string name = expandedValue(element, tools.linkLinkerScriptFile, configuration);
    StringList candidates;
    if (!name.empty() && name.front() == '/')
        candidates.push_back(name);
    else if (!name.empty()) {
        candidates.push_back(absolutePathFrom(projectDirectory(element, configuration), name));
        StringList directories;
        linkerLibraryDirectories(element, configuration, directories);
        for (const std::string &directory : directories)
            candidates.push_back(absolutePathFrom(directory, name));
    }
    for (const std::string &candidate : candidates) {
        if (FileInfo(candidate).isFile()) {
            path = candidate;
            return true;
        }
    }
    if (getPropertyValue(element, tools.linkLinkerScriptFile, configuration) == tools.linkLinkerScriptFile->defaultValue())
        return true;
    if (builder) {
        builder->beginStep(element, "Locating Linker Script File", configuration, 0);
        builder->reportError("Linker script file '" + name + "' does not exist.");
        builder->endStep(element, configuration);
    }
    return false;
}

bool GCCProjectSystem::linkerControlFiles(ProjectElement *element, const std::string &configuration,
                                          Builder *builder, std::string &linkerScript, std::string &) {
    // The machine's own linker knows where a program goes.
    return isHostedToolchain() || hasLinkerScript(element, configuration, linkerScript, builder);
}

bool GCCProjectSystem::linkerScriptOfDriver(ProjectElement *element, const std::string &configuration,
                                            Builder *builder, std::string &script) {
    std::string memoryMap;
    if (!linkerControlFiles(element, configuration, builder, script, memoryMap))
        return false;
    if (script.empty() && getPropertyValue(element, gccProperties.generateLinkerScript, configuration) == "Yes") {
        if (builder) {
            builder->beginStep(element, "Generating linker script", configuration, 0);
            builder->reportError("generating a linker script is not available yet");
            builder->endStep(element, configuration);
        }
        return false;
    }
    return true;
}

void GCCProjectSystem::postLinkCommands(ProjectElement *element, const std::string &configuration,
                                        const std::string &outputRelative, const std::string &outputFile,
                                        Builder *builder) {
    const GCCProperties &gcc = gccProperties;
    const ToolProperties &tools = toolProperties;
    auto yes = [&](PropertyClass *property) {
        return getPropertyValue(element, property, configuration) == "Yes";
    };
    auto tool = [&](const char *macro) { return expandProjectMacros(element, macro, configuration); };
    const std::string directory = projectDirectory(element, configuration);

    if (yes(gcc.generateBreakpadSymbols)) {
        const std::string symbols = expandedValue(element, gcc.breakpadSymbolsDirectory, configuration);
        if (!symbols.empty())
            builder->addCommand(directory,
                                {installDirectory + "/bin/symplan", "-extract-symbols-to-dir", outputRelative, symbols},
                                std::string());
    }
    const std::string patch = expandWith(
        element, getPropertyValue(element, tools.linkerPatchBuildCommand, configuration).value_or(""),
        configuration, {{"TargetPath", outputFile}, {"RelTargetPath", outputRelative}});
    const StringList patchCommand = splitCommandLine(patch);
    if (!patchCommand.empty()) {
        const std::string wd = expandedValue(element, tools.linkerPatchBuildCommandWd, configuration);
        builder->addCommand(wd.empty() ? directory : absolutePathFrom(directory, wd), patchCommand, outputFile);
    }
    if (yes(gcc.stripSymbols))
        builder->addCommand(directory, {tool("$(STRIP)"), outputRelative}, outputFile);
    if (yes(gcc.linkerStripDebugInformation))
        builder->addCommand(directory, {tool("$(STRIP)"), "-S", outputRelative, "-o", outputRelative}, outputFile);
    const std::string format = getPropertyValue(element, tools.linkerOutputFormat, configuration).value_or("None");
    if (format != "None" && !format.empty()) {
        auto converted = [&](const std::string &path) {
            const FilePath output(path);
            return output.path() + "/" + output.baseName(true) + "." + format;
        };
        builder->addCommand(directory,
                            {tool("$(OBJCOPY)"), outputRelative, converted(outputRelative),
                             format == "bin" ? "-Obinary" : format == "hex" ? "-Oihex" : "-O" + format},
                            converted(outputFile));
    }
}

void GCCProjectSystem::appendIntermediateFiles(ProjectElement *element, const std::string &configuration,
                                               int step, const std::string &output, StringList &list) {
    if (step != KindLink && step != KindArchive)
        return;
    if (getPropertyValue(element, gccProperties.keepIndirectFiles, configuration) != "Yes")
        return;
    const std::string indirect = indFileName(element, configuration, output);
    if (FileInfo(indirect).exists())
        list.push_back(indirect);
}
