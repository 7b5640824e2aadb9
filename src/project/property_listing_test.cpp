#include "project/project_test_tree.h"
#include "support/file_info.h"
#include "support/text_split.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <map>

namespace {

// A standard project system whose toolchain operations each add one marker
// class "hook_<operation>".
class ListingSystem : public StandardTestSystem {
public:
    using List = PropertyClassList;
    bool isHostedToolchain() const override { return hosted; }
    void appendCProperties(ProjectElement *, const std::string &, List &l) override { ask("c", l); }
    void appendCppProperties(ProjectElement *, const std::string &, List &l) override { ask("cpp", l); }
    void appendAssemblerProperties(ProjectElement *, const std::string &, List &l) override { ask("asm", l); }
    void appendSourceFileProperties(ProjectElement *, const std::string &, List &l) override { ask("source", l); }
    void appendLinkerProperties(ProjectElement *, const std::string &, List &l) override { ask("linker", l); }
    void appendDebugProperties(ProjectElement *, const std::string &, List &l) override { ask("debug", l); }
    void appendLibraryProperties(ProjectElement *, const std::string &, List &l) override { ask("library", l); }
    void appendToolchainProperties(ProjectElement *, const std::string &, List &l) override { ask("toolchain", l); }
    void appendLanguageProperties(ProjectElement *, const std::string &, List &l) override { ask("language", l); }
    std::vector<PropertyClass *> loaderProperties() const override {
        return {propertyClasses.propertyClass("external_load_address"),
                propertyClasses.propertyClass("external_load_file_type")};
    }

    // The names of the lines of the tool part of a node's listing.
    std::string toolLines(ProjectElement *element) { return spaced(namesOf(toolPropertyValues(element, "Debug"))); }

    bool hosted = false;

private:
    void ask(const std::string &hook, List &list) {
        auto &marker = markers[hook];
        if (!marker)
            marker = std::make_unique<PropertyClass>("hook_" + hook, PropertyClass::String,
                                                     hook == "debug" ? PropertyText("Debugging") : PropertyText("C/C++"),
                                                     PropertyText(), PropertyText(), PropertyText(), std::nullopt);
        list.push_back(marker.get());
    }
    std::map<std::string, std::unique_ptr<PropertyClass>> markers;
};

const char *const solutionText = R"(<solution Name="S"><configuration Name="Debug" />
  <project Name="App">
    <configuration Name="Common" project_type="Executable" is_cpp_project="No" />
    <configuration Name="Load" external_load_address="0x100" />
    <configuration Name="Mixed" external_load_address="0x100" build_quietly="Yes" />
    <folder Name="Src"><file file_name="main.c" /><file file_name="util.cpp" /><file file_name="start.s" />
      <file file_name="api.h" /><file file_name="notes.txt" /></folder>
    <folder Name="Dyn" path="src" filter="*.c"><file file_name="src/found.c" /></folder>
  </project>
  <project Name="Lib"><configuration Name="Common" project_type="Library" is_cpp_project="Yes" /></project>
  <project Name="Combine"><configuration Name="Common" project_type="Combining" /></project>
  <project Name="Stage"><configuration Name="Common" project_type="Staging" />
    <folder Name="Files"><file file_name="image.bin" /></folder></project>
  <project Name="Ext"><configuration Name="Common" project_type="Externally Built Executable" />
    <file file_name="ext.c" /><file file_name="ext.cpp" /><file file_name="ext.s" /></project>
  <folder Name="Loose"><file file_name="readme.c" /></folder>
</solution>)";

struct PropertyListing : ::testing::Test {
    void SetUp() override { system.load(solutionText); }
    // The names of the last n lines of a listing.
    static std::string lastLines(const PropertyValueList &list, std::size_t n) {
        const Strings names = namesOf(list);
        return spaced(Strings(names.end() - std::ptrdiff_t(std::min(n, names.size())), names.end()));
    }
    ListingSystem system;
};

// The tool lines of a project are sorted by name; a properties filter keeps
// the pages it names; the hosted toolchain loads nothing and knows no
// external commands.
TEST_F(PropertyListing, ProjectToolLinesThePropertiesFilterAndTheHostedToolchain) {
    ProjectElement *app = system.node("App");
    const std::string all = system.toolLines(app);
    PropertyClass *filter = system.nodeProperties.propertiesFilter;
    system.setPropertyValue(app, filter, "Common", "Code;;Debug");
    EXPECT_EQ(system.toolLines(app), all);
    // A filter that names no page leaves the node's own lines.
    system.setPropertyValue(app, filter, "Common", "Nothing");
    EXPECT_EQ(system.toolLines(app), "");
    EXPECT_EQ(namesOf(system.getPropertyValues(app, "Debug")).front(), "project_type");
    system.clearPropertyValue(app, filter, "Common");
    system.hosted = true;
    EXPECT_EQ(system.toolLines(app),
              "add_property_group_includes_defines build_always_rebuild build_exclude_from_build "
              "build_intermediate_directory build_object_file_name build_output_directory build_output_file_name "
              "build_toolchain_directory file_codec hook_asm hook_c hook_debug hook_linker property_groups_file_path");
}

TEST_F(PropertyListing, FileToolLines) {
    // Every file has these lines; externally built ones have the steps of
    // the outside build and the toolchain's language options instead of
    // its compiler's.
    const std::string common = "build_always_rebuild build_exclude_from_build file_codec file_open_with file_type ";
    const std::string steps = "compile_post_build_command compile_post_build_command_wd compile_pre_build_command "
                              "compile_pre_build_command_output_file_name compile_pre_build_command_wd hook_language ";
    const std::pair<const char *, std::string> files[] = {
        {"main.c", common + "build_object_file_name external_c_compile_command hook_c"},
        {"util.cpp", common + "build_object_file_name external_cpp_compile_command hook_cpp"},
        {"start.s", common + "build_object_file_name external_assemble_command hook_asm"},
        {"api.h", common + "analyze_headers hook_source"},
        {"notes.txt", common},
        {"ext.c", common + steps + "build_object_file_name c_additional_options c_only_additional_options "
                                   "external_c_compile_command"},
        {"ext.cpp", common + steps + "build_object_file_name c_additional_options cpp_only_additional_options "
                                     "external_cpp_compile_command"},
        {"ext.s", common + steps + "asm_additional_options build_object_file_name external_assemble_command"},
    };
    for (const auto &[name, lines] : files)
        EXPECT_EQ(system.toolLines(system.file(name)), spaced(sorted(splitAtAny(lines, " ")))) << name;
    // Staging files and folders have the staging lines; a file outside projects has only its own.
    EXPECT_EQ(system.toolLines(system.file("image.bin")),
              "build_exclude_from_build stage_command stage_command_wd stage_output_filepath stage_set_readonly");
    EXPECT_EQ(system.toolLines(system.file("readme.c")), "file_codec file_open_with file_type");
    EXPECT_EQ(system.toolLines(system.node("Files")),
              "build_always_rebuild build_exclude_from_build build_output_directory file_codec file_type "
              "stage_command stage_command_wd stage_output_filepath stage_output_filepath_replace "
              "stage_post_build_command stage_post_build_command_wd stage_set_readonly");
}

// The node's own lines follow its tool lines.
TEST_F(PropertyListing, NodeLinesFollowTheToolLines) {
    const PropertyValueList solution = system.getPropertyValues(system.solution, "Debug");
    EXPECT_EQ(spaced(namesOf(solution)),
              system.toolLines(system.solution) +
                  " name date_created date_modified macros package_directory project_inhibit_indexing "
                  "code_completion_options compilation_database_file generate_compilation_database_file "
                  "pre_build_command pre_build_command_wd pre_build_command_control post_build_command "
                  "post_build_command_wd post_build_command_control batch_build_configurations "
                  "source_code_control_directory environment_variables");
    EXPECT_EQ(solution.find("name")->value(), "/work/s/s.tbp");
    // The file doesn't exist: no times.
    EXPECT_EQ(solution.find("date_modified")->value(), "");

    const PropertyValueList folder = system.getPropertyValues(system.node("Src"), "Debug");
    EXPECT_EQ(lastLines(folder, 3), "filter project_inhibit_indexing code_completion_options");
    // Lines of properties outside configurations read and write "Common".
    EXPECT_EQ(dynamic_cast<ProjectPropertyValue *>(folder.find("filter"))->configuration, "Common");
    // A dynamic folder's lines are its attributes.
    const PropertyValueList dynamic = system.getPropertyValues(system.node("Dyn"), "Debug");
    EXPECT_EQ(lastLines(dynamic, 6), "path filter recurse exclude project_inhibit_indexing code_completion_options");
    EXPECT_EQ(namesOf(dynamic).front(), "build_always_rebuild");
    PropertyValue *dynamicFilter = dynamic.find("filter");
    EXPECT_NE(dynamic_cast<DynamicFolderPropertyValue *>(dynamicFilter), nullptr);
    EXPECT_EQ(dynamicFilter->longText(), "Dynamic folder filter specification - ; seperated wildcards.");

    ProjectElement *configuration = ProjectSystem::findConfiguration(system.node("App"), "Common");
    EXPECT_TRUE(system.getPropertyValues(configuration, "Debug").empty());
    EXPECT_TRUE(system.getPropertyValues(nullptr, "Debug").empty());
}

TEST_F(PropertyListing, FileLinesAndTheDynamicFolder) {
    TestDirectory directory;
    const std::string source = directory.write("src/found.c", "int x;\n");
    system.load(solutionText, directory / "s.tbp");
    // A file of a dynamic folder lists only the lines of a file.
    const PropertyValueList list = system.getPropertyValues(system.file("src/found.c"), "Debug");
    EXPECT_EQ(spaced(namesOf(list)),
              "full_path file_name date_created date_modified project_inhibit_indexing code_completion_options");
    EXPECT_EQ(list.find("full_path")->value(), source);
    EXPECT_EQ(list.find("file_name")->value(), "src/found.c");
    const FileInfo info(source);
    EXPECT_EQ(list.find("date_modified")->value(), info.lastModified().toText());
    EXPECT_EQ(list.find("date_created")->value(), info.created().toText());
    EXPECT_TRUE(list.find("full_path")->isReadOnly());
    // Any other file starts with its tool lines.
    const PropertyValueList main = system.getPropertyValues(system.file("main.c"), "Debug");
    EXPECT_EQ(namesOf(main).front(), "build_always_rebuild");
    EXPECT_EQ(lastLines(main, 6), spaced(namesOf(list)));
}

TEST_F(PropertyListing, LoaderConfigurationsAndListeners) {
    ProjectElement *app = system.node("App");
    const PropertyValueList loader = system.getPropertyValues(app, "Load");
    EXPECT_EQ(spaced(namesOf(loader)), "external_load_address external_load_file_type");
    EXPECT_EQ(loader.at(0)->value(), "0x100");
    EXPECT_FALSE(loader.at(0)->isInherited());
    EXPECT_TRUE(loader.at(1)->isInherited());
    // A configuration that holds anything else isn't one; "Common" never is.
    EXPECT_GT(system.getPropertyValues(app, "Mixed").size(), 2u);
    ProjectElement *common = ProjectSystem::findConfiguration(app, "Common");
    common->removeAttribute("project_type");
    common->removeAttribute("is_cpp_project");
    EXPECT_GT(system.getPropertyValues(app, "Common").size(), 2u);

    struct Adder : PropertyChangeListener {
        void propertyChanged(ProjectElement *, const std::string &, PropertyClass *) override {}
        void appendPropertyValues(ProjectElement *, const std::string &, PropertyValueList &list) override {
            list.append(std::make_unique<SimplePropertyValue>(property, "added"));
        }
        PropertyClass *property = nullptr;
    } adder;
    adder.property = system.nodeProperties.fullPath;
    system.propertyListeners.push_back(&adder);
    const PropertyValueList list = system.getPropertyValues(system.node("Loose"), "Debug");
    EXPECT_EQ(list.at(list.size() - 1)->value(), "added");
    system.propertyListeners.clear();
}

} // namespace
