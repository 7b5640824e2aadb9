// The GNU toolchains' rows of the property table, in table order.

#include "toolchain/gcc_property_table.h"

#include "project/project_property_class.h"
#include "project/property_table_maker.h"

namespace {

using T = PropertyClass::Type;

const std::vector<std::string> yesNoNone = {"Yes", "No", "None"};

// The option lists of each step kind: compile rows go to C, C++ and
// assembly, link rows to the link.
constexpr int cStep = 2, cppStep = 3, assemblyStep = 4, linkStep = 7;

}  // namespace

GCCProperties::GCCProperties(PropertyClassMap &map, const GCCTableFlags &flags) {
    PropertyTableMaker m(map, objects);
    const std::optional<std::string> none;

    m.section("C/C++", "Code Generation Options");
    optimizationLevel = m.enumeration<ProjectPropertyClass>(
        "gcc_optimization_level",
        {"None", "Debug", "Level 0", "Level 1", "Level 2", "Level 3", "Optimize For Size",
         "Optimize For More Size"},
        "Optimization Level", "How hard the compiler optimizes the code.", "None");
    omitFramePointer = m.enumeration<ProjectPropertyClass>("gcc_omit_frame_pointer", yesNoNone, "Omit Frame Pointer",
                                     "<b>Yes</b> keeps no frame pointer in functions that don't need one.",
                                     "None");
    noCommon = m.enumeration<ProjectPropertyClass>("gcc_no_common", yesNoNone, "No COMMON",
                             "<b>Yes</b> places uninitialized globals in the data section rather than "
                             "as common symbols.",
                             "None");
    debuggingLevel = m.enumeration<ProjectPropertyClass>("gcc_debugging_level", {"None", "Level 1", "Level 2", "Level 3"},
                                   "Debugging Level", "How much debug information the compiler writes.",
                                   "Level 2");
    dwarfGenerateAranges = m.boolean("gcc_dwarf_generate_aranges", "Generate DWARF Address Ranges",
                                     "<b>Yes</b> writes the .debug_aranges section.", true);
    dwarfVersion = m.enumeration<ProjectPropertyClass>("gcc_dwarf_version", {"dwarf-2", "dwarf-3", "dwarf-4", "dwarf-5", "None"},
                                 "Dwarf Version", "The version of the DWARF debug information.", "None");
    dwarfGeneratePubnames = m.boolean("gcc_dwarf_generate_pubnames", "Generate DWARF Public Names",
                                      "<b>Yes</b> writes the .debug_pubnames section.", true);
    dwarfGenerateDebugTypes = m.boolean("gcc_dwarf_generate_debug_types", "Generate DWARF Debug Types",
                                        "<b>Yes</b> writes type information in its own section.", false);
    enableCoroutines = m.boolean("gcc_enable_coroutines", "Enable Coroutines",
                                 "<b>Yes</b> enables C++ coroutines.", false);
    enableModules = m.boolean("gcc_enable_modules", "Enable Modules", "<b>Yes</b> enables C++ modules.",
                              false);
    useCxaAtExit = m.boolean("gcc_use_cxa_at_exit", "Use __cxa_atexit",
                             "<b>Yes</b> registers destructors of static objects with __cxa_atexit.", true);
    threadSafeStatics = m.boolean("gcc_thread_safe_statics", "Thread-Safe Statics",
                                  "<b>Yes</b> guards the initialization of local statics.", true);
    wcharSize = m.enumeration<ProjectPropertyClass>("gcc_wchar_size", {"16-Bit", "32-Bit", "None"}, "Wide Character Size",
                              "The size of wchar_t.", "None");
    shortEnum = m.enumeration<ProjectPropertyClass>("gcc_short_enum", {"Minimal Container Size", "Int Size", "None"},
                              "Enumeration Size", "The size of an enumeration type.", "None");
    signedChar = m.enumeration<ProjectPropertyClass>("gcc_signed_char", yesNoNone, "Signed Char",
                               "<b>Yes</b> makes plain char signed.", "None");
    useBuiltins = m.enumeration<ProjectPropertyClass>("arm_use_builtins", yesNoNone, "Use Builtins",
                                "<b>Yes</b> lets the compiler treat standard functions as builtins.", "None");
    mathErrno = m.enumeration<ProjectPropertyClass>("arm_math_errno", yesNoNone, "Math Errno",
                              "<b>Yes</b> makes math functions set errno.", "None");
    instrumentFunctions = m.boolean("arm_instrument_functions", "Instrument Functions",
                                    "<b>Yes</b> calls profiling hooks at function entry and exit.", false);
    unwindTables = m.enumeration<ProjectPropertyClass>("arm_unwind_tables", {"Yes", "No", "Asynchronous"}, "Unwind Tables",
                                 "Whether the compiler writes tables to unwind the stack.", "No");
    linkTimeOptimization = m.boolean("link_time_optimization", "Enable Link-Time Optimization",
                                     "<b>Yes</b> optimizes the whole program when it is linked.", false);
    disableFunctionInlining = m.boolean("gcc_disable_function_inlining", "Disable Function Inlining",
                                        "<b>Yes</b> inlines no function.", false);
    isCppModule = m.enumeration("is_cpp_module", {"Yes", "No", "Detect"}, "Is C++ Module",
                                "Whether the file is a C++ module; <b>Detect</b> scans it.", "Detect");
    additionalModules = m.text("gcc_additional_modules", T::StringList, "Additional Modules",
                               "C++ modules that the file imports beside those of the project.", none);
    enablePrecompiledHeader = m.boolean("gcc_enable_precompiled_header", "Enable Precompiled Header",
                                        "<b>Yes</b> lets a header of the project be precompiled.", false);
    precompiledHeader = m.boolean("gcc_precompiled_header", "Precompiled Header",
                                  "<b>Yes</b> precompiles this header.", false);
    functionSections = m.boolean("gcc_function_sections", "Put Functions Into Separate Sections",
                                 "<b>Yes</b> gives each function a section of its own.", true);
    dataSections = m.boolean("gcc_data_sections", "Put Data Into Separate Sections",
                             "<b>Yes</b> gives each variable a section of its own.", true);
    strictAliasing = m.enumeration<ProjectPropertyClass>("gcc_strict_aliasing", yesNoNone, "Strict Aliasing",
                                   "<b>Yes</b> lets the compiler assume the strict aliasing rules.", "None");
    tlsModel = m.enumeration<ProjectPropertyClass>("gcc_tls_model", {"Local-Exec", "None"}, "Thread-Local Storage Model",
                             "The model of thread-local variables.", "None");
    fastMath = m.enumeration<ProjectPropertyClass>("gcc_fast_math", yesNoNone, "Fast Math",
                             "<b>Yes</b> allows floating-point optimizations that break IEEE rules.", "None");

    m.section("C/C++", "Compiler Options");
    hasOzOptimizationLevel = m.boolean("gcc_has_Oz_optimization_level", "Has -Oz Optimization Level",
                                       "<b>Yes</b> if the compiler knows -Oz.", true);
    enableAllWarnings = m.boolean("gcc_enable_all_warnings", "Enable All Warnings",
                                  "<b>Yes</b> passes the options of the all-warnings lists.", false);
    cLanguageStandard = m.enumeration<ProjectPropertyClass>(
        "gcc_c_language_standard",
        {"None", "c89", "c90", "c99", "c11", "c17", "c23", "gnu89", "gnu90", "gnu99", "gnu11", "gnu17", "gnu23"},
        "C Language Standard", "The standard that C files are compiled to.", "None");
    cplusplusLanguageStandard = m.enumeration<ProjectPropertyClass>(
        "gcc_cplusplus_language_standard",
        {"None", "c++98", "c++11", "c++14", "c++17", "c++20", "c++23", "gnu++98", "gnu++11", "gnu++14",
         "gnu++17", "gnu++20", "gnu++23"},
        "C++ Language Standard", "The standard that C++ files are compiled to.", "None");
    setMessageLengthToZero = m.enumeration("compiler_set_message_length_to_zero", {"Yes", "No"},
                                           "Show Messages On Single Lines",
                                           "<b>Yes</b> keeps each diagnostic on one line.", "Yes");
    diagnosticsShowCaret = m.enumeration<ProjectPropertyClass>("compiler_diagnostics_show_caret", yesNoNone, "Show Caret",
                                         "<b>Yes</b> shows the source line and a caret under a diagnostic.",
                                         "None");
    colorDiagnostics = m.enumeration<ProjectPropertyClass>("compiler_color_diagnostics", yesNoNone, "Color Diagnostics",
                                     "<b>Yes</b> colors the diagnostics.", "None");
    allWarningsOptions = m.text("gcc_all_warnings_command_line_options", T::StringList,
                                "Enable All Warnings Command Line Options",
                                "The options that Enable All Warnings passes.", "-Wall;-Wextra");
    cOnlyAllWarningsOptions = m.text("gcc_c_only_all_warnings_command_line_options", T::StringList,
                                     "Enable All Warnings C Only Command Line Options",
                                     "The options that Enable All Warnings passes for C files.", none);
    cppOnlyAllWarningsOptions = m.text("gcc_cpp_only_all_warnings_command_line_options", T::StringList,
                                       "Enable All Warnings C++ Only Command Line Options",
                                       "The options that Enable All Warnings passes for C++ files.", none);
    enforceAnsiCheckingOptions = m.text("gcc_enforce_ansi_checking_command_line_options", T::StringList,
                                        "Enforce ANSI Checking Command Line Options",
                                        "The options that Enforce ANSI Checking passes.", "-pedantic");
    cOnlyEnforceAnsiCheckingOptions =
        m.text("gcc_c_only_enforce_ansi_checking_command_line_options", T::StringList,
               "Enforce ANSI Checking C Only Command Line Options",
               "The options that Enforce ANSI Checking passes for C files.", none);
    cppOnlyEnforceAnsiCheckingOptions =
        m.text("gcc_cpp_only_enforce_ansi_checking_command_line_options", T::StringList,
               "Enforce ANSI Checking C++ Only Command Line Options",
               "The options that Enforce ANSI Checking passes for C++ files.", none);

    m.section("Linker", "Linker Options");
    entryPoint = m.text("gcc_entry_point", T::String, "Entry Point", "The symbol at which the program starts.",
                        "None");
    stripSymbols = m.boolean("gcc_strip_symbols", "Strip Symbols", "<b>Yes</b> removes all symbols.", false);
    linkerStripDebugInformation = m.boolean("linker_strip_debug_information", "Strip Debug Information",
                                            "<b>Yes</b> removes the debug information.", false);
    generateBreakpadSymbols = m.boolean("linker_generate_breakpad_symbols", "Generate Breakpad Symbols",
                                        "<b>Yes</b> writes a symbol file for crash reports.",
                                        flags.breakpadSymbols);
    breakpadSymbolsDirectory = m.text("linker_breakpad_symbols_directory", T::DirPath,
                                      "Breakpad Symbols Directory", "Where the symbol files go.", none);
    requiresStartGroup = m.boolean("linker_requires_start_group", "Requires Start Group",
                                   "<b>Yes</b> puts the libraries between --start-group and --end-group.",
                                   flags.linkerRequiresStartGroup);
    useIndirectFiles = m.enumeration("linker_use_indirect_files", {"Yes", "No", "Auto"},
                                     "Indirect File Supported",
                                     "Whether the inputs of a link go into a response file.",
                                     flags.indirectFilesAuto ? "Auto" : "No");
    keepIndirectFiles = m.boolean("linker_keep_indirect_files", "Keep Indirect Files",
                                  "<b>Yes</b> keeps the response file after the link.", true);
    indirectFileName = m.text("linker_indirect_file_name", T::FileName, "Indirect File Name",
                              "The name of the response file.", none);
    additionalSystemLibraries = m.text("linker_additional_system_libraries", T::StringList,
                                       "Additional System Libraries", "System libraries to link with.", none);
    printMemoryUsage = m.boolean("linker_print_memory_usage", "Print Memory Usage",
                                 "<b>Yes</b> prints how full each memory region is.", false);
    noEnumSizeWarning = m.boolean("arm_linker_no_enum_size_warning", "No Enum Size Warning",
                                  "<b>Yes</b> silences warnings about mixed enumeration sizes.", false);
    noWcharSizeWarning = m.boolean("arm_linker_no_wchar_size_warning", "No wchar_t Size Warning",
                                   "<b>Yes</b> silences warnings about mixed wchar_t sizes.", false);
    linkerTreatWarningsAsErrors = m.boolean("arm_linker_treat_warnings_as_errors", "Treat Warnings As Errors",
                                            "<b>Yes</b> makes each linker warning an error.", false);
    noWarnOnMismatch = m.boolean("arm_linker_no_warn_on_mismatch", "No Warn On Mismatch",
                                 "<b>Yes</b> links objects of mismatched kinds without a warning.", false);
    noWarnOnRwxSegments = m.boolean("arm_linker_no_warn_on_rwx_segments", "No Warn On RWX Segments",
                                    "<b>Yes</b> silences warnings about writable code segments.", false);
    noWarnOnExecutableStack = m.boolean("arm_linker_no_warn_on_executable_stack",
                                        "No Warn On Executable Stack",
                                        "<b>Yes</b> silences warnings about an executable stack.", false);
    allowMultipleDefinition = m.boolean("arm_linker_allow_multiple_definition", "Allow Multiple Definition",
                                        "<b>Yes</b> takes the first of several definitions of a symbol.",
                                        false);
    emitRelocations = m.enumeration<ProjectPropertyClass>("arm_linker_emit_relocations", yesNoNone, "Emit Relocations",
                                    "<b>Yes</b> keeps the relocations in the output.", "None");
    linkerSearchPath = m.text("arm_linker_search_path", T::DirPathList, "Library Search Path",
                              "Directories in which the linker looks for libraries.", none);
    noStartFiles = m.boolean("arm_linker_no_start_files", "No Start Files",
                             "<b>Yes</b> links without the system's start files.", false);
    wholeArchive = m.text("arm_linker_whole_archive", T::StringList, "Whole Archive Libraries",
                          "Libraries whose every member is linked.", none);
    keepLinkerScriptFile = m.boolean("keep_linker_script_file", "Keep Linker Script File",
                                     "<b>Yes</b> keeps a generated linker script.", true);
    linkerSymbolsFiles = m.text("arm_linker_symbols_files", T::StringList, "Linker Symbols Files",
                                "Files of symbol definitions that the link reads.", none);
    generateLinkerScript = m.boolean("arm_generate_linker_script", "Generate Linker Script",
                                     "<b>Yes</b> makes the linker script from the memory map.", true);
    checkMemorySegmentOverflow = m.boolean("arm_library_check_memory_segment_overflow",
                                           "Check For Memory Segment Overflow",
                                           "<b>Yes</b> fails a link that overflows a memory segment.", true);
    checkMemorySectionOverflow = m.boolean("arm_library_check_memory_section_overflow",
                                           "Check For Memory Section Overflow",
                                           "<b>Yes</b> fails a link that overflows a section.", true);
    linkerScriptDefaultFillPattern = m.text("arm_linker_script_generator_default_fill_pattern", T::String,
                                            "Default Fill Pattern",
                                            "The value that fills the gaps of a generated script.", none);
    additionalLdplanOptions = m.text("arm_additional_ldplan_options", T::StringList,
                                     "Additional Linker Script Generator Options",
                                     "Options for the linker script generator.", none);

    m.section("General", "Build Options");
    gccPrefix = m.text("gcc_prefix", T::String, "GCC Prefix",
                       "The prefix of the names of the GNU tools, such as arm-none-eabi-.", "$(GCCPREFIX:)");
    gccTarget = m.text("gcc_target", T::String, "GCC Target", "The target triple of the GNU tools.", none);
    gccVersion = m.text("gcc_version", T::String, "GCC Version", "The version of the GNU tools.", none);
    useClangNotGcc = m.boolean("use_clang_not_gcc", "Use Clang",
                               "<b>Yes</b> compiles and links with clang and clang++ instead of gcc and g++.",
                               false);

    m.section("Compiler [clang]", "Build Options");
    clangMultiLibConfig = m.text("clang_multi_lib_config", T::FileName, "Multilib Configuration [clang]",
                                 "The multilib configuration file of clang.", none);
    clangGccToolchain = m.text("clang_gcc_toolchain", T::DirPath, "GCC Toolchain [clang]",
                               "The GNU toolchain whose headers and libraries clang uses.", none);

    m.appendBuildMacros(macros, {
        {"GCCPrefix", "The prefix of the GNU tools' names."},
        {"GCCTarget", "The target triple of the GNU tools."},
        {"GCCVersion", "The version of the GNU tools."},
        {"AR", "The path to the binutils ar command."},
        {"GCC", "The path to the gcc command."},
        {"GPLUSPLUS", "The path to the g++ command."},
        {"OBJCOPY", "The path to the binutils objcopy command."},
        {"OBJDUMP", "The path to the binutils objdump command."},
        {"RANLIB", "The path to the binutils ranlib command."},
        {"STRIP", "The path to the binutils strip command."},
    });

    // The option that each value stands for, as the driver's command lists
    // give it.
    auto options = [](PropertyClass *property,
                      std::initializer_list<std::pair<std::string, std::string>> pairs) {
        auto *project = static_cast<ProjectPropertyClass *>(property);
        for (const auto &[option, value] : pairs)
            project->addOption(option, value);
    };
    options(optimizationLevel, {{"-Og", "Debug"}, {"-O0", "Level 0"}, {"-O1", "Level 1"}, {"-O2", "Level 2"},
                                {"-O3", "Level 3"}, {"-Os", "Optimize For Size"}, {"-Oz", "Optimize For More Size"}});
    options(omitFramePointer, {{"-fomit-frame-pointer", "Yes"}, {"-fno-omit-frame-pointer", "No"}});
    options(noCommon, {{"-fno-common", "Yes"}, {"-fcommon", "No"}});
    options(debuggingLevel, {{"-g1", "Level 1"}, {"-g2", "Level 2"}, {"-g3", "Level 3"}});
    options(dwarfVersion,
            {{"-gdwarf-2", "dwarf-2"}, {"-gdwarf-3", "dwarf-3"}, {"-gdwarf-4", "dwarf-4"}, {"-gdwarf-5", "dwarf-5"}});
    options(wcharSize, {{"-fshort-wchar", "16-Bit"}, {"-fno-short-wchar", "32-Bit"}});
    options(shortEnum, {{"-fshort-enums", "Minimal Container Size"}, {"-fno-short-enums", "Int Size"}});
    options(signedChar, {{"-fsigned-char", "Yes"}, {"-fno-signed-char", "No"}});
    options(useBuiltins, {{"-fbuiltin", "Yes"}, {"-fno-builtin", "No"}});
    options(mathErrno, {{"-fmath-errno", "Yes"}, {"-fno-math-errno", "No"}});
    options(unwindTables, {{"-funwind-tables", "Yes"}, {"-fasynchronous-unwind-tables", "Asynchronous"}});
    options(strictAliasing, {{"-fstrict-aliasing", "Yes"}, {"-fno-strict-aliasing", "No"}});
    options(tlsModel, {{"-ftls-model=local-exec", "Local-Exec"}});
    options(fastMath, {{"-ffast-math", "Yes"}, {"-fno-fast-math", "No"}});
    options(diagnosticsShowCaret, {{"-fdiagnostics-show-caret", "Yes"}, {"-fno-diagnostics-show-caret", "No"}});
    options(colorDiagnostics, {{"-fdiagnostics-color=always", "Yes"}, {"-fdiagnostics-color=never", "No"}});
    options(emitRelocations, {{"-Wl,--emit-relocs", "Yes"}});
    for (auto *standard : {cLanguageStandard, cplusplusLanguageStandard})
        for (const std::string &value : standard->values())
            if (value != "None")
                static_cast<ProjectPropertyClass *>(standard)->addOption("-std=" + value, value);

    for (PropertyClass *compile :
         {static_cast<PropertyClass *>(optimizationLevel), omitFramePointer, noCommon, debuggingLevel,
          dwarfGenerateAranges, dwarfVersion, dwarfGeneratePubnames, dwarfGenerateDebugTypes, enableCoroutines,
          enableModules, useCxaAtExit, threadSafeStatics, wcharSize, shortEnum, signedChar, useBuiltins,
          mathErrno, instrumentFunctions, unwindTables, linkTimeOptimization, disableFunctionInlining,
          isCppModule, additionalModules, enablePrecompiledHeader, precompiledHeader, functionSections, dataSections, strictAliasing, tlsModel, fastMath,
          hasOzOptimizationLevel, enableAllWarnings, cLanguageStandard, cplusplusLanguageStandard,
          setMessageLengthToZero, diagnosticsShowCaret, colorDiagnostics, allWarningsOptions,
          cOnlyAllWarningsOptions, cppOnlyAllWarningsOptions, enforceAnsiCheckingOptions,
          cOnlyEnforceAnsiCheckingOptions, cppOnlyEnforceAnsiCheckingOptions})
        m.tools(compile, {cStep, cppStep, assemblyStep});
    for (PropertyClass *link :
         {entryPoint, stripSymbols, linkerStripDebugInformation, generateBreakpadSymbols,
          breakpadSymbolsDirectory, requiresStartGroup, useIndirectFiles, keepIndirectFiles, indirectFileName,
          additionalSystemLibraries, printMemoryUsage, noEnumSizeWarning, noWcharSizeWarning,
          linkerTreatWarningsAsErrors, noWarnOnMismatch, noWarnOnRwxSegments, noWarnOnExecutableStack,
          allowMultipleDefinition, emitRelocations, linkerSearchPath, noStartFiles, wholeArchive,
          keepLinkerScriptFile, linkerSymbolsFiles, generateLinkerScript, checkMemorySegmentOverflow,
          checkMemorySectionOverflow, linkerScriptDefaultFillPattern, additionalLdplanOptions})
        m.tools(link, {linkStep});
}
