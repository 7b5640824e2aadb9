#include "project/project_system_xml.h"

#include "environment/system_macros.h"
#include "project/project_element.h"
#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

using Strings = std::vector<std::string>;

TEST(ProjectSystemXMLPP2, IncludedElementsAreMadeByTheDocument) {
    TestDirectory scratch;
    scratch.write("main.tbp", "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\">"
                              "<include filename=\"p.xml\"/></solution>");
    scratch.write("p.xml", "<project Name=\"P\"><configuration Name=\"Debug\" x=\"1\"/></project>");
    SystemMacros macros;
    ProjectSystemXMLPP2 document(nullptr, &macros);
    ASSERT_TRUE(document.load(scratch / "main.tbp"));
    ProjectElement *solution = document.projectRoot();
    ASSERT_NE(solution, nullptr);
    ProjectElement *project = ProjectElement::from(solution->firstChild->toElement());
    ASSERT_NE(project, nullptr);
    EXPECT_EQ(*project->attribute("Name"), "P");
    EXPECT_EQ(project->configurations.size(), 1u);
    EXPECT_EQ(document.doctype, "Tarnbench_Project_File");
}

TEST(ProjectSystemXMLPP2, WarningsAreLinesOfTheLoadProgress) {
    RecordingProgress progress;
    ProjectSystemXMLPP2 document(nullptr, nullptr);
    document.progress = &progress;
    ASSERT_TRUE(document.parse("<solution><define value=\"1\"/><if A=\"\"><project Name=\"P\"/></if></solution>"));
    EXPECT_EQ(progress.events, Strings{"message XmlPP::processConditionals(): missing name in <define>"});
    ASSERT_NE(document.root->firstChild, nullptr);
    EXPECT_EQ(document.root->firstChild->toElement()->tagName, "project");
}

}  // namespace
