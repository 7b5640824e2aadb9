#include "toolchain/arm/arm_platform_project_system.h"

#include "build/standard_project_system.h"

std::string ARMPlatformProjectSystem::executableFileExtension(ProjectElement *element,
                                                              const std::string &configuration) {
    PropertyClass *external = owner_->propertyClasses.propertyClass("use_external_gcc");
    return owner_->getPropertyValue(element, external, configuration) == "Yes" ? ".axf" : ".elf";
}
