#include "project/standard_property_table.h"

#include "project/property_class_map.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

// Every row name of the table, in table order by subject.
const Strings rowNames = {
    // Node and file information
    "date_created", "date_modified", "Platform", "target", "full_path", "relative_path", "Name",
    "hidden", "file_name", "file_codec", "file_open_with", "file_type", "file_flag", "project_flag",
    "solution_flag", "name",
    // Folders
    "path", "recurse", "exclude", "unity_build_file_name", "unity_build_exclude_filter",
    // Projects and build
    "project_type", "project_directory", "full_project_directory", "project_dependencies",
    "project_can_build_in_parallel", "macros", "package_dependencies", "package_directory",
    "batch_build_configurations", "inherited_configurations", "project_inhibit_indexing",
    "source_code_control_directory", "code_completion_options", "environment_variables",
    "compilation_database_file", "generate_compilation_database_file", "build_toolchain_directory",
    "build_treat_warnings_as_errors", "build_suppress_warnings", "build_intermediate_directory",
    "build_output_directory", "build_root_output_directory", "build_object_file_name",
    "build_preprocess_output_file_name", "build_quietly", "build_debug_information",
    "build_exclude_from_build", "build_always_rebuild", "property_groups_file_path",
    "build_generate_dependency_file", "build_dependency_file_name",
    "build_generic_options_file_name", "properties_filter", "build_remove_unused_symbols",
    "inputs_file", "inputs_order", "delete_intermediate_directory",
    // Staging projects
    "stage_output_filepath", "stage_command", "stage_command_wd", "stage_set_readonly",
    "stage_post_build_command", "stage_post_build_command_wd", "stage_output_filepath_replace",
    // Combining projects
    "combine_output_filepath", "combine_command", "combine_command_wd", "combine_set_readonly",
    // User build steps
    "pre_build_command", "pre_build_command_wd", "pre_build_command_control", "post_build_command",
    "post_build_command_wd", "post_build_command_control", "compile_pre_build_command",
    "compile_pre_build_command_output_file_name", "compile_pre_build_command_wd",
    "compile_post_build_command", "compile_post_build_command_wd", "linker_pre_build_command",
    "linker_pre_build_command_output_file_name", "linker_pre_build_command_wd",
    "linker_patch_build_command", "linker_patch_build_command_wd", "linker_post_build_command",
    "linker_post_build_command_wd", "linker_post_build_command_output_file",
    "archive_post_build_command", "archive_post_build_command_wd",
    // Linking
    "link_include_standard_libraries", "link_standard_libraries_directory",
    "link_symbol_definitions", "linker_keep_symbols", "linker_additional_files",
    "linker_additional_options", "linker_additional_options_from_file", "linker_memory_map_file",
    "linker_memory_map_macros", "linker_section_placement_file", "linker_section_placement_macros",
    "linker_section_placements_segments", "link_use_linker_script_file", "link_linker_script_file",
    "link_dependent_projects", "linker_output_format", "linker_map_file", "linker_map_file_name",
    "linker_printf_fmt_level", "linker_printf_width_precision_supported",
    "linker_printf_fp_enabled", "linker_printf_wchar_enabled", "linker_scanf_fmt_level",
    "linker_scanf_fp_enabled", "linker_scanf_character_group_matching_enabled",
    "link_additional_options_backup",
    // Compiling
    "c_enforce_ansi_checking", "c_undefine_all_preprocessor_definitions",
    "c_preprocessor_definitions", "c_preprocessor_undefinitions", "c_user_include_directories",
    "c_include_files", "c_macros_files", "c_ignore_includes", "c_system_include_directories",
    "c_additional_options", "c_additional_options_from_file", "c_only_additional_options",
    "c_only_additional_options_from_file", "cpp_only_additional_options",
    "cpp_only_additional_options_from_file", "cpp_enable_exceptions", "cpp_enable_rtti",
    "asm_additional_options", "asm_additional_options_from_file", "asm_generate_listing_file",
    "default_code_section", "default_data_section", "default_zeroed_section",
    "default_const_section", "default_vector_section", "default_isr_section",
    "asm_additional_options_backup", "c_additional_options_backup",
    "c_only_additional_options_backup", "cpp_only_additional_options_backup", "c_files_are_cpp",
    "is_cpp_project", "add_property_group_includes_defines",
    // Debugger and loader
    "debug_cpu_registers_file", "debug_register_definition_file",
    "debug_register_definition_file_type", "external_build_file_name", "external_start_address",
    "external_load_address", "external_load_file_type", "external_debug_symbols_file_name",
    "external_debug_symbols_load_address", "debug_target_connection",
    "debug_target_connection_string", "debug_working_directory", "debug_command_arguments",
    "debug_additional_load_file", "debug_additional_load_file_address",
    "debug_additional_load_file_type", "debug_start_from_entry_point_symbol",
    "debug_entry_point_symbol", "debug_startup_completion_point", "debug_load_additional_projects",
    "debug_dependent_projects", "debug_additional_configurations", "debug_project_name",
    "debug_initial_breakpoint", "debug_initial_breakpoint_set_option", "debug_leave_target_running",
    "debug_threads_script", "debug_threads_max", "debug_html_watch", "debug_terminal_log_file",
    // Externally built projects
    "external_build_command", "external_clean_command", "external_c_compile_command",
    "external_cpp_compile_command", "external_assemble_command", "external_link_command",
    "external_cpp_link_command", "external_archive_command", "external_objects_file_name",
    // Code analysis
    "analyze_headers", "analyze_after_compile", "clang_tidy_checks_c", "clang_tidy_checks_cpp",
    "analyze_command", "analyze_command_c_options", "analyze_command_cpp_options",
    // Own classes
    "filter", "build_output_file_name",
};

const Strings familyNames = {
    "external_debug_symbols_file_name", "external_debug_symbols_load_address",
    "debug_additional_load_file", "debug_additional_load_file_address",
    "debug_additional_load_file_type",
};

const Strings buildMacroNames = {
    "Configuration", "ConfigurationHash", "EXE", "FolderName", "FolderPath", "InputDir",
    "InputExt", "InputFileName", "InputName", "InputPath", "InputPathHash", "IntDir", "LIB",
    "OBJ", "OutDir", "PackageExt", "ProjectDir", "ProjectName", "ProjectNodeName", "RootOutDir",
    "RootRelativeOutDir", "RelInputPath", "RelInputDir", "SolutionDir", "SolutionExt",
    "SolutionFileName", "SolutionName", "SolutionPath", "ToolChainDir",
};

const Strings commandMacroNames = {
    "CombiningOutputFilePath", "CombiningRelInputPaths", "StageOutputFilePath", "TargetPath",
    "RelTargetPath", "PostLinkOutputFilePath", "PostLinkOutputFilePath", "MapPath", "RelMapPath",
    "DependencyPath", "RelDependencyPath", "Defines", "Includes", "IncludeFiles", "MacroFiles",
    "Undefines", "Objects", "ObjectsFilePath", "RelObjectsFilePath", "LinkerScriptPath",
    "RelLinkerScriptPath", "AsmOptions", "COptions", "COnlyOptions", "CppOnlyOptions",
    "LinkOptions", "CLANGTIDY", "MemorySegments", "CC", "CCPP", "LinkLibraries",
};

struct StandardTable {
    PropertyClassMap map;
    NodeProperties node{map};
    ToolProperties tool{map};

    std::vector<const PropertyClass *> all() const
    {
        std::vector<const PropertyClass *> result;
        for (const auto *part : {&node.objects, &tool.objects}) {
            for (const auto &object : *part)
                result.push_back(object.get());
        }
        return result;
    }
};

bool isMacro(const PropertyClass *property)
{
    return dynamic_cast<const MacroPropertyClass *>(property) != nullptr;
}

TEST(StandardPropertyTable, Sizes)
{
    StandardTable table;
    std::size_t macros = 0;
    for (const PropertyClass *property : table.all())
        macros += isMacro(property);
    EXPECT_EQ(rowNames.size(), 197u);
    EXPECT_EQ(table.all().size() - macros, 212u);
    EXPECT_EQ(macros, 60u);
    // The two post-link macro rows share a name.
    EXPECT_EQ(table.map.size(), 212u + 59u);
}

TEST(StandardPropertyTable, EveryRowOnceAndFamiliesFourTimes)
{
    StandardTable table;
    std::multiset<std::string> made;
    for (const PropertyClass *property : table.all()) {
        if (!isMacro(property))
            made.insert(property->name());
    }
    std::multiset<std::string> expected(rowNames.begin(), rowNames.end());
    for (const std::string &family : familyNames) {
        for (const char *n : {"1", "2", "3"})
            expected.insert(family + n);
    }
    EXPECT_EQ(made, expected);
    for (const std::string &name : expected) {
        const PropertyClass *property = table.map.propertyClass(name);
        ASSERT_NE(property, nullptr) << name;
        EXPECT_EQ(property->name(), name);
    }
}

TEST(StandardPropertyTable, FamilyTitlesCarryTheirNumber)
{
    StandardTable table;
    EXPECT_EQ(table.tool.externalDebugSymbolsFileName[0]->name(), "external_debug_symbols_file_name");
    EXPECT_EQ(table.tool.externalDebugSymbolsFileName[0]->shortText(), "Debug Symbols File[0]");
    EXPECT_EQ(table.tool.externalDebugSymbolsFileName[3]->name(), "external_debug_symbols_file_name3");
    EXPECT_EQ(table.tool.externalDebugSymbolsFileName[3]->shortText(), "Debug Symbols File[3]");
    EXPECT_EQ(table.tool.debugAdditionalLoadFileType[2]->name(), "debug_additional_load_file_type2");
    EXPECT_EQ(table.tool.debugAdditionalLoadFileType[2]->type(), PropertyClass::Enumeration);
}

TEST(StandardPropertyTable, MacroRows)
{
    StandardTable table;
    Strings build, command;
    for (const MacroPropertyClass *macro : table.node.buildMacros) {
        build.push_back(macro->macroName());
        EXPECT_EQ(macro->group(), "(Build Macro Values)");
        EXPECT_FALSE(macro->longText().empty()) << macro->macroName();
    }
    for (const MacroPropertyClass *macro : table.tool.commandMacros)
        command.push_back(macro->macroName());
    EXPECT_EQ(build, buildMacroNames);
    EXPECT_EQ(command, commandMacroNames);
    EXPECT_EQ(table.map.propertyClass("$(OutDir)"), table.node.buildMacros[14]);
}

struct TellingRow {
    const char *name;
    PropertyClass::Type type;
    std::optional<std::string> defaultValue;
    Strings values;
    bool perConfiguration = true;
};

TEST(StandardPropertyTable, TellingRows)
{
    using T = PropertyClass;
    const std::optional<std::string> none;
    const Strings yesNoNone = {"Yes", "No", "None"};
    const TellingRow rows[] = {
        {"project_type", T::Enumeration, "Executable",
         {"Executable", "Library", "Object file", "Staging", "Combining",
          "Externally Built Executable", "Externally Built Library",
          "Externally Built Object file"}},
        {"file_type", T::Enumeration, "Default", {"Default"}},
        {"file_open_with", T::Enumeration, "Default",
         {"Default", "Text Editor", "Binary Editor", "Web Browser", "HTML Viewer", "Run File"}},
        {"project_directory", T::String, none, {}, false},
        {"project_dependencies", T::StringList, none, {}},
        {"project_can_build_in_parallel", T::Enumeration, "Default", {"Default", "Yes", "No"}},
        {"macros", T::StringList, none, {}},
        {"batch_build_configurations", T::StringList, none, {}},
        {"inherited_configurations", T::StringList, none, {}},
        {"environment_variables", T::StringList, none, {}, false},
        {"source_code_control_directory", T::DirPath, "$(SolutionDir)", {}, false},
        {"compilation_database_file", T::FileName, "$(OutDir)/$(ProjectName).json", {}},
        {"generate_compilation_database_file", T::Enumeration, "No", {"Yes", "No"}},
        {"build_toolchain_directory", T::DirPath, "$(StudioDir)", {}},
        {"build_treat_warnings_as_errors", T::Boolean, "No", {}},
        {"build_suppress_warnings", T::Boolean, "No", {}},
        {"build_intermediate_directory", T::DirPath, "$(ProjectName) $(Configuration)", {}},
        {"build_output_directory", T::DirPath, "$(ProjectName) $(Configuration)", {}},
        {"build_root_output_directory", T::DirPath, "", {}},
        {"build_object_file_name", T::FileName, "$(IntDir)/$(InputName)$(OBJ)", {}},
        {"build_preprocess_output_file_name", T::FileName, "$(OutDir)/$(ProjectName).i", {}},
        {"build_quietly", T::Boolean, "Yes", {}},
        {"build_debug_information", T::Boolean, "Yes", {}},
        {"build_exclude_from_build", T::Boolean, "No", {}},
        {"build_always_rebuild", T::Boolean, "No", {}},
        {"build_generate_dependency_file", T::Enumeration, "Yes",
         {"Yes", "No", "User Header Files Only"}},
        {"build_remove_unused_symbols", T::Enumeration, "None", yesNoNone},
        {"stage_output_filepath", T::String, "$(OutDir)/$(RelInputPath)", {}},
        {"stage_command", T::CommandLine, "cp \"$(RelInputPath)\" \"$(StageOutputFilePath)\"", {}},
        {"stage_command_wd", T::String, "$(ProjectDir)", {}},
        {"stage_post_build_command_wd", T::String, "$(ProjectDir)", {}},
        {"combine_command_wd", T::String, "$(ProjectDir)", {}},
        {"pre_build_command_wd", T::String, "$(ProjectDir)", {}},
        {"post_build_command_wd", T::String, "$(ProjectDir)", {}},
        {"stage_set_readonly", T::Enumeration, "No", {"Yes", "No", "Don't"}},
        {"combine_set_readonly", T::Enumeration, "No", {"Yes", "No", "Don't"}},
        {"pre_build_command_control", T::Enumeration, "Run When Build Required",
         {"Always Run", "Run When Build Required"}},
        {"post_build_command_control", T::Enumeration, "Run When Build Has Occurred",
         {"Always Run", "Run When Build Has Occurred"}},
        {"link_include_standard_libraries", T::Boolean, "Yes", {}},
        {"link_standard_libraries_directory", T::String, "$(StudioLibDir:$(StudioDir)/lib)", {}},
        {"link_dependent_projects", T::Boolean, "Yes", {}},
        {"link_use_linker_script_file", T::Boolean, "No", {}},
        {"c_system_include_directories", T::StringList, "$(StudioIncDir:$(StudioDir)/include)", {}},
        {"cpp_enable_exceptions", T::Enumeration, "None", yesNoNone},
        {"cpp_enable_rtti", T::Enumeration, "None", yesNoNone},
        {"is_cpp_project", T::Enumeration, "Detect", {"Yes", "No", "Detect"}},
        {"linker_map_file", T::Boolean, "Yes", {}},
        {"linker_printf_fmt_level", T::Enumeration, "long long", {"int", "long", "long long"}},
        {"linker_scanf_fmt_level", T::Enumeration, "long long", {"int", "long", "long long"}},
        {"linker_printf_fp_enabled", T::Enumeration, "Double", {"No", "Float", "Double"}},
        {"add_property_group_includes_defines", T::Boolean, "Yes", {}},
        {"analyze_headers", T::Boolean, "Yes", {}},
        {"clang_tidy_checks_c", T::StringList, "clang-analyzer-*;-clang-analyzer-cplusplus*", {}},
        {"clang_tidy_checks_cpp", T::StringList, "clang-analyzer-*", {}},
    };
    StandardTable table;
    for (const TellingRow &row : rows) {
        SCOPED_TRACE(row.name);
        const PropertyClass *property = table.map.propertyClass(row.name);
        ASSERT_NE(property, nullptr);
        EXPECT_EQ(property->type(), row.type);
        EXPECT_EQ(property->defaultValue(), row.defaultValue);
        EXPECT_EQ(property->values(), row.values);
        EXPECT_EQ(property->perConfiguration(), row.perConfiguration);
        EXPECT_FALSE(property->readOnly());
        EXPECT_FALSE(property->longText().empty());
    }
}

TEST(StandardPropertyTable, ReadOnlyRowsAreTheComputedOnes)
{
    StandardTable table;
    std::set<std::string> readOnly;
    for (const PropertyClass *property : table.all()) {
        if (property->readOnly())
            readOnly.insert(property->name());
    }
    EXPECT_EQ(readOnly, (std::set<std::string>{"date_created", "date_modified", "full_path",
                                                "relative_path", "Name", "hidden", "file_name",
                                                "name", "full_project_directory"}));
}

TEST(StandardPropertyTable, OwnClasses)
{
    StandardTable table;
    EXPECT_EQ(table.map.propertyClass("filter"), table.node.filter);
    EXPECT_EQ(table.node.filter->shortText(), "Folder Filter");
    EXPECT_EQ(table.map.propertyClass("build_output_file_name"), table.node.buildOutputFileName);
    table.node.buildOutputFileName->setLibraryMode();
    EXPECT_EQ(table.map.propertyClass("build_output_file_name")->defaultValue(),
              "$(OutDir)/$(ProjectName)$(LIB)");
}

TEST(StandardPropertyTable, ToolchainListsReplaceTheTypes)
{
    StandardTable table;
    EXPECT_EQ(table.node.projectType->longText(),
              "The type of the project: Executable, Library, Object file, Staging, Combining, "
              "Externally Built Executable, Externally Built Library, Externally Built Object "
              "file.");
    table.node.setProjectTypes({"Executable", "Library"});
    EXPECT_EQ(table.node.projectType->values(), (Strings{"Executable", "Library"}));
    EXPECT_EQ(table.node.projectType->longText(), "The type of the project: Executable, Library.");
    table.node.setFileTypes({"C", "C++", "Assembly"});
    EXPECT_EQ(table.node.fileType->choices(), (Strings{"Default", "C", "C++", "Assembly"}));
}

bool inList(const PropertyClassMap &map, int step, const char *name)
{
    for (const PropertyClass *property : map.toolProperties(step)) {
        if (property->name() == name)
            return true;
    }
    return false;
}

TEST(StandardPropertyTable, ToolListsSeparateCompileAndLinkSides)
{
    StandardTable table;
    for (int step : {2, 3, 4}) {
        EXPECT_TRUE(inList(table.map, step, "c_preprocessor_definitions")) << step;
        EXPECT_TRUE(inList(table.map, step, "c_user_include_directories")) << step;
        EXPECT_FALSE(inList(table.map, step, "linker_map_file")) << step;
    }
    EXPECT_TRUE(inList(table.map, 2, "c_only_additional_options"));
    EXPECT_FALSE(inList(table.map, 3, "c_only_additional_options"));
    EXPECT_TRUE(inList(table.map, 3, "cpp_enable_exceptions"));
    EXPECT_FALSE(inList(table.map, 2, "cpp_enable_exceptions"));
    EXPECT_TRUE(inList(table.map, 4, "asm_additional_options"));
    EXPECT_FALSE(inList(table.map, 2, "asm_additional_options"));
    EXPECT_TRUE(inList(table.map, 7, "linker_map_file"));
    EXPECT_TRUE(inList(table.map, 7, "build_treat_warnings_as_errors"));
    EXPECT_FALSE(inList(table.map, 7, "c_preprocessor_definitions"));
    // Each list holds a class once.
    for (int step : {2, 3, 4, 7}) {
        const auto &list = table.map.toolProperties(step);
        EXPECT_EQ(std::set<const PropertyClass *>(list.begin(), list.end()).size(), list.size());
    }
}

} // namespace
