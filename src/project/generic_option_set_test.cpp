#include "project/generic_option_set.h"
#include "project/generic_property_class.h"
#include "project/project_test_tree.h"
#include "project/property_class_map.h"
#include "project/xml/xml_document.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Options = GenericPropertyClass::OptionList;

GenericPropertyClass generic(const std::string &text)
{
    XMLDocument document;
    EXPECT_TRUE(document.parse(text)) << document.errorText;
    return GenericPropertyClass(*document.root);
}

TEST(GenericPropertyClass, OptionsOfEachFormAndTheOtherAttributes)
{
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
    GenericPropertyClass p = generic(
        R"(<property name="t" short="Title" variant="arm" order="0x10" append="-x" group="Warning Options"/>)");
    EXPECT_EQ(p.shortText() + "|" + p.variant() + "|" + p.appendText() + "|" + p.group(), "Title [arm]|arm|-x|Warning");
    EXPECT_EQ(p.order(), 0);
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

struct Sample {
    Sample()
    {
        EXPECT_TRUE(document.parse(sampleFile)) << document.errorText;
        set = std::make_unique<GenericOptionSet>(*document.root);
    }
    XMLDocument document;
    std::unique_ptr<GenericOptionSet> set;
};

TEST(GenericOptionSet, ReadsPropertiesOverridesAndGroups)
{
    Sample sample;
    const GenericOptionSet &set = *sample.set;
    ASSERT_EQ(set.properties().size(), 5u);
    // Each tool's options; pages follow the tool words, then normalise.
    std::string tools, pages;
    for (auto tool : {GenericOptionSet::Compiler, GenericOptionSet::CCompiler, GenericOptionSet::CppCompiler,
                      GenericOptionSet::Assembler, GenericOptionSet::Linker})
        tools += spaced(namesOf(set.toolProperties(tool))) + "|";
    EXPECT_EQ(tools, "gen_warn_all|gen_shadow|gen_shadow|gen_asm_listing|gen_link_gc|");
    for (const auto &property : set.properties())
        pages += property->page() + "|";
    EXPECT_EQ(pages, "Code|Code|Assembler|Code||");
    EXPECT_EQ(set.properties()[1]->shortText(), "Shadow [gcc]");

    std::string overrides;
    for (const auto &entry : set.defaultOverrides())
        overrides += entry.name + "=" + entry.value + " ";
    EXPECT_EQ(overrides, "build_quietly=No no_such_property=x gen_group=Second ");

    // Groups are moved out of the document; the rest stays in order.
    ASSERT_EQ(set.groupElements().size(), 2u);
    EXPECT_EQ(*set.groupElements()[0]->attribute("name"), "gen_group");
    EXPECT_EQ(set.groupElements()[0]->parent, nullptr);
    std::string left;
    for (XMLNode *child = sample.document.root->firstChild; child; child = child->nextSibling)
        left += child->toElement()->tagName + " ";
    EXPECT_EQ(left, "property property property property property property property comment-like ");
    EXPECT_EQ(sample.document.root->lastChild->toElement()->tagName, "comment-like");
}

TEST(GenericOptionSet, ActivationRegistersAndDeactivationRestores)
{
    Sample sample;
    GenericOptionSet &set = *sample.set;
    PropertyClassMap map;
    PropertyClass quietly("build_quietly", "General", "Build Options", "Quietly", "", true);
    PropertyClass standardGc("gen_link_gc", "Linker", "", "", "", false);
    PropertyClass earlier("gen_group", PropertyClass::String, "", "", "", "", "earlier");
    for (PropertyClass *p : {&quietly, &standardGc, &earlier})
        map.addPropertyClass(p);
    map.addToolProperty(&quietly, 2);
    const auto &groups = set.groupClasses();
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0]->groupElement(), set.groupElements()[0].get());
    EXPECT_FALSE(groups[0]->fromLibrary());
    EXPECT_EQ(groups[0]->values(), Strings{"First"});

    set.activate(map);
    EXPECT_TRUE(set.isActive());
    EXPECT_EQ(map.propertyClass("gen_orphan"), set.properties()[4].get());
    EXPECT_EQ(map.propertyClass("gen_link_gc"), set.properties()[3].get());
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
    EXPECT_EQ(map.propertyClass("gen_group_without_default"), groups[1].get());
    EXPECT_EQ(groups[0]->defaultValue(), "Second");
    // A second activation changes nothing.
    set.activate(map);
    EXPECT_EQ(lists(), "build_quietly gen_warn_all gen_shadow|gen_warn_all gen_shadow|gen_asm_listing|gen_link_gc|");

    set.deactivate(map);
    EXPECT_FALSE(set.isActive());
    EXPECT_EQ(quietly.defaultValue(), "Yes");
    EXPECT_EQ(map.propertyClass("gen_warn_all"), nullptr);
    EXPECT_EQ(map.propertyClass("gen_link_gc"), &standardGc);
    EXPECT_EQ(map.propertyClass("gen_group"), &earlier);
    EXPECT_EQ(map.propertyClass("gen_group_without_default"), nullptr);
    EXPECT_EQ(earlier.defaultValue(), "earlier");
    EXPECT_EQ(lists(), "build_quietly||||");
    EXPECT_EQ(map.size(), 3u);

    XMLDocument document;
    ASSERT_TRUE(document.parse("<options/>"));
    GenericOptionSet empty(*document.root);
    empty.activate(map);
    EXPECT_EQ(map.size(), 3u);
}

// The files of a toolchain and of a project.
const char *const warningsFile = R"xml(<options>
  <property tool="compiler" name="gen_warn" short="Warn" type="Enumeration" enumeration="No;Yes (Wall)" default="No"/>
  <property tool="linker" name="gen_gc" short="GC"/><property name="build_treat_warnings_as_errors" default="Yes"/>
</options>)xml";
const char *const otherFile = R"(<options><property tool="assembler" name="gen_asm" short="Listing"/></options>)";

struct GenericOptionFiles : ::testing::Test {
    void SetUp() override {
        directory.write("bin/warnings.xml", warningsFile);
        directory.write("other.xml", otherFile);
        directory.write("broken.xml", "<options><property");
        system.load(R"(<solution Name="S"><project Name="Standard"><file file_name="a.c" /></project>
  <project Name="Own"><configuration Name="Common" build_generic_options_file_name="other.xml" />
    <file file_name="b.c" /></project>
  <project Name="Named">
    <configuration Name="Common" macros="Options=other" build_generic_options_file_name="$(Options).xml" />
    <configuration Name="None" build_generic_options_file_name="" />
    <configuration Name="Missing" build_generic_options_file_name="missing.xml" />
    <configuration Name="Broken" build_generic_options_file_name="$(StudioDir)/broken.xml" />
  </project>
</solution>)", directory / "s.tbp");
        system.installDirectory = directory.path();
        system.genericOptionsFileName = "$(StudioDir)/bin/warnings.xml";
        warnings = system.property("build_treat_warnings_as_errors");
    }
    // Whether the class of that name is in the list of the step.
    bool listed(const std::string &name, int step) {
        const PropertyClass *property = system.propertyClasses.propertyClass(name);
        const auto &list = system.propertyClasses.toolProperties(step);
        return property && std::find(list.begin(), list.end(), property) != list.end();
    }
    TestDirectory directory;
    TestProjectSystem system;
    PropertyClass *warnings = nullptr;
};

TEST_F(GenericOptionFiles, OneSetIsActiveAtATimeAndEachIsReadOnce) {
    // The toolchain's file applies where nothing is set; its new default
    // stands while the set is active.
    system.loadGenericOptions(system.file("a.c"), "Debug");
    GenericOptionSet *standard = system.activeGenericOptions();
    ASSERT_NE(standard, nullptr);
    EXPECT_TRUE(listed("gen_warn", 2) && listed("gen_warn", 3) && listed("gen_gc", 7));
    EXPECT_EQ(system.getPropertyValue(system.file("a.c"), warnings, "Debug"), "Yes");

    // A relative name is taken from the project's directory.
    system.loadGenericOptions(system.file("b.c"), "Debug");
    GenericOptionSet *own = system.activeGenericOptions();
    ASSERT_NE(own, standard);
    EXPECT_EQ(system.propertyClasses.propertyClass("gen_warn"), nullptr);
    EXPECT_EQ(system.getPropertyValue(system.file("b.c"), warnings, "Debug"), "No");
    EXPECT_TRUE(listed("gen_asm", 4));

    // Going back activates the copy read before: a change of the file on
    // disk isn't seen.
    directory.write("bin/warnings.xml", otherFile);
    system.loadGenericOptions(system.node("Standard"), "Release");
    EXPECT_EQ(system.activeGenericOptions(), standard);
    EXPECT_TRUE(listed("gen_warn", 2));
    EXPECT_FALSE(listed("gen_asm", 4));
    // The name with macros expanded is the key: the same file, the same set.
    system.loadGenericOptions(system.node("Named"), "Debug");
    EXPECT_EQ(system.activeGenericOptions(), own);
}

TEST_F(GenericOptionFiles, EmptyMissingOrBrokenFileLeavesNoSetActive) {
    for (const char *configuration : {"None", "Missing", "Broken"}) {
        system.loadGenericOptions(system.file("a.c"), "Debug");
        ASSERT_NE(system.activeGenericOptions(), nullptr);
        system.loadGenericOptions(system.node("Named"), configuration);
        EXPECT_EQ(system.activeGenericOptions(), nullptr) << configuration;
        EXPECT_EQ(system.propertyClasses.propertyClass("gen_warn"), nullptr) << configuration;
        EXPECT_EQ(warnings->defaultValue(), "No") << configuration;
    }
    // Nor does a toolchain without a file of its own.
    system.genericOptionsFileName.clear();
    system.loadGenericOptions(system.file("a.c"), "Debug");
    EXPECT_EQ(system.activeGenericOptions(), nullptr);

    // The listing of a node reads the options first.
    system.genericOptionsFileName = "$(StudioDir)/other.xml";
    system.toolPropertyValues(system.file("a.c"), "Debug");
    ASSERT_NE(system.activeGenericOptions(), nullptr);
    EXPECT_NE(system.propertyClasses.propertyClass("gen_asm"), nullptr);
}

} // namespace
