#include "project/generic_option_set.h"
#include "project/generic_property_class.h"
#include "project/project_test_tree.h"
#include "project/property_class_map.h"
#include "project/xml/xml_document.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

namespace {

using Options = GenericPropertyClass::OptionList;

GenericPropertyClass generic(const std::string &text) {
    XMLDocument document;
    EXPECT_TRUE(document.parse(text)) << document.errorText;
    return GenericPropertyClass(*document.root);
}

TEST(GenericPropertyClass, OptionsOfEachFormAndTheOrder) {
    // The choices are the values of the options, in order.
    const std::pair<const char *, Options> rows[] = {
        // Enumeration items carry their option in brackets.
        {R"(<property name="o" type="Enumeration" enumeration="None;Speed (O2);Size (Os);Odd (unclosed"/>)",
         {{"None", ""}, {"Speed (O2)", "-O2"}, {"Size (Os)", "-Os"}, {"Odd (unclosed", ""}}},
        // Display texts behind "~~" aren't part of the stored values.
        {R"(<property name="w" type="Enumeration" enumeration="Yes (Wall)~~On;No~~Off"/>)",
         {{"Yes (Wall)", "-Wall"}, {"No", ""}}},
        // Values with an option prefix: blanks are trimmed and collapsed,
        // empty items dropped.
        {R"(<property name="s" type="Enumeration" option="-std" values="  c99 ; gnu  11;;c17"/>)",
         {{"c99", "-std;c99"}, {"gnu 11", "-std;gnu 11"}, {"c17", "-std;c17"}}},
        // With only option2 the list starts with "None".
        {R"(<property name="a" type="Enumeration" option2="-march=" values="armv7;armv8"/>)",
         {{"None", ""}, {"armv7", "-march=armv7"}, {"armv8", "-march=armv8"}}},
        // Child entries without a value or an option are passed over.
        {R"(<property name="f" type="Enumeration"><entry value="Soft" option="-mfloat-abi=soft"/>
              <entry value="Hard" value2="hard" option="-mfloat-abi=hard"/>
              <entry value="Missing option"/><entry option="-missing-value"/></property>)",
         {{"Soft", "-mfloat-abi=soft"}, {"Hard", "-mfloat-abi=hard"}}},
        // Other types keep the option as a name and offer no choices.
        {R"(<property name="t" type="StringList" option="Wno-"/>)", {}},
    };
    for (const auto &[text, options] : rows) {
        GenericPropertyClass p = generic(text);
        EXPECT_EQ(p.options(), options) << text;
        Strings values;
        for (const auto &option : options)
            values.push_back(option.first);
        EXPECT_EQ(p.choices(), values) << text;
    }
    EXPECT_EQ(generic(rows[4].first).options2(), (Options{{"hard", "-mfloat-abi=hard"}}));
    EXPECT_EQ(generic(rows[5].first).optionName(), "Wno-");

    // The order is decimal here, unlike in a plain definition.
    EXPECT_EQ(generic(R"(<property name="t" order="0x10"/>)").order(), 0);
    EXPECT_EQ(generic(R"(<property name="t" order="12"/>)").order(), 12);
}

// A generic option file as the pre-processor hands it over.
const char *const sampleFile = R"xml(<options>
  <property tool="compiler" name="gen_warn_all" short="All Warnings" type="Enumeration"
            enumeration="No;Yes (Wall)" default="No"/>
  <property tool="c_compiler;cpp_compiler" name="gen_shadow" short="Shadow" variant="gcc"
            option="-W" values="shadow;shadow=local"/>
  <property tool="assembler" name="gen_asm_listing" short="Listing"/>
  <property tool="linker" name="gen_link_gc" short="GC" type="Enumeration">
    <entry value="Yes" option="--gc-sections"/>
  </property>
  <property tool="unknown" name="gen_orphan"/>
  <property name="build_quietly" default="No"/>
  <property name="no_such_property" default="x"/>
  <group name="gen_group" default="Second"><groupEntry name="First"/></group>
  <comment-like/>
  <group name="gen_group_without_default"/>
</options>)xml";

TEST(GenericOptionSet, ActivationRegistersAndDeactivationRestores) {
    XMLDocument document;
    ASSERT_TRUE(document.parse(sampleFile)) << document.errorText;
    GenericOptionSet set(*document.root);
    std::string overrides;
    for (const auto &entry : set.defaultOverrides())
        overrides += entry.name + "=" + entry.value + " ";
    EXPECT_EQ(overrides, "build_quietly=No no_such_property=x gen_group=Second ");

    PropertyClassMap map;
    PropertyClass quietly("build_quietly", "General", "Build Options", "Quietly", "", true);
    PropertyClass standardGc("gen_link_gc", "Linker", "", "", "", false);
    PropertyClass earlier("gen_group", PropertyClass::String, "", "", "", "", "earlier");
    for (PropertyClass *p : {&quietly, &standardGc, &earlier})
        map.addPropertyClass(p);
    map.addToolProperty(&quietly, 2);
    const auto &groups = set.groupClasses();
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0]->values(), Strings{"First"});
    // Groups are moved out of the document; the rest stays.
    EXPECT_EQ(set.groupElements()[0]->parent, nullptr);
    EXPECT_EQ(document.root->lastChild->toElement()->tagName, "comment-like");

    set.activate(map);
    EXPECT_TRUE(set.isActive());
    EXPECT_EQ(map.propertyClass("gen_orphan"), set.properties()[4].get());
    EXPECT_EQ(map.propertyClass("gen_link_gc"), set.properties()[3].get());
    // The lists of steps 2 (C), 3 (C++), 4 (assembly) and 7 (link).
    const auto lists = [&] {
        std::string text;
        for (int step : {2, 3, 4, 7})
            text += spaced(namesOf(map.toolProperties(step))) + "|";
        return text;
    };
    EXPECT_EQ(lists(), "build_quietly gen_warn_all gen_shadow|gen_warn_all gen_shadow|gen_asm_listing|gen_link_gc|");
    EXPECT_EQ(quietly.defaultValue(), "No");
    // The group takes the name, and its own default override holds.
    EXPECT_EQ(map.propertyClass("gen_group"), groups[0].get());
    EXPECT_EQ(groups[0]->defaultValue(), "Second");
    // A second activation changes nothing.
    set.activate(map);
    EXPECT_EQ(lists(), "build_quietly gen_warn_all gen_shadow|gen_warn_all gen_shadow|gen_asm_listing|gen_link_gc|");

    set.deactivate(map);
    EXPECT_FALSE(set.isActive());
    EXPECT_EQ(quietly.defaultValue(), "Yes");
    EXPECT_EQ(map.propertyClass("gen_link_gc"), &standardGc);
    EXPECT_EQ(map.propertyClass("gen_group"), &earlier);
    EXPECT_EQ(earlier.defaultValue(), "earlier");
    EXPECT_EQ(lists(), "build_quietly||||");
    EXPECT_EQ(map.size(), 3u);
}

// A file that is empty, missing or broken leaves no set active, nor does a
// toolchain without a file of its own; the defaults the last set gave go back.
TEST(GenericOptionFiles, EmptyMissingOrBrokenFileLeavesNoSetActive) {
    TestDirectory directory;
    directory.write("bin/warnings.xml", R"(<options><property tool="compiler" name="gen_warn" short="Warn"/>
  <property name="build_treat_warnings_as_errors" default="Yes"/></options>)");
    directory.write("broken.xml", "<options><property");
    TestProjectSystem system;
    system.load(R"(<solution Name="S"><project Name="Standard"><file file_name="a.c" /></project>
  <project Name="Named"><configuration Name="None" build_generic_options_file_name="" />
    <configuration Name="Missing" build_generic_options_file_name="missing.xml" />
    <configuration Name="Broken" build_generic_options_file_name="$(StudioDir)/broken.xml" /></project>
</solution>)", directory / "s.tbp");
    system.installDirectory = directory.path();
    system.genericOptionsFileName = "$(StudioDir)/bin/warnings.xml";
    PropertyClass *warnings = system.property("build_treat_warnings_as_errors");
    for (const char *configuration : {"None", "Missing", "Broken"}) {
        system.loadGenericOptions(system.file("a.c"), "Debug");
        ASSERT_NE(system.activeGenericOptions(), nullptr);
        EXPECT_EQ(warnings->defaultValue(), "Yes");
        system.loadGenericOptions(system.node("Named"), configuration);
        EXPECT_EQ(system.activeGenericOptions(), nullptr) << configuration;
        EXPECT_EQ(system.propertyClasses.propertyClass("gen_warn"), nullptr) << configuration;
        EXPECT_EQ(warnings->defaultValue(), "No") << configuration;
    }
    system.genericOptionsFileName.clear();
    system.loadGenericOptions(system.file("a.c"), "Debug");
    EXPECT_EQ(system.activeGenericOptions(), nullptr);
    // The listing of a node reads the options first.
    system.genericOptionsFileName = "$(StudioDir)/bin/warnings.xml";
    system.toolPropertyValues(system.file("a.c"), "Debug");
    EXPECT_NE(system.activeGenericOptions(), nullptr);
}

} // namespace
