#include "project/project_system_xml.h"
#include "project/project_test_tree.h"
#include "support/file_info.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

Strings sorted(Strings names) {
    std::sort(names.begin(), names.end());
    return names;
}

Strings names(const PropertyValueList &list) {
    Strings result;
    for (const auto &value : list)
        result.push_back(value->name());
    return result;
}

// A standard project system whose toolchain operations each add one marker
// class and note that they were asked.
class ListingSystem : public StandardTestSystem {
public:
    bool isHostedToolchain() const override { return hosted; }
    void appendCProperties(ProjectElement *, const std::string &, PropertyClassList &list) override {
        ask("c", list);
    }
    void appendCppProperties(ProjectElement *, const std::string &, PropertyClassList &list) override {
        ask("cpp", list);
    }
    void appendAssemblerProperties(ProjectElement *, const std::string &,
                                   PropertyClassList &list) override {
        ask("asm", list);
    }
    void appendSourceFileProperties(ProjectElement *, const std::string &,
                                    PropertyClassList &list) override {
        ask("source", list);
    }
    void appendLinkerProperties(ProjectElement *, const std::string &,
                                PropertyClassList &list) override {
        ask("linker", list);
    }
    void appendDebugProperties(ProjectElement *, const std::string &, PropertyClassList &list) override {
        ask("debug", list);
    }
    void appendLibraryProperties(ProjectElement *, const std::string &,
                                 PropertyClassList &list) override {
        ask("library", list);
    }
    void appendToolchainProperties(ProjectElement *, const std::string &,
                                   PropertyClassList &list) override {
        ask("toolchain", list);
    }
    void appendLanguageProperties(ProjectElement *, const std::string &,
                                  PropertyClassList &list) override {
        ask("language", list);
    }
    std::vector<PropertyClass *> loaderProperties() const override {
        return {propertyClasses.propertyClass("external_load_address"),
                propertyClasses.propertyClass("external_load_file_type")};
    }

    // The names of the lines that the tool part of a node's listing has.
    Strings toolLines(ProjectElement *element, const std::string &configuration = "Debug") {
        asked.clear();
        return names(toolPropertyValues(element, configuration));
    }

    bool hosted = false;
    Strings asked;

private:
    void ask(const std::string &hook, PropertyClassList &list) {
        asked.push_back(hook);
        auto &marker = markers[hook];
        if (!marker)
            marker = std::make_unique<PropertyClass>("hook_" + hook, PropertyClass::String,
                                                     hook == "debug" ? "Debugging" : "C/C++", "",
                                                     "", "", std::nullopt);
        list.push_back(marker.get());
    }
    std::map<std::string, std::unique_ptr<PropertyClass>> markers;
};

const char *const solutionText = R"(<solution Name="S">
  <configuration Name="Debug" />
  <project Name="App">
    <configuration Name="Common" project_type="Executable" is_cpp_project="No" />
    <configuration Name="Load" external_load_address="0x100" />
    <configuration Name="Mixed" external_load_address="0x100" build_quietly="Yes" />
    <folder Name="Src">
      <file file_name="main.c" />
      <file file_name="util.cpp" />
      <file file_name="start.s" />
      <file file_name="api.h" />
      <file file_name="notes.txt" />
    </folder>
    <folder Name="Dyn" path="src" filter="*.c">
      <file file_name="src/found.c" />
    </folder>
  </project>
  <project Name="Lib">
    <configuration Name="Common" project_type="Library" is_cpp_project="Yes" />
  </project>
  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" />
    <folder Name="Files">
      <file file_name="image.bin" />
    </folder>
  </project>
  <project Name="Combine">
    <configuration Name="Common" project_type="Combining" />
  </project>
  <project Name="Ext">
    <configuration Name="Common" project_type="Externally Built Executable" />
    <file file_name="ext.c" />
    <file file_name="ext.cpp" />
    <file file_name="ext.s" />
  </project>
  <folder Name="Loose">
    <file file_name="readme.c" />
  </folder>
</solution>)";

struct Fixture {
    Fixture() { system.load(solutionText); }
    ProjectElement *file(const std::string &path) {
        ProjectElement *found = ProjectSystem::findFileByPath(system.solution, path);
        EXPECT_NE(found, nullptr) << path;
        return found;
    }
    ListingSystem system;
};

const Strings executableLines = {
    "add_property_group_includes_defines",
    "build_always_rebuild",
    "build_exclude_from_build",
    "build_intermediate_directory",
    "build_object_file_name",
    "build_output_directory",
    "build_output_file_name",
    "build_toolchain_directory",
    "external_assemble_command",
    "external_build_file_name",
    "external_c_compile_command",
    "external_cpp_compile_command",
    "external_cpp_link_command",
    "external_debug_symbols_file_name",
    "external_debug_symbols_file_name1",
    "external_debug_symbols_file_name2",
    "external_debug_symbols_file_name3",
    "external_debug_symbols_load_address",
    "external_debug_symbols_load_address1",
    "external_debug_symbols_load_address2",
    "external_debug_symbols_load_address3",
    "external_link_command",
    "external_load_address",
    "external_load_file_type",
    "external_objects_file_name",
    "file_codec",
    "hook_asm",
    "hook_c",
    "hook_debug",
    "hook_linker",
    "property_groups_file_path",
};

TEST(PropertyListing, ExecutableProjectToolLines) {
    Fixture f;
    ProjectElement *app = f.system.node("App");
    EXPECT_EQ(f.system.toolLines(app), executableLines);
    // is_cpp_project "No": the C++ operation isn't asked.
    EXPECT_EQ(f.system.asked, (Strings{"c", "asm", "linker", "debug"}));
    auto *outputName = f.system.nodeProperties.buildOutputFileName;
    EXPECT_EQ(outputName->shortText(), "Executable File Name");

    // The hosted toolchain loads nothing and knows no external commands.
    f.system.hosted = true;
    EXPECT_EQ(f.system.toolLines(app),
              (Strings{"add_property_group_includes_defines", "build_always_rebuild",
                       "build_exclude_from_build", "build_intermediate_directory",
                       "build_object_file_name", "build_output_directory", "build_output_file_name",
                       "build_toolchain_directory", "file_codec", "hook_asm", "hook_c", "hook_debug",
                       "hook_linker", "property_groups_file_path"}));
}

TEST(PropertyListing, LibraryStagingAndCombiningProjects) {
    Fixture f;
    EXPECT_EQ(f.system.toolLines(f.system.node("Lib")),
              (Strings{"build_always_rebuild", "build_exclude_from_build",
                       "build_intermediate_directory", "build_object_file_name",
                       "build_output_directory", "build_output_file_name",
                       "build_toolchain_directory", "external_archive_command",
                       "external_assemble_command", "external_c_compile_command",
                       "external_cpp_compile_command", "external_objects_file_name", "file_codec",
                       "hook_asm", "hook_c", "hook_cpp", "hook_library"}));
    EXPECT_EQ(f.system.asked, (Strings{"c", "cpp", "asm", "library"}));
    EXPECT_EQ(f.system.nodeProperties.buildOutputFileName->shortText(), "Library File Name");
    EXPECT_EQ(f.system.nodeProperties.buildOutputFileName->defaultValue(),
              "$(OutDir)/$(ProjectName)$(LIB)");

    const Strings staging = f.system.toolLines(f.system.node("Stage"));
    EXPECT_EQ(staging,
              (Strings{"build_always_rebuild", "build_exclude_from_build", "build_output_directory",
                       "file_codec", "stage_command", "stage_command_wd", "stage_output_filepath",
                       "stage_output_filepath_replace", "stage_post_build_command",
                       "stage_post_build_command_wd", "stage_set_readonly"}));
    EXPECT_TRUE(f.system.asked.empty());
    const Strings executable = f.system.toolLines(f.system.node("App"));
    EXPECT_EQ(std::count(executable.begin(), executable.end(), "stage_command"), 0);

    EXPECT_EQ(f.system.toolLines(f.system.node("Combine")),
              (Strings{"build_always_rebuild", "build_exclude_from_build", "build_output_directory",
                       "combine_command", "combine_command_wd", "combine_output_filepath",
                       "combine_set_readonly", "file_codec"}));
}

TEST(PropertyListing, ExternallyBuiltExecutableProject) {
    Fixture f;
    const Strings lines = f.system.toolLines(f.system.node("Ext"));
    EXPECT_EQ(f.system.asked, (Strings{"debug", "toolchain", "language"}));
    for (const char *name :
         {"external_build_command", "external_clean_command", "external_link_command",
          "linker_additional_options", "compile_pre_build_command_output_file_name",
          "linker_post_build_command_output_file", "build_generic_options_file_name",
          "link_additional_options_backup", "cpp_only_additional_options_backup",
          "external_debug_symbols_load_address3", "linker_section_placements_segments",
          "analyze_command_cpp_options", "hook_language", "hook_toolchain"})
        EXPECT_EQ(std::count(lines.begin(), lines.end(), name), 1) << name;
    EXPECT_EQ(lines.size(), 67u);
    EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end()));
}

TEST(PropertyListing, FilesByProjectAndFileType) {
    Fixture f;
    const Strings common = {"build_always_rebuild", "build_exclude_from_build", "file_codec",
                            "file_open_with", "file_type"};
    const auto with = [&](Strings more) {
        more.insert(more.end(), common.begin(), common.end());
        return sorted(more);
    };
    EXPECT_EQ(f.system.toolLines(f.file("main.c")),
              with({"build_object_file_name", "external_c_compile_command", "hook_c"}));
    EXPECT_EQ(f.system.toolLines(f.file("util.cpp")),
              with({"build_object_file_name", "external_cpp_compile_command", "hook_cpp"}));
    EXPECT_EQ(f.system.toolLines(f.file("start.s")),
              with({"build_object_file_name", "external_assemble_command", "hook_asm"}));
    EXPECT_EQ(f.system.toolLines(f.file("api.h")), with({"analyze_headers", "hook_source"}));
    EXPECT_EQ(f.system.toolLines(f.file("notes.txt")), common);

    // Externally built: the options and steps of the outside build, and the
    // toolchain's language options instead of its compiler's.
    const Strings steps = {"compile_post_build_command", "compile_post_build_command_wd",
                           "compile_pre_build_command", "compile_pre_build_command_output_file_name",
                           "compile_pre_build_command_wd", "hook_language"};
    const auto external = [&](Strings more) {
        more.insert(more.end(), steps.begin(), steps.end());
        return with(more);
    };
    EXPECT_EQ(f.system.toolLines(f.file("ext.c")),
              external({"build_object_file_name", "c_additional_options",
                        "c_only_additional_options", "external_c_compile_command"}));
    EXPECT_EQ(f.system.toolLines(f.file("ext.cpp")),
              external({"build_object_file_name", "c_additional_options",
                        "cpp_only_additional_options", "external_cpp_compile_command"}));
    EXPECT_EQ(f.system.toolLines(f.file("ext.s")),
              external({"asm_additional_options", "build_object_file_name",
                        "external_assemble_command"}));

    EXPECT_EQ(f.system.toolLines(f.file("image.bin")),
              (Strings{"build_exclude_from_build", "stage_command", "stage_command_wd",
                       "stage_output_filepath", "stage_set_readonly"}));
    EXPECT_EQ(f.system.toolLines(f.file("readme.c")),
              (Strings{"file_codec", "file_open_with", "file_type"}));
}

TEST(PropertyListing, FoldersAndSolution) {
    Fixture f;
    const Strings everyFolder = {"build_always_rebuild", "build_exclude_from_build", "file_codec",
                                 "file_type"};
    EXPECT_EQ(f.system.toolLines(f.system.node("Src")),
              (Strings{"build_always_rebuild", "build_exclude_from_build",
                       "build_intermediate_directory", "build_object_file_name",
                       "build_output_directory", "build_toolchain_directory", "file_codec",
                       "file_type", "hook_asm", "hook_c", "unity_build_exclude_filter",
                       "unity_build_file_name"}));
    EXPECT_EQ(f.system.toolLines(f.system.node("Files")),
              sorted({"build_always_rebuild", "build_exclude_from_build", "file_codec", "file_type",
                      "build_output_directory", "stage_command", "stage_command_wd",
                      "stage_output_filepath", "stage_output_filepath_replace",
                      "stage_post_build_command", "stage_post_build_command_wd",
                      "stage_set_readonly"}));
    EXPECT_EQ(f.system.toolLines(f.system.node("Loose")), everyFolder);

    // The solution takes the classes of all its projects' types.
    const Strings solution = f.system.toolLines(f.system.solution);
    for (const char *name : {"stage_command", "combine_command", "external_archive_command",
                             "external_clean_command", "hook_cpp", "file_codec"})
        EXPECT_EQ(std::count(solution.begin(), solution.end(), name), 1) << name;
    EXPECT_EQ(std::count(solution.begin(), solution.end(), "build_exclude_from_build"), 0);
    EXPECT_TRUE(std::adjacent_find(solution.begin(), solution.end()) == solution.end());

    ProjectElement *configuration = ProjectSystem::findConfiguration(f.system.node("App"), "Common");
    EXPECT_TRUE(f.system.getPropertyValues(configuration, "Debug").empty());
    EXPECT_TRUE(f.system.getPropertyValues(nullptr, "Debug").empty());
}

TEST(PropertyListing, PropertiesFilterKeepsNamedPages) {
    Fixture f;
    ProjectElement *app = f.system.node("App");
    PropertyClass *filter = f.system.nodeProperties.propertiesFilter;
    // Pages are named as the classes store them or as definitions write them.
    f.system.setPropertyValue(app, filter, "Common", "Debugging");
    EXPECT_EQ(f.system.toolLines(app),
              (Strings{"external_build_file_name", "external_debug_symbols_file_name",
                       "external_debug_symbols_file_name1", "external_debug_symbols_file_name2",
                       "external_debug_symbols_file_name3", "external_debug_symbols_load_address",
                       "external_debug_symbols_load_address1",
                       "external_debug_symbols_load_address2",
                       "external_debug_symbols_load_address3", "external_load_address",
                       "external_load_file_type", "hook_debug"}));
    f.system.setPropertyValue(app, filter, "Common", "Code;;Debug");
    EXPECT_EQ(f.system.toolLines(app), executableLines);

    // A filter that names no page leaves the node's own lines.
    f.system.setPropertyValue(app, filter, "Common", "Nothing");
    EXPECT_TRUE(f.system.toolLines(app).empty());
    EXPECT_EQ(names(f.system.getPropertyValues(app, "Debug")).front(), "project_type");
}

TEST(PropertyListing, ProjectLinesFollowTheToolLines) {
    Fixture f;
    ProjectElement *app = f.system.node("App");
    const PropertyValueList list = f.system.getPropertyValues(app, "Debug");
    Strings expected = executableLines;
    const Strings projectLines = {
        "project_type", "project_directory", "full_project_directory", "macros",
        "project_dependencies", "project_can_build_in_parallel", "package_dependencies",
        "batch_build_configurations", "project_inhibit_indexing", "code_completion_options",
        "compilation_database_file", "generate_compilation_database_file", "pre_build_command",
        "pre_build_command_wd", "pre_build_command_control", "post_build_command",
        "post_build_command_wd", "post_build_command_control"};
    expected.insert(expected.end(), projectLines.begin(), projectLines.end());
    EXPECT_EQ(names(list), expected);

    EXPECT_NE(dynamic_cast<ProjectDirectoryProjectPropertyValue *>(list.find("project_directory")),
              nullptr);
    EXPECT_NE(dynamic_cast<ProjectMacrosProjectPropertyValue *>(list.find("macros")), nullptr);
    EXPECT_NE(dynamic_cast<SimplePropertyValue *>(list.find("full_project_directory")), nullptr);
    EXPECT_EQ(list.find("full_project_directory")->value(), "/work/s");
    EXPECT_EQ(list.find("project_type")->value(), "Executable");
    // Lines of properties outside configurations read and write "Common".
    auto *directory = dynamic_cast<ProjectPropertyValue *>(list.find("project_directory"));
    EXPECT_EQ(directory->configuration, "Common");
    EXPECT_EQ(dynamic_cast<ProjectPropertyValue *>(list.find("file_codec"))->configuration, "Debug");
}

TEST(PropertyListing, SolutionAndFolderLines) {
    Fixture f;
    const PropertyValueList solution = f.system.getPropertyValues(f.system.solution, "Debug");
    const Strings lines = names(solution);
    ASSERT_GE(lines.size(), 18u);
    EXPECT_EQ(Strings(lines.end() - 18, lines.end()),
              (Strings{"name", "date_created", "date_modified", "macros", "package_directory",
                       "project_inhibit_indexing", "code_completion_options",
                       "compilation_database_file", "generate_compilation_database_file",
                       "pre_build_command", "pre_build_command_wd", "pre_build_command_control",
                       "post_build_command", "post_build_command_wd", "post_build_command_control",
                       "batch_build_configurations", "source_code_control_directory",
                       "environment_variables"}));
    EXPECT_EQ(Strings(lines.begin(), lines.end() - 18), f.system.toolLines(f.system.solution));
    EXPECT_EQ(solution.find("name")->value(), "/work/s/s.tbp");
    // The file doesn't exist: no times.
    EXPECT_EQ(solution.find("date_modified")->value(), "");

    const PropertyValueList plain = f.system.getPropertyValues(f.system.node("Src"), "Debug");
    Strings plainLines = names(plain);
    EXPECT_EQ(Strings(plainLines.end() - 3, plainLines.end()),
              (Strings{"filter", "project_inhibit_indexing", "code_completion_options"}));
    auto *filter = dynamic_cast<ProjectPropertyValue *>(plain.find("filter"));
    ASSERT_NE(filter, nullptr);
    EXPECT_EQ(filter->configuration, "Common");
    EXPECT_EQ(filter->longText(), "A filter used when adding new files to the project.");

    ProjectElement *dynamic = f.system.node("Dyn");
    const PropertyValueList dynamicLines = f.system.getPropertyValues(dynamic, "Debug");
    Strings dynamicNames = names(dynamicLines);
    EXPECT_EQ(Strings(dynamicNames.end() - 6, dynamicNames.end()),
              (Strings{"path", "filter", "recurse", "exclude", "project_inhibit_indexing",
                       "code_completion_options"}));
    // The folder itself is listed with the tool lines of a folder.
    EXPECT_EQ(dynamicNames.front(), "build_always_rebuild");
    PropertyValue *dynamicFilter = dynamicLines.find("filter");
    EXPECT_NE(dynamic_cast<DynamicFolderPropertyValue *>(dynamicFilter), nullptr);
    EXPECT_EQ(dynamicFilter->value(), "*.c");
    EXPECT_EQ(dynamicFilter->longText(), "Dynamic folder filter specification - ; seperated wildcards.");
    EXPECT_EQ(dynamicLines.find("path")->value(), "src");
}

TEST(PropertyListing, FileLinesAndTheDynamicFolder) {
    TestDirectory directory;
    const std::string source = directory.write("src/found.c", "int x;\n");
    Fixture f;
    f.system.load(solutionText, directory / "s.tbp");

    // A file of a dynamic folder lists only the lines of a file.
    ProjectElement *found = f.file("src/found.c");
    const PropertyValueList list = f.system.getPropertyValues(found, "Debug");
    EXPECT_EQ(names(list), (Strings{"full_path", "file_name", "date_created", "date_modified",
                                    "project_inhibit_indexing", "code_completion_options"}));
    EXPECT_EQ(list.find("full_path")->value(), source);
    EXPECT_EQ(list.find("file_name")->value(), "src/found.c");
    const FileInfo info(source);
    EXPECT_EQ(list.find("date_modified")->value(), info.lastModified().toText());
    EXPECT_EQ(list.find("date_created")->value(), info.created().toText());
    EXPECT_NE(list.find("date_modified")->value(), "");
    EXPECT_TRUE(list.find("full_path")->isReadOnly());

    // Any other file starts with its tool lines.
    const Strings main = names(f.system.getPropertyValues(f.file("main.c"), "Debug"));
    EXPECT_EQ(main.front(), "build_always_rebuild");
    EXPECT_EQ(Strings(main.end() - 6, main.end()), names(list));
}

TEST(PropertyListing, LoaderConfigurationListsTheLoaderProperties) {
    Fixture f;
    ProjectElement *app = f.system.node("App");
    const PropertyValueList loader = f.system.getPropertyValues(app, "Load");
    EXPECT_EQ(names(loader), (Strings{"external_load_address", "external_load_file_type"}));
    EXPECT_EQ(loader.at(0)->value(), "0x100");
    EXPECT_FALSE(loader.at(0)->isInherited());
    EXPECT_TRUE(loader.at(1)->isInherited());

    // A configuration that holds anything else isn't one; "Common" never is.
    EXPECT_GT(f.system.getPropertyValues(app, "Mixed").size(), 2u);
    ProjectElement *common = ProjectSystem::findConfiguration(app, "Common");
    common->removeAttribute("project_type");
    common->removeAttribute("is_cpp_project");
    EXPECT_GT(f.system.getPropertyValues(app, "Common").size(), 2u);
}

TEST(PropertyListing, ListenersAddLines) {
    struct Adder : PropertyChangeListener {
        void propertyChanged(ProjectElement *, const std::string &, PropertyClass *) override {}
        void appendPropertyValues(ProjectElement *, const std::string &,
                                  PropertyValueList &list) override {
            list.append(std::make_unique<SimplePropertyValue>(property, "added"));
        }
        PropertyClass *property = nullptr;
    } adder;
    Fixture f;
    adder.property = f.system.nodeProperties.fullPath;
    f.system.propertyListeners.push_back(&adder);
    const PropertyValueList list = f.system.getPropertyValues(f.system.node("Loose"), "Debug");
    ASSERT_FALSE(list.empty());
    EXPECT_EQ(list.at(list.size() - 1)->value(), "added");
    f.system.propertyListeners.clear();
}

TEST(PropertyListing, BaseSystemSkipsClassesItDoesNotKnow) {
    // The base holds only the node part of the table.
    TestProjectSystem system;
    system.load(solutionText);
    ProjectElement *stage = system.node("Stage");
    EXPECT_EQ(names(system.toolPropertyValues(stage, "Debug")),
              (Strings{"build_always_rebuild", "build_exclude_from_build", "build_output_directory",
                       "file_codec"}));
    EXPECT_EQ(names(system.toolPropertyValues(ProjectSystem::findFileByPath(stage, "image.bin"),
                                              "Debug")),
              (Strings{"build_exclude_from_build"}));
}

} // namespace
