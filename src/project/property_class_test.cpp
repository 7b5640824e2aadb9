#include "project/macro_property_class.h"
#include "project/project_property_class.h"
#include "project/property_class_map.h"
#include "project/standard_property_table.h"
#include "project/xml/xml_document.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

// Reads the root element of text as a property definition.
PropertyClass definition(const std::string &text) {
    XMLDocument document;
    EXPECT_TRUE(document.parse(text)) << document.errorText;
    return PropertyClass::readDefinition(*document.root);
}

PropertyClass make(const std::string &name) {
    return PropertyClass(name, PropertyClass::String, "", "", "", "", std::nullopt);
}

TEST(PropertyClass, TypeWordsGroupsAndConstructionForms) {
    const std::pair<int, const char *> words[] = {{0, "Boolean"}, {7, "StringList"}, {15, "JavaScript"},
                                                  {16, "CommandLine"}, {17, "COMPort"}, {18, "Unknown"},
                                                  {-1, "Unknown"}};
    for (const auto &[type, word] : words)
        EXPECT_EQ(PropertyClass::typeWord(type), word) << type;
    // A group is cut before a later word "Options" or "Settings"; a few
    // pages are renamed.
    PropertyClass property = make("p");
    property.setPage("Linker");
    property.setGroup("Build Options");
    EXPECT_EQ(std::string(property.page()) + "|" + std::string(property.group()), "Code|Build");
    // The earlier of the two words wins; a word that only begins with one
    // of them cuts too, and a group without either stays whole.
    const std::pair<std::string_view, std::string_view> groups[] = {
        {"A Settings B Options", "A"}, {"A Options Settings", "A"}, {"Debug Optionsx", "Debug"},
        {"Options", "Options"},        {" Settings", ""},           {"Opt ions", "Opt ions"},
        {"Code Generation", "Code Generation"}};
    for (const auto &[group, cut] : groups)
        EXPECT_EQ(PropertyClass::normalisedGroup(group), cut) << group;

    // Numbers: hexadecimal for IntegerHex only.
    EXPECT_EQ(PropertyClass("f", PropertyClass::IntegerHex, 0, 255, "", "", "", "", 0xab, "", 2).defaultValue(),
              "0xAB");
    EXPECT_EQ(PropertyClass("n", PropertyClass::IntegerRange, -5, 5, "", "", "", "", -3, "", 0).defaultValue(), "-3");
    PropertyClass split("e", PropertyClass::Enumeration, {"Yes~~Enabled", "No~~Disabled"}, "kB", "C/C++",
                        "Code Generation Options", "E", "help", "Yes", 1, 2);
    EXPECT_EQ(split.displayValues(), (Strings{"Enabled", "Disabled"}));
    EXPECT_EQ(split.suffix() + "|" + std::to_string(split.flags()), "kB|2");
    // A later item without "~~" gets an empty display text; an item is
    // split at its first "~~".
    PropertyClass mixed("e", PropertyClass::Enumeration, {"a~~A", "b", "c~~C~~D"}, "", "", "", "", "", std::nullopt, 0,
                        0);
    EXPECT_EQ(mixed.values(), (Strings{"a", "b", "c"}));
    EXPECT_EQ(mixed.displayValues(), (Strings{"A", "", "C~~D"}));
    // Search text: title, help and values, lower-cased.
    PropertyClass e("e", PropertyClass::Enumeration, {"Fast", "Small"}, "", "", "", "Opt Level", "Choose <B>one</B>",
                    std::nullopt, 0, 0);
    EXPECT_EQ(e.searchText(), "opt level choose <b>one</b> fast small");
    EXPECT_EQ(PropertyClass("b", "", "", "Flag", "Help", false).searchText(), "flag help");
}

TEST(PropertyClass, ReadDefinition) {
    PropertyClass p = definition(
        R"(<property name="stack" type="IntegerRange" group="Runtime Memory Settings" short="Stack"
             long="Bytes of &lt;b&gt;stack&lt;/b&gt;" default="1024" minimum="16" maximum="65536"
             singlestep="8" specialvalue="Auto" order="0x10" page="Linker"/>)");
    // The page is the caller's to set.
    EXPECT_EQ(p.name() + "|" + std::string(p.group()) + "|" + std::string(p.shortText()) + "|" + p.longText() + "|" +
                  std::string(p.page()),
              "stack|Runtime Memory|Stack|Bytes of <b>stack</b>|");
    EXPECT_EQ(p.defaultValue(), "1024");
    EXPECT_EQ((std::vector<int>{p.minimum(), p.maximum(), p.singleStep(), p.order()}),
              (std::vector<int>{16, 65536, 8, 16}));
    EXPECT_EQ(p.specialValue(), "Auto");
    // An unknown type word is a Boolean; junk numbers are zero.
    PropertyClass unknown = definition(R"(<property name="x" type="Number" default="7" minimum="x" order="junk"/>)");
    EXPECT_EQ(unknown.choices(), (Strings{"No", "Yes"}));
    EXPECT_EQ(unknown.defaultValue(), "7");
    EXPECT_EQ((std::vector<int>{unknown.minimum(), unknown.order()}), (std::vector<int>{0, 0}));
    // Enumerations drop empty items and keep a null default.
    PropertyClass e =
        definition(R"(<property name="e" type="Enumeration" enumeration="Yes~~Enabled;;No~~Disabled;"/>)");
    EXPECT_EQ(e.choices(), (Strings{"Yes", "No"}));
    EXPECT_EQ(e.displayValues(), (Strings{"Enabled", "Disabled"}));
    EXPECT_FALSE(e.defaultValue().has_value());
}

TEST(PropertyClass, Subclasses) {
    MacroPropertyClass system("StudioDir", true, "The installation directory.");
    EXPECT_EQ(system.name() + "|" + system.macroName() + "|" + std::string(system.page()) + "|" +
                  std::string(system.group()),
              "$(StudioDir)|StudioDir|Properties|System Macro Values");
    EXPECT_EQ(MacroPropertyClass("OutDir", false, "").group(), "(Build Macro Values)");

    ProjectPropertyClass rtti("cpp_enable_rtti", PropertyClass::Enumeration, {"Yes", "No", "None"}, "", "", "", "",
                              "", "None", 0, 0);
    rtti.addOption("-frtti", "Yes");
    rtti.addOption("-fno-rtti", "No");
    EXPECT_EQ(rtti.options().begin()->first, "-fno-rtti");
    EXPECT_EQ(rtti.optionFor("Yes"), "-frtti");
    EXPECT_EQ(rtti.optionFor("None"), "");
}

TEST(PropertyClassMap, SameNameRulesLookUpAndToolLists) {
    PropertyClassMap map;
    Strings reports;
    map.setMultipleDefinitionReport([&](const std::string &title, const Strings &list) {
        reports.push_back(title + ": " + list.at(0));
    });
    PropertyClass first = make("x"), second = make("x"), upper = make("Name"), a = make("a_name");
    EXPECT_EQ(map.addPropertyClass(&first), nullptr);
    // The same object again: nothing happens; another of the name replaces
    // it, with a report.
    EXPECT_EQ(map.addPropertyClass(&first), nullptr);
    EXPECT_EQ(map.addPropertyClass(&second), &first);
    EXPECT_EQ(reports, Strings{"PropertyClass Multiple Definition: x"});
    // Removing takes out only the object named, and may put back the one
    // it replaced.
    map.removePropertyClass(&first);
    EXPECT_EQ(map.propertyClass("x"), &second);
    map.removePropertyClass(&second, &first);
    EXPECT_EQ(map.propertyClass("x"), &first);
    // An entry goes by the name of the class it holds, so a class that was
    // replaced may go (the sanitizer build sees a name that went with it).
    auto replaced = std::make_unique<PropertyClass>(make("a long name beyond the short string"));
    PropertyClass replacing = make("a long name beyond the short string");
    map.addPropertyClass(replaced.get());
    map.addPropertyClass(&replacing);
    replaced.reset();
    EXPECT_EQ(map.propertyClass("a long name beyond the short string"), &replacing);
    map.removePropertyClass(&replacing);
    // Look-up is exact; iteration is in name order.
    map.addPropertyClass(&upper);
    map.addPropertyClass(&a);
    EXPECT_EQ(map.propertyClass("name"), nullptr);
    Strings order;
    for (const PropertyClass *property : map.inNameOrder())
        order.push_back(property->name());
    EXPECT_EQ(order, (Strings{"Name", "a_name", "x"}));
    // Tool lists don't register a class by name.
    PropertyClassMap tools;
    tools.addToolProperty(&upper, 2);
    tools.addToolProperty(&a, 2);
    tools.addToolProperty(&a, 7);
    EXPECT_EQ(tools.propertyClass("Name"), nullptr);
    tools.removeToolProperty(&a, 2);
    tools.removeToolProperty(&first, 2);
    tools.removeToolProperty(&a, 9);
    EXPECT_EQ(tools.toolProperties(2), (std::vector<PropertyClass *>{&upper}));
    EXPECT_EQ(tools.toolProperties(7), (std::vector<PropertyClass *>{&a}));
    EXPECT_TRUE(tools.toolProperties(3).empty());
}

// Enough names to fill the table past its first size, taken out in an order
// that leaves holes inside runs of probes: every name left is still found.
TEST(PropertyClassMap, ManyNamesSurviveGrowthAndRemoval) {
    PropertyClassMap map;
    std::vector<PropertyClass> classes;
    for (int i = 0; i < 3000; ++i)
        classes.push_back(make("property_" + std::to_string(i)));
    for (PropertyClass &property : classes)
        EXPECT_EQ(map.addPropertyClass(&property), nullptr);
    EXPECT_EQ(map.size(), 3000u);
    for (std::size_t i = 0; i < classes.size(); i += 3)
        map.removePropertyClass(&classes[i]);
    for (std::size_t i = 1; i < classes.size(); i += 7)
        map.removePropertyClass(&classes[i]);
    std::size_t left = 0;
    for (std::size_t i = 0; i < classes.size(); ++i) {
        const bool removed = i % 3 == 0 || i % 7 == 1;
        left += !removed;
        EXPECT_EQ(map.propertyClass(classes[i].name()), removed ? nullptr : &classes[i]) << i;
    }
    EXPECT_EQ(map.size(), left);
    EXPECT_EQ(map.inNameOrder().size(), left);
    EXPECT_EQ(map.propertyClass("property_3000"), nullptr);
}

// The toolchain gives the lists of project and file types.
TEST(StandardPropertyTable, ToolchainListsReplaceTheTypes) {
    PropertyClassMap map;
    NodeProperties node{map};
    EXPECT_EQ(node.projectType->longText(),
              "The type of the project: Executable, Library, Object file, Staging, Combining, Externally Built "
              "Executable, Externally Built Library, Externally Built Object file.");
    node.setProjectTypes({"Executable", "Library"});
    EXPECT_EQ(node.projectType->values(), (Strings{"Executable", "Library"}));
    EXPECT_EQ(node.projectType->longText(), "The type of the project: Executable, Library.");
    node.setFileTypes({"C", "C++", "Assembly"});
    EXPECT_EQ(node.fileType->choices(), (Strings{"Default", "C", "C++", "Assembly"}));
}

} // namespace
