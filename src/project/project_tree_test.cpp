#include "project/project_load_progress_interface.h"
#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

const char *const nestedSolution = R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Root">
  <project Name="A">
    <folder Name="Src">
      <file file_name="a.c" />
    </folder>
  </project>
  <solution Name="N">
    <project Name="A">
      <file file_name="n.c" />
    </project>
    <project Name="B" />
    <solution Name="M">
      <project Name="C" />
    </solution>
  </solution>
  <project Name="B" />
</solution>
)";

Strings names(TestProjectSystem &system, const std::vector<ProjectElement *> &elements) {
    Strings result;
    for (ProjectElement *element : elements)
        result.push_back(system.elementName(element));
    return result;
}

Strings keys(const ProjectElement::ElementMap &map) {
    Strings result;
    for (const auto &entry : map)
        result.push_back(entry.first);
    return result;
}

TEST(ProjectTree, NavigationPassesOverTextNodes) {
    TestProjectSystem system;
    ProjectSystemXMLPP2 document(&system, system.macros, true);
    ASSERT_TRUE(document.parse("<solution> text <!-- c --><project Name=\"P\"> <folder Name=\"F\"/>"
                               " x </project> y </solution>"));
    ProjectElement *root = document.projectRoot();
    ProjectElement *project = ProjectSystem::firstChild(root);
    ASSERT_NE(project, nullptr);
    EXPECT_EQ(system.elementName(project), "P");
    EXPECT_EQ(ProjectSystem::nextSibling(project), nullptr);
    ProjectElement *folder = ProjectSystem::firstChild(project);
    EXPECT_EQ(system.elementName(folder), "F");
    EXPECT_EQ(ProjectSystem::parent(folder), project);
    EXPECT_EQ(ProjectSystem::projectOf(folder), project);
    EXPECT_EQ(ProjectSystem::projectOf(project), project);
    EXPECT_EQ(ProjectSystem::solutionOf(folder), root);
    EXPECT_EQ(ProjectSystem::folderOf(folder), nullptr);
    EXPECT_EQ(ProjectSystem::projectOf(root), nullptr);
    EXPECT_EQ(ProjectSystem::firstChild(nullptr), nullptr);
    EXPECT_EQ(ProjectSystem::solutionOf(nullptr), nullptr);
}

TEST(ProjectTree, DisplayNames) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <project Name="P">
    <file file_name="src/main.c" Name="" />
    <file file_name="$(Dir)/gen.c" />
    <configuration />
    <configuration file_name="x/cfg.xml" />
  </project>
  <folder />
</solution>)");
    ProjectElement *project = system.node("P");
    ProjectElement *file = ProjectSystem::firstChild(project);
    EXPECT_EQ(system.elementName(file), "main.c");
    ProjectElement *generated = ProjectSystem::nextSibling(file);
    // Unexpanded for display; resolved for a full path, which here is empty.
    EXPECT_EQ(system.elementName(generated), "gen.c");
    EXPECT_EQ(system.elementName(generated, true), "");
    ProjectElement *nameless = ProjectSystem::nextSibling(generated);
    EXPECT_EQ(system.elementName(nameless), "<NULL>");
    EXPECT_EQ(system.elementName(ProjectSystem::nextSibling(nameless)), "cfg.xml");
    EXPECT_EQ(system.elementName(ProjectSystem::nextSibling(project)), "<NULL>");
    EXPECT_EQ(system.elementName(nullptr), "");

    EXPECT_EQ(ProjectSystem::kindName(project), "project");
    EXPECT_EQ(ProjectSystem::kindTitle(nameless), "Configuration");
    EXPECT_EQ(ProjectSystem::kindTitle(system.solution), "Solution");
    EXPECT_EQ(ProjectSystem::kindName(file), "file");
}

TEST(ProjectTree, AttributesMarkModifiedOnlyWhileTracking) {
    TestProjectSystem system;
    system.load("<solution Name=\"S\"><project Name=\"P\" x=\"1\"/></solution>");
    ProjectElement *project = system.node("P");
    std::string out = "untouched";
    EXPECT_FALSE(ProjectSystem::attribute(project, "missing", out));
    EXPECT_EQ(out, "untouched");
    EXPECT_TRUE(ProjectSystem::attribute(project, "x", out));
    EXPECT_EQ(out, "1");
    EXPECT_EQ(ProjectSystem::attribute(project, "missing"), std::nullopt);
    EXPECT_EQ(ProjectSystem::attribute(nullptr, "x"), std::nullopt);

    system.trackingChanges = false;
    system.setAttribute(project, "y", "2");
    EXPECT_FALSE(project->modified);
    system.trackingChanges = true;
    system.removeAttribute(project, "nothing");
    EXPECT_FALSE(project->modified);
    system.removeAttribute(project, "y");
    EXPECT_TRUE(project->modified);
    EXPECT_FALSE(ProjectSystem::hasAttribute(project, "y"));
}

TEST(ProjectTree, ProjectsAreMappedInEverySolutionAbove) {
    TestProjectSystem system;
    system.load(nestedSolution);
    ProjectElement *root = system.solution;
    ProjectElement *n = system.findSolution("N");
    ProjectElement *m = system.findSolution("M");
    ASSERT_NE(n, nullptr);
    ASSERT_NE(m, nullptr);

    EXPECT_EQ(keys(m->projects), (Strings{"C"}));
    EXPECT_EQ(keys(n->projects), (Strings{"A", "B", "C(M)"}));
    // Two projects of one key in one map: the first stays.
    EXPECT_EQ(keys(root->projects), (Strings{"A", "A(N)", "B", "B(N)", "C(N,M)"}));
    EXPECT_EQ(root->projects.at("A"), ProjectSystem::firstChild(root));
    EXPECT_EQ(system.projectNames, (Strings{"A", "A(N)", "B", "B(N)", "C(N,M)"}));

    // Nested solutions in tree order, the root last.
    EXPECT_EQ(system.allSolutions, (std::vector<ProjectElement *>{n, m, root}));
    EXPECT_EQ(system.solutionNames, (Strings{"M", "N", "Root"}));
    EXPECT_EQ(system.findSolution("Nothing"), nullptr);
}

TEST(ProjectTree, FindProjectLooksInTheNearestSolutionFirst) {
    TestProjectSystem system;
    system.load(nestedSolution);
    ProjectElement *n = system.findSolution("N");
    n->imported = true;
    ProjectElement *nestedFile = system.findFileByPath(n, "n.c");
    ASSERT_NE(nestedFile, nullptr);
    ProjectElement *nestedA = ProjectSystem::projectOf(nestedFile);
    EXPECT_EQ(system.findProject(nestedFile, "A"), nestedA);
    EXPECT_NE(system.findProject(system.solution, "A"), nestedA);
    EXPECT_EQ(system.findProject(system.solution, "A(N)"), nestedA);
    // From M: C is its own; A and B come from N; nothing named D anywhere.
    ProjectElement *m = system.findSolution("M");
    EXPECT_EQ(system.elementName(system.findProject(ProjectSystem::firstChild(m), "C")), "C");
    EXPECT_EQ(system.findProject(m, "B"), system.findProject(n, "B"));
    EXPECT_EQ(system.findProject(m, "D"), nullptr);
    EXPECT_EQ(system.findProject(nullptr, "A"), nullptr);
}

TEST(ProjectTree, MappingReportsEveryProject) {
    struct Progress : ProjectLoadProgressInterface {
        void beginTask(const std::string &text, int level) override {
            lines.push_back(text + " " + std::to_string(level));
        }
        void endTask() override {}
        void message(const std::string &) override {}
        void warning(const std::string &) override {}
        int depth() override { return 0; }
        void setProgress(int done, int total) override {
            lines.push_back(std::to_string(done) + "/" + std::to_string(total));
        }
        void processEvents() override {}
        std::vector<std::string> collectedLines() override { return {}; }
        Strings lines;
    } progress;
    TestProjectSystem system;
    system.load(nestedSolution);
    system.mapProjects(&progress);
    EXPECT_EQ(progress.lines,
              (Strings{"Mapping project A 0", "1/5", "Mapping project A 0", "2/5",
                       "Mapping project B 0", "3/5", "Mapping project C 0", "4/5",
                       "Mapping project B 0", "5/5"}));
}

TEST(ProjectTree, WalksAndCounts) {
    TestProjectSystem system;
    system.load(nestedSolution);
    EXPECT_EQ(names(system, ProjectSystem::filesOf(system.solution)), (Strings{"a.c", "n.c"}));
    ProjectElement *file = system.findFileByPath(system.solution, "a.c");
    EXPECT_EQ(ProjectSystem::filesOf(file), (std::vector<ProjectElement *>{file}));
    EXPECT_EQ(ProjectSystem::countProjects(system.solution), 5);
    EXPECT_EQ(ProjectSystem::countFiles(system.node("A")), 1);
    EXPECT_EQ(ProjectSystem::countFiles(system.node("Src")), 1);
    // Only folders are descended into.
    EXPECT_EQ(ProjectSystem::countFiles(system.solution), 0);
    EXPECT_EQ(system.findElementByName(system.solution, "Src"), system.node("Src"));
    EXPECT_EQ(system.findElementByName(system.node("B"), "A"), nullptr);
    EXPECT_EQ(ProjectSystem::findFileByPath(system.solution, "missing.c"), nullptr);
}

TEST(ProjectTree, ModifiedFlagsStopAtNestedSolutions) {
    TestProjectSystem system;
    system.load(nestedSolution);
    ProjectElement *nestedFile = system.findFileByPath(system.solution, "n.c");
    nestedFile->modified = true;
    EXPECT_FALSE(ProjectSystem::isModified(system.solution, false));
    EXPECT_TRUE(ProjectSystem::isModified(system.solution, true));
    ProjectSystem::clearModified(system.solution, false);
    EXPECT_TRUE(nestedFile->modified);
    ProjectSystem::clearModified(system.solution, true);
    EXPECT_FALSE(nestedFile->modified);
    system.node("Src")->modified = true;
    EXPECT_TRUE(ProjectSystem::isModified(system.solution, false));
}

TEST(ProjectTree, AddConfigurationTwiceKeepsTheFirstInTheMap) {
    TestProjectSystem system;
    system.load("<solution Name=\"S\"><project Name=\"P\"/></solution>");
    ProjectElement *project = system.node("P");
    ProjectElement *first = system.addConfiguration(project, "Debug", ProjectSystem::PublicConfigurations);
    ProjectElement *second = system.addConfiguration(project, "Debug", ProjectSystem::PrivateConfigurations);
    ASSERT_NE(first, second);
    EXPECT_EQ(ProjectSystem::findConfiguration(project, "Debug"), first);
    EXPECT_EQ(ProjectSystem::nextSibling(first), second);
    EXPECT_FALSE(first->hasAttribute("hidden"));
    EXPECT_EQ(*second->attribute("hidden"), "Yes");
    EXPECT_TRUE(project->modified);

    // Taking the first away lets the second be found.
    system.removeChild(project, first);
    delete first;
    EXPECT_EQ(ProjectSystem::findConfiguration(project, "Debug"), second);
    system.removeChild(project, second);
    delete second;
    EXPECT_EQ(ProjectSystem::findConfiguration(project, "Debug"), nullptr);
}

TEST(ProjectTree, FindConfigurationSearchesParentsOnRequest) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><configuration Name="Debug"/>
      <project Name="P"><file file_name="a.c"/></project></solution>)");
    ProjectElement *file = system.findFileByPath(system.solution, "a.c");
    EXPECT_EQ(ProjectSystem::findConfiguration(file, "Debug"), nullptr);
    EXPECT_EQ(ProjectSystem::findConfiguration(file, "Debug", true),
              system.solution->configurations.at("Debug"));
    EXPECT_EQ(ProjectSystem::findConfiguration(file, "Release", true), nullptr);
}

TEST(ProjectTree, AddFileFindsTheFolderByItsFilter) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S">
  <project Name="P">
    <folder Name="Headers" filter="h,hpp" />
    <folder Name="Unfiltered" />
    <folder Name="Sources" filter="C;;cpp ;c" />
    <folder Name="Assembly"><configuration Name="Common" filter="s"/></folder>
  </project>
</solution>)");
    ProjectElement *project = system.node("P");
    const auto folderOf = [&](const std::string &path) {
        return system.elementName(ProjectSystem::parent(system.addFile(project, path)));
    };
    EXPECT_EQ(folderOf("x.hpp"), "Headers");
    EXPECT_EQ(folderOf("dir.v2/x.H"), "Headers");      // the extension is lower-cased
    EXPECT_EQ(folderOf("main.C"), "Sources");          // "C" in the filter never matches
    EXPECT_EQ(folderOf("start.S"), "Assembly");        // filter property for "Common"
    EXPECT_EQ(folderOf("x.cpp"), "P");                 // "cpp " with a blank isn't "cpp"
    EXPECT_EQ(folderOf("README"), "P");
    ProjectElement *headers = system.node("Headers");
    ProjectElement *file = system.addFile(headers, "other.c");
    EXPECT_EQ(ProjectSystem::parent(file), headers);
    EXPECT_EQ(*file->attribute("file_name"), "other.c");
    EXPECT_EQ(system.addFile(nullptr, "x.c"), nullptr);
}

TEST(ProjectTree, NewSolutionAndProject) {
    TestDirectory directory;
    TestProjectSystem system;
    system.trackingChanges = false;
    ProjectElement *root = system.newSolution("Blink", directory / "sub/dir", 8);
    EXPECT_TRUE(system.trackingChanges);
    EXPECT_EQ(root, system.solution);
    EXPECT_EQ(root->filePath.text(), directory / "sub/dir/Blink.tbp");
    EXPECT_TRUE(FilePath(directory / "sub/dir").isDir());
    EXPECT_EQ(*root->attribute("version"), "2");
    EXPECT_EQ(*root->attribute("target"), "8");

    ProjectElement *project = system.newProject(root, "App", directory / "sub/dir/app", "Library");
    ProjectElement *common = ProjectSystem::findConfiguration(project, "Common");
    ASSERT_NE(common, nullptr);
    EXPECT_EQ(*common->attribute("project_directory"), "app");
    EXPECT_EQ(*common->attribute("project_type"), "Library");
    EXPECT_EQ(system.fullProjectDirectory(project), directory / "sub/dir/app");
    EXPECT_EQ(system.findProject(root, "App"), project);

    ProjectElement *other = system.newProject(root, "Other", "", "Executable");
    EXPECT_FALSE(ProjectSystem::findConfiguration(other, "Common")->hasAttribute("project_directory"));
    EXPECT_EQ(system.fullProjectDirectory(other), directory / "sub/dir");
    EXPECT_FALSE(system.newSolution("NoTarget", directory.path(), 0)->hasAttribute("target"));
}

TEST(ProjectTree, RemovingAProjectRemapsTheSolution) {
    TestProjectSystem system;
    system.load(nestedSolution);
    ProjectElement *n = system.findSolution("N");
    system.removeChild(system.solution, n);
    delete n;
    EXPECT_EQ(system.projectNames, (Strings{"A", "B"}));
    EXPECT_EQ(system.allSolutions, (std::vector<ProjectElement *>{system.solution}));
}

TEST(ProjectTree, DeepTreesAreWalkedWithoutRecursion) {
    constexpr int depth = 100000;
    std::string text = "<solution Name=\"S\"><project Name=\"P\">";
    for (int i = 0; i < depth; ++i)
        text += "<folder>";
    text += "<file file_name=\"deep.c\"><configuration Name=\"Debug\" x=\"1\"/></file>";
    for (int i = 0; i < depth; ++i)
        text += "</folder>";
    text += "</project></solution>";
    TestProjectSystem system;
    system.load(text);
    ProjectElement *file = ProjectSystem::findFileByPath(system.solution, "deep.c");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(ProjectSystem::countFiles(ProjectSystem::firstChild(system.solution)), 1);
    EXPECT_EQ(ProjectSystem::filesOf(system.solution).size(), 1u);
    EXPECT_EQ(system.projectNames, (Strings{"P"}));
    file->modified = true;
    EXPECT_TRUE(ProjectSystem::isModified(system.solution, false));
    ProjectSystem::clearModified(system.solution, false);
    EXPECT_FALSE(file->modified);
    EXPECT_EQ(system.absoluteFilePath(file, "Debug"), "/work/s/deep.c");
    system.setPropertyValue(system.solution, system.property("build_quietly"), "Debug", "Yes");
    EXPECT_EQ(system.getPropertyValue(file, system.property("build_quietly"), "Debug"), "Yes");
    EXPECT_EQ(system.elementName(system.findElementByName(system.solution, "deep.c")), "deep.c");
}

TEST(ProjectTree, ProjectLanguageByTheFilesItHolds) {
    StandardTestSystem system;
    ProjectSystemXMLPP2 document(&system, system.macros);
    ASSERT_TRUE(document.parse(R"(<solution Name="S">
  <project Name="C"><file file_name="main.c" /><file file_name="x.h" /></project>
  <project Name="Excluded">
    <file file_name="a.cpp"><configuration Name="Debug" build_exclude_from_build="Yes" /></file>
    <folder Name="F"><file file_name="b.cxx" /></folder>
  </project>
  <project Name="Typed"><file file_name="main.c"><configuration Name="Common" file_type="C++" /></file></project>
  <project Name="Forced"><configuration Name="Common" is_cpp_project="Yes" /></project>
</solution>)"));
    system.solution = document.projectRoot();
    document.takeRoot();
    system.solution->filePath = FilePath("/work/s/s.tbp");
    system.mapProjects();
    const auto project = [&](const std::string &name) { return system.findProject(system.solution, name); };

    EXPECT_FALSE(system.isCppProject(project("C"), "Debug"));
    EXPECT_EQ(system.fileTypeName(system.findFileByPath(project("C"), "x.h"), "Debug"), "Header");
    ProjectElement *excluded = project("Excluded");
    EXPECT_EQ(system.elementName(system.findFileOfType(excluded, "Debug", "C++")), "b.cxx");
    EXPECT_EQ(system.elementName(system.findFileOfType(excluded, "Release", "C++")), "a.cpp");
    EXPECT_TRUE(system.isCppProject(excluded, "Debug"));
    EXPECT_TRUE(system.isCppProject(project("Typed"), "Debug"));
    EXPECT_TRUE(system.isCppProject(project("Forced"), "Debug"));
    EXPECT_FALSE(system.isCppProject(nullptr, "Debug"));
}

TEST(ProjectTree, DefaultFileTypesComeFromTheExtensionOrTheDocumentType) {
    TestDirectory directory;
    directory.write("map.xml", "<?xml version=\"1.0\"?>\n<!DOCTYPE Quillmake_Memory_Map_File>\n<Root/>");
    directory.write("placement.xml", "<!-- placement -->\n<!DOCTYPE Quillmake_Section_Placement_File>\n<Root/>");
    directory.write("other.xml", "<!DOCTYPE Something_Else>\n<Root/>");
    StandardTestSystem system;
    ProjectSystemXMLPP2 document(&system, system.macros);
    std::string files;
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"a.c", "C"},           {"a.cpp", "C++"},         {"a.cc", "C++"},
        {"a.cxx", "C++"},       {"a.c++", "C++"},         {"a.C", "C++"},
        {"a.s", "Assembly"},    {"a.S", "Assembly"},      {"a.asm", "Assembly"},
        {"a.h", "Header"},      {"a.hpp", "Header"},      {"a.hh", "Header"},
        {"a.hxx", "Header"},    {"a.inc", "Header"},      {"a.o", "Object file"},
        {"a.a", "Library"},     {"a.ld", "Linker Script"}, {"a.elf", "Executable"},
        {"map.xml", "Memory Map"}, {"placement.xml", "Section Placement"},
        {"other.xml", ""},      {"missing.xml", ""},      {"a.txt", ""},
        {"a.CPP", ""},          {"noextension", ""},
    };
    for (const auto &[name, type] : expected)
        files += "<file file_name=\"" + name + "\" />";
    ASSERT_TRUE(document.parse("<solution Name=\"S\"><project Name=\"P\">" + files +
                               "<file file_name=\"typed.c\"><configuration Name=\"Common\" file_type=\"Assembly\" /></file>"
                               "</project></solution>"));
    system.solution = document.projectRoot();
    document.takeRoot();
    system.solution->filePath = FilePath(directory / "s.tbp");
    system.mapProjects();
    ProjectElement *project = system.findProject(system.solution, "P");
    for (const auto &[name, type] : expected)
        EXPECT_EQ(system.fileTypeName(system.findFileByPath(project, name), "Debug"), type) << name;
    EXPECT_EQ(system.fileTypeName(system.findFileByPath(project, "typed.c"), "Debug"), "Assembly");
}

} // namespace
