#include "project/project_test_tree.h"
#include "project/xml/xml_document.h"
#include "support/exceptions.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const std::string blinkUnsorted = R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Blink" target="8" version="2">
  <project Name="Blink">
    <configuration
      Name="Common"
      build_intermediate_directory="Output/$(Configuration)/Obj"
      project_type="Executable" />
    <folder Name="Source Files" filter="c;cpp;s">
      <file file_name="main.c" />
    </folder>
  </project>
  <configuration Name="Debug" build_quietly="No" />
</solution>
)";

const std::string blinkSorted = R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Blink" target="8" version="2">
  <configuration Name="Debug" build_quietly="No" />
  <project Name="Blink">
    <configuration
      Name="Common"
      build_intermediate_directory="Output/$(Configuration)/Obj"
      project_type="Executable" />
    <folder Name="Source Files" filter="c;cpp;s">
      <file file_name="main.c" />
    </folder>
  </project>
</solution>
)";

// The example solution, made by program.
ProjectElement *makeBlink(TestProjectSystem &system, const std::string &directory) {
    ProjectElement *root = system.newSolution("Blink", directory, 0);
    ProjectElement *project = system.newProject(root, "Blink", "", "Executable");
    system.setPropertyValue(project, system.nodeProperties.buildIntermediateDirectory, "Common",
                            "Output/$(Configuration)/Obj");
    system.addFolder(project, "Source Files", "c;cpp;s");
    system.addFile(project, "main.c");
    system.setPropertyValue(root, system.nodeProperties.buildQuietly, "Debug", "No");
    return root;
}

struct Observer : ProjectSystemObserver {
    void fileWritten(ProjectElement *, const std::string &fileName) override { written = fileName; }
    std::string written;
};

TEST(SolutionFile, ExampleIsWrittenByteForByte) {
    TestDirectory directory;
    TestProjectSystem system;
    Observer observer;
    system.observer = &observer;
    ProjectElement *root = makeBlink(system, directory.path());
    // A failed write changes nothing.
    const FileTime before = root->fileTime;
    EXPECT_FALSE(system.saveSolutionAs(root, directory / "no/such/dir/x.tbp", false));
    EXPECT_FALSE(system.saveErrorText.empty());
    EXPECT_TRUE(ProjectSystem::isModified(root, false));
    EXPECT_EQ(root->fileTime, before);
    EXPECT_FALSE(system.saveSolution(nullptr, false));

    ASSERT_TRUE(system.saveSolution(root, false));
    const std::string file = directory / "Blink.tbp";
    EXPECT_EQ(TestDirectory::read(file), blinkUnsorted);
    EXPECT_EQ(observer.written, file);
    EXPECT_FALSE(ProjectSystem::isModified(root, true));
    EXPECT_EQ(root->fileTime, FilePath(file).lastModified());
    EXPECT_TRUE(root->fileTime.isValid());

    ASSERT_TRUE(system.saveSolutionAs(root, directory / "sorted.tbp", true));
    EXPECT_EQ(TestDirectory::read(directory / "sorted.tbp"), blinkSorted);
    EXPECT_EQ(root->filePath.text(), file);

    // A sorted save of an unchanged file is identical; unsorted, the file
    // keeps its own order.
    TestProjectSystem loaded;
    root = loaded.loadSolution(directory / "sorted.tbp");
    EXPECT_FALSE(ProjectSystem::isModified(root, true));
    ASSERT_TRUE(loaded.saveSolution(root, true));
    EXPECT_EQ(TestDirectory::read(directory / "sorted.tbp"), blinkSorted);
    EXPECT_EQ(loaded.solutionText(root, false), blinkSorted);
}

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
    <strange kept="yes"><file file_name="inside.c" /></strange>
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
    <strange kept="yes">
      <file file_name="inside.c" />
    </strange>
  </project>
  <import file_name="$(Dir)/lib.tbp" />
  <import can_modify_solution="No" file_name="ro.tbp" />
</solution>
)");
    // The configuration that lost its empty Name is still found as before.
    ProjectElement *project = ProjectSystem::firstChild(system.solution);
    EXPECT_EQ(*ProjectSystem::findConfiguration(project, "<NULL>")->attribute("x"), "1");

    // An imported solution saved as its own file loses the name it was
    // imported under.
    EXPECT_EQ(system.solutionText(imported, false), R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Imported" target="8">
  <project Name="L" />
</solution>
)");
    EXPECT_EQ(*imported->attribute("file_name"), "$(Dir)/lib.tbp");
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

TEST(SolutionFile, OldVersionLoadsUnmodifiedAndIsSavedAsTwo) {
    TestDirectory directory;
    const std::string file = directory.write("old.tbp", R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE Tarnbench_Project_File>
<solution Name="Old" version="1"><project Name="P"/></solution>
)");
    TestProjectSystem system;
    ProjectElement *root = system.loadSolution(file);
    EXPECT_EQ(*root->attribute("version"), "2");
    EXPECT_FALSE(ProjectSystem::isModified(root, true));
    EXPECT_TRUE(system.undoList.empty());
    ASSERT_TRUE(system.saveSolution(root, true));
    EXPECT_EQ(TestDirectory::read(file), R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Old" target="8" version="2">
  <project Name="P" />
</solution>
)");
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
    EXPECT_EQ(error(directory.write("plain.tbp", "<solution/>")), " not a solution file");
    EXPECT_EQ(error(directory.write("empty.tbp", "<!DOCTYPE Tarnbench_Project_File>\n")),
              " is a malformed solution file (bad XML)");
    const std::string bad = error(directory.write("bad.tbp", "<!DOCTYPE Tarnbench_Project_File>\n"
                                                             "<solution><project></solution>"));
    EXPECT_TRUE(bad.starts_with("xml:")) << bad;
    EXPECT_EQ(system.solution, nullptr);
}

std::string nestedFolders(int depth) {
    std::string text = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"Deep\"><project Name=\"P\">";
    for (int i = 0; i < depth; ++i)
        text += "<folder Name=\"f\">";
    text += "<file file_name=\"deep.c\"/>";
    for (int i = 0; i < depth; ++i)
        text += "</folder>";
    return text + "</project></solution>";
}

TEST(SolutionFile, DeepNestingIsWalkedCopiedSavedAndLoaded) {
    TestDirectory directory;
    constexpr int depth = 100000;
    TestProjectSystem system;
    ProjectElement *root = system.loadSolution(directory.write("deep.tbp", nestedFolders(depth)));
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

    // The tree is walked without recursion.
    ProjectElement *file = system.file("deep.c");
    EXPECT_EQ(system.absoluteFilePath(file, "Debug"), directory / "deep.c");
    EXPECT_EQ(ProjectSystem::filesOf(root), std::vector<ProjectElement *>{file});
    EXPECT_EQ(ProjectSystem::countFiles(system.node("P")), 1);
    file->modified = true;
    EXPECT_TRUE(ProjectSystem::isModified(root, false));
    ProjectSystem::clearModified(root, false);
    EXPECT_FALSE(file->modified);
    system.setPropertyValue(root, system.nodeProperties.buildQuietly, "Debug", "Yes");
    EXPECT_EQ(system.getPropertyValue(file, system.nodeProperties.buildQuietly, "Debug"), "Yes");

    const std::string nested = directory.write("nested.tbp", nestedFolders(1000));
    ASSERT_TRUE(system.saveSolution(system.loadSolution(nested), true));
    const std::string saved = TestDirectory::read(nested);
    EXPECT_NE(saved.find(std::string(2 * 1001, ' ') + "<file file_name=\"deep.c\" />\n"), std::string::npos);
    ASSERT_TRUE(system.saveSolution(system.loadSolution(nested), true));
    EXPECT_EQ(TestDirectory::read(nested), saved);
}

TEST(SolutionFile, LargeInputsLoadAndSave) {
    TestDirectory directory;
    std::string text = "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"Big\" target=\"8\" version=\"2\">\n";
    for (int i = 0; i < 10000; ++i)
        text += "  <configuration Name=\"C" + std::to_string(i) + "\" />\n";
    const std::string huge(10 * 1024 * 1024, 'x');
    text += "  <project value=\"" + huge + "\" />\n</solution>\n";
    const std::string file = directory.write("big.tbp", text);

    TestProjectSystem system;
    ProjectElement *root = system.loadSolution(file);
    EXPECT_EQ(root->configurations.size(), 10000u);
    EXPECT_EQ(system.configurationNames(root, ProjectSystem::PublicConfigurations).size(), 10000u);
    ASSERT_TRUE(system.saveSolution(root, false));
    EXPECT_EQ(TestDirectory::read(file), text);
    ASSERT_TRUE(system.saveSolution(root, true));
    EXPECT_EQ(TestDirectory::read(file).size(), text.size());
}

} // namespace
