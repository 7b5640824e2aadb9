// An assembly file in the direct form: the C preprocessor when the file
// asks for it, then gas or clang's assembler, and objcopy for sections
// that are renamed.

#include "toolchain/ostrand_gcc_project_system.h"

#include "build/builder.h"

namespace {

struct SectionName {
    PropertyClass *property;
    const char *standard;  // the section's name in the object
};

}  // namespace

void OstrandGCCProjectSystem::appendAssemblerDebugInformation(ProjectElement *element,
                                                              const std::string &configuration, bool gas,
                                                              StringList &list) {
    const GCCProperties &gcc = gccProperties;
    auto value = [&](PropertyClass *property) {
        return getPropertyValue(element, property, configuration).value_or("");
    };
    if (value(nodeProperties.buildDebugInformation) != "Yes" || value(gcc.debuggingLevel) == "None")
        return;
    const std::string version = value(gcc.dwarfVersion);
    const bool known = version.size() == 7 && version.starts_with("dwarf-") && version[6] >= '2' && version[6] <= '5';
    if (gas) {
        list.push_back("-g");
        if (known)
            list.push_back("-g" + version);
        return;
    }
    if (known)
        list.push_back("-dwarf-version=" + version.substr(6));
    list.insert(list.end(), {"-debug-info-kind=standalone", "-debugger-tuning=gdb"});
}

void OstrandGCCProjectSystem::assembleStep(ProjectElement *element, const std::string &configuration,
                                           const std::string &outputRelative, const std::string &outputFile,
                                           const StringList &inputs, Builder *builder) {
    const OstProperties &ost = ostProperties;
    auto value = [&](PropertyClass *property) {
        return getPropertyValue(element, property, configuration).value_or("");
    };
    auto path = [&](const std::string &file) { return commandPath(element, configuration, file); };
    if (value(ost.assemblerVariant).starts_with("Brenlow")) {
        unavailableStep(element, configuration, KindAssembly, builder,
                        "error: the Brenlow assembler (arm_assembler_variant) is not available yet");
        return;
    }
    if (!builder)
        return;
    const bool gas = value(ost.assemblerVariant) == "gcc";
    const std::string directory = projectDirectory(element, configuration);
    const std::string input = inputs.empty() ? sourcePath(element, configuration) : inputs.front();
    const std::string output = value(ost.supplyAbsoluteFilePath) == "Yes" ? outputFile : outputRelative;
    const bool preprocessOnly = fileTypeName(element, configuration) == "Preprocess";
    const bool preprocess = preprocessOnly || value(ost.preprocessAssemblyCode) == "Yes";
    const bool keepPreprocessed = value(ost.keepPreprocessorOutput) == "Yes";
    const std::string preprocessed = intermediateFilePath(element, configuration, input, "_PP.s");
    builder->beginStep(element, (preprocess ? "Preprocessing '" : "Assembling '") + displayName(element) + "'",
                       configuration, 0);
    if (!gas && !clangSupported()) {
        builder->reportError(clangUnsupportedMessage());
        builder->endStep(element, configuration);
        return;
    }

    StringList list;
    if (preprocess) {
        appendLanguageOptions(element, configuration, KindAssembly, gas, list);
        list.push_back("-E");
        if (value(nodeProperties.buildDebugInformation) != "Yes")
            list.push_back("-P");
        platform()->appendPreprocessTargetOptions(gas, element, configuration, list);
        appendDirectPreprocessorOptions(element, configuration, KindAssembly, gas, output, list);
        appendWarningSwitches(element, configuration, list);
        appendQuietOption(element, configuration, gas, list);
        list.push_back(path(input));
        appendGenericOptions(element, configuration, GenericOptionSet::Assembler, gas ? "gcc" : "clang", list);
        list.insert(list.end(), {"-o", path(preprocessed)});
        builder->addCommand(directory, list, preprocessed);
        if (preprocessOnly) {
            builder->endStep(element, configuration);
            return;
        }
        list.clear();
    }

    if (gas) {
        list.insert(list.end(), {expandProjectMacros(element, "$(AS)", configuration), "--traditional-format"});
        if (value(toolProperties.cIgnoreIncludes) == "No")
            appendUserIncludeDirectories(element, configuration, KindAssembly, list);
    } else {
        list.insert(list.end(),
                    {expandProjectMacros(element, "$(CLANG)", configuration), "-cc1as", "-filetype", "obj"});
        const std::string relocation = value(ost.clangRelocationModel);
        if (relocation != "None")
            list.insert(list.end(), {"-mrelocation-model", relocation});
    }
    platform()->appendAssemblerTargetOptions(gas, element, configuration, list);
    if (!appendDirectAdditionalOptions(element, configuration, KindAssembly, gas ? "gcc" : "clang", builder, list)) {
        builder->endStep(element, configuration);
        return;
    }
    list.push_back(path(preprocess ? preprocessed : input));
    if (!preprocess && value(nodeProperties.buildGenerateDependencyFile) != "No")
        list.insert(list.end(), {"--MD", path(dependencyFilePath(element, configuration, output))});

    // Sections other than the usual ones are renamed in a copy of the
    // assembler's object.
    const SectionName sections[] = {{toolProperties.defaultCodeSection, ".text"},
                                    {toolProperties.defaultDataSection, ".data"},
                                    {toolProperties.defaultZeroedSection, ".bss"},
                                    {toolProperties.defaultConstSection, ".rodata"}};
    StringList renames;
    for (const SectionName &section : sections) {
        const std::string name = value(section.property);
        if (name != section.property->defaultValue().value_or(""))
            renames.insert(renames.end(), {"--rename-section", std::string(section.standard) + "=" + name});
    }
    const std::string assembled =
        renames.empty() ? outputFile : intermediateFilePath(element, configuration, input, "_prerename.o");
    list.insert(list.end(), {"-o", renames.empty() ? output : path(assembled)});
    const bool listing = value(toolProperties.asmGenerateListingFile) == "Yes";
    if (listing && gas)
        list.push_back("-adhlns=" + path(intermediateFilePath(element, configuration, input, ".lst")));
    appendAssemblerDebugInformation(element, configuration, gas, list);
    builder->addCommand(directory, list, assembled);
    if (preprocess && !keepPreprocessed)
        builder->deleteFile(preprocessed, true);
    if (!renames.empty()) {
        StringList rename{expandProjectMacros(element, "$(OBJCOPY)", configuration), path(assembled), output};
        rename.insert(rename.end(), renames.begin(), renames.end());
        builder->addCommand(directory, rename, outputFile);
        builder->deleteFile(assembled, true);
    }
    // The listing reads the object under its final name.
    if (listing && !gas)
        addListingCommand(element, configuration, output, input, builder);
    builder->endStep(element, configuration);
}
