#include "toolchain/arm/arm_target.h"

#include <cctype>

namespace arm {

namespace {

struct Core {
    const char *name;
    int architecture;
};

// Indexed by core number.
constexpr Core cores[coreCount] = {
    {"unknownCoreType", 0},
    {"ARM7TDMI", 1},     {"ARM7TDMI-S", 1},   {"ARM720T", 1},     {"ARM920T", 1},
    {"ARM946E-S", 2},    {"ARM966E-S", 2},    {"ARM968E-S", 2},   {"ARM926EJ-S", 2},
    {"ARM1136J-S", 3},   {"ARM1136JF-S", 3},  {"ARM1176JZ-S", 3}, {"ARM1176JZF-S", 3},
    {"Cortex-M0", 5},    {"Cortex-M0+", 5},   {"Cortex-M1", 5},   {"Cortex-M23", 12},
    {"Cortex-M3", 6},    {"Cortex-M33", 13},  {"Cortex-M4", 7},   {"Cortex-M52", 14},
    {"Cortex-M55", 14},  {"Cortex-M7", 7},    {"Cortex-M85", 14}, {"Cortex-R4", 8},
    {"Cortex-R4F", 8},   {"Cortex-R5", 8},    {"Cortex-R7", 8},   {"Cortex-R8", 8},
    {"Cortex-R52", 11},  {"Cortex-A5", 9},    {"Cortex-A7", 9},   {"Cortex-A8", 9},
    {"Cortex-A9", 9},    {"Cortex-A15", 9},   {"Cortex-A17", 9},  {"Cortex-A32", 10},
    {"Cortex-A35", 10},  {"Cortex-A53", 10},  {"Cortex-A55", 10}, {"Cortex-A57", 10},
    {"Cortex-A72", 10},  {"Cortex-A73", 10},  {"Cortex-A75", 10}, {"XScale", 2},
};

struct Architecture {
    const char *name;
    const char *lowerName;
    const char *march;
};

// Indexed by architecture number; v7R and v7A have their divide forms in
// marchName.
constexpr Architecture architectures[architectureCount] = {
    {"", "", ""},
    {"v4T", "v4t", "armv4t"},
    {"v5TE", "v5te", "armv5te"},
    {"v6", "v6", "armv6"},
    {"v6T2", "v6t2", "armv6t2"},
    {"v6M", "v6m", "armv6-m"},
    {"v7M", "v7m", "armv7-m"},
    {"v7EM", "v7em", "armv7e-m"},
    {"v7R", "v7r", "armv7-r+noidiv"},
    {"v7A", "v7a", "armv7-a"},
    {"v8A", "v8a", "armv8-a"},
    {"v8R", "v8r", "armv8-r"},
    {"v8M_Baseline", "v8m_baseline", "armv8-m.base"},
    {"v8M_Mainline", "v8m_mainline", "armv8-m.main"},
    {"v8.1M_Mainline", "v8.1m_mainline", "armv8.1-m.main"},
};

bool validCore(int core) { return core > 0 && core < coreCount; }
bool validArchitecture(int architecture) { return architecture > 0 && architecture < architectureCount; }

}  // namespace

int coreNumber(std::string_view name) {
    for (int core = 1; core < coreCount; ++core)
        if (name == cores[core].name)
            return core;
    return 0;
}

const char *coreName(int core) { return cores[validCore(core) ? core : 0].name; }

int coreArchitecture(int core) { return validCore(core) ? cores[core].architecture : 0; }

std::string cpuName(int core) {
    if (!validCore(core))
        return {};
    std::string name;
    for (const char *c = cores[core].name; *c; ++c)
        if (*c == '+')
            name += "plus";
        else
            name += char(std::tolower(static_cast<unsigned char>(*c)));
    return name;
}

bool isCortexMCore(int core) { return core >= 13 && core <= 23; }

int architectureNumber(std::string_view name) {
    for (int architecture = 1; architecture < architectureCount; ++architecture)
        if (name == architectures[architecture].name || name == architectures[architecture].lowerName)
            return architecture;
    return 0;
}

const char *architectureName(int architecture) {
    return architectures[validArchitecture(architecture) ? architecture : 0].name;
}

std::string marchName(int architecture, bool divide) {
    if (divide && architecture == 8)
        return "armv7-r+idiv";
    if (divide && architecture == 9)
        return "armv7ve";
    return architectures[validArchitecture(architecture) ? architecture : 0].march;
}

bool isCortexMArchitecture(int architecture) {
    switch (architecture) {
    case 5: case 6: case 7: case 12: case 13: case 14:
        return true;
    default:
        return false;
    }
}

std::string Target::effectiveFpAbi() const {
    if (architecture == 1 || architecture == 5 || architecture == 12 || fpAbi == "None")
        return "Soft";
    return fpAbi;
}

bool Target::isBigEndian() const { return endian == "Big" || endian == "BE-8"; }

bool Target::unalignedAccess(bool &allowed) const {
    if (unalignedAccessSetting == "Auto")
        allowed = architecture == 3 || architecture == 4 || (architecture > 5 && architecture != 12);
    else if (unalignedAccessSetting == "Yes" || unalignedAccessSetting == "No")
        allowed = unalignedAccessSetting == "Yes";
    else
        return false;
    return true;
}

}  // namespace arm
