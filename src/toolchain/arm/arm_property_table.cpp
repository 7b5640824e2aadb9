// The ARM rows of the property table, in table order, and the rows of the
// connection to a target.

#include "toolchain/arm/arm_property_table.h"

#include "project/property_table_maker.h"

#include <limits>

namespace {

using T = PropertyClass::Type;

const std::vector<std::string> yesNoNone = {"Yes", "No", "None"};

// The option lists of each step kind: compile rows go to C, C++ and
// assembly, link rows to the link.
constexpr int cStep = 2, cppStep = 3, assemblyStep = 4, linkStep = 7;

const std::vector<std::string> architectures = {"v4T",  "v5TE", "v6",  "v6M",          "v7M",
                                                "v7EM", "v7R",  "v7A", "v8A",          "v8R",
                                                "v8M_Baseline", "v8M_Mainline", "v8.1M_Mainline", "None"};

// A number shown with its unit behind it, such as "bytes".
class NumberWithUnit : public PropertyClass {
public:
    NumberWithUnit(PropertyClass number, const char *unit) : PropertyClass(std::move(number)) {
        suffix_ = unit;
    }
};

// Makes number rows with a unit in the maker's owner list and map.
struct UnitRows {
    PropertyTableMaker &m;
    PropertyText page, group;

    PropertyClass *row(std::string name, std::int32_t minimum, std::int32_t maximum, const char *unit,
                       PropertyText title, PropertyText help, std::int32_t defaultValue) {
        return m.keep(std::make_unique<NumberWithUnit>(
            PropertyClass(std::move(name), T::IntegerRange, minimum, maximum, page, group, std::move(title),
                          std::move(help), defaultValue, std::string(), 0),
            unit));
    }
};

// The target connection rows: made once and kept to the end of the
// process, since every project system enters them in its map.
struct TargetConnectionTable {
    PropertyClassMap map;
    std::vector<std::unique_ptr<PropertyClass>> objects;
    std::vector<PropertyClass *> rows;

    TargetConnectionTable() {
        PropertyTableMaker m(map, objects);
        const std::optional<std::string> none;
        const auto script = [&](const char *name, PropertyText title, PropertyText help,
                                std::optional<std::string> defaultValue = std::nullopt) {
            return m.text(name, T::JavaScript, title, help, std::move(defaultValue));
        };

        m.section("Debugging", "GDB Server Options");
        m.text("gdb_server_hostname", T::String, "GDB Server Host Name",
               "The host on which the GDB server runs.", "localhost");
        m.enumeration("gdb_server_type", {"Q-Probe", "OpenOCD", "ST-LINK", "pyOCD", "Custom"}, "GDB Server Type",
                      "The kind of GDB server that the debugger talks to.", none);
        m.text("gdb_server_command_line", T::CommandLine, "GDB Server Command Line",
               "The command that starts the GDB server.", none);
        m.boolean("gdb_server_autostart_server", "Autostart GDB Server",
                  "<b>Yes</b> starts the GDB server when the debugger connects.", false);
        m.number("gdb_server_port", T::IntegerRange, 0, 65536, "GDB Server Port", "The TCP port of the GDB server.",
                 2331);
        m.text("gdb_server_reset_command", T::String, "GDB Server Reset Command",
               "The monitor command that resets the target.", "reset");
        m.boolean("gdb_server_ignore_checksum_errors", "Ignore Checksum Errors",
                  "<b>Yes</b> accepts packets with a wrong checksum.", false);
        m.boolean("gdb_server_allow_memory_access_during_execution", "Allow Memory Access During Execution",
                  "<b>Yes</b> reads and writes memory while the target runs.", false);
        m.enumeration("gdb_server_register_access", {"General and Individual", "General Only", "Individual Only"},
                      "GDB Server Register Access", "How the debugger reads and writes registers.",
                      "General and Individual");
        m.enumeration("gdb_breakpoint_types", {"Hardware Only", "Software Only", "Hardware and Software"},
                      "Breakpoint Types", "The kinds of breakpoints that the debugger sets.",
                      "Hardware and Software");
        m.text("gdb_server_log_file", static_cast<T>(18), "GDB Server Log File",
               "The file in which the conversation with the GDB server is logged.", none);
        m.text("gdb_server_target_xml_file", T::FileName, "Target Description File",
               "The XML file that describes the target's registers.", none);
        UnitRows seconds{m, "Debugging", "GDB Server Options"};
        seconds.row("gdb_server_connect_timeout", 1, 999, "seconds", "Connect Timeout",
                    "How long the debugger waits to connect to the GDB server.", 5);
        seconds.row("gdb_server_read_timeout", 1, 999, "seconds", "Read Timeout",
                    "How long the debugger waits for an answer of the GDB server.", 60);
        seconds.row("gdb_server_write_timeout", 1, 999, "seconds", "Write Timeout",
                    "How long the debugger waits to send to the GDB server.", 60);

        m.section("Debugging", "Target Loader Options");
        m.enumeration("target_loader_erase_all", {"Yes", "No"}, "Erase All",
                      "<b>Yes</b> erases the whole flash memory before loading.", "No");
        m.text("target_loader_no_load_sections", T::StringList, "No Load Sections",
               "Sections that the loader doesn't load.", none);
        m.section("Debugging", "Loader Options");
        m.boolean("target_check_load_sections_fit", "Check Load Sections Fit",
                  "<b>Yes</b> checks that each loaded section fits into the target's memory.", false);

        m.section("Debugging", "Target Control Options");
        script("target_reset_script", "Reset Script", "The script that resets the target.",
               " TargetInterface.resetAndStop(1)");
        script("target_debug_interface_reset_script", "Debug Interface Reset Script",
               "The script that resets the debug interface.");
        script("target_attach_script", "Attach Script", "The script that attaches to a running target.");
        script("target_go_script", "Go Script", "The script that runs before the target is let go.");
        script("target_stop_script", "Stop Script", "The script that runs after the target stops.");
        script("target_connect_script", "Connect Script", "The script that runs after the connection is made.");
        script("target_disconnect_script", "Disconnect Script",
               "The script that runs before the connection is closed.");
        m.section("Debugging", "Target Script Options");
        script("target_debug_begin_script", "Debug Begin Script", "The script that runs when debugging begins.");
        script("target_debug_end_script", "Debug End Script", "The script that runs when debugging ends.");
        script("target_load_begin_script", "Load Begin Script", "The script that runs before a load.");
        script("target_load_end_script", "Load End Script", "The script that runs after a load.");
        script("target_extras_script", "Extras Script", "A script of the user's own functions.");
        m.text("target_script_file", T::FileName, "Target Script File",
               "The file that holds the functions of the target scripts.", none);

        UnitRows jtag{m, "Debugging", "JTAG Chain Options"};
        jtag.row("arm_linker_jtag_pad_pre_ir", 0, 1024, "bits", "JTAG Instruction Pre-Scan Padding",
                 "The instruction register bits of the devices before the target in the JTAG chain.", 0);
        jtag.row("arm_linker_jtag_pad_post_ir", 0, 1024, "bits", "JTAG Instruction Post-Scan Padding",
                 "The instruction register bits of the devices after the target in the JTAG chain.", 0);
        jtag.row("arm_linker_jtag_pad_pre_dr", 0, 1024, "bits", "JTAG Data Pre-Scan Padding",
                 "The number of devices before the target in the JTAG chain.", 0);
        jtag.row("arm_linker_jtag_pad_post_dr", 0, 1024, "bits", "JTAG Data Post-Scan Padding",
                 "The number of devices after the target in the JTAG chain.", 0);

        for (const auto &object : objects)
            rows.push_back(object.get());
    }
};

}  // namespace

const std::vector<PropertyClass *> &targetConnectionProperties() {
    // Never destroyed: the end of the process frees it.
    static const TargetConnectionTable *const table = new TargetConnectionTable;
    return table->rows;
}

ARMProperties::ARMProperties(PropertyClassMap &map) {
    PropertyTableMaker m(map, objects);
    const std::optional<std::string> none;

    m.section("C/C++", "Code Generation Options");
    instructionSet = m.enumeration("arm_instruction_set", {"ARM", "Thumb", "None"}, "Instruction Set",
                                   "The instruction set that the code is compiled for.", "ARM");
    architecture = m.enumeration("arm_architecture", architectures, "ARM Architecture",
                                 "The version of the ARM architecture that the code is compiled for.", "v4T");
    coreType = m.enumeration(
        "arm_core_type",
        {"ARM7TDMI",   "ARM7TDMI-S", "ARM720T",     "ARM920T",      "ARM946E-S",  "ARM966E-S",  "ARM968E-S",
         "ARM926EJ-S", "ARM1136J-S", "ARM1136JF-S", "ARM1176JZ-S",  "ARM1176JZF-S", "Cortex-M0", "Cortex-M0+",
         "Cortex-M1",  "Cortex-M23", "Cortex-M3",   "Cortex-M33",   "Cortex-M4",  "Cortex-M52", "Cortex-M55",
         "Cortex-M7",  "Cortex-M85", "Cortex-R4",   "Cortex-R4F",   "Cortex-R5",  "Cortex-R7",  "Cortex-R8",
         "Cortex-R52", "Cortex-A5",  "Cortex-A7",   "Cortex-A8",    "Cortex-A9",  "Cortex-A15", "Cortex-A17",
         "Cortex-A32", "Cortex-A35", "Cortex-A53",  "Cortex-A55",   "Cortex-A57", "Cortex-A72", "Cortex-A73",
         "Cortex-A75", "XScale",     "None"},
        "ARM Core Type",
        "The processor core that the code is compiled for; choosing one sets the <b>ARM Architecture</b>.",
        "None");
    fpuType = m.enumeration("arm_fpu_type",
                            {"VFP", "VFP9", "VFPv3-D32", "VFPv3-D16", "VFPv4-D32", "VFPv4-D16", "FPv4-SP-D16",
                             "FPv5-SP-D16", "FPv5-D16", "FP-ARMv8", "None"},
                            "ARM FPU Type", "The floating-point unit of the target.", "None");
    advancedSimdType = m.enumeration("arm_advanced_SIMD_type", {"NEON", "None"}, "ARM Advanced SIMD Type",
                                     "The Advanced SIMD unit of the target.", "None");
    advancedSimdAutoVectorize = m.boolean("arm_advanced_SIMD_auto_vectorize", "Auto-Vectorize",
                                          "<b>Yes</b> lets the compiler use Advanced SIMD instructions for loops.",
                                          false);
    fpAbi = m.enumeration("arm_fp_abi", {"Soft", "SoftFP", "Hard", "None"}, "ARM FP ABI Type",
                          "How floating-point values are computed and passed: <b>Soft</b> in software, "
                          "<b>SoftFP</b> with the FPU but in integer registers, <b>Hard</b> in FPU registers.",
                          "Soft");
    abi = m.enumeration("arm_abi", {"AAPCS", "None"}, "ARM ABI Type", "The procedure call standard.", "AAPCS");
    endian = m.enumeration("arm_endian", {"Little", "Big", "BE-8", "None"}, "Byte Order",
                           "The byte order of the target.", "Little");
    cm0HasSmallMultiplier = m.boolean("arm_cm0_has_small_multiplier", "Has Small Multiplier",
                                      "<b>Yes</b> if the core multiplies in several cycles.", false);
    v7HasDivideInstructions = m.boolean("arm_v7_has_divide_instructions", "Has Divide Instructions",
                                        "<b>Yes</b> if the core has hardware divide instructions.", false);
    v8MHasCmse = m.boolean("arm_v8M_has_cmse", "Has CMSE",
                           "<b>Yes</b> compiles for the security extension of the core.", false);
    v8MHasDsp = m.boolean("arm_v8M_has_dsp", "Has DSP Instructions",
                          "<b>Yes</b> if the core has the DSP extension.", false);
    v8AHasCrc = m.boolean("arm_v8A_has_crc", "Has CRC Instructions",
                          "<b>Yes</b> if the core has the CRC instructions.", false);
    v81MMveType = m.enumeration("arm_v81M_mve_type", {"MVE", "MVE.FP", "None"}, "Vector Extension",
                                "The M-profile vector extension of the core.", "None");
    v81MHasPacbti = m.boolean("arm_v81M_has_pacbti", "Has PACBTI",
                              "<b>Yes</b> if the core has pointer authentication and branch target "
                              "identification.",
                              false);
    v8AArchitectureExtension = m.enumeration(
        "arm_v8A_architecture_extension", {"Armv8.1", "Armv8.2", "Armv8.3", "Armv8.4", "Armv8.5", "None"},
        "v8A Architecture Extension", "The extension of the v8A architecture that the core implements.", "None");
    v8AHasCrypto = m.boolean("arm_v8A_has_crypto", "Has Crypto Instructions",
                             "<b>Yes</b> if the core has the cryptographic extension.", false);
    v8AHasFp16 = m.boolean("arm_v8A_has_fp16", "Has FP16 Instructions",
                           "<b>Yes</b> if the core computes in half precision.", false);
    v8AHasFp16fml = m.boolean("arm_v8A_has_fp16fml", "Has FP16FML Instructions",
                              "<b>Yes</b> if the core has the half precision multiply-add instructions.", false);
    v8AHasBf16 = m.boolean("arm_v8A_has_bf16", "Has BF16 Instructions",
                           "<b>Yes</b> if the core has the BFloat16 instructions.", false);
    v8AHasI8mm = m.boolean("arm_v8A_has_i8mm", "Has I8MM Instructions",
                           "<b>Yes</b> if the core has the 8-bit integer matrix multiply instructions.", false);
    unalignedAccess = m.enumeration("arm_unaligned_access", {"Yes", "No", "Auto", "None"},
                                    "Unaligned Access Support",
                                    "Whether the code may access memory unaligned; <b>Auto</b> follows the "
                                    "architecture.",
                                    "Auto");
    tlsModel = m.enumeration("arm_tls_model", {"Soft", "CP15", "None"}, "Thread-Local Storage Pointer",
                             "Where the thread pointer is read: <b>Soft</b> by a function call, <b>CP15</b> "
                             "from the coprocessor register.",
                             "Soft");
    fp16Format = m.enumeration("arm_fp16_format", {"IEEE", "None"}, "FP16 Format.",
                               "The format of half precision values.", "IEEE");
    arm64Abi = m.enumeration("arm64_abi", {"ilp32", "lp64", "None"}, "Data Model (ARM64)",
                             "The sizes of int, long and pointers on a 64-bit core.", "None");
    arm64CodeModel = m.enumeration("arm64_code_model", {"tiny", "small", "large", "None"}, "Code Model (ARM64)",
                                   "How far code and data may lie apart on a 64-bit core.", "None");
    arm64OutlineAtomics = m.enumeration("arm64_outline_atomics", yesNoNone, "Outline Atomics (ARM64)",
                                        "<b>Yes</b> calls functions for atomic operations.", "No");
    arm64StrictAlign = m.enumeration("arm64_strict_align", yesNoNone, "Strict Align (ARM64)",
                                     "<b>Yes</b> accesses memory aligned only.", "None");
    longCalls = m.boolean("arm_long_calls", "Long Calls",
                          "<b>Yes</b> calls functions through a register, so that they may lie anywhere.", false);
    clangMergeGlobals = m.boolean("clang_merge_globals", "Merge Globals [clang]",
                                  "<b>Yes</b> lets clang merge global variables into one block.", false);
    stackOverflowPrevention = m.boolean("stack_overflow_prevention", "Stack Overflow Prevention",
                                        "<b>Yes</b> checks the stack limit at the entry of each function.", false);

    m.section("Debugging", "Debugger Options");
    debugIoImplementation = m.enumeration("arm_debugIO_Implementation", {"None", "Breakpoint", "DCC"},
                                          "Default Debug I/O implementation",
                                          "How the debugger serves debug I/O when the program doesn't say.",
                                          "None");
    displayDcc = m.boolean("arm_display_DCC", "Display DCC",
                           "<b>Yes</b> shows the words of the debug communications channel.", false);
    alternativeLdrDis = m.boolean("debug_alternative_ldr_dis", "Alternative LDR Disassembly",
                                  "<b>Yes</b> disassembles PC-relative loads in their other form.", false);
    customCpDis = m.enumeration("debug_custom_cp_dis", {"None", "RP2350", "XScale"}, "Coprocessor Disassembly",
                                "The coprocessor whose instructions are disassembled by name.", "None");
    hasMonitorMode = m.boolean("arm_has_monitor_mode", "Has Monitor Mode",
                               "<b>Yes</b> if the core has the monitor mode.", true);
    hasHypervisorMode = m.boolean("arm_has_hypervisor_mode", "Has Hypervisor Mode",
                                  "<b>Yes</b> if the core has the hypervisor mode.", true);
    hasVectorCatch = m.boolean("arm_has_vector_catch", "Has Vector Catch",
                               "<b>Yes</b> if the core's debug unit can stop on exception vectors.", true);
    numInterruptPriorityBits = m.number("arm_num_interrupt_priority_bits", T::Integer, 2, 8,
                                        "NVIC Num Priority Bits",
                                        "The number of priority bits of the interrupt controller.", 0);
    interruptNames = m.text("arm_interrupt_names", T::StringList, "Interrupt Names",
                            "The names of the interrupts, in vector order.", none);
    targetDeviceName = m.text("arm_target_device_name", T::String, "Target Device",
                              "The name of the device that the program runs on.", "$(Target:)");

    m.section("Linker", "Library Options");
    libraryInstructionSet = m.enumeration("arm_library_instruction_set", {"ARM", "Thumb", "Default"},
                                          "Library Instruction Set",
                                          "The instruction set of the runtime libraries; <b>Default</b> is that "
                                          "of the code.",
                                          "Default");
    libraryOptimization = m.enumeration("arm_library_optimization", {"Fast", "Small"}, "Library Optimization",
                                        "Whether the runtime libraries are optimized for speed or size.", "Fast");
    std::vector<std::string> libraryArchitectures = architectures;
    libraryArchitectures.push_back("Default");
    libraryArchitecture = m.enumeration("arm_library_architecture", libraryArchitectures,
                                        "Library ARM Architecture",
                                        "The architecture of the runtime libraries; <b>Default</b> is that of the "
                                        "code.",
                                        "Default");
    linkDebugIoType = m.enumeration("arm_link_debugio_type", {"Default", "Breakpoint", "DCC", "Memory Poll", "None"},
                                    "Debug I/O Implementation", "How the program's debug I/O reaches the debugger.",
                                    "Default");

    m.section("Linker", "Runtime Memory Area Options");
    UnitRows bytes{m, "Linker", "Runtime Memory Area Options"};
    const std::int32_t most = std::numeric_limits<std::int32_t>::max();
    stackSize = bytes.row("arm_linker_stack_size", 0, most, "bytes", "Stack Size",
                          "The size of the stack of the main program.", 1024);
    irqStackSize = bytes.row("arm_linker_irq_stack_size", 0, most, "bytes", "Stack Size (IRQ Mode)",
                             "The size of the stack of IRQ mode.", 256);
    fiqStackSize = bytes.row("arm_linker_fiq_stack_size", 0, most, "bytes", "Stack Size (FIQ Mode)",
                             "The size of the stack of FIQ mode.", 256);
    svcStackSize = bytes.row("arm_linker_svc_stack_size", 0, most, "bytes", "Stack Size (Supervisor Mode)",
                             "The size of the stack of supervisor mode.", 0);
    abtStackSize = bytes.row("arm_linker_abt_stack_size", 0, most, "bytes", "Stack Size (Abort Mode)",
                             "The size of the stack of abort mode.", 0);
    undStackSize = bytes.row("arm_linker_und_stack_size", 0, most, "bytes", "Stack Size (Undefined Mode)",
                             "The size of the stack of undefined mode.", 0);
    heapSize = bytes.row("arm_linker_heap_size", 0, most, "bytes", "Heap Size", "The size of the heap.", 1024);
    processStackSize = bytes.row("arm_linker_process_stack_size", 0, most, "bytes", "Process Stack Size",
                                 "The size of the process stack of a Cortex-M core.", 0);

    m.section("Linker", "Linker Options");
    cmseImportLibraryFileName = m.text("arm_linker_cmse_import_library_file_name", T::FileName,
                                       "CMSE Import Library File Name",
                                       "The import library of the secure entry functions that the link writes.",
                                       none);
    checkCmseImportLibraryFileName = m.text("arm_linker_check_cmse_import_library_file_name", T::FileName,
                                            "Check CMSE Import Library File Name",
                                            "A previous import library that the new one must stay compatible with.",
                                            none);

    m.appendBuildMacros(macros, {
        {"CoreType", "The lower case value of the <b>ARM Core Type</b> project property."},
        {"Arch", "The lower case value of the <b>ARM Architecture</b> project property."},
        {"Arch2", "Alternative value of the <b>ARM Architecture</b> project property."},
        {"Endian", "The lower case value of the <b>Byte Order</b> project property."},
        {"FPU", "The lower case value of the <b>ARM FPU Type</b> project property."},
        {"FPU2", "Alternative value of the <b>ARM FPU Type</b> project property."},
        {"FPU3", "Alternative value of the <b>ARM FPU Type</b> project property."},
        {"FPABI", "The value of the <b>ARM FP ABI Type</b> project property."},
        {"DeviceName", "The value of the <b>Target Device</b> project property."},
    });

    // The copies share the save name, so they read and write the value of
    // the original; they stay out of the map, where the name means the
    // original.
    const struct {
        PropertyClass *original;
        PropertyText help;
    } copied[] = {
        {instructionSet, "The target instruction set."},
        {architecture, "The target CPU architecture."},
        {coreType, "The target core type."},
        {endian, "The target endian type."},
        {fpuType, "The target FPU architecture."},
        {v8MHasCmse, {}},
        {v81MMveType, {}},
    };
    for (const auto &[original, help] : copied) {
        auto copy = std::make_unique<PropertyClass>(*original);
        copy->setPage("Debugging");
        copy->setGroup("Debugger Options");
        if (!help.empty())
            copy->setLongText(help);
        debugCopies.push_back(copy.get());
        objects.push_back(std::move(copy));
    }

    for (PropertyClass *compile :
         {instructionSet, architecture, coreType, fpuType, advancedSimdType, advancedSimdAutoVectorize, fpAbi, abi,
          endian, cm0HasSmallMultiplier, v7HasDivideInstructions, v8MHasCmse, v8MHasDsp, v8AHasCrc, v81MMveType,
          v81MHasPacbti, v8AArchitectureExtension, v8AHasCrypto, v8AHasFp16, v8AHasFp16fml, v8AHasBf16, v8AHasI8mm,
          unalignedAccess, tlsModel, fp16Format, arm64Abi, arm64CodeModel, arm64OutlineAtomics, arm64StrictAlign,
          longCalls, clangMergeGlobals, stackOverflowPrevention})
        m.tools(compile, {cStep, cppStep, assemblyStep});
    for (PropertyClass *link :
         {libraryInstructionSet, libraryOptimization, libraryArchitecture, linkDebugIoType, stackSize, irqStackSize,
          fiqStackSize, svcStackSize, abtStackSize, undStackSize, heapSize, processStackSize,
          cmseImportLibraryFileName, checkCmseImportLibraryFileName})
        m.tools(link, {linkStep});

    // A solution file keeps the values of the target connection.
    for (PropertyClass *property : targetConnectionProperties())
        map.addPropertyClass(property);
}
