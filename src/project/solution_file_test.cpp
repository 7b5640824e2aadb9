#include "project/project_test_tree.h"
#include "project/xml/xml_document.h"
#include "support/exceptions.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

// The example solution as saved unsorted and sorted: only the place of the
// solution's configuration differs.
const std::string blinkProject = R"(  <project Name="Blink">
    <configuration
      Name="Common"
      build_intermediate_directory="Output/$(Configuration)/Obj"
      project_type="Executable" />
    <folder Name="Source Files" filter="c;cpp;s">
      <file file_name="main.c" />
    </folder>
  </project>
)";
const std::string blinkHead =
    "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"Blink\" target=\"8\" version=\"2\">\n";
const std::string blinkDebug = "  <configuration Name=\"Debug\" build_quietly=\"No\" />\n";
const std::string blinkUnsorted = blinkHead + blinkProject + blinkDebug + "</solution>\n";
const std::string blinkSorted = blinkHead + blinkDebug + blinkProject + "</solution>\n";

TEST(SolutionFile, ExampleIsWrittenByteForByte) {
    struct Observer : ProjectSystemObserver {
        void fileWritten(ProjectElement *, const std::string &fileName) override { written = fileName; }
        std::string written;
    } observer;
    TestDirectory directory;
    TestProjectSystem system;
    system.observer = &observer;
    ProjectElement *root = system.newSolution("Blink", directory.path(), 0);
    ProjectElement *project = system.newProject(root, "Blink", "", "Executable");
    system.setPropertyValue(project, system.nodeProperties.buildIntermediateDirectory, "Common",
                            "Output/$(Configuration)/Obj");
    system.addFolder(project, "Source Files", "c;cpp;s");
    system.addFile(project, "main.c");
    system.setPropertyValue(root, system.nodeProperties.buildQuietly, "Debug", "No");
    // A failed write changes nothing.
    const FileTime before = root->fileTime;
    EXPECT_FALSE(system.saveSolutionAs(root, directory / "no/such/dir/x.tbp", false));
    EXPECT_EQ(system.saveErrorText, "couldn't write " + directory / "no/such/dir/x.tbp");
    EXPECT_TRUE(ProjectSystem::isModified(root, false));
    EXPECT_EQ(root->fileTime, before);
    EXPECT_FALSE(system.saveSolution(nullptr, false));

    ASSERT_TRUE(system.saveSolution(root, false));
    const std::string file = directory / "Blink.tbp";
    EXPECT_EQ(TestDirectory::read(file), blinkUnsorted);
    EXPECT_EQ(observer.written, file);
    EXPECT_FALSE(ProjectSystem::isModified(root, true));
    EXPECT_EQ(root->fileTime, FilePath(file).lastModified());

    ASSERT_TRUE(system.saveSolutionAs(root, directory / "sorted.tbp", true));
    EXPECT_EQ(TestDirectory::read(directory / "sorted.tbp"), blinkSorted);
    EXPECT_EQ(root->filePath.text(), file);
    // A sorted save of an unchanged file is identical.
    TestProjectSystem loaded;
    ASSERT_TRUE(loaded.saveSolution(loaded.loadSolution(directory / "sorted.tbp"), true));
    EXPECT_EQ(TestDirectory::read(directory / "sorted.tbp"), blinkSorted);
}

// Per kind, by name without regard to case; of equal names the later one
// goes in front.
TEST(SolutionFile, SortingByKindThenNameWithEqualNamesInFront) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="zeta" /><file file_name="b.c" /><file file_name="A.c" />
  <project Name="Alpha" /><file file_name="a.c" /><folder Name="F" /><configuration Name="Release" />
  <import file_name="other.tbp" /><configuration Name="debug" /></solution>)");
    EXPECT_EQ(system.solutionText(system.solution, true), R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="S" target="8">
  <configuration Name="debug" />
  <configuration Name="Release" />
  <folder Name="F" />
  <file file_name="a.c" />
  <file file_name="A.c" />
  <file file_name="b.c" />
  <project Name="Alpha" />
  <import file_name="other.tbp" />
  <project Name="zeta" />
</solution>
)");
}

TEST(SolutionFile, WhatASaveLeavesOut) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S" version="2" target="3">
  <project Name=""><configuration Name="" x="1" /><configuration Name="Debug" a="first" />
    <configuration Name="Debug" a="second" /><folder Name="Plain" file_name="drop.c" />
    <folder Name="Dynamic" path="src" filter="*.c" Name2="">
      <configuration Name="Common" c_preprocessor_definitions="X" />
      <file file_name="src/generated.c" /><folder Name="sub" path="src/sub" /></folder>
  </project>
  <solution Name="Imported" file_name="$(Dir)/lib.tbp"><project Name="L" /></solution>
  <solution Name="ReadOnly" file_name="ro.tbp" />
</solution>)");
    ProjectElement *imported = system.findSolution("Imported");
    imported->imported = true;
    ProjectElement *readOnly = system.findSolution("ReadOnly");
    readOnly->imported = true;
    readOnly->canModify = false;
    EXPECT_EQ(system.solutionText(system.solution, false), R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="S" target="3" version="2">
  <project>
    <configuration x="1" />
    <configuration Name="Debug" a="first" />
    <configuration Name="Debug" a="second" />
    <folder Name="Plain" />
    <folder Name="Dynamic" Name2="" filter="*.c" path="src">
      <configuration Name="Common" c_preprocessor_definitions="X" />
    </folder>
  </project>
  <import file_name="$(Dir)/lib.tbp" />
  <import can_modify_solution="No" file_name="ro.tbp" />
</solution>
)");
    // An imported solution saved as its own file loses the name it was
    // imported under.
    EXPECT_EQ(system.solutionText(imported, false), R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Imported" target="8">
  <project Name="L" />
</solution>
)");
}

TEST(SolutionFile, ValuesSurviveSaveAndLoadByteForByte) {
    TestDirectory directory;
    const std::string value = "say \"hi\" <b> & 'x' \xc3\xa9\xe2\x82\xac\ttab\nline \x01 end";
    const std::string longValue(200, 'v');
    std::string file;
    {
        TestProjectSystem system;
        ProjectElement *root = system.newSolution("Values", directory.path(), 8);
        system.setPropertyValue(root, system.nodeProperties.buildQuietly, "Common", value);
        system.addFolder(root, longValue, "");
        ASSERT_TRUE(system.saveSolution(root, true));
        file = root->filePath.text();
    }
    const std::string text = TestDirectory::read(file);
    EXPECT_NE(text.find("build_quietly=\"say &quot;hi&quot; &lt;b&gt; &amp; 'x' "
                        "&#xc3;&#xa9;&#xe2;&#x82;&#xac;&#x9;tab&#xa;line &#x1; end\""), std::string::npos) << text;
    // A single attribute, however long, stays on the line of its tag.
    EXPECT_NE(text.find("  <folder Name=\"" + longValue + "\" />\n"), std::string::npos) << text;

    TestProjectSystem system;
    ProjectElement *root = system.loadSolution(file);
    EXPECT_EQ(ProjectSystem::getOwnPropertyValue(root, system.nodeProperties.buildQuietly, "Common"), value);
    ASSERT_TRUE(system.saveSolution(root, true));
    EXPECT_EQ(TestDirectory::read(file), text);
}

TEST(SolutionFile, ReadErrors) {
    TestDirectory directory;
    TestProjectSystem system;
    const auto error = [&](const std::string &file) {
        try {
            system.loadSolution(file);
        } catch (const SolutionLoadError &e) {
            EXPECT_EQ(e.detail(), file);
            return std::string(e.isBadXml() ? "xml:" : "") + e.message();
        }
        return std::string("no error");
    };
    EXPECT_EQ(error(directory / "missing.tbp"), " does not exist");
    EXPECT_EQ(error(directory.path()), " cannot access");
    EXPECT_EQ(error(directory.write("wrong.tbp", "<!DOCTYPE Other>\n<solution/>")), " not a solution file");
    EXPECT_EQ(error(directory.write("empty.tbp", "<!DOCTYPE Tarnbench_Project_File>\n")),
              " is a malformed solution file (bad XML)");
    const std::string bad = error(directory.write("bad.tbp", "<!DOCTYPE Tarnbench_Project_File>\n"
                                                             "<solution><project></solution>"));
    EXPECT_TRUE(bad.starts_with("xml:")) << bad;
    EXPECT_EQ(system.solution, nullptr);
}

// Folders nested far deeper than a recursive walk could go: the load, the
// walks of the tree and the saved document manage without recursion.
TEST(SolutionFile, DeepNestingIsWalkedCopiedSavedAndLoaded) {
    const auto nested = [](int depth) {
        std::string text = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"Deep\"><project Name=\"P\">";
        for (int i = 0; i < depth; ++i)
            text += "<folder Name=\"f\">";
        text += "<file file_name=\"deep.c\"/>";
        for (int i = 0; i < depth; ++i)
            text += "</folder>";
        return text + "</project></solution>";
    };
    TestDirectory directory;
    constexpr int depth = 100000;
    TestProjectSystem system;
    ProjectElement *root = system.loadSolution(directory.write("deep.tbp", nested(depth)));
    // Written with its indentation the file would grow with the square of
    // the depth, so only the document that a save writes is checked here.
    XMLDocument document;
    system.buildSolutionDocument(document, root, true);
    int levels = 0;
    const XMLNode *node = document.root;
    for (; node->firstChild; node = node->firstChild)
        ++levels;
    EXPECT_EQ(levels, depth + 2);
    EXPECT_EQ(*node->toElement()->attribute("file_name"), "deep.c");
    ProjectElement *file = system.file("deep.c");
    EXPECT_EQ(system.absoluteFilePath(file, "Debug"), directory / "deep.c");
    EXPECT_EQ(ProjectSystem::countFiles(system.node("P")), 1);
    file->modified = true;
    EXPECT_TRUE(ProjectSystem::isModified(root, false));
    ProjectSystem::clearModified(root, false);
    EXPECT_FALSE(file->modified);

    const std::string saved = directory.write("nested.tbp", nested(1000));
    ASSERT_TRUE(system.saveSolution(system.loadSolution(saved), true));
    EXPECT_NE(TestDirectory::read(saved).find(std::string(2 * 1001, ' ') + "<file file_name=\"deep.c\" />\n"),
              std::string::npos);
}

// Ten thousand configurations and a value of ten megabytes, in a file of
// the old version, which loads unmodified and is saved as version 2.
TEST(SolutionFile, LargeInputsLoadAndSave) {
    TestDirectory directory;
    std::string body;
    for (int i = 0; i < 10000; ++i)
        body += "  <configuration Name=\"C" + std::to_string(i) + "\" />\n";
    body += "  <project value=\"" + std::string(10 * 1024 * 1024, 'x') + "\" />\n</solution>\n";
    const std::string file = directory.write("big.tbp", "<!DOCTYPE Tarnbench_Project_File>\n"
                                                        "<solution Name=\"Big\" target=\"8\" version=\"1\">\n" + body);
    TestProjectSystem system;
    ProjectElement *root = system.loadSolution(file);
    EXPECT_FALSE(ProjectSystem::isModified(root, true));
    EXPECT_EQ(system.configurationNames(root, ProjectSystem::PublicConfigurations).size(), 10000u);
    ASSERT_TRUE(system.saveSolution(root, false));
    EXPECT_EQ(TestDirectory::read(file),
              "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"Big\" target=\"8\" version=\"2\">\n" + body);
}

} // namespace
