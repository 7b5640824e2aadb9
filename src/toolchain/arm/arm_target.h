#pragma once

// The target of an ARM build as plain data: the values of the target
// properties of one node in one configuration, with the core and the
// architecture resolved to their numbers. Every option list of the ARM
// toolchain is a function of this record, so that a list can be computed
// and tested without a solution.

#include <string>
#include <string_view>
#include <vector>

namespace arm {

using StringList = std::vector<std::string>;

// Architecture numbers: 0 unknown, 1 v4T, 2 v5TE, 3 v6, 4 v6T2, 5 v6M, 6 v7M,
// 7 v7EM, 8 v7R, 9 v7A, 10 v8A, 11 v8R, 12 v8M_Baseline, 13 v8M_Mainline,
// 14 v8.1M_Mainline.
constexpr int architectureCount = 15;
// Core numbers: 0 unknown ("unknownCoreType"), 1 to 44 in the order of the
// values of arm_core_type.
constexpr int coreCount = 45;
constexpr int cortexM0 = 13, cortexM23 = 16, cortexM33 = 18, cortexM4 = 19, cortexM52 = 20,
              cortexM55 = 21, cortexM7 = 22, cortexM85 = 23, xscale = 44;

// The core's number, 0 for a name that isn't a core.
int coreNumber(std::string_view name);
// "ARM7TDMI" ... "XScale"; "unknownCoreType" for 0.
const char *coreName(int core);
// The architecture that a known core fixes, 0 for an unknown one.
int coreArchitecture(int core);
// The -mcpu spelling: the name in lower case, "cortex-m0plus" for "Cortex-M0+".
std::string cpuName(int core);
// Cores 13 to 23.
bool isCortexMCore(int core);

// The architecture's number from its name or its lower-case twin, 0 for
// "None" and anything else.
int architectureNumber(std::string_view name);
// "v4T" ... "v8.1M_Mainline"; empty for 0.
const char *architectureName(int architecture);
// The -march name of the table; v7R and v7A have a form with divide
// instructions.
std::string marchName(int architecture, bool divide);
// Architectures 5, 6, 7, 12, 13 and 14.
bool isCortexMArchitecture(int architecture);

struct Target {
    int core = 0;          // fixed by arm_core_type
    int architecture = 0;  // the core's, else arm_architecture's

    // The effective values of the target properties, as text; a boolean
    // reads "Yes" or "No".
    std::string instructionSet = "ARM";       // arm_instruction_set
    std::string fpuType = "None";             // arm_fpu_type
    std::string advancedSimdType = "None";    // arm_advanced_SIMD_type
    std::string advancedSimdAutoVectorize = "No";
    std::string fpAbi = "Soft";               // arm_fp_abi
    std::string abi = "AAPCS";                // arm_abi
    std::string endian = "Little";            // arm_endian
    std::string cm0HasSmallMultiplier = "No";
    std::string v7HasDivideInstructions = "No";
    std::string v8MHasCmse = "No";
    std::string v8MHasDsp = "No";
    bool v8MHasDspSet = false;                // arm_v8M_has_dsp has a value of its own
    std::string v8AHasCrc = "No";
    std::string v81MMveType = "None";         // arm_v81M_mve_type
    bool v81MMveTypeSet = false;              // arm_v81M_mve_type has a value of its own
    std::string v81MHasPacbti = "No";
    std::string v8AArchitectureExtension = "None";
    std::string v8AHasCrypto = "No", v8AHasFp16 = "No", v8AHasFp16fml = "No", v8AHasBf16 = "No",
                v8AHasI8mm = "No";
    std::string unalignedAccessSetting = "Auto";  // arm_unaligned_access
    std::string tlsModel = "Soft";            // arm_tls_model
    std::string fp16Format = "IEEE";          // arm_fp16_format
    std::string arm64Abi = "None", arm64CodeModel = "None", arm64OutlineAtomics = "No",
                arm64StrictAlign = "None";
    std::string longCalls = "No";             // arm_long_calls
    std::string clangMergeGlobals = "No";     // clang_merge_globals

    // Library and link settings.
    std::string libraryInstructionSet = "Default";  // arm_library_instruction_set
    std::string libraryOptimization = "Fast";       // arm_library_optimization
    std::string libraryArchitecture = "Default";    // arm_library_architecture
    std::string linkDebugIoType = "Default";        // arm_link_debugio_type
    std::string linkerHeapSize = "1024";            // arm_linker_heap_size
    std::string linkerStackSize = "1024", linkerProcessStackSize = "0", linkerIrqStackSize = "256",
                linkerFiqStackSize = "256", linkerSvcStackSize = "0", linkerAbtStackSize = "0",
                linkerUndStackSize = "0";
    std::string cmseImportLibraryFileName{};        // arm_linker_cmse_import_library_file_name
    std::string checkCmseImportLibraryFileName{};   // arm_linker_check_cmse_import_library_file_name
    std::string linkerNoEnumSizeWarning = "No", linkerNoWcharSizeWarning = "No";
    std::string linkerVariant = "GNU";              // arm_linker_variant

    // Settings of the owning toolchain that the target lists read.
    std::string useCompilerDriver = "No";   // use_compiler_driver
    std::string useClangNotGcc = "No";      // use_clang_not_gcc
    std::string unwindTables = "No";        // arm_unwind_tables
    std::string cppEnableExceptions = "No"; // cpp_enable_exceptions
    std::string signedChar = "None";        // gcc_signed_char
    std::string wcharSize = "None";         // gcc_wchar_size
    std::string shortEnum = "None";         // gcc_short_enum

    // "Soft" for architectures 1, 5 and 12; else fpAbi, "None" read as "Soft".
    std::string effectiveFpAbi() const;
    // arm_endian "Big" or "BE-8".
    bool isBigEndian() const;
    // True if an unaligned access option is to be written; allowed then
    // tells which.
    bool unalignedAccess(bool &allowed) const;
    bool isArm64() const { return instructionSet == "ARM64"; }
};

// ---- gcc-style target options.

// -mcpu (withCore and a known core) or -march, endianness, float ABI, ABI
// and FPU.
void basicTargetOptions(const Target &target, StringList &list, bool withCore);
// The full gcc list; full is true for a compile.
void gccTargetOptions(const Target &target, StringList &list, bool full);

// ---- Options by tool. forGcc chooses the gcc spelling, else the clang
// back end's.

void compilerTargetOptions(const Target &target, bool forGcc, StringList &list);
void assemblerTargetOptions(const Target &target, bool forGcc, StringList &list);
void preprocessTargetOptions(const Target &target, bool forGcc, StringList &list);
// The options of a driver command for steps 2 to 4 and 7; false for a
// step that a driver doesn't run.
bool driverTargetOptions(const Target &target, int step, StringList &list);
// The options of the linker proper.
void linkerOptions(const Target &target, StringList &list);
// The predefined macros of the target; packagesInclude is the expanded
// "-isystem$(PackagesDir)/include" that the oldest cores get.
void targetDefines(const Target &target, const std::string &packagesInclude, StringList &list);

// ---- The clang back end (-cc1 and -cc1as).

// -triple, -target-cpu, the features and the float ABI; forCompile false
// leaves out what an assembler doesn't take.
void backEndTargetOptions(const Target &target, StringList &list, bool forCompile);
// The target triple of a 32-bit target, e.g. "thumbv7em-none-eabi".
std::string triple(const Target &target);

}  // namespace arm
