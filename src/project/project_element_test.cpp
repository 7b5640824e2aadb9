#include "project/project_element.h"

#include "project/project_system_xml.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(ProjectElement, KindComesFromTheTag) {
    EXPECT_EQ(ProjectElement::kindOfTag("solution"), ProjectElement::Solution);
    EXPECT_EQ(ProjectElement::kindOfTag("configuration"), ProjectElement::Configuration);
    EXPECT_EQ(ProjectElement::kindOfTag("project"), ProjectElement::Project);
    EXPECT_EQ(ProjectElement::kindOfTag("folder"), ProjectElement::Folder);
    EXPECT_EQ(ProjectElement::kindOfTag("file"), ProjectElement::File);
    // Tags are compared exactly; anything else is of the default kind.
    EXPECT_EQ(ProjectElement::kindOfTag("File"), ProjectElement::Solution);
    EXPECT_EQ(ProjectElement::kindOfTag("import"), ProjectElement::Solution);
    EXPECT_EQ(ProjectElement::kindOfTag(""), ProjectElement::Solution);
}

TEST(ProjectElement, ParserFillsTheConfigurationMaps) {
    ProjectSystemXMLPP2 document(nullptr, nullptr);
    ASSERT_TRUE(document.parse(R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="S">
  <project Name="P">
    <file file_name="a.c">
      <configuration Name="Debug" x="file" />
    </file>
    <configuration Name="Debug" x="first" />
    <configuration Name="Debug" x="second" />
    <configuration x="nameless" />
    <configuration Name="" file_name="dir/Named.xml" />
  </project>
  <configuration Name="Release" />
</solution>
)"));
    ProjectElement *root = document.projectRoot();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->configurations.size(), 1u);
    ASSERT_TRUE(root->configurations.count("Release"));

    auto *project = ProjectElement::from(root->firstChild);
    ASSERT_NE(project, nullptr);
    EXPECT_EQ(project->nodeKind, ProjectElement::Project);
    ASSERT_EQ(project->configurations.size(), 3u);
    // Two of one name: both stay in the tree, the map keeps the first.
    EXPECT_EQ(*project->configurations.at("Debug")->attribute("x"), "first");
    EXPECT_EQ(*project->configurations.at("<NULL>")->attribute("x"), "nameless");
    EXPECT_TRUE(project->configurations.count("Named.xml"));

    auto *file = ProjectElement::from(project->firstChild);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(*file->configurations.at("Debug")->attribute("x"), "file");
}

TEST(ProjectElement, DeepNestingParsesMapsAndDestroys) {
    constexpr int depth = 100000;
    std::string text = "<!DOCTYPE Tarnbench_Project_File>\n<solution>";
    for (int i = 0; i < depth; ++i)
        text += "<folder>";
    text += "<configuration Name=\"Deep\"/>";
    for (int i = 0; i < depth; ++i)
        text += "</folder>";
    text += "</solution>";

    ProjectSystemXMLPP2 document(nullptr, nullptr);
    ASSERT_TRUE(document.parse(text));
    XMLNode *node = document.root;
    int levels = 0;
    while (node->firstChild && ProjectElement::from(node->firstChild)->nodeKind != ProjectElement::Configuration) {
        node = node->firstChild;
        ++levels;
    }
    EXPECT_EQ(levels, depth);
    EXPECT_TRUE(ProjectElement::from(node)->configurations.count("Deep"));
}

} // namespace
