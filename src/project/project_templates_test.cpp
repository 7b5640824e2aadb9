#include "project/project_templates.h"

#include "project/project_test_tree.h"
#include "project/xml/xml_element.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

class RecordingTemplates : public ProjectTemplates {
public:
    using ProjectTemplates::ProjectTemplates;
    void report(const std::string &text) override { reports.push_back(text); }
    Strings reports;
};

std::string captionOf(const XMLElement *element) {
    return element && element->attribute("caption") ? *element->attribute("caption") : "null";
}

TEST(ProjectTemplates, FilesAreReadInOrderAndLookedUpByNameAndTarget) {
    TestDirectory directory;
    directory.write("t/a.xml", R"(<!DOCTYPE Project_Templates_File><projects>
  <project template_name="APP" caption="arm" template_target="8" />
  <project template_name="APP" caption="any" />
  <group><project template_name="COMBINING" caption="mine" template_target="0x0" /></group>
  <project template_name="" caption="unnamed" />
  <configurations><configuration name="Debug" caption="debug" /></configurations>
  <configuration name="Loose" />
</projects>)");
    directory.write("t/b.xml", "<projects><project template_name=\"BROKEN\">");
    directory.write("c.xml", R"(<projects><configurations><configuration name="Debug" caption="again" />
</configurations></projects>)");
    TestMacroTable macros;
    macros.systemMacros.globalMacros()["Dir"] = directory.path();
    RecordingTemplates templates(macros.systemMacros, "$(Dir)/t/*.xml;;$(Dir)/missing.xml;$(Dir)/c.xml");
    EXPECT_EQ(templates.templateNames(), (Strings{"APP", "COMBINING", "STAGING"}));
    // Of one name, a target picks its own; an installed template comes
    // before the built-in one; a file that doesn't parse adds nothing.
    std::string found;
    for (const auto &[name, target] : std::vector<std::pair<std::string, std::uint32_t>>{
             {"APP", 0}, {"APP", 8}, {"APP", 15}, {"COMBINING", 0}, {"STAGING", 0}, {"BROKEN", 0}})
        found += captionOf(templates.findTemplate(name, target)) + ";";
    EXPECT_EQ(found, "arm;arm;null;mine;(Other Projects);null;");
    EXPECT_EQ(captionOf(templates.findConfiguration("Debug", 0)) + captionOf(templates.findConfiguration("Loose", 0)),
              "debugnull");
    templates.checkDuplicates();
    EXPECT_EQ(templates.reports, (Strings{"duplicate template_name 'COMBINING'", "duplicate configuration 'Debug'"}));
}

const char *const templateFile = R"T(<!DOCTYPE Project_Templates_File><projects>
<configurations>
  <configuration name="Debug"><property name="build_quietly" value="Yes" />
    <property name="inherited_configurations" value="Base" /></configuration>
  <configuration name="Base"><property name="build_output_directory" value="out" />
    <property name="inherited_configurations" value="Debug" /></configuration>
  <configuration name="Release"><property name="build_output_directory" value="rel" /></configuration>
</configurations>
<project template_name="APP" type="Executable" configurations="Debug;Release" with_source="Yes" template_target="8">
  <configuration name="$(Configuration)" />
  <configuration name="$(Configuration) Extra" inherited_configurations="$(Configuration)" />
  <property name="build_intermediate_directory" value="obj/$(Configuration)" configuration="$(Configuration)" />
  <property name="build_output_file_name" value="$(OutDir)/app.elf" />
  <property name="build_quietly" value="No" />
  <property name="no_such_property" value="1" />
  <property name="hidden" value="Yes" configuration="Secret" />
  <solutionproperty name="build_output_directory" value="$(ProjectName)" expand="yes" />
  <folder name="Source" filter="c"><file name="$(ProjectName).c" /><file name="x.c" source="/t/x.c" /></folder>
  <folder name="Generated" path="gen" recurse="yes" />
  <choose name="board" default="a">
    <choice name="a"><file name="a.c" expand="no" /></choice>
    <choice name="b"><file name="b.c" /></choice>
  </choose>
</project>
</projects>)T";

TEST(ProjectTemplates, ALoadExpandsTemplatedProjects) {
    TestDirectory directory;
    directory.write("templates.xml", templateFile);
    directory.write("s.tbp", R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="S" version="2" templates_file="$(SolutionDir)/templates.xml">
  <configuration Name="Release" build_output_directory="own" />
  <project Name="p" template_name="APP" template_choices="other=a;board=b">
    <configuration Name="Common" build_quietly="Maybe" project_type="Library" />
  </project>
</solution>)");
    StandardTestSystem system;
    RecordingProgress progress;
    ProjectElement *root = system.loadSolution(directory / "s.tbp", nullptr, nullptr, &progress);
    EXPECT_EQ(system.solutionText(root, false), R"T(<!DOCTYPE Tarnbench_Project_File>
<solution
  Name="S"
  target="8"
  templates_file="$(SolutionDir)/templates.xml"
  version="2">
  <configuration Name="Release" build_output_directory="own" />
  <project Name="p">
    <configuration
      Name="Common"
      build_output_file_name="$(OutDir)/app.elf"
      build_quietly="Maybe"
      project_type="Executable" />
    <configuration
      Name="Release"
      build_intermediate_directory="obj/$(Configuration)"
      build_output_directory="rel" />
    <configuration
      Name="Debug"
      build_intermediate_directory="obj/$(Configuration)" />
    <configuration Name="Secret" hidden="Yes" />
    <folder Name="Source" filter="c">
      <file file_name="p.c" />
      <file Name="x.c" file_name="/t/x.c" />
      <file file_name="b.c" />
    </folder>
    <folder Name="Generated" exclude="" filter="" path="gen" recurse="No" />
  </project>
  <configuration
    Name="Debug"
    build_quietly="Yes"
    inherited_configurations="Base" />
  <configuration
    Name="Base"
    build_output_directory="out"
    inherited_configurations="Debug" />
  <configuration Name="Debug Extra" inherited_configurations="Debug" />
  <configuration Name="Release Extra" inherited_configurations="Release" />
  <configuration Name="Common" build_output_directory="$(ProjectName)" />
</solution>
)T");
    EXPECT_EQ(progress.events,
              (Strings{"begin 2 Loading solution s.tbp", "0/2", "0/0", "0/1", "0/0", "end", "begin 0 Expanding templated projects",
                       "0/1", "begin 0 Expanding project 'p'",
                       "warning overriding project type in configuration Common from 'Library' to 'Executable'",
                       "warning Can't find property for attribute 'no_such_property' in Project 'p' "
                       "Configuration 'Common'",
                       "end", "end", "begin 0 Mapping project information", "begin 0 Mapping project p", "1/1",
                       "end", "end", "begin 3 Populating dynamic folders",
                       "begin 3 Populating folder 'Generated' in project 'p'", "end", "1/1", "end"}));
}

} // namespace
