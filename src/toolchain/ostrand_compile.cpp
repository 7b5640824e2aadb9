// A C or C++ compile in the direct form: the build runs the compiler proper
// itself, cc1 or cc1plus writing assembly text that gas then assembles, or
// clang's -cc1 writing the object.

#include "toolchain/ostrand_gcc_project_system.h"

#include "build/builder.h"
#include "support/command_line.h"
#include "support/file_info.h"
#include "support/file_path.h"
#include "support/file_utils.h"

#include <algorithm>

namespace {

// The arguments of a compile that has preprocessed text for its input: the
// include directories, defines and dependency options have done their work.
StringList withoutPreprocessorOptions(const StringList &list) {
    static const char *const withFile[] = {"-MD", "-MMD", "-MQ", "-MT", "-dependency-file"};
    static const char *const prefixes[] = {"-MD", "-MMD", "-MQ", "-MT", "-dependency-file", "-sys-header-deps",
                                           "-I",  "-isystem", "-D", "-U"};
    StringList kept;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const std::string &argument = list[i];
        if (std::find(std::begin(withFile), std::end(withFile), argument) != std::end(withFile)) {
            ++i;
            continue;
        }
        if (std::none_of(std::begin(prefixes), std::end(prefixes),
                         [&](const char *prefix) { return argument.starts_with(prefix); }))
            kept.push_back(argument);
    }
    return kept;
}

}  // namespace

std::string OstrandGCCProjectSystem::unavailableCompile(ProjectElement *element, const std::string &configuration,
                                                        int step) {
    auto value = [&](PropertyClass *property) {
        return getPropertyValue(element, property, configuration).value_or("");
    };
    const GCCProperties &gcc = gccProperties;
    const std::string variant = value(ostProperties.compilerVariant);
    if (variant.starts_with("Brenlow"))
        return "error: the Brenlow compiler (arm_compiler_variant) is not available yet";
    if (step == KindCpp && value(gcc.enableModules) == "Yes")
        return "error: C++ modules (gcc_enable_modules) with the installation's tools are not available yet; set "
               "use_external_gcc to \"Yes\" to build them with an external GNU toolchain";
    if (variant != "gcc")
        return {};
    if (value(ostProperties.generateStackSizes) == "Yes")
        return "error: the stack tally of a gcc compile (generate_stack_sizes) is not available yet";
    if (value(gcc.linkTimeOptimization) == "Yes" && value(nodeProperties.buildDebugInformation) == "Yes" &&
        value(gcc.debuggingLevel) != "None")
        return "error: debug information with link-time optimization of a gcc compile (link_time_optimization) "
               "is not available yet";
    return {};
}

void OstrandGCCProjectSystem::compileStep(ProjectElement *element, const std::string &configuration, int step,
                                          const std::string &outputRelative, const std::string &outputFile,
                                          const StringList &inputs, Builder *builder) {
    const std::string unavailable = unavailableCompile(element, configuration, step);
    if (!unavailable.empty()) {
        unavailableStep(element, configuration, step, builder, unavailable);
        return;
    }
    const GCCProperties &gcc = gccProperties;
    const OstProperties &ost = ostProperties;
    auto value = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration); };
    auto path = [&](const std::string &file) { return commandPath(element, configuration, file); };
    const bool isGcc = value(ost.compilerVariant) == "gcc";
    const bool cpp = step == KindCpp;
    const std::string input = inputs.empty() ? sourcePath(element, configuration) : inputs.front();
    const std::string output = value(ost.supplyAbsoluteFilePath) == "Yes" ? outputFile : outputRelative;

    StringList list;
    appendLanguageOptions(element, configuration, step, isGcc, list);
    platform()->appendCompilerTargetOptions(isGcc, element, configuration, list);
    appendDirectPreprocessorOptions(element, configuration, step, isGcc, output, list);
    appendWarningSwitches(element, configuration, list);
    appendAllWarnings(element, configuration, step, list);
    appendQuietOption(element, configuration, isGcc, list);
    if (isGcc)
        appendCharacterSets(element, configuration, list);
    else if (value(ost.generateStackSizes) == "Yes")
        list.push_back("-fstack-size-section");
    if (!appendDirectAdditionalOptions(element, configuration, step, isGcc ? "gcc" : "clang", builder, list))
        return;
    if (cpp) {
        if (isGcc && value(gcc.enableCoroutines) == "Yes")
            list.push_back("-fcoroutines");
        if (value(gcc.useCxaAtExit) == "No")
            list.push_back("-fno-use-cxa-atexit");
        if (value(gcc.threadSafeStatics) == "No")
            list.push_back("-fno-threadsafe-statics");
        const std::string threadModel = value(ost.clangThreadModel).value_or("None");
        if (!isGcc && threadModel != "None")
            list.insert(list.end(), {"-mthread-model", threadModel});
    }
    appendAnsiChecking(element, configuration, step, list);
    appendDirectCodeGeneration(element, configuration, isGcc, list);
    if (!isGcc)
        list.insert(list.end(), {"-main-file-name", FilePath(input).fileName()});
    if (!builder)
        return;

    const std::string directory = projectDirectory(element, configuration);
    const bool preprocessOnly = fileTypeName(element, configuration) == "Preprocess";
    if (preprocessOnly || value(ost.keepPreprocessorOutput) == "Yes") {
        const std::string preprocessed =
            preprocessOnly ? outputFile
                           : intermediateFilePath(element, configuration, input, cpp ? "_PP.cpp" : "_PP.c");
        StringList run = list;
        run.insert(run.end(), {path(input), "-E", "-o", path(preprocessed)});
        builder->beginStep(element, "Preprocessing " + displayName(element), configuration, 0);
        builder->addCommand(directory, run, preprocessed);
        builder->endStep(element, configuration);
        if (preprocessOnly)
            return;
        // The compile goes on from the preprocessed text.
        list = withoutPreprocessorOptions(list);
        if (isGcc)
            list.push_back("-fpreprocessed");
        else
            list.insert(list.end(), {"-x", cpp ? "c++-cpp-output" : "cpp-output"});
        list.push_back(path(preprocessed));
    } else {
        list.push_back(path(input));
    }

    const bool lto = value(gcc.linkTimeOptimization) == "Yes";
    if (isGcc && lto)
        list.push_back("-flto");
    else if (!isGcc)
        list.push_back(value(ost.keepAssembly) == "Yes" ? "-S" : lto ? "-emit-llvm-bc" : "-emit-obj");
    const std::string assembly = intermediateFilePath(element, configuration, input, ".asm");
    list.insert(list.end(), {"-o", isGcc ? path(assembly) : output});
    builder->beginStep(element,
                       isFolder(element) ? "Compiling folder '" + displayName(element) + "' in unity mode as " +
                                               FilePath(input).fileName()
                                         : "Compiling '" + displayName(element) + "'",
                       configuration, 0);
    if (!isGcc && !clangSupported()) {
        builder->reportError(clangUnsupportedMessage());
        builder->endStep(element, configuration);
        return;
    }
    ProjectElement *header = precompiledHeaderOf(element, configuration);
    const std::string pch = header ? path(sourcePath(header, configuration)) : std::string();
    if (header == element) {
        // The header's output lies beside it; its other files go to the
        // intermediate directory, which the build makes only for objects.
        makeDirectories(directoryOf(assembly));
        makeDirectories(directoryOf(dependencyFilePath(element, configuration, output)));
        // cc1 takes the file of --output-pch joined to the option.
        if (isGcc)
            list.push_back("--output-pch=" + pch + ".gch");
        else
            list.insert(list.end(), {"-emit-pch", "-o", pch + ".pch"});
    } else if (header) {
        if (isGcc)
            list.insert(list.end(), {"-include", pch, "-Winvalid-pch"});
        else
            list.insert(list.end(), {"-include-pch", pch + ".pch"});
    }
    builder->addCommand(directory, list, isGcc ? assembly : outputFile);
    if (isGcc) {
        // A precompiled header is complete without an object.
        if (header != element)
            assembleCompilerOutput(element, configuration, assembly, output, outputFile, builder);
        if (value(ost.keepAssembly) != "Yes")
            builder->deleteFile(assembly, true);
    }
    if (value(toolProperties.asmGenerateListingFile) == "Yes")
        addListingCommand(element, configuration, output, input, builder);
    builder->endStep(element, configuration);
}

void OstrandGCCProjectSystem::assembleCompilerOutput(ProjectElement *element, const std::string &configuration,
                                                     const std::string &assembly, const std::string &output,
                                                     const std::string &outputFile, Builder *builder) {
    StringList list{expandProjectMacros(element, "$(AS)", configuration), "--traditional-format"};
    if (getPropertyValue(element, toolProperties.cIgnoreIncludes, configuration) == "No")
        appendUserIncludeDirectories(element, configuration, KindNone, list);
    // gas takes the gcc spelling of the target.
    platform()->appendAssemblerTargetOptions(true, element, configuration, list);
    list.insert(list.end(), {commandPath(element, configuration, assembly), "-o", output});
    for (std::string &argument : splitCommandLine(expandedValue(element, ostProperties.cAsmAdditionalOptions,
                                                                configuration)))
        list.push_back(std::move(argument));
    appendAssemblerDebugInformation(element, configuration, true, list);
    appendGenericOptions(element, configuration, GenericOptionSet::Assembler, "gcc", list);
    builder->addCommand(projectDirectory(element, configuration), list, outputFile);
}
