// The cross toolchain's rows of the property table, in table order.

#include "toolchain/ostrand_property_table.h"

#include "project/project_property_class.h"
#include "project/property_table_maker.h"

#include <limits>

namespace {

using T = PropertyClass::Type;

const std::vector<std::string> yesNoNone = {"Yes", "No", "None"};

// The option lists of each step kind: compile rows go to C, C++ and
// assembly, link rows to the link.
constexpr int cStep = 2, cppStep = 3, assemblyStep = 4, linkStep = 7;

// The GNU versions that clang may claim to be, oldest first.
const std::vector<std::string> clangGnuVersions = {
    "4.2.1", "4.8.0", "5.0.0", "6.0.0", "7.0.0", "8.0.0", "9.0.0", "10.0.0", "11.0.0", "12.0.0", "13.0.0",
    "14.0.0", "Auto", "None"};

const std::vector<std::string> sectionAlignments = {"None", "1",  "2",   "4",   "8",   "16",
                                                    "32",   "64", "128", "256", "512", "1024"};

// A number row that has no default: nothing is passed unless a value is set.
PropertyClass *numberWithoutDefault(PropertyTableMaker &m, std::string name, T type, std::int32_t minimum,
                                    std::int32_t maximum, PropertyText title, PropertyText help) {
    PropertyClass *property = m.number(std::move(name), type, minimum, maximum, std::move(title), std::move(help), 0);
    property->setDefaultValue(std::nullopt);
    return property;
}

}  // namespace

OstProperties::OstProperties(PropertyClassMap &map) {
    PropertyTableMaker m(map, objects);
    const std::optional<std::string> none;

    m.section("C/C++", "Compiler Options");
    supplyAbsoluteFilePath = m.boolean("arm_supply_absolute_file_path", "Supply Absolute File Path",
                                       "<b>Yes</b> names the source file by its absolute path on the command line, "
                                       "so that diagnostics and debug information name the full path.",
                                       true);
    keepAssembly = m.boolean("arm_keep_assembly", "Keep Assembly Source",
                             "<b>Yes</b> keeps the assembly code that the compiler writes.", false);
    cAsmAdditionalOptions = m.text("c_asm_additional_options", T::StringList, "Assembler Additional Options",
                                   "Options passed to the assembler when it assembles the compiler's output.",
                                   none);
    keepPreprocessorOutput = m.boolean("arm_keep_preprocessor_output", "Keep Preprocessor Output",
                                       "<b>Yes</b> keeps the preprocessed source.", false);
    compilerVariant = m.enumeration<ProjectPropertyClass>(
        "arm_compiler_variant", {"gcc", "clang"}, "Compiler",
        "The compiler that builds C and C++ files: <b>gcc</b> or <b>clang</b>.", "gcc");
    clangGnuVersion = m.enumeration("clang_gnu_version", clangGnuVersions, "GNU Version [clang]",
                                    "The GNU version that clang claims to be. <b>Auto</b> leaves it to clang; "
                                    "<b>None</b> passes no version.",
                                    "Auto");
    useCompilerDriver = m.boolean("use_compiler_driver", "Use Compiler Driver",
                                  "<b>Yes</b> builds through the compiler driver rather than by running the "
                                  "compiler, assembler and linker directly.",
                                  false);
    supplyEditorInputCharset = m.boolean("compiler_supply_editor_input_charset", "Supply Input Character Set",
                                         "<b>Yes</b> tells the compiler the character set of the source files.",
                                         true);
    supplyEditorExecuteCharset = m.boolean("compiler_supply_editor_execute_charset",
                                           "Supply Execution Character Set",
                                           "<b>Yes</b> tells the compiler the character set of strings and "
                                           "characters in the program.",
                                           false);
    brenlowCcNoUnsupportedArchitecture =
        m.boolean("brenlow_cc_no_unsupported_architecture", "No Unsupported Architecture Error [brenlow-cc]",
                  "<b>Yes</b> compiles for an architecture that the Brenlow compiler doesn't support, "
                  "without an error.",
                  false);

    m.section("Linker", "Linker Options");
    additionalOutputFileGapFill = numberWithoutDefault(
        m, "arm_linker_additional_output_file_gap_fill", T::IntegerHex, 0, 255, "Additional Output File Gap Fill Value",
        "The byte that fills the gaps between sections of the additional output file.");
    linkerVariant = m.enumeration("arm_linker_variant", {"GNU", "LLVM"}, "Linker",
                                  "The linker that links the program: <b>GNU</b> or <b>LLVM</b>.", "GNU");
    linkerGapFill = numberWithoutDefault(m, "arm_linker_gap_fill", T::IntegerHex, 0, 255, "Gap Fill Value",
                                         "The byte that fills the gaps between sections of the program.");
    linkerLogFile = m.boolean("linker_log_file", "Generate Log File",
                              "<b>Yes</b> writes the linker's log beside the program.", false);
    supplyMemorySegments = m.boolean("linker_supply_memory_segments", "Supply Memory Segments",
                                     "<b>Yes</b> passes the memory segments of the memory map to the linker.",
                                     true);
    linkSectionHeaders = m.enumeration("link_section_headers", {"Full", "Block", "Minimal", "None"},
                                       "Section Headers [brenlow-ld]",
                                       "How much of the section headers the program keeps.", "Full");
    linkDedupeCode = m.enumeration("link_dedupe_code", yesNoNone, "Deduplicate Code Sections [brenlow-ld]",
                                   "<b>Yes</b> keeps one copy of identical code sections.", "None");
    linkDedupeData = m.enumeration("link_dedupe_data", yesNoNone, "Deduplicate Data Sections [brenlow-ld]",
                                   "<b>Yes</b> keeps one copy of identical read-only data sections.", "None");
    linkInline = m.enumeration("link_inline", yesNoNone, "Inline Small Functions [brenlow-ld]",
                               "<b>Yes</b> lets the linker inline small functions.", "None");
    linkListAllUndefineds = m.enumeration("link_list_all_undefineds", yesNoNone, "List All Undefineds [brenlow-ld]",
                                          "<b>Yes</b> reports every undefined symbol, not only the first.", "Yes");
    linkMergeSections = m.enumeration("link_merge_sections", yesNoNone, "Merge Sections [brenlow-ld]",
                                      "<b>Yes</b> merges sections of the same kind.", "Yes");
    linkMergeStrings = m.enumeration("link_merge_strings", yesNoNone, "Merge String Constants [brenlow-ld]",
                                     "<b>Yes</b> keeps one copy of identical string constants.", "Yes");
    linkMapFile = m.enumeration("link_map_file", {"Compact", "Standard", "Detailed", "Full", "None"},
                                "Generate Map File [brenlow-ld]", "How much the map file of the link tells.",
                                "Standard");
    linkMapFileFormat = m.enumeration("link_map_file_format", {"HTML", "Text", "None"},
                                      "Map File Format [brenlow-ld]", "The format of the map file.", "Text");
    treatLibrariesAsObjectFiles = m.boolean("linker_treat_libraries_as_object_files",
                                            "Treat Libraries As Object Files",
                                            "<b>Yes</b> links every member of the libraries, as object files.",
                                            false);
    supplyLibraryLinkerSymbols = m.boolean("link_supply_library_linker_symbols", "Supply Library Linker Symbols",
                                           "<b>Yes</b> defines the symbols that choose the runtime library's "
                                           "I/O, heap and locale variants.",
                                           true);

    m.section("C/C++", "Assembler Options");
    assemblerVariant = m.enumeration<ProjectPropertyClass>(
        "arm_assembler_variant", {"gcc", "clang"}, "Assembler",
        "The assembler that assembles the code: <b>gcc</b> or <b>clang</b>.", "gcc");
    preprocessAssemblyCode = m.boolean("arm_preprocess_assembly_code", "Preprocess Assembly Code",
                                       "<b>Yes</b> runs assembly files through the C preprocessor first.", true);

    m.section("C/C++", "Code Generation Options");
    clangRelocationModel = m.enumeration(
        "clang_relocation_model", {"static", "pic", "dynamic-no-pic", "ropi", "rwpi", "ropi-rwpi", "None"},
        "Relocation Model [clang]", "How clang addresses code and data.", "static");
    clangMachineOutliner = m.enumeration("clang_machine_outliner", {"None", "Yes", "Always", "Never"},
                                         "Machine Outliner [clang]",
                                         "<b>Yes</b> moves repeated code sequences into functions of their own.",
                                         "None");
    clangThreadModel = m.enumeration("clang_thread_model", {"single", "posix", "None"}, "Thread Model [clang]",
                                     "The thread model that clang compiles for.", "None");
    generateStackSizes = m.boolean("generate_stack_sizes", "Generate Stack Sizes",
                                   "<b>Yes</b> records the stack size of each function in the object file.",
                                   false);
    linkKeepLtoFiles = m.boolean("link_keep_lto_files", "Keep Link-Time Optimization Files",
                                 "<b>Yes</b> keeps the intermediate files of link-time optimization.", false);
    ltoAdditionalOptions = m.text("lto_additional_options", T::StringList,
                                  "Link-Time Optimization Additional Options",
                                  "Options passed to the link-time optimizer.", none);

    m.section("General", "Build Options");
    useExternalGcc = m.boolean("use_external_gcc", "Use External GCC",
                               "<b>Yes</b> builds with an external GNU toolchain's driver instead of the "
                               "installation's tools.",
                               false);

    m.section("General", "Library Options");
    libraryIoType = m.enumeration(
        "LIBRARY_IO_TYPE",
        {"LTC", "SEMIHOST", "SEMIHOST (host-formatted)", "SWO", "SWO (Interrupts Disabled)", "None"},
        "Library I/O", "How the runtime library's standard input and output reach the host.", "None");
    libraryHeapType = m.enumeration("LIBRARY_HEAP_TYPE", {"Basic", "Minimal", "Real-Time", "None"},
                                    "Library Heap", "The heap implementation of the runtime library.", "Basic");
    libraryHeapLocking = m.enumeration("LIBRARY_HEAP_LOCKING", {"Disable Interrupts", "User"},
                                       "Library Heap Locking",
                                       "How the heap is locked: <b>Disable Interrupts</b> or functions of the "
                                       "<b>User</b>.",
                                       "Disable Interrupts");
    libraryLocales = m.enumeration("LIBRARY_LOCALES", {"Minimal", "Full"}, "Enable Locales",
                                   "<b>Full</b> links the locale support of the runtime library.", "Full");

    m.section("Debugging", "Loader Options");
    loadFileOffset = numberWithoutDefault(m, "debug_load_file_offset", T::IntegerHex, 0,
                                          std::numeric_limits<std::int32_t>::max(), "Load File Offset",
                                          "The offset added to the addresses of the load file.");
    loadFileOffsetLimit = numberWithoutDefault(m, "debug_load_file_offset_limit", T::IntegerHex, 0,
                                               std::numeric_limits<std::int32_t>::max(), "Load File Offset Limit",
                                               "Addresses from this one on are loaded without the offset.");
    loadSections = m.enumeration("debug_load_sections", {"Yes", "No"}, "Load ELF Sections",
                                 "<b>Yes</b> loads the sections of the file rather than its segments.", "No");

    m.section("Debugging", "Debugger Options");
    ignoreDebugAranges = m.boolean("debug_ignore_debug_aranges", "Ignore .debug_aranges",
                                   "<b>Yes</b> finds functions without the .debug_aranges section.", false);
    ignoreDebugFrame = m.boolean("debug_ignore_debug_frame", "Ignore .debug_frame",
                                 "<b>Yes</b> unwinds the stack without the .debug_frame section.", false);
    restrictMemoryAccess = m.boolean("debug_restrict_memory_access", "Restrict Memory Access",
                                     "<b>Yes</b> reads and writes only the memory of the memory map.", true);
    reservedMemberName = m.text("reservedMember_name", T::String, "Reserved Member Name",
                                "Structure members of this name are hidden by the debugger.", "reserved");
    typeFile = m.text("debug_type_file", T::FileName, "Type File", "A file of types for the debugger.", none);
    typeFile2 = m.text("debug_type_file_2", T::FileName, "Type File 2", "A second file of types for the debugger.",
                       none);
    memoryUploadPageSize = numberWithoutDefault(m, "debug_memory_upload_page_size", T::Integer, 256, 1024,
                                                "Memory Upload Page Size",
                                                "The number of bytes that the debugger reads from the target at once.");
    enableLtc = m.boolean("debug_enable_LTC", "Enable LTC",
                          "<b>Yes</b> lets the debugger serve the target's LTC channel.", true);
    ltccb = m.text("debug_LTCCB", T::String, "LTC Control Block Address",
                   "The symbol or address of the LTC control block.", "_Brenlow_LTC");
    ltcChannel = numberWithoutDefault(m, "debug_LTC_channel", T::IntegerRange, 0, 31, "LTC Channel Number",
                                      "The LTC channel of the terminal.");
    stackPointerStart = m.text("debug_stack_pointer_start", T::String, "Stack Pointer Start",
                               "The value of the stack pointer at the start of the program.", none);

    m.section("Linker", "Library Options");
    dsoHandleValue = m.text("link_dso_handle_value", T::String, "DSO Handle Value",
                            "The value of the symbol __dso_handle.", "0");

    m.section("Linker", "Linker Options");
    for (std::size_t i = 0; i < sectionGroups.size(); ++i) {
        const std::string group = sectionGroups[i];
        linkPad[i] = m.boolean("link_pad_" + group, "Pad " + group + " Section [brenlow-ld]",
                               "<b>Yes</b> pads the " + group + " section to its alignment.", false);
        linkAlign[i] = m.enumeration("link_align_" + group, sectionAlignments,
                                     "Align " + group + " Section [brenlow-ld]", "The alignment of the " + group + " section in bytes.", "None");
    }

    m.appendBuildMacros(macros, {
        {"LibExt", "The architecture and build specific library extension."},
        {"LibArch", "The library architecture."},
        {"LibEndianExt", "The endian specific library extension."},
        {"AS", "The path to the binutils as command."},
        {"CC1", "The path to the gcc cc1 command."},
        {"CLANG", "The path to the clang command."},
        {"CC1PLUS", "The path to the gcc cc1plus command."},
        {"LD", "The path to the binutils ld command."},
        {"LIBLTO", "The path to the LTO dll."},
        {"LTO1", "The path to the gcc lto1 command."},
        {"BASM", "The path to the Brenlow assembler."},
        {"BCC", "The path to the Brenlow compiler."},
        {"BLINK", "The path to the Brenlow linker."},
    });

    // The driver form passes the Brenlow tools' option for this value.
    compilerVariant->addOption("-brenlow", "Brenlow");
    assemblerVariant->addOption("-brenlow", "Brenlow");

    for (PropertyClass *compile :
         {supplyAbsoluteFilePath, keepAssembly, cAsmAdditionalOptions, keepPreprocessorOutput,
          static_cast<PropertyClass *>(compilerVariant), clangGnuVersion, supplyEditorInputCharset,
          supplyEditorExecuteCharset, brenlowCcNoUnsupportedArchitecture,
          static_cast<PropertyClass *>(assemblerVariant), clangRelocationModel, clangMachineOutliner,
          clangThreadModel, generateStackSizes, preprocessAssemblyCode})
        m.tools(compile, {cStep, cppStep, assemblyStep});
    // Both choose the tools of every step, the link's too.
    for (PropertyClass *everyStep : {useExternalGcc, useCompilerDriver})
        m.tools(everyStep, {cStep, cppStep, assemblyStep, linkStep});
    for (PropertyClass *link :
         {additionalOutputFileGapFill, linkerVariant, linkerGapFill, linkerLogFile, supplyMemorySegments,
          linkSectionHeaders, linkDedupeCode, linkDedupeData, linkInline, linkListAllUndefineds, linkMergeSections,
          linkMergeStrings, linkMapFile, linkMapFileFormat, treatLibrariesAsObjectFiles, supplyLibraryLinkerSymbols,
          linkKeepLtoFiles, ltoAdditionalOptions, libraryIoType, libraryHeapType, libraryHeapLocking,
          libraryLocales, dsoHandleValue})
        m.tools(link, {linkStep});
    for (std::size_t i = 0; i < sectionGroups.size(); ++i) {
        m.tools(linkPad[i], {linkStep});
        m.tools(linkAlign[i], {linkStep});
    }
}
