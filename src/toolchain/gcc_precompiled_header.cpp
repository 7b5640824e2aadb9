// The precompiled header of a project: which header it is, that its compile
// comes first, and where the driver writes it.

#include "toolchain/gcc_project_system.h"

#include "build/sibling_walk.h"

ProjectElement *GCCProjectSystem::precompiledHeaderOf(ProjectElement *element, const std::string &configuration) {
    ProjectElement *project = projectOf(element);
    if (!project || !isYes(project, gccProperties.enablePrecompiledHeader, configuration))
        return nullptr;
    PrecompiledHeaders &cache = precompiledHeaders_;
    const auto key = std::make_pair(project, configuration);
    if (cache.enabled) {
        const auto found = cache.entries.find(key);
        if (found != cache.entries.end())
            return found->second;
    }
    ProjectElement *header = nullptr;
    walkFromSibling(firstChild(project), [&](ProjectElement *node) {
        if (header)
            return false;
        if (isFile(node) && fileTypeName(node, configuration) == "Header" &&
            getPropertyValue(node, gccProperties.precompiledHeader, configuration) == "Yes")
            header = node;
        return true;
    });
    if (cache.enabled)
        cache.entries[key] = header;
    return header;
}

void GCCProjectSystem::setDependencyCacheEnabled(bool enabled) {
    StandardProjectSystem::setDependencyCacheEnabled(enabled);
    precompiledHeaders_.enabled = enabled;
    precompiledHeaders_.entries.clear();
}

int GCCProjectSystem::precompiledHeaderStep(ProjectElement *element, const std::string &configuration) {
    if (!isFile(element) || precompiledHeaderOf(element, configuration) != element)
        return 0;
    return isCppProject(element, configuration) ? KindCpp : KindC;
}

void GCCProjectSystem::forcedIncludeFiles(ProjectElement *element, const std::string &configuration,
                                          StringList &list) {
    StandardProjectSystem::forcedIncludeFiles(element, configuration, list);
    ProjectElement *header = precompiledHeaderOf(element, configuration);
    if (header && header != element)
        list.push_back(sourcePath(header, configuration));
}

std::string GCCProjectSystem::outputFilePath(int step, ProjectElement *element, const std::string &configuration) {
    if ((step == KindC || step == KindCpp) && isFile(element) && precompiledHeaderOf(element, configuration) == element)
        return sourcePath(element, configuration) + ".gch";
    return StandardProjectSystem::outputFilePath(step, element, configuration);
}
