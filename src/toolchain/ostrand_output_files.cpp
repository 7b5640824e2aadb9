// The files that the direct form's compiles make: the object, the
// precompiled header, and the by-products that a clean removes.

#include "toolchain/ostrand_gcc_project_system.h"

#include "support/file_info.h"

std::string OstrandGCCProjectSystem::outputFilePath(int step, ProjectElement *element,
                                                    const std::string &configuration) {
    if (step != KindC && step != KindCpp)
        return GCCProjectSystem::outputFilePath(step, element, configuration);
    // Asked for every file of a build: the common case, an object of no
    // precompiled header without link-time optimization, takes the fewest
    // property look-ups.
    auto clang = [&] {
        return !externalGcc(element, configuration) &&
               getPropertyValue(element, ostProperties.compilerVariant, configuration) != "gcc";
    };
    if (isFile(element) && precompiledHeaderOf(element, configuration) == element)
        return sourcePath(element, configuration) + (clang() ? ".pch" : ".gch");
    // clang's objects are bitcode for the link-time optimizer.
    if (isYes(element, gccProperties.linkTimeOptimization, configuration) && clang() &&
        fileTypeName(element, configuration) != "Preprocess")
        return absolutePathFrom(projectDirectory(element, configuration),
                                expandedValue(element, nodeProperties.buildObjectFileName, configuration,
                                              MacroMap{{"OBJ", ".bc"}}));
    // Not a precompiled header: that was asked above.
    return StandardProjectSystem::outputFilePath(step, element, configuration);
}

void OstrandGCCProjectSystem::appendIntermediateFiles(ProjectElement *element, const std::string &configuration,
                                                      int step, const std::string &output, StringList &list) {
    if (!directForm(element, configuration) ||
        (step != KindC && step != KindCpp && step != KindAssembly && step != KindLink)) {
        GCCProjectSystem::appendIntermediateFiles(element, configuration, step, output, list);
        return;
    }
    auto yes = [&](PropertyClass *property) { return getPropertyValue(element, property, configuration) == "Yes"; };
    if (step == KindLink) {
        auto add = [&](bool made, const std::string &file) {
            if (made && FileInfo(file).exists())
                list.push_back(file);
        };
        add(yes(gccProperties.keepIndirectFiles), indFileName(element, configuration, output, "_files.ind"));
        add(yes(gccProperties.keepLinkerScriptFile), intermediateFilePath(element, configuration, output, ".ld"));
        std::string log;
        add(linkerLogFilePath(element, configuration, log), log);
        return;
    }
    const std::string source = sourcePath(element, configuration);
    auto add = [&](bool made, const char *suffix) {
        const std::string file = intermediateFilePath(element, configuration, source, suffix);
        if (made && FileInfo(file).exists())
            list.push_back(file);
    };
    add(step != KindAssembly && yes(ostProperties.keepAssembly), ".asm");
    add(yes(toolProperties.asmGenerateListingFile), ".lst");
    add(yes(ostProperties.keepPreprocessorOutput),
        step == KindC ? "_PP.c" : step == KindCpp ? "_PP.cpp" : "_PP.s");
}
