#include "project/project_test_tree.h"
#include "project/property_class_map.h"

#include <gtest/gtest.h>

namespace {

struct StandardPropertyTable : ::testing::Test {
    PropertyClassMap map;
    NodeProperties node{map};
    ToolProperties tool{map};
};

// Defaults and choices that a user sees, look-ups of numbered families and
// macro rows, and the computed rows that are read only.
TEST_F(StandardPropertyTable, DefaultsLookUpsAndReadOnlyRows) {
    const char *const rows[][3] = {
        {"build_intermediate_directory", "$(ProjectName) $(Configuration)", ""},
        {"build_object_file_name", "$(IntDir)/$(InputName)$(OBJ)", ""},
        {"stage_command", "cp \"$(RelInputPath)\" \"$(StageOutputFilePath)\"", ""},
        {"build_generate_dependency_file", "Yes", "Yes|No|User Header Files Only"},
        {"is_cpp_project", "Detect", "Yes|No|Detect"},
    };
    for (const auto &[name, defaultValue, values] : rows) {
        const PropertyClass *property = map.propertyClass(name);
        ASSERT_NE(property, nullptr) << name;
        EXPECT_EQ(property->defaultValue(), defaultValue) << name;
        EXPECT_EQ(spaced(property->values(), "|"), values) << name;
    }
    EXPECT_EQ(map.propertyClass("external_debug_symbols_file_name3"), tool.externalDebugSymbolsFileName[3]);
    EXPECT_EQ(tool.externalDebugSymbolsFileName[3]->shortText(), "Debug Symbols File[3]");
    EXPECT_EQ(map.propertyClass("$(OutDir)")->group(), "(Build Macro Values)");
    // The pre-link and the post-link rows of $(PostLinkOutputFilePath) share
    // one name: the map holds the later.
    EXPECT_EQ(map.propertyClass("$(PostLinkOutputFilePath)")->longText(),
              "The file that the post-link command writes.");
    Strings readOnly;
    for (const auto *part : {&node.objects, &tool.objects})
        for (const auto &property : *part)
            if (property->readOnly())
                readOnly.push_back(property->name());
    EXPECT_EQ(spaced(readOnly), "date_created date_modified full_path relative_path Name hidden file_name name "
                                "full_project_directory");
}

// The toolchain gives the lists of project and file types.
TEST_F(StandardPropertyTable, ToolchainListsReplaceTheTypes) {
    EXPECT_EQ(node.projectType->longText(),
              "The type of the project: Executable, Library, Object file, Staging, Combining, Externally Built "
              "Executable, Externally Built Library, Externally Built Object file.");
    node.setProjectTypes({"Executable", "Library"});
    EXPECT_EQ(node.projectType->values(), (Strings{"Executable", "Library"}));
    EXPECT_EQ(node.projectType->longText(), "The type of the project: Executable, Library.");
    node.setFileTypes({"C", "C++", "Assembly"});
    EXPECT_EQ(node.fileType->choices(), (Strings{"Default", "C", "C++", "Assembly"}));
}

// How often the lists of steps 2 (C), 3 (C++), 4 (assembly) and 7 (link)
// hold each of the names below.
TEST_F(StandardPropertyTable, ToolListsSeparateCompileAndLinkSides) {
    std::string lists;
    for (int step : {2, 3, 4, 7}) {
        const auto &list = map.toolProperties(step);
        if (!lists.empty())
            lists += ' ';
        lists += std::to_string(step) + ":";
        for (const char *name : {"c_preprocessor_definitions", "c_only_additional_options", "cpp_enable_exceptions",
                                 "asm_additional_options", "linker_map_file", "build_treat_warnings_as_errors"})
            lists += std::to_string(std::count(list.begin(), list.end(), map.propertyClass(name)));
    }
    EXPECT_EQ(lists, "2:110001 3:101001 4:100101 7:000011");
}

} // namespace
