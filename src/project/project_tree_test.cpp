#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

const char *const nestedSolution = R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Root">
  <project Name="A"><folder Name="Src"><file file_name="a.c" /></folder></project>
  <solution Name="N">
    <project Name="A"><file file_name="n.c" /></project>
    <project Name="B" />
    <solution Name="M"><project Name="C" /></solution>
  </solution>
  <project Name="B" />
</solution>
)";

Strings keys(const ProjectElement::ElementMap &map) {
    Strings result;
    for (const auto &entry : map)
        result.push_back(entry.first);
    return result;
}

TEST(ProjectTree, ParserMakesElementsAndFillsTheConfigurationMaps) {
    TestProjectSystem system;
    ProjectSystemXMLPP2 document(&system, system.macros, true);
    ASSERT_TRUE(document.parse(R"(<solution> text <!-- c --><configuration Name="Release" />
  <project Name="P"> <folder Name="F"/> x
    <file file_name="a.c"><configuration Name="Debug" x="file" /></file>
    <configuration Name="Debug" x="first" /><configuration Name="Debug" x="second" />
    <configuration x="nameless" /><configuration Name="" file_name="dir/Named.xml" />
  </project> y </solution>)"));
    ProjectElement *root = document.projectRoot();
    EXPECT_EQ(spaced(keys(root->configurations)), "Release");
    // Navigation passes over text and comments.
    ProjectElement *project = ProjectSystem::nextSibling(ProjectSystem::firstChild(root));
    ProjectElement *folder = ProjectSystem::firstChild(project);
    EXPECT_EQ(system.elementName(project) + "|" + system.elementName(folder), "P|F");
    EXPECT_EQ(ProjectSystem::nextSibling(project), nullptr);
    EXPECT_EQ(ProjectSystem::parent(folder), project);
    EXPECT_EQ(ProjectSystem::projectOf(folder), project);
    EXPECT_EQ(ProjectSystem::solutionOf(folder), root);
    EXPECT_EQ(ProjectSystem::folderOf(folder), nullptr);
    EXPECT_EQ(ProjectSystem::projectOf(root), nullptr);
    EXPECT_EQ(ProjectSystem::solutionOf(nullptr), nullptr);
    EXPECT_EQ(ProjectSystem::firstChild(nullptr), nullptr);
    // Two configurations of one name both stay in the tree; the map keeps
    // the first. Without a name the key is "<NULL>" or the file's name.
    EXPECT_EQ(spaced(keys(project->configurations)), "<NULL> Debug Named.xml");
    EXPECT_EQ(*project->configurations.at("Debug")->attribute("x"), "first");
    EXPECT_EQ(*project->configurations.at("<NULL>")->attribute("x"), "nameless");
    EXPECT_EQ(*ProjectSystem::nextSibling(folder)->configurations.at("Debug")->attribute("x"), "file");
}

TEST(ProjectTree, IncludedElementsAndWarnings) {
    TestDirectory scratch;
    scratch.write("main.tbp",
                  "<!DOCTYPE Tarnbench_Project_File>\n<solution Name=\"S\"><include filename=\"p.xml\"/></solution>");
    scratch.write("p.xml", "<project Name=\"P\"><configuration Name=\"Debug\" x=\"1\"/></project>");
    SystemMacros macros;
    ProjectSystemXMLPP2 document(nullptr, &macros);
    ASSERT_TRUE(document.load(scratch / "main.tbp"));
    EXPECT_EQ(document.doctype, "Tarnbench_Project_File");
    // The document makes the included elements, with their maps.
    ProjectElement *project = ProjectElement::from(document.projectRoot()->firstChild->toElement());
    ASSERT_NE(project, nullptr);
    EXPECT_EQ(*project->attribute("Name"), "P");
    EXPECT_EQ(project->configurations.size(), 1u);

    // The pre-processor's warnings are lines of the load progress.
    RecordingProgress progress;
    ProjectSystemXMLPP2 warned(nullptr, nullptr);
    warned.progress = &progress;
    ASSERT_TRUE(warned.parse("<solution><define value=\"1\"/><if A=\"\"><project Name=\"P\"/></if></solution>"));
    EXPECT_EQ(progress.events, Strings{"message XmlPP::processConditionals(): missing name in <define>"});
    EXPECT_EQ(warned.root->firstChild->toElement()->tagName, "project");
}

TEST(ProjectTree, DisplayNamesAndTrackedChanges) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="P"><file file_name="src/main.c" Name="" />
    <file file_name="$(Dir)/gen.c" /><configuration /><configuration file_name="x/cfg.xml" /></project>
  <folder /></solution>)");
    ProjectElement *project = system.node("P");
    Strings names;
    for (ProjectElement *child = ProjectSystem::firstChild(project); child; child = ProjectSystem::nextSibling(child))
        names.push_back(system.elementName(child));
    EXPECT_EQ(names, (Strings{"main.c", "gen.c", "<NULL>", "cfg.xml"}));
    EXPECT_EQ(system.elementName(ProjectSystem::nextSibling(project)), "<NULL>");
    EXPECT_EQ(system.elementName(nullptr), "");
    // Unexpanded for display; resolved for a full path, which here is empty.
    EXPECT_EQ(system.elementName(system.file("$(Dir)/gen.c"), true), "");
    EXPECT_EQ(ProjectSystem::kindName(project) + "|" + ProjectSystem::kindTitle(system.solution), "project|Solution");
    EXPECT_EQ(ProjectSystem::kindTitle(ProjectSystem::findConfiguration(project, "<NULL>")), "Configuration");
    // Changes mark the node modified only while changes are tracked.
    system.trackingChanges = false;
    system.setAttribute(project, "y", "2");
    system.trackingChanges = true;
    system.removeAttribute(project, "nothing");
    EXPECT_FALSE(project->modified);
    system.removeAttribute(project, "y");
    EXPECT_TRUE(project->modified);
}

TEST(ProjectTree, ProjectsAreMappedInEverySolutionAbove) {
    TestProjectSystem system;
    system.load(nestedSolution);
    ProjectElement *root = system.solution;
    ProjectElement *n = system.findSolution("N");
    ProjectElement *m = system.findSolution("M");
    ASSERT_NE(n, nullptr);
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(spaced(keys(m->projects)), "C");
    EXPECT_EQ(spaced(keys(n->projects)), "A B C(M)");
    // Two projects of one key in one map: the first stays.
    EXPECT_EQ(spaced(keys(root->projects)), "A A(N) B B(N) C(N,M)");
    EXPECT_EQ(system.projectNames, keys(root->projects));
    // Nested solutions in tree order, the root last.
    EXPECT_EQ(system.allSolutions, (std::vector<ProjectElement *>{n, m, root}));
    EXPECT_EQ(spaced(system.solutionNames), "M N Root");
    EXPECT_EQ(system.findSolution("Nothing"), nullptr);
    // The nearest solution is looked in first; from M, B comes from N.
    ProjectElement *nestedA = ProjectSystem::projectOf(system.file("n.c"));
    EXPECT_EQ(system.findProject(system.file("n.c"), "A"), nestedA);
    EXPECT_EQ(system.findProject(root, "A(N)"), nestedA);
    EXPECT_EQ(system.findProject(m, "B"), system.findProject(n, "B"));
    EXPECT_EQ(system.findProject(m, "D"), nullptr);

    RecordingProgress progress;
    system.mapProjects(&progress);
    EXPECT_EQ(spaced(progress.events), "begin 0 Mapping project A 1/5 end begin 0 Mapping project A 2/5 end "
                                       "begin 0 Mapping project B 3/5 end begin 0 Mapping project C 4/5 end "
                                       "begin 0 Mapping project B 5/5 end");
    system.removeChild(root, n);
    delete n;
    EXPECT_EQ(system.projectNames, (Strings{"A", "B"}));
    EXPECT_EQ(system.allSolutions, (std::vector<ProjectElement *>{root}));
}

TEST(ProjectTree, WalksCountsAndModifiedFlags) {
    TestProjectSystem system;
    system.load(nestedSolution);
    ProjectElement *root = system.solution;
    ProjectElement *file = system.file("a.c"), *nestedFile = system.file("n.c");
    EXPECT_EQ(ProjectSystem::filesOf(root), (std::vector<ProjectElement *>{file, nestedFile}));
    EXPECT_EQ(ProjectSystem::filesOf(file), (std::vector<ProjectElement *>{file}));
    EXPECT_EQ(ProjectSystem::countProjects(root), 5);
    EXPECT_EQ(ProjectSystem::countFiles(system.node("A")), 1);
    // Only folders are descended into.
    EXPECT_EQ(ProjectSystem::countFiles(root), 0);
    EXPECT_EQ(system.findElementByName(system.node("B"), "A"), nullptr);
    EXPECT_EQ(ProjectSystem::findFileByPath(root, "missing.c"), nullptr);
    // Without the flag the walk stops at nested solutions.
    nestedFile->modified = true;
    EXPECT_FALSE(ProjectSystem::isModified(root, false));
    EXPECT_TRUE(ProjectSystem::isModified(root, true));
    ProjectSystem::clearModified(root, false);
    EXPECT_TRUE(nestedFile->modified);
    ProjectSystem::clearModified(root, true);
    EXPECT_FALSE(nestedFile->modified);
}

TEST(ProjectTree, AddingAndFindingConfigurations) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><configuration Name="Release"/><project Name="P"><file file_name="a.c"/></project>
  </solution>)");
    ProjectElement *project = system.node("P");
    ProjectElement *first = system.addConfiguration(project, "Debug", ProjectSystem::PublicConfigurations);
    ProjectElement *second = system.addConfiguration(project, "Debug", ProjectSystem::PrivateConfigurations);
    // Two of one name: the map keeps the first.
    EXPECT_EQ(ProjectSystem::findConfiguration(project, "Debug"), first);
    EXPECT_EQ(ProjectSystem::nextSibling(first), second);
    EXPECT_FALSE(first->hasAttribute("hidden"));
    EXPECT_EQ(*second->attribute("hidden"), "Yes");
    EXPECT_TRUE(project->modified);
    // Parents are searched on request only.
    ProjectElement *file = system.file("a.c");
    EXPECT_EQ(ProjectSystem::findConfiguration(file, "Debug"), nullptr);
    EXPECT_EQ(ProjectSystem::findConfiguration(file, "Debug", true), first);
    EXPECT_EQ(ProjectSystem::findConfiguration(file, "Release", true), system.solution->configurations.at("Release"));
    // Taking the first away lets the second be found.
    for (ProjectElement *child : {file, first}) {
        system.removeChild(project, child);
        delete child;
    }
    EXPECT_EQ(ProjectSystem::findConfiguration(project, "Debug"), second);
    system.removeChild(project, second);
    delete second;
    EXPECT_EQ(ProjectSystem::findConfiguration(project, "Debug"), nullptr);
}

TEST(ProjectTree, AddFileFindsTheFolderByItsFilter) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="P">
    <folder Name="Headers" filter="h,hpp" /><folder Name="Unfiltered" /><folder Name="Sources" filter="C;;cpp ;c" />
    <folder Name="Assembly"><configuration Name="Common" filter="s"/></folder></project></solution>)");
    ProjectElement *project = system.node("P");
    const auto folderOf = [&](ProjectElement *parent, const std::string &path) {
        return system.elementName(ProjectSystem::parent(system.addFile(parent, path)));
    };
    EXPECT_EQ(folderOf(project, "x.hpp"), "Headers");
    EXPECT_EQ(folderOf(project, "dir.v2/x.H"), "Headers");   // the extension is lower-cased
    EXPECT_EQ(folderOf(project, "main.C"), "Sources");       // "C" in the filter never matches
    EXPECT_EQ(folderOf(project, "start.S"), "Assembly");     // filter property for "Common"
    EXPECT_EQ(folderOf(project, "x.cpp"), "P");              // "cpp " with a blank isn't "cpp"
    EXPECT_EQ(folderOf(project, "README"), "P");
    EXPECT_EQ(folderOf(system.node("Headers"), "other.c"), "Headers");
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
    EXPECT_EQ(*root->attribute("version") + "|" + *root->attribute("target"), "2|8");
    ProjectElement *project = system.newProject(root, "App", directory / "sub/dir/app", "Library");
    ProjectElement *common = ProjectSystem::findConfiguration(project, "Common");
    ASSERT_NE(common, nullptr);
    EXPECT_EQ(*common->attribute("project_directory") + "|" + *common->attribute("project_type"), "app|Library");
    EXPECT_EQ(system.fullProjectDirectory(project), directory / "sub/dir/app");
    EXPECT_EQ(system.findProject(root, "App"), project);
    ProjectElement *other = system.newProject(root, "Other", "", "Executable");
    EXPECT_FALSE(ProjectSystem::findConfiguration(other, "Common")->hasAttribute("project_directory"));
    EXPECT_FALSE(system.newSolution("NoTarget", directory.path(), 0)->hasAttribute("target"));
}

TEST(ProjectTree, FileTypesAndProjectLanguage) {
    TestDirectory directory;
    directory.write("map.xml", "<?xml version=\"1.0\"?>\n<!DOCTYPE Quillmake_Memory_Map_File>\n<Root/>");
    directory.write("placement.xml", "<!-- placement -->\n<!DOCTYPE Quillmake_Section_Placement_File>\n<Root/>");
    directory.write("other.xml", "<!DOCTYPE Something_Else>\n<Root/>");
    // By the extension, or by the document type of an XML file.
    const std::pair<const char *, const char *> expected[] = {
        {"a.c", "C"}, {"a.cpp", "C++"}, {"a.cc", "C++"}, {"a.cxx", "C++"}, {"a.c++", "C++"}, {"a.C", "C++"},
        {"a.s", "Assembly"}, {"a.S", "Assembly"}, {"a.asm", "Assembly"}, {"a.h", "Header"}, {"a.hpp", "Header"},
        {"a.hh", "Header"}, {"a.hxx", "Header"}, {"a.inc", "Header"}, {"a.o", "Object file"}, {"a.a", "Library"},
        {"a.ld", "Linker Script"}, {"a.elf", "Executable"}, {"map.xml", "Memory Map"},
        {"placement.xml", "Section Placement"}, {"other.xml", ""}, {"missing.xml", ""}, {"a.txt", ""}, {"a.CPP", ""},
        {"noextension", ""},
    };
    std::string files;
    for (const auto &[name, type] : expected)
        files += std::string("<file file_name=\"") + name + "\" />";
    StandardTestSystem system;
    system.load("<solution Name=\"S\"><project Name=\"P\">" + files + R"(</project>
  <project Name="C"><file file_name="main.c" /><file file_name="x.h" /></project>
  <project Name="Excluded"><file file_name="a.cpp"><configuration Name="Debug" build_exclude_from_build="Yes" /></file>
    <folder Name="F"><file file_name="b.cxx" /></folder></project>
  <project Name="Typed"><file file_name="main.c"><configuration Name="Common" file_type="C++" /></file></project>
  <project Name="Forced"><configuration Name="Common" is_cpp_project="Yes" /></project></solution>)",
                directory / "s.tbp");
    for (const auto &[name, type] : expected)
        EXPECT_EQ(system.fileTypeName(system.file(name), "Debug"), type) << name;

    // A project is C++ if it holds a C++ file that is built, or says so.
    const auto project = [&](const std::string &name) { return system.findProject(system.solution, name); };
    EXPECT_FALSE(system.isCppProject(project("C"), "Debug"));
    ProjectElement *excluded = project("Excluded");
    EXPECT_EQ(system.elementName(system.findFileOfType(excluded, "Debug", "C++")), "b.cxx");
    EXPECT_EQ(system.elementName(system.findFileOfType(excluded, "Release", "C++")), "a.cpp");
    EXPECT_TRUE(system.isCppProject(excluded, "Debug"));
    // A stored file type wins over the extension.
    EXPECT_TRUE(system.isCppProject(project("Typed"), "Debug"));
    EXPECT_TRUE(system.isCppProject(project("Forced"), "Debug"));
    EXPECT_FALSE(system.isCppProject(nullptr, "Debug"));
}

} // namespace
