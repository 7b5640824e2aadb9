#include "project/project_test_tree.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

const char *const warningsFile = R"xml(<options>
  <property tool="compiler" name="gen_warn" short="Warn" type="Enumeration"
            enumeration="No;Yes (Wall)" default="No"/>
  <property tool="linker" name="gen_gc" short="GC"/>
  <property name="build_treat_warnings_as_errors" default="Yes"/>
</options>)xml";

const char *const otherFile = R"(<options>
  <property tool="assembler" name="gen_asm" short="Listing"/>
</options>)";

const char *const tree = R"(<solution Name="S">
  <project Name="Standard">
    <file file_name="a.c" />
  </project>
  <project Name="Own">
    <configuration Name="Common" build_generic_options_file_name="other.xml" />
    <file file_name="b.c" />
  </project>
  <project Name="Named">
    <configuration Name="Common" macros="Options=other"
                   build_generic_options_file_name="$(Options).xml" />
    <configuration Name="None" build_generic_options_file_name="" />
    <configuration Name="Missing" build_generic_options_file_name="missing.xml" />
    <configuration Name="Broken" build_generic_options_file_name="$(StudioDir)/broken.xml" />
  </project>
</solution>)";

bool holds(const std::vector<PropertyClass *> &list, const PropertyClass *property) {
    return std::find(list.begin(), list.end(), property) != list.end();
}

struct Fixture {
    Fixture() {
        directory.write("bin/warnings.xml", warningsFile);
        directory.write("other.xml", otherFile);
        directory.write("broken.xml", "<options><property");
        system.load(tree, directory / "s.tbp");
        system.installDirectory = directory.path();
        system.genericOptionsFileName = "$(StudioDir)/bin/warnings.xml";
        quietly = system.property("build_treat_warnings_as_errors");
    }
    ProjectElement *file(const std::string &name) {
        return ProjectSystem::findFileByPath(system.solution, name);
    }
    TestDirectory directory;
    TestProjectSystem system;
    PropertyClass *quietly = nullptr;
};

TEST(GenericOptionFiles, StandardFileAppliesWhereNothingIsSet) {
    Fixture f;
    EXPECT_EQ(f.system.activeGenericOptions(), nullptr);
    f.system.loadGenericOptions(f.file("a.c"), "Debug");
    GenericOptionSet *set = f.system.activeGenericOptions();
    ASSERT_NE(set, nullptr);
    PropertyClass *warn = f.system.propertyClasses.propertyClass("gen_warn");
    ASSERT_NE(warn, nullptr);
    EXPECT_EQ(warn, set->properties()[0].get());
    EXPECT_EQ(warn->page(), "Code");
    EXPECT_TRUE(holds(f.system.propertyClasses.toolProperties(2), warn));
    EXPECT_TRUE(holds(f.system.propertyClasses.toolProperties(3), warn));
    EXPECT_TRUE(holds(f.system.propertyClasses.toolProperties(7),
                      f.system.propertyClasses.propertyClass("gen_gc")));
    // The file's new default stands while the set is active.
    EXPECT_EQ(f.system.getPropertyValue(f.file("a.c"), f.quietly, "Debug"), "Yes");

    // The same name again changes nothing.
    f.system.loadGenericOptions(f.system.node("Standard"), "Release");
    EXPECT_EQ(f.system.activeGenericOptions(), set);
    EXPECT_TRUE(set->isActive());
}

TEST(GenericOptionFiles, ProjectFileReplacesTheActiveSetAndSetsAreReadOnce) {
    Fixture f;
    f.system.loadGenericOptions(f.file("a.c"), "Debug");
    GenericOptionSet *standard = f.system.activeGenericOptions();
    ASSERT_NE(standard, nullptr);

    // A relative name is taken from the project's directory.
    f.system.loadGenericOptions(f.file("b.c"), "Debug");
    GenericOptionSet *own = f.system.activeGenericOptions();
    ASSERT_NE(own, nullptr);
    ASSERT_NE(own, standard);
    EXPECT_FALSE(standard->isActive());
    EXPECT_EQ(f.system.propertyClasses.propertyClass("gen_warn"), nullptr);
    EXPECT_FALSE(holds(f.system.propertyClasses.toolProperties(2),
                       standard->properties()[0].get()));
    EXPECT_EQ(f.system.getPropertyValue(f.file("b.c"), f.quietly, "Debug"), "No");
    PropertyClass *listing = f.system.propertyClasses.propertyClass("gen_asm");
    ASSERT_NE(listing, nullptr);
    EXPECT_TRUE(holds(f.system.propertyClasses.toolProperties(4), listing));

    // Going back activates the copy read before: a change of the file on
    // disk isn't seen.
    f.directory.write("bin/warnings.xml", otherFile);
    f.system.loadGenericOptions(f.file("a.c"), "Debug");
    EXPECT_EQ(f.system.activeGenericOptions(), standard);
    EXPECT_NE(f.system.propertyClasses.propertyClass("gen_warn"), nullptr);
    EXPECT_EQ(f.system.propertyClasses.propertyClass("gen_asm"), nullptr);
    EXPECT_FALSE(holds(f.system.propertyClasses.toolProperties(4), listing));

    // The name with macros expanded is the key: the same file, the same set.
    f.system.loadGenericOptions(f.system.node("Named"), "Debug");
    EXPECT_EQ(f.system.activeGenericOptions(), own);
}

TEST(GenericOptionFiles, EmptyOrUnreadableFileLeavesNoSetActive) {
    Fixture f;
    ProjectElement *named = f.system.node("Named");
    f.system.loadGenericOptions(f.file("a.c"), "Debug");
    ASSERT_NE(f.system.activeGenericOptions(), nullptr);

    f.system.loadGenericOptions(named, "None");
    EXPECT_EQ(f.system.activeGenericOptions(), nullptr);
    EXPECT_EQ(f.system.propertyClasses.propertyClass("gen_warn"), nullptr);
    EXPECT_EQ(f.quietly->defaultValue(), "No");

    for (const char *configuration : {"Missing", "Broken"}) {
        f.system.loadGenericOptions(f.file("a.c"), "Debug");
        ASSERT_NE(f.system.activeGenericOptions(), nullptr);
        f.system.loadGenericOptions(named, configuration);
        EXPECT_EQ(f.system.activeGenericOptions(), nullptr) << configuration;
        EXPECT_EQ(f.system.propertyClasses.propertyClass("gen_warn"), nullptr) << configuration;
    }
}

TEST(GenericOptionFiles, StandardFileFollowsTheToolchainsName) {
    Fixture f;
    f.system.genericOptionsFileName.clear();
    f.system.loadGenericOptions(f.file("a.c"), "Debug");
    EXPECT_EQ(f.system.activeGenericOptions(), nullptr);

    f.system.genericOptionsFileName = "$(StudioDir)/other.xml";
    // The listing of a node reads the options first.
    f.system.toolPropertyValues(f.file("a.c"), "Debug");
    ASSERT_NE(f.system.activeGenericOptions(), nullptr);
    EXPECT_NE(f.system.propertyClasses.propertyClass("gen_asm"), nullptr);
}

} // namespace
