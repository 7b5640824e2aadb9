// The macros of a node: what $(ProjectDir), $(InputPath), $(OutDir) and
// their kin stand for when a property of that node is expanded.

#include "project/project_macro_source.h"
#include "project/project_system.h"
#include "support/file_info.h"
#include "support/macro_expansion.h"
#include "support/paths.h"

std::string ProjectSystem::expandGlobalMacros(const std::string &text) const {
    return macros ? expandMacros(*macros, text) : text;
}

void ProjectSystem::setMacroCacheEnabled(bool enabled) {
    macroCache_.enabled = enabled;
    dropMacroCache();
}

std::string ProjectSystem::expandProjectMacros(ProjectElement *element, const std::string &text,
                                               const std::string &configuration) {
    if (!macros || text.find(macros->macroCharacter()) == std::string::npos)
        return text;
    if (!macroCache_.enabled) {
        ProjectMacroSource source(*this, element, configuration);
        return expandMacrosWith(*macros, source, text, true, true);
    }
    const std::shared_ptr<ProjectMacroSource> source = cachedMacroSource(element, configuration);
    return expandMacrosWith(*macros, *source, text, true, true);
}

namespace {

// The extra macros of a step over the macros of the node.
class LayeredMacroSource : public MacroSource {
public:
    LayeredMacroSource(const MacroMap &extra, MacroSource &base) : extra_(extra), base_(base) {}
    const std::string *find(std::string_view name) override {
        const auto it = extra_.find(name);
        return it != extra_.end() ? &it->second : base_.find(name);
    }

private:
    const MacroMap &extra_;
    MacroSource &base_;
};

}  // namespace

std::string ProjectSystem::expandProjectMacros(ProjectElement *element, const std::string &text,
                                               const std::string &configuration,
                                               const MacroMap &extra) {
    if (extra.empty())
        return expandProjectMacros(element, text, configuration);
    if (!macros || text.find(macros->macroCharacter()) == std::string::npos)
        return text;
    if (!macroCache_.enabled) {
        ProjectMacroSource source(*this, element, configuration);
        LayeredMacroSource layered(extra, source);
        return expandMacrosWith(*macros, layered, text, true, true);
    }
    const std::shared_ptr<ProjectMacroSource> source = cachedMacroSource(element, configuration);
    LayeredMacroSource layered(extra, *source);
    return expandMacrosWith(*macros, layered, text, true, true);
}

std::shared_ptr<ProjectMacroSource> ProjectSystem::cachedMacroSource(
    ProjectElement *element, const std::string &configuration) {
    if (!macroCache_.source || macroCache_.element != element || !element ||
        macroCache_.source->configuration() != configuration) {
        macroCache_.source = std::make_shared<ProjectMacroSource>(*this, element, configuration);
        macroCache_.element = element;
    }
    return macroCache_.source;
}

MacroMap ProjectSystem::projectMacros(ProjectElement *element, const std::string &configuration) {
    if (macroCache_.enabled)
        return cachedMacroSource(element, configuration)->materialize();
    return ProjectMacroSource(*this, element, configuration).materialize();
}

PropertyValueGroupFile *ProjectSystem::groupFileOf(ProjectElement *element,
                                                   const std::string &configuration) {
    if (macroCache_.enabled)
        return cachedMacroSource(element, configuration)->groupFile();
    return ProjectMacroSource(*this, element, configuration).groupFile();
}

