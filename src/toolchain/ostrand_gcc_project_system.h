#pragma once

#include "toolchain/clang_compatibility.h"
#include "toolchain/gcc_project_system.h"
#include "toolchain/platform_project_system.h"

// The cross toolchain laid out in the installation. Its platform, the
// architecture's half, answers the questions of names and extensions.
class OstrandGCCProjectSystem : public GCCProjectSystem, public ClangCompatibility {
public:
    explicit OstrandGCCProjectSystem(SystemMacros *macroTable);

    virtual PlatformProjectSystem *platform() = 0;
    const PlatformProjectSystem *platform() const {
        return const_cast<OstrandGCCProjectSystem *>(this)->platform();
    }

    std::string platformName() const override { return platform()->platformName(); }
    int platformCode() const override { return platform()->platformCode(); }
    std::string executableFileExtension(ProjectElement *element,
                                        const std::string &configuration) override {
        return platform()->executableFileExtension(element, configuration);
    }
    // With use_external_gcc "Yes" the driver's macros; otherwise the
    // installation's tools: AR, AS, CC1, CC1PLUS, CLANG, LIBLTO, LD, LTO1,
    // OBJCOPY, OBJDUMP, STRIP, and GCC and GPLUSPLUS as its own drivers.
    void addToolMacros(ProjectElement *element, const std::string &configuration,
                       MacroMap &map) override;
    bool mayBeToolMacro(std::string_view name) const override;
    // ".pcm" unless arm_compiler_variant is "gcc".
    std::string moduleInterfaceFilePath(ProjectElement *element, const std::string &configuration) override;
    // The driver's abilities with use_external_gcc "Yes"; the installation's
    // tools scan modules with gcc only, and need no ranlib or module mapper.
    bool supportsModuleScan(ProjectElement *element, const std::string &configuration) override;
    bool usesRanlib(ProjectElement *element, const std::string &configuration) override;
    bool usesModuleMapper(ProjectElement *element, const std::string &configuration) override;
    // arm_linker_variant is "Brenlow".
    bool usesBrenlowLinker(ProjectElement *element, const std::string &configuration) override;
    // Without use_external_gcc every property counts as set, with its
    // effective value.
    bool hasOwnValue(ProjectElement *element, PropertyClass *property, const std::string &configuration,
                     std::optional<std::string> &value) override;

    PropertyClass *useExternalGcc;

private:
    bool externalGcc(ProjectElement *element, const std::string &configuration);
    // A value of the ARM table, read by name until that table exists here.
    std::optional<std::string> namedValue(ProjectElement *element, const char *name,
                                          const std::string &configuration);
    std::vector<std::unique_ptr<PropertyClass>> ownProperties_;
};
