#include "project/property_group_files.h"

#include "project/project_test_tree.h"
#include "support/file_info.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

using Strings = std::vector<std::string>;

// Gives a file a modification time of its own, so that a rewrite within the
// file system's clock tick still counts as a change, or doesn't.
void setTime(const std::string &file, long seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0) << file;
}

// A group file with one group of each name, which has one entry.
std::string groupsText(const Strings &names, const std::string &extra = "") {
    std::string text = "<propertyGroups>";
    for (const std::string &name : names)
        text += "<group name=\"" + name + "\"><groupEntry name=\"e\"/></group>";
    return text + extra + "</propertyGroups>";
}

Strings namesOf(const std::vector<PropertyValueGroupClass *> &groups) {
    Strings names;
    for (const PropertyValueGroupClass *group : groups)
        names.push_back(group->name());
    return names;
}

// The directory of the library file that a class came from, or "project".
std::string originOf(ProjectSystem &system, const PropertyValueGroupClass *group) {
    PropertyGroupFiles &files = system.propertyGroupFiles();
    for (PropertyValueGroupLibraryFiles *library :
         {&files.sourceLibraries, &files.packageLibraries, &files.targetLibraries,
          &files.sampleLibraries})
        for (const auto &file : library->files())
            for (const auto &owned : file->groups)
                if (owned.get() == group)
                    return FileInfo(FileInfo(file->fileName).path()).fileName();
    return "project";
}

TEST(PropertyValueGroupClass, ReadsTheGroupElementAfterThePreprocessor) {
    TestDirectory dir;
    const std::string path = dir.write("groups.xml", R"(<anything>
  <define name="VARIANT" value="b"/>
  <group name="Board" short="Target Board" long="Which board." default="Beta" order="0x10"
         target="0x8" page="" group="Hardware Options">
    <groupEntry name="Alpha" family="Alpha Board" aka="A1"/>
    <if VARIANT="b"><groupEntry name="Beta"/></if>
    <ifnot VARIANT="b"><groupEntry name="Gamma"/></ifnot>
    <cdefine name="NOT_AN_ENTRY"/>
  </group>
  <group name="Plain" page="Library"><groupEntry name="x"/><groupEntry name="y"/></group>
  <notAGroup name="Skipped"/>
</anything>)");
    TestProjectSystem system;
    PropertyValueGroupFile *file = system.findGroupFile(path);
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(file->groups.size(), 2u);

    const PropertyValueGroupClass &board = *file->groups[0];
    EXPECT_EQ(board.name(), "Board");
    EXPECT_EQ(board.type(), PropertyClass::Enumeration);
    EXPECT_EQ(board.values(), (Strings{"Alpha", "Beta"}));
    EXPECT_EQ(board.displayValues(), (Strings{"Alpha Board", ""}));
    EXPECT_EQ(board.defaultValue(), "Beta");
    EXPECT_EQ(board.order(), 16);
    EXPECT_EQ(board.target(), 8u);
    EXPECT_TRUE(board.appliesTo(8));
    EXPECT_FALSE(board.appliesTo(15));
    EXPECT_EQ(board.shortText(), "Target Board");
    EXPECT_EQ(board.longText(), "Which board.");
    // An empty page is "General", which shows as the code page.
    EXPECT_EQ(board.page(), "Code");
    EXPECT_EQ(board.group(), "Hardware");
    EXPECT_FALSE(board.fromLibrary());
    EXPECT_EQ(*board.groupElement()->attribute("name"), "Board");

    const PropertyValueGroupClass &plain = *file->groups[1];
    EXPECT_TRUE(plain.displayValues().empty());
    EXPECT_FALSE(plain.defaultValue().has_value());
    EXPECT_EQ(plain.page(), "Library");
    EXPECT_TRUE(plain.appliesTo(8) && plain.appliesTo(15));
}

TEST(PropertyGroupFiles, NoneEmptyMissingAndBrokenFilesGiveNothing) {
    TestDirectory dir;
    TestProjectSystem system;
    EXPECT_EQ(system.findGroupFile(""), nullptr);
    EXPECT_EQ(system.findGroupFile("None"), nullptr);
    EXPECT_EQ(system.findGroupFile(dir / "missing.xml"), nullptr);
    EXPECT_EQ(system.findGroupFile(dir.path()), nullptr);

    // A file that doesn't parse is tried again only when it changes.
    const std::string broken = dir.write("broken.xml", "<propertyGroups><group name=\"G\">");
    setTime(broken, 1000);
    EXPECT_EQ(system.findGroupFile(broken), nullptr);
    dir.write("broken.xml", groupsText({"G"}));
    setTime(broken, 1000);
    EXPECT_EQ(system.findGroupFile(broken), nullptr);
    setTime(broken, 2000);
    ASSERT_NE(system.findGroupFile(broken), nullptr);
    EXPECT_EQ(system.propertyGroupFiles().projectFiles.size(), 1u);

    // A document without a root element fails too, and keeps nothing.
    const std::string empty = dir.write("empty.xml", "<!-- nothing -->");
    EXPECT_EQ(system.findGroupFile(empty), nullptr);
    EXPECT_EQ(system.propertyGroupFiles().projectFiles.size(), 1u);
}

TEST(PropertyGroupFiles, AChangedFileIsReadAgainAndTheOldOneKept) {
    TestDirectory dir;
    const std::string path = dir.write("groups.xml", groupsText({"Old"}));
    setTime(path, 1000);
    TestProjectSystem system;
    PropertyValueGroupFile *first = system.findGroupFile(path);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(system.findGroupFile(path), first);
    PropertyValueGroupClass *oldGroup = first->groups.at(0).get();

    dir.write("groups.xml", groupsText({"New"}));
    setTime(path, 2000);
    PropertyValueGroupFile *second = system.findGroupFile(path);
    ASSERT_NE(second, nullptr);
    ASSERT_NE(second, first);
    EXPECT_EQ(second->groups.at(0)->name(), "New");
    // The old classes may still be held by a listing.
    EXPECT_EQ(oldGroup->name(), "Old");
    EXPECT_EQ(*ProjectSystem::groupEntry(oldGroup, "e")->attribute("name"), "e");
    PropertyGroupFiles &files = system.propertyGroupFiles();
    ASSERT_EQ(files.staleFiles.size(), 1u);
    EXPECT_EQ(files.staleFiles[0].get(), first);
    EXPECT_EQ(files.projectFiles.size(), 1u);

    // A file that goes away gives nothing, and its object stays alive.
    ASSERT_EQ(::remove(path.c_str()), 0);
    EXPECT_EQ(system.findGroupFile(path), nullptr);
    EXPECT_EQ(files.staleFiles.size(), 2u);
    EXPECT_TRUE(files.projectFiles.empty());
}

TEST(PropertyGroupFiles, TheMostRecentFileComesFirst) {
    TestDirectory dir;
    const std::string a = dir.write("a.xml", groupsText({"A"}));
    const std::string b = dir.write("b.xml", groupsText({"B"}));
    TestProjectSystem system;
    system.findGroupFile(a);
    system.findGroupFile(b);
    const auto &files = system.propertyGroupFiles().projectFiles;
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0]->fileName, b);
    EXPECT_EQ(files[1]->fileName, a);
}

// An installation with the four library directories.
struct Installation {
    TestDirectory dir;
    TestProjectSystem system;
    Installation() {
        system.systemMacros.addSystemMacro("StudioDir", dir / "studio", "");
        system.systemMacros.addSystemMacro("PackagesDir", dir / "packages", "");
    }
    std::string library(const std::string &relative, const std::string &text) {
        return dir.write(relative + "/propertyGroups.xml", text);
    }
};

TEST(PropertyGroupFiles, LibrariesAreScannedOnceUntilTheFlagIsCleared) {
    Installation install;
    install.library("studio/targets/b", groupsText({"B"}));
    const std::string a = install.library("studio/targets/a", groupsText({"A"}));
    install.library("studio/targets/c-broken", "<propertyGroups>");
    install.dir.write("studio/targets/d-empty/readme.txt", "no groups here");
    install.dir.write("studio/targets/plain-file", "");
    TestProjectSystem &system = install.system;
    PropertyValueGroupLibraryFiles &targets = system.propertyGroupFiles().targetLibraries;

    // Sub-directories in name order; a file that doesn't read is skipped.
    EXPECT_EQ(namesOf(system.groupClasses(nullptr, false)), (Strings{"A", "B"}));
    EXPECT_TRUE(targets.files()[0]->groups[0]->fromLibrary());
    PropertyValueGroupFile *b = targets.files()[1].get();

    // Changes after the scan aren't seen until the flag is cleared.
    install.library("studio/targets/e", groupsText({"E"}));
    ASSERT_EQ(::remove(a.c_str()), 0);
    EXPECT_EQ(namesOf(system.groupClasses(nullptr, false)), (Strings{"A", "B"}));
    targets.scanned = false;
    EXPECT_EQ(namesOf(system.groupClasses(nullptr, false)), (Strings{"B", "E"}));
    // An unchanged file is the same object; a dropped one is kept alive.
    EXPECT_EQ(targets.files()[0].get(), b);
    ASSERT_EQ(system.propertyGroupFiles().staleFiles.size(), 1u);
    EXPECT_EQ(system.propertyGroupFiles().staleFiles[0]->groups[0]->name(), "A");

    // A changed file is read again.
    const std::string e = install.library("studio/targets/e", groupsText({"E2"}));
    setTime(e, 5000);
    targets.scanned = false;
    EXPECT_EQ(namesOf(system.groupClasses(nullptr, false)), (Strings{"B", "E2"}));
    EXPECT_EQ(system.propertyGroupFiles().staleFiles.size(), 2u);

    // A directory that has gone leaves the list as it was.
    ASSERT_EQ(std::system(("rm -rf '" + install.dir / "studio/targets" + "'").c_str()), 0);
    targets.scanned = false;
    EXPECT_EQ(namesOf(system.groupClasses(nullptr, false)), (Strings{"B", "E2"}));
}

TEST(PropertyGroupFiles, MissingLibraryDirectoriesContributeNothing) {
    Installation install;
    EXPECT_TRUE(install.system.groupClasses(nullptr, true).empty());
    // Without the macros the patterns name no directory either.
    TestProjectSystem bare;
    EXPECT_TRUE(bare.groupClasses(nullptr, true).empty());
}

TEST(PropertyGroupFiles, PrecedenceAndTheLibcxxExclusion) {
    Installation install;
    install.library("studio/source/s", groupsText({"Board", "libcxx_variant", "STLport", "Src"}));
    install.library("packages/libraries/p1",
                    groupsText({"Board", "Pkg", "libcxxabi", "STLportable", "Src"}));
    install.library("packages/libraries/p2", groupsText({"Pkg", "Pkg2"}));
    install.library("studio/targets/t", groupsText({"Board", "Target"}));
    install.library("studio/samples/x", groupsText({"Board", "Sample", "STLport"}));
    const std::string project = install.dir.write("project/groups.xml", groupsText({"Board"}));
    TestProjectSystem &system = install.system;
    PropertyValueGroupFile *file = system.findGroupFile(project);
    ASSERT_NE(file, nullptr);

    const auto classes = system.groupClasses(file, false);
    EXPECT_EQ(namesOf(classes),
              (Strings{"Board", "Board", "Src", "Pkg", "STLportable", "Pkg2", "Board", "Target",
                       "Board", "Sample", "STLport"}));
    Strings origins;
    for (const PropertyValueGroupClass *group : classes)
        origins.push_back(originOf(system, group));
    EXPECT_EQ(origins, (Strings{"project", "s", "s", "p1", "p1", "p2", "t", "t", "x", "x", "x"}));
    EXPECT_FALSE(classes[0]->fromLibrary());
    EXPECT_TRUE(classes[1]->fromLibrary());

    EXPECT_EQ(namesOf(system.groupClasses(file, true)),
              (Strings{"Board", "Board", "libcxx_variant", "STLport", "Src", "Pkg", "libcxxabi",
                       "STLportable", "Pkg2", "Board", "Target", "Board", "Sample", "STLport"}));

    // The project's group wins; without the file a library's does.
    EXPECT_EQ(system.findGroup(file, "Board", 8, false), classes[0]);
    EXPECT_EQ(originOf(system, system.findGroup(nullptr, "Board", 8, false)), "s");
    EXPECT_EQ(system.findGroup(file, "libcxx_variant", 8, false), nullptr);
    EXPECT_NE(system.findGroup(file, "libcxx_variant", 8, true), nullptr);
    EXPECT_EQ(system.findGroup(file, "Nothing", 8, true), nullptr);
}

TEST(PropertyGroupFiles, FindGroupPassesOverOtherTargets) {
    TestDirectory dir;
    const std::string path = dir.write("groups.xml", R"(<g>
  <group name="Board" target="8"><groupEntry name="arm"/></group>
  <group name="Board" target="15"><groupEntry name="host"/></group>
  <group name="Board"><groupEntry name="any"/></group>
</g>)");
    TestProjectSystem system;
    PropertyValueGroupFile *file = system.findGroupFile(path);
    const auto entryOf = [&](std::uint32_t target) {
        const PropertyValueGroupClass *group = system.findGroup(file, "Board", target, false);
        return group ? group->values().at(0) : std::string("none");
    };
    EXPECT_EQ(entryOf(8), "arm");
    EXPECT_EQ(entryOf(15), "host");
    EXPECT_EQ(entryOf(3), "any");
}

TEST(PropertyGroupFiles, MacroNamesOfFilesAndLibraries) {
    Installation install;
    install.library("studio/targets/t",
                    "<g><group name=\"T\"><groupEntry name=\"e\"><macro name=\"TargetMacro\" "
                    "value=\"1\"/></groupEntry></group></g>");
    const std::string project = install.dir.write(
        "groups.xml", "<g><group name=\"P\"><groupEntry name=\"a\"><macro name=\"One\"/></groupEntry>"
                      "<groupEntry name=\"b\"><macro name=\"Two\" configuration=\"Debug\"/>"
                      "</groupEntry></group></g>");
    PropertyGroupFiles &files = install.system.propertyGroupFiles();
    PropertyValueGroupFile *file = install.system.findGroupFile(project);
    EXPECT_EQ(file->macroNames, (MacroNameSet{"One", "Two"}));
    EXPECT_TRUE(files.mayBeGroupMacro(file, "Two"));
    EXPECT_TRUE(files.mayBeGroupMacro(nullptr, "TargetMacro"));
    EXPECT_FALSE(files.mayBeGroupMacro(file, "InputName"));
    EXPECT_TRUE(files.hasMacros(nullptr));

    TestProjectSystem bare;
    EXPECT_FALSE(bare.propertyGroupFiles().hasMacros(nullptr));
}

} // namespace
