#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

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

TEST(ProjectTree, NestedSolutionsAreMappedAndWalked) {
    TestProjectSystem system;
    system.load(R"(<!DOCTYPE Tarnbench_Project_File>
<solution Name="Root">
  <project Name="A"><folder Name="Src"><file file_name="a.c" /></folder></project>
  <solution Name="N">
    <project Name="A"><file file_name="n.c" /></project>
    <project Name="B" />
    <solution Name="M"><project Name="C" /></solution>
  </solution>
  <project Name="B" />
</solution>
)");
    ProjectElement *root = system.solution;
    ProjectElement *n = system.findSolution("N");
    ASSERT_NE(n, nullptr);
    // Each solution maps the projects below it; two of one key: the first stays.
    EXPECT_EQ(spaced(keys(n->projects)), "A B C(M)");
    EXPECT_EQ(spaced(keys(root->projects)), "A A(N) B B(N) C(N,M)");
    EXPECT_EQ(ProjectSystem::findFileByPath(root, "missing.c"), nullptr);
    ProjectElement *nestedFile = system.file("n.c");
    EXPECT_EQ(ProjectSystem::filesOf(root), (std::vector<ProjectElement *>{system.file("a.c"), nestedFile}));
    // Without the flag the walk stops at nested solutions.
    nestedFile->modified = true;
    EXPECT_FALSE(ProjectSystem::isModified(root, false));
    EXPECT_TRUE(ProjectSystem::isModified(root, true));
    ProjectSystem::clearModified(root, false);
    EXPECT_TRUE(nestedFile->modified);
    ProjectSystem::clearModified(root, true);
    EXPECT_FALSE(nestedFile->modified);
    // Taking a solution out maps the projects again.
    system.removeChild(root, n);
    delete n;
    EXPECT_EQ(system.projectNames, (Strings{"A", "B"}));
    EXPECT_EQ(system.allSolutions, (std::vector<ProjectElement *>{root}));
}

TEST(ProjectTree, AddingAndFindingConfigurations) {
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="P"><file file_name="a.c"/></project></solution>)");
    ProjectElement *project = system.node("P");
    ProjectElement *first = system.addConfiguration(project, "Debug", ProjectSystem::PublicConfigurations);
    ProjectElement *second = system.addConfiguration(project, "Debug", ProjectSystem::PrivateConfigurations);
    EXPECT_EQ(*second->attribute("hidden"), "Yes");
    // Parents are searched on request only.
    ProjectElement *file = system.file("a.c");
    EXPECT_EQ(ProjectSystem::findConfiguration(file, "Debug"), nullptr);
    EXPECT_EQ(ProjectSystem::findConfiguration(file, "Debug", true), first);
    // Two of one name: the map keeps the first; taking it away lets the
    // second be found.
    for (ProjectElement *child : {file, first}) {
        system.removeChild(project, child);
        delete child;
    }
    EXPECT_EQ(ProjectSystem::findConfiguration(project, "Debug"), second);
}

TEST(ProjectTree, NewSolutionAndProject) {
    TestDirectory directory;
    TestProjectSystem system;
    system.trackingChanges = false;
    ProjectElement *root = system.newSolution("Blink", directory / "sub/dir", 8);
    EXPECT_TRUE(system.trackingChanges);
    EXPECT_EQ(root->filePath.text(), directory / "sub/dir/Blink.tbp");
    EXPECT_TRUE(FilePath(directory / "sub/dir").isDir());
    EXPECT_EQ(*root->attribute("version") + "|" + *root->attribute("target"), "2|8");
    // The project's directory is kept relative to the solution's.
    ProjectElement *project = system.newProject(root, "App", directory / "sub/dir/app", "Library");
    ProjectElement *common = ProjectSystem::findConfiguration(project, "Common");
    ASSERT_NE(common, nullptr);
    EXPECT_EQ(*common->attribute("project_directory") + "|" + *common->attribute("project_type"), "app|Library");
    EXPECT_EQ(system.fullProjectDirectory(project), directory / "sub/dir/app");
    ProjectElement *other = system.newProject(root, "Other", "", "Executable");
    EXPECT_FALSE(ProjectSystem::findConfiguration(other, "Common")->hasAttribute("project_directory"));
    EXPECT_FALSE(system.newSolution("NoTarget", directory.path(), 0)->hasAttribute("target"));
    EXPECT_EQ(system.addFile(nullptr, "x.c"), nullptr);
}

TEST(ProjectTree, FileTypesAndProjectLanguage) {
    TestDirectory directory;
    directory.write("map.xml", "<?xml version=\"1.0\"?>\n<!DOCTYPE Quillmake_Memory_Map_File>\n<Root/>");
    directory.write("placement.xml", "<!-- placement -->\n<!DOCTYPE Quillmake_Section_Placement_File>\n<Root/>");
    directory.write("other.xml", "<!DOCTYPE Something_Else>\n<Root/>");
    // By the extension, case and all, or by the document type of an XML file.
    const std::pair<const char *, const char *> expected[] = {
        {"a.c", "C"}, {"a.C", "C++"}, {"a.S", "Assembly"}, {"a.CPP", ""}, {"noextension", ""},
        {"map.xml", "Memory Map"}, {"placement.xml", "Section Placement"}, {"other.xml", ""}, {"missing.xml", ""},
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
    // A stored file type wins over the extension.
    EXPECT_TRUE(system.isCppProject(project("Typed"), "Debug"));
    EXPECT_TRUE(system.isCppProject(project("Forced"), "Debug"));
    EXPECT_FALSE(system.isCppProject(nullptr, "Debug"));
}

using PS = ProjectSystem;

const char *const configurations = R"(<solution Name="S">
  <configuration Name="Common" /><configuration Name="Debug" /><configuration Name="Release" hidden="No" />
  <configuration Name="Private" hidden="Yes" />
  <configuration Name="Linux" Platform="LINUX" /><configuration Name="Arm" Platform="ARM" />
  <solution Name="N">
    <configuration Name="Debug" hidden="Yes" /><configuration Name="Nested" /><project Name="Inner" />
  </solution>
  <project Name="P">
    <configuration Name="Common" /><configuration Name="Flash" />
    <configuration Name="Loader" hidden="Yes" loader_option="1" />
    <configuration Name="Mixed" loader_option="1" other="2" />
  </project>
</solution>)";

TEST(Configurations, NamesByFlagsAndPlatform) {
    TestProjectSystem system;
    system.load(configurations);
    ProjectElement *project = system.node("P");
    // The platform of a node is ARM here: Linux doesn't count. Without a
    // node no platform is looked up.
    const auto names = [&](ProjectElement *node, int flags) {
        return spaced(sorted(system.configurationNames(node, flags)));
    };
    EXPECT_EQ(names(project, PS::PublicConfigurations), "Arm Debug Release");
    EXPECT_EQ(names(nullptr, PS::PublicConfigurations | PS::IncludeCommon), "Arm Common Debug Linux Release");
    EXPECT_EQ(names(project, PS::PrivateConfigurations), "Private");
    // The nearest solution first; a name that wasn't taken there may still
    // come from further up.
    ProjectElement *inner = system.node("Inner");
    EXPECT_EQ(names(inner, PS::PublicConfigurations), "Arm Debug Nested Release");
    EXPECT_EQ(names(inner, PS::PrivateConfigurations), "Debug Private");

    EXPECT_EQ(system.platformOf(nullptr, "Linux"), "ARM");
    EXPECT_EQ(system.platformOf(project, "Linux"), "LINUX");
    EXPECT_EQ(system.platformOf(project, "Debug"), "ARM");

    // Batch builds: names match without regard to case, wildcards with it,
    // over the public configurations only, each once; "Common" alone is
    // itself.
    PropertyClass *batch = system.nodeProperties.batchBuildConfigurations;
    system.setPropertyValue(project, batch, "Debug", "release;*e*;*E*;;Private;Release");
    EXPECT_EQ(system.batchBuildConfigurations(project, "Debug"), (Strings{"Release", "Debug"}));
    system.setPropertyValue(project, batch, "Debug", "Common");
    EXPECT_EQ(system.batchBuildConfigurations(project, "Debug"), (Strings{"Common"}));
}

// A loader configuration holds nothing but loader properties.
TEST(Configurations, LoaderConfigurations) {
    struct Loader : TestProjectSystem {
        std::vector<PropertyClass *> loaderProperties() const override { return {loaderOption.get()}; }
        std::unique_ptr<PropertyClass> loaderOption = std::make_unique<PropertyClass>(
            "loader_option", PropertyClass::String, PropertyText(), PropertyText(), PropertyText(), PropertyText(),
            std::nullopt);
    } system;
    system.load(configurations);
    EXPECT_EQ(system.configurationNames(system.node("P"), PS::LoaderConfigurations), (Strings{"Flash", "Loader"}));
    EXPECT_EQ(system.configurationNames(system.solution, PS::LoaderConfigurations), Strings{});

    TestProjectSystem plain;
    plain.load(configurations);
    EXPECT_EQ(plain.configurationNames(plain.node("P"), PS::LoaderConfigurations), Strings{"Flash"});
}

TEST(Configurations, SettingInheritedConfigurations) {
    struct Observer : ProjectSystemObserver {
        void propertyChanged(ProjectElement *, const std::string &configuration, PropertyClass *property) override {
            heard.push_back(configuration + ":" + property->name());
        }
        Strings heard;
    } observer;
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><configuration Name="ARM Flash" inherited_configurations="ARM;Flash" />
  <project Name="P" /></solution>)");
    system.observer = &observer;
    ProjectElement *project = system.node("P");
    // The same list again changes nothing.
    system.setInheritedConfigurations(project, "ARM Flash", {"ARM", "Flash"});
    EXPECT_FALSE(ProjectSystem::isModified(system.solution, true));
    EXPECT_TRUE(observer.heard.empty());

    system.setInheritedConfigurations(project, "ARM Flash", {"Flash"});
    EXPECT_EQ(system.inheritedConfigurations(project, "ARM Flash"), (Strings{"Flash"}));
    EXPECT_EQ(observer.heard, (Strings{"ARM Flash:inherited_configurations"}));

    // A new name is made a public configuration of the solution.
    system.setInheritedConfigurations(project, "New", {"A", "B"});
    EXPECT_EQ(spaced(sorted(system.configurationNames(nullptr, PS::PublicConfigurations)), "|"), "ARM Flash|New");
    EXPECT_EQ(system.inheritedConfigurations(project, "New"), (Strings{"A", "B"}));
    EXPECT_EQ(system.inheritedConfigurations(nullptr, "New"), Strings{});
}

} // namespace
