// The archive of a library: ar replaces the whole archive, for "-r" only
// adds members and would keep objects that have left the project.

#include "toolchain/gcc_project_system.h"

#include "build/builder.h"
#include "support/paths.h"
#include "support/text_split.h"

void GCCProjectSystem::archiveStep(ProjectElement *element, const std::string &configuration,
                                   const std::string &outputRelative, const std::string &outputFile,
                                   const StringList &inputs, Builder *builder) {
    if (!builder)
        return;
    const std::string directory = projectDirectory(element, configuration);
    builder->beginStep(element, "Archiving '" + FilePath(outputFile).fileName() + "'", configuration, 0);
    builder->deleteFile(outputFile, true);
    StringList arguments{expandProjectMacros(element, "$(AR)", configuration), "-rcs", outputRelative};
    std::string indirect;
    if (usesIndirectFile(element, configuration, inputs.size(), 99)) {
        indirect = indFileName(element, configuration, outputFile);
        writeIndirect(element, configuration, inputs, indirect, true, builder);
        arguments.push_back(concat("@", relativeOrAbsolute(directory, indirect)));
    } else {
        arguments.insert(arguments.end(), inputs.begin(), inputs.end());
    }
    builder->addCommand(directory, arguments, outputFile);
    if (usesRanlib(element, configuration))
        builder->addCommand(directory, {expandProjectMacros(element, "$(RANLIB)", configuration), outputRelative},
                            outputFile);
    if (!indirect.empty() && getPropertyValue(element, gccProperties.keepIndirectFiles, configuration) == "No")
        builder->deleteFile(indirect, true);
    builder->endStep(element, configuration);
}
