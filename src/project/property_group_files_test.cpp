#include "project/property_group_files.h"

#include "project/project_test_tree.h"
#include "support/file_info.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

// Gives a file a modification time of its own, so that a rewrite within the
// file system's clock tick still counts as a change, or doesn't.
void setTime(const std::string &file, long seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0) << file;
}

// A group file with one group of each name, which has one entry.
std::string groupsText(const Strings &names) {
    std::string text = "<propertyGroups>";
    for (const std::string &name : names)
        text += "<group name=\"" + name + "\"><groupEntry name=\"e\"/></group>";
    return text + "</propertyGroups>";
}

// An installation with the library directories.
struct GroupFiles : ::testing::Test {
    void SetUp() override {
        system.systemMacros.addSystemMacro("StudioDir", dir / "studio", "");
        system.systemMacros.addSystemMacro("PackagesDir", dir / "packages", "");
    }
    std::string library(const std::string &relative, const std::string &text) {
        return dir.write(relative + "/propertyGroups.xml", text);
    }
    // The names of the classes, each with the directory of the library file
    // it came from, or "project".
    std::string classes(PropertyValueGroupFile *projectFile, bool includeAll) {
        PropertyGroupFiles &files = system.propertyGroupFiles();
        Strings lines;
        for (const PropertyValueGroupClass *group : system.groupClasses(projectFile, includeAll)) {
            std::string origin = "project";
            for (PropertyValueGroupLibraryFiles *library :
                 {&files.sourceLibraries, &files.packageLibraries, &files.targetLibraries, &files.sampleLibraries})
                for (const auto &file : library->files())
                    for (const auto &owned : file->groups)
                        if (owned.get() == group)
                            origin = FileInfo(FileInfo(file->fileName).path()).fileName();
            lines.push_back(group->name() + "@" + origin);
        }
        return spaced(lines);
    }
    TestDirectory dir;
    TestProjectSystem system;
};

TEST_F(GroupFiles, ReadsTheGroupElementAfterThePreprocessor) {
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
    PropertyValueGroupFile *file = system.findGroupFile(path);
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(file->groups.size(), 2u);
    const PropertyValueGroupClass &board = *file->groups[0];
    EXPECT_EQ(board.values(), (Strings{"Alpha", "Beta"}));
    EXPECT_EQ(board.displayValues(), (Strings{"Alpha Board", ""}));
    EXPECT_EQ(board.defaultValue(), "Beta");
    EXPECT_EQ(board.order(), 16);
    EXPECT_EQ(board.target(), 8u);
    EXPECT_TRUE(board.appliesTo(8) && !board.appliesTo(15));
    EXPECT_EQ(std::string(board.shortText()) + "|" + board.longText(), "Target Board|Which board.");
    // An empty page is "General", which shows as the code page.
    EXPECT_EQ(std::string(board.page()) + "|" + std::string(board.group()), "Code|Hardware");
    const PropertyValueGroupClass &plain = *file->groups[1];
    EXPECT_EQ(plain.page(), "Library");
    EXPECT_TRUE(plain.appliesTo(8) && plain.appliesTo(15));
}

TEST_F(GroupFiles, FilesAreReadAgainWhenTheyChange) {
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
    // A document without a root element fails too, and keeps nothing.
    EXPECT_EQ(system.findGroupFile(dir.write("empty.xml", "<!-- nothing -->")), nullptr);
    PropertyGroupFiles &files = system.propertyGroupFiles();
    EXPECT_EQ(files.projectFiles.size(), 1u);

    const std::string path = dir.write("groups.xml", groupsText({"Old"}));
    setTime(path, 1000);
    PropertyValueGroupFile *first = system.findGroupFile(path);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(system.findGroupFile(path), first);
    // The most recent file comes first.
    EXPECT_EQ(files.projectFiles[0].get(), first);
    PropertyValueGroupClass *oldGroup = first->groups.at(0).get();
    dir.write("groups.xml", groupsText({"New"}));
    setTime(path, 2000);
    PropertyValueGroupFile *second = system.findGroupFile(path);
    ASSERT_NE(second, nullptr);
    ASSERT_NE(second, first);
    EXPECT_EQ(second->groups.at(0)->name(), "New");
    // The old classes may still be held by a listing.
    EXPECT_EQ(*ProjectSystem::groupEntry(oldGroup, "e")->attribute("name"), "e");
    ASSERT_EQ(files.staleFiles.size(), 1u);
    EXPECT_EQ(files.staleFiles[0].get(), first);
    // A file that goes away gives nothing, and its object stays alive.
    ASSERT_EQ(::remove(path.c_str()), 0);
    EXPECT_EQ(system.findGroupFile(path), nullptr);
    EXPECT_EQ(files.staleFiles.size(), 2u);
    EXPECT_EQ(files.projectFiles.size(), 1u);
}

TEST_F(GroupFiles, LibrariesAreScannedOnceUntilTheFlagIsCleared) {
    // Without the directories, or without the macros, there is nothing.
    EXPECT_EQ(classes(nullptr, true), "");
    TestProjectSystem bare;
    EXPECT_TRUE(bare.groupClasses(nullptr, true).empty());

    library("studio/targets/b", groupsText({"B"}));
    const std::string a = library("studio/targets/a", groupsText({"A"}));
    library("studio/targets/c-broken", "<propertyGroups>");
    dir.write("studio/targets/d-empty/readme.txt", "no groups here");
    dir.write("studio/targets/plain-file", "");
    PropertyValueGroupLibraryFiles &targets = system.propertyGroupFiles().targetLibraries;
    targets.scanned = false;
    // Sub-directories in name order; a file that doesn't read is skipped.
    EXPECT_EQ(classes(nullptr, false), "A@a B@b");
    PropertyValueGroupFile *b = targets.files()[1].get();

    // Changes after the scan aren't seen until the flag is cleared.
    library("studio/targets/e", groupsText({"E"}));
    ASSERT_EQ(::remove(a.c_str()), 0);
    EXPECT_EQ(classes(nullptr, false), "A@a B@b");
    targets.scanned = false;
    EXPECT_EQ(classes(nullptr, false), "B@b E@e");
    // An unchanged file is the same object; a dropped one is kept alive.
    EXPECT_EQ(targets.files()[0].get(), b);
    const auto &stale = system.propertyGroupFiles().staleFiles;
    ASSERT_EQ(stale.size(), 1u);
    EXPECT_EQ(stale[0]->groups[0]->name(), "A");
    // A changed file is read again.
    setTime(library("studio/targets/e", groupsText({"E2"})), 5000);
    targets.scanned = false;
    EXPECT_EQ(classes(nullptr, false), "B@b E2@e");
    EXPECT_EQ(stale.size(), 2u);
    // A directory that has gone leaves the list as it was.
    ASSERT_EQ(std::system(("rm -rf '" + dir / "studio/targets" + "'").c_str()), 0);
    targets.scanned = false;
    EXPECT_EQ(classes(nullptr, false), "B@b E2@e");
}

TEST_F(GroupFiles, PrecedenceAndTheLibcxxExclusion) {
    library("studio/source/s", groupsText({"Board", "libcxx_variant", "STLport", "Src"}));
    library("packages/libraries/p1", groupsText({"Board", "Pkg", "libcxxabi", "STLportable", "Src"}));
    library("packages/libraries/p2", groupsText({"Pkg", "Pkg2"}));
    library("studio/targets/t", groupsText({"Board", "Target"}));
    library("studio/samples/x", groupsText({"Board", "Sample", "STLport"}));
    PropertyValueGroupFile *file = system.findGroupFile(dir.write("project/groups.xml", groupsText({"Board"})));
    ASSERT_NE(file, nullptr);
    // The project's file, then the source, package, target and sample
    // libraries; the libcxx and STLport groups of the first two only on
    // request.
    EXPECT_EQ(classes(file, false), "Board@project Board@s Src@s Pkg@p1 STLportable@p1 Pkg2@p2 Board@t Target@t "
                                    "Board@x Sample@x STLport@x");
    EXPECT_EQ(classes(file, true), "Board@project Board@s libcxx_variant@s STLport@s Src@s Pkg@p1 libcxxabi@p1 "
                                   "STLportable@p1 Pkg2@p2 Board@t Target@t Board@x Sample@x STLport@x");
    const auto classList = system.groupClasses(file, false);
    // The project's group wins; without the file a library's does.
    EXPECT_EQ(system.findGroup(file, "Board", 8, false), classList[0]);
    EXPECT_EQ(system.findGroup(nullptr, "Board", 8, false), classList[1]);
    EXPECT_EQ(system.findGroup(file, "libcxx_variant", 8, false), nullptr);
    EXPECT_NE(system.findGroup(file, "libcxx_variant", 8, true), nullptr);
    EXPECT_EQ(system.findGroup(file, "Nothing", 8, true), nullptr);
}

TEST_F(GroupFiles, MacroNamesOfLibraries) {
    library("studio/targets/t", "<g><group name=\"T\"><groupEntry name=\"e\"><macro name=\"TargetMacro\" "
                                "value=\"1\"/></groupEntry></group></g>");
    PropertyGroupFiles &files = system.propertyGroupFiles();
    EXPECT_TRUE(files.mayBeGroupMacro(nullptr, "TargetMacro"));
    EXPECT_FALSE(files.mayBeGroupMacro(nullptr, "InputName"));
    EXPECT_TRUE(files.hasMacros(nullptr));
}

} // namespace
