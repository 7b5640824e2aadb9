#include "toolchain/arm/arm_project_system.h"

void ARMProjectSystem::setPropertyValue(ProjectElement *element, PropertyClass *property,
                                        const std::string &configuration, const std::string &value) {
    OstrandGCCProjectSystem::setPropertyValue(element, property, configuration, value);
    const ARMProperties &a = armProperties;
    if (property != a.coreType)
        return;
    const int core = arm::coreNumber(value);
    if (!core)
        return;
    OstrandGCCProjectSystem::setPropertyValue(element, a.architecture, configuration,
                                              arm::architectureName(arm::coreArchitecture(core)));
    if (getPropertyValue(element, a.instructionSet, configuration) == "None")
        OstrandGCCProjectSystem::setPropertyValue(element, a.instructionSet, configuration,
                                                  arm::isCortexMCore(core) ? "Thumb" : "ARM");
}

void ARMProjectSystem::importLinkerOption(ProjectElement *element, const std::string &configuration,
                                          StringList &options) {
    const ARMProperties &a = armProperties;
    // The CMSE import library options, plain or behind -Wl, or -Xlinker.
    auto take = [&](const std::string &option) {
        std::string value;
        if (option == "--cmse-implib") {
            setPropertyValue(element, a.v8MHasCmse, configuration, "Yes");
            return true;
        }
        for (const auto &[prefix, property] : {std::pair{"--out-implib=", a.cmseImportLibraryFileName},
                                               std::pair{"--in-implib=", a.checkCmseImportLibraryFileName}}) {
            const std::string_view head(prefix);
            if (option.compare(0, head.size(), head) == 0) {
                setPropertyValue(element, property, configuration, option.substr(head.size()));
                return true;
            }
        }
        return false;
    };
    StringList rest;
    for (std::size_t i = 0; i < options.size(); ++i) {
        const std::string &option = options[i];
        if (option.compare(0, 4, "-Wl,") == 0 && take(option.substr(4)))
            continue;
        if (option == "-Xlinker" && i + 1 < options.size() && take(options[i + 1])) {
            ++i;
            continue;
        }
        rest.push_back(option);
    }
    options = std::move(rest);
    OstrandGCCProjectSystem::importLinkerOption(element, configuration, options);
}
