#pragma once

// The names of the runtime library variants of an ARM target, the libraries
// and linker symbols that a link adds, and the rewrites of old library
// paths: functions of the target record alone.

#include "support/macro_expansion.h"
#include "toolchain/arm/arm_target.h"

#include <functional>

namespace arm {

// The short architecture name of the libraries: arm_library_architecture
// unless that is "Default", else the target's ("v7em", "v8mml", ...).
std::string libArch(const Target &target);
// "_le" or "_be".
std::string libEndianExt(const Target &target);
// The variant's suffix, e.g. "_v7em_fpv4_sp_d16_hard_t_le_eabi".
std::string libExt(const Target &target);

// The target macros of an ARM node apart from GCCTarget, GCCVersion,
// GCCPrefix and DeviceName, which need the project system: LibExt,
// LibArch, LibEndianExt, and for an executable whose core and
// architecture are known CoreType, Arch, Arch2, FPU, FPU2, FPU3, Endian and
// FPABI. Each goes through add, which leaves a name that is already set.
void targetMacros(const Target &target, bool executable,
                  const std::function<void(const std::string &, const std::string &)> &add);

// The processor support libraries of a link, under directory.
void runtimeLibraries(const Target &target, const std::string &directory, StringList &libs);

// Stack and heap sizes, and with standardLibraries the debug I/O symbol,
// as name=value.
void linkerSymbolDefinitions(const Target &target, bool standardLibraries, StringList &list);

// The names of the printf and scanf implementations that the linker symbols
// choose, from the values of the linker_printf_* and linker_scanf_* rows.
std::string printfSelection(const std::string &fpEnabled, const std::string &formatLevel,
                            const std::string &widthPrecisionSupported, const std::string &wcharEnabled);
std::string scanfSelection(const std::string &fpEnabled, const std::string &formatLevel,
                           const std::string &characterGroupMatching);

// A light library under the installation is replaced by its "_small"
// variant.
void filterLinkerInputs(const std::string &installDirectory, StringList &libs);
// Old library paths of one property value, rewritten to the packages'.
void migrateValue(std::string &value);

}  // namespace arm
