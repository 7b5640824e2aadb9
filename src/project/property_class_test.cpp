#include "project/build_output_file_name_property_class.h"
#include "project/filter_property_class.h"
#include "project/macro_property_class.h"
#include "project/project_property_class.h"
#include "project/property_class.h"
#include "project/xml/xml_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

// Reads the root element of text as a property definition.
PropertyClass definition(const std::string &text)
{
    XMLDocument document;
    EXPECT_TRUE(document.parse(text)) << document.errorText;
    return PropertyClass::readDefinition(*document.root);
}

TEST(PropertyClassTypes, WordsAndNumbers)
{
    EXPECT_EQ(PropertyClass::typeWord(0), "Boolean");
    EXPECT_EQ(PropertyClass::typeWord(7), "StringList");
    EXPECT_EQ(PropertyClass::typeWord(15), "JavaScript");
    EXPECT_EQ(PropertyClass::typeWord(16), "CommandLine");
    EXPECT_EQ(PropertyClass::typeWord(17), "COMPort");
    EXPECT_EQ(PropertyClass::typeWord(18), "Unknown");
    EXPECT_EQ(PropertyClass::typeWord(-1), "Unknown");

    EXPECT_EQ(PropertyClass::definitionType("IntegerHex"), PropertyClass::IntegerHex);
    EXPECT_EQ(PropertyClass::definitionType("JavaScript"), PropertyClass::JavaScript);
    // The definition reader stops at "JavaScript" and compares exactly.
    EXPECT_EQ(PropertyClass::definitionType("CommandLine"), std::nullopt);
    EXPECT_EQ(PropertyClass::definitionType("COMPort"), std::nullopt);
    EXPECT_EQ(PropertyClass::definitionType("string"), std::nullopt);
}

TEST(PropertyClassConstruction, BooleanWithoutDefaultOffersNoThenYesAndDefaultsToNo)
{
    PropertyClass text("flag", PropertyClass::Boolean, "General", "Build Options", "Flag", "help",
                       std::nullopt);
    EXPECT_EQ(text.defaultValue(), "No");
    EXPECT_EQ(text.choices(), (Strings{"No", "Yes"}));

    PropertyClass fromXml = definition(R"(<property name="b" short="B"/>)");
    EXPECT_EQ(fromXml.type(), PropertyClass::Boolean);
    EXPECT_EQ(fromXml.defaultValue(), "No");
    EXPECT_EQ(fromXml.choices(), (Strings{"No", "Yes"}));
}

TEST(PropertyClassConstruction, NullDefaultOfOtherTypesStaysNull)
{
    PropertyClass text("s", PropertyClass::String, "", "", "", "", std::nullopt);
    EXPECT_FALSE(text.defaultValue().has_value());
    PropertyClass empty("s", PropertyClass::String, "", "", "", "", "");
    EXPECT_EQ(empty.defaultValue(), "");
    EXPECT_TRUE(empty.choices().empty());
}

TEST(PropertyClassConstruction, BooleanFormStoresYesOrNo)
{
    PropertyClass yes("a", "Debugging", "Debugger Options", "A", "help", true, 3);
    EXPECT_EQ(yes.type(), PropertyClass::Boolean);
    EXPECT_EQ(yes.defaultValue(), "Yes");
    EXPECT_EQ(yes.order(), 3);
    EXPECT_EQ(yes.page(), "Debug");
    EXPECT_EQ(yes.group(), "Debugger");
    PropertyClass no("a", "", "", "", "", false);
    EXPECT_EQ(no.defaultValue(), "No");
}

TEST(PropertyClassConstruction, NumberFormWritesHexForIntegerHexOnly)
{
    PropertyClass hex("fill", PropertyClass::IntegerHex, 0, 255, "Linker", "Linker Options",
                      "Fill", "help", 0xab, "special", 2);
    EXPECT_EQ(hex.defaultValue(), "0xAB");
    EXPECT_EQ(hex.minimum(), 0);
    EXPECT_EQ(hex.maximum(), 255);
    EXPECT_EQ(hex.singleStep(), 1);
    EXPECT_EQ(hex.specialValue(), "special");
    EXPECT_EQ(hex.page(), "Code");
    EXPECT_EQ(hex.group(), "Linker");

    PropertyClass decimal("n", PropertyClass::IntegerRange, -5, 5, "", "", "", "", -3, "", 0);
    EXPECT_EQ(decimal.defaultValue(), "-3");
}

TEST(PropertyClassConstruction, EnumerationFormReadsDisplayTexts)
{
    PropertyClass split("e", PropertyClass::Enumeration, {"Yes~~Enabled", "No~~Disabled"}, "kB",
                        "C/C++", "Code Generation Options", "E", "help", "Yes", 1, 2);
    EXPECT_EQ(split.values(), (Strings{"Yes", "No"}));
    EXPECT_EQ(split.displayValues(), (Strings{"Enabled", "Disabled"}));
    EXPECT_EQ(split.choices(), (Strings{"Yes", "No"}));
    EXPECT_EQ(split.suffix(), "kB");
    EXPECT_EQ(split.flags(), 2u);

    // A later item without "~~" gets an empty display text.
    PropertyClass mixed("e", PropertyClass::Enumeration, {"a~~A", "b", "c~~C~~D"}, "", "", "", "",
                        "", std::nullopt, 0, 0);
    EXPECT_EQ(mixed.values(), (Strings{"a", "b", "c"}));
    EXPECT_EQ(mixed.displayValues(), (Strings{"A", "", "C~~D"}));

    // Only the first item decides whether the list is split.
    PropertyClass plain("e", PropertyClass::Enumeration, {"a", "b~~B"}, "", "", "", "", "",
                        std::nullopt, 0, 0);
    EXPECT_EQ(plain.values(), (Strings{"a", "b~~B"}));
    EXPECT_TRUE(plain.displayValues().empty());
}

TEST(PropertyClassNormalisation, GroupIsCutAtOptionsOrSettings)
{
    EXPECT_EQ(PropertyClass::normalisedGroup("Build Options"), "Build");
    EXPECT_EQ(PropertyClass::normalisedGroup("Section Options Extra"), "Section");
    EXPECT_EQ(PropertyClass::normalisedGroup("Debugger Settings"), "Debugger");
    EXPECT_EQ(PropertyClass::normalisedGroup("A Settings B Options"), "A");
    EXPECT_EQ(PropertyClass::normalisedGroup("Options"), "Options");
    EXPECT_EQ(PropertyClass::normalisedGroup("BuildOptions"), "BuildOptions");
    EXPECT_EQ(PropertyClass::normalisedGroup("(Information)"), "(Information)");
}

TEST(PropertyClassNormalisation, PagesAreRenamed)
{
    EXPECT_EQ(PropertyClass::normalisedPage("General"), "Code");
    EXPECT_EQ(PropertyClass::normalisedPage("C/C++"), "Code");
    EXPECT_EQ(PropertyClass::normalisedPage("Linker"), "Code");
    EXPECT_EQ(PropertyClass::normalisedPage("Debugging"), "Debug");
    EXPECT_EQ(PropertyClass::normalisedPage("Properties"), "Properties");
    EXPECT_EQ(PropertyClass::normalisedPage("general"), "general");

    PropertyClass property("p", PropertyClass::String, "", "", "", "", std::nullopt);
    property.setPage("Linker");
    property.setGroup("Build Options");
    EXPECT_EQ(property.page(), "Code");
    EXPECT_EQ(property.group(), "Build");
}

TEST(PropertyClassDefinition, ReadsEveryAttribute)
{
    PropertyClass p = definition(
        R"(<property name="stack" type="IntegerRange" group="Runtime Memory Settings" short="Stack"
             long="Bytes of &lt;b&gt;stack&lt;/b&gt;" default="1024" minimum="16" maximum="65536"
             singlestep="8" specialvalue="Auto" order="0x10" page="Linker"/>)");
    EXPECT_EQ(p.name(), "stack");
    EXPECT_EQ(p.type(), PropertyClass::IntegerRange);
    EXPECT_EQ(p.group(), "Runtime Memory");
    EXPECT_EQ(p.shortText(), "Stack");
    EXPECT_EQ(p.longText(), "Bytes of <b>stack</b>");
    EXPECT_EQ(p.defaultValue(), "1024");
    EXPECT_EQ(p.minimum(), 16);
    EXPECT_EQ(p.maximum(), 65536);
    EXPECT_EQ(p.singleStep(), 8);
    EXPECT_EQ(p.specialValue(), "Auto");
    EXPECT_EQ(p.order(), 16);
    // The page is the caller's to set.
    EXPECT_EQ(p.page(), "");
}

TEST(PropertyClassDefinition, UnknownTypeWordIsBoolean)
{
    PropertyClass unknown = definition(R"(<property name="x" type="Number" default="7"/>)");
    EXPECT_EQ(unknown.type(), PropertyClass::Boolean);
    EXPECT_EQ(unknown.defaultValue(), "7");
    PropertyClass late = definition(R"(<property name="x" type="CommandLine"/>)");
    EXPECT_EQ(late.type(), PropertyClass::Boolean);
    EXPECT_EQ(late.defaultValue(), "No");
}

TEST(PropertyClassDefinition, EnumerationDropsEmptyItemsAndSplitsDisplayTexts)
{
    PropertyClass p = definition(
        R"(<property name="e" type="Enumeration" enumeration="Yes~~Enabled;;No~~Disabled;"/>)");
    EXPECT_EQ(p.values(), (Strings{"Yes", "No"}));
    EXPECT_EQ(p.displayValues(), (Strings{"Enabled", "Disabled"}));
    // A non-Boolean without a default keeps a null default.
    EXPECT_FALSE(p.defaultValue().has_value());
}

TEST(PropertyClassDefinition, JunkNumbersAreZero)
{
    PropertyClass p = definition(R"(<property name="n" type="Integer" minimum="x" order="junk"/>)");
    EXPECT_EQ(p.minimum(), 0);
    EXPECT_EQ(p.maximum(), 0);
    EXPECT_EQ(p.order(), 0);
    EXPECT_FALSE(p.defaultValue().has_value());
}

TEST(PropertyClassSearch, LowerCasesTitleHelpAndValues)
{
    PropertyClass e("e", PropertyClass::Enumeration, {"Fast", "Small"}, "", "", "", "Opt Level",
                    "Choose <B>one</B>", std::nullopt, 0, 0);
    EXPECT_EQ(e.searchText(), "opt level choose <b>one</b> fast small");
    PropertyClass b("b", "", "", "Flag", "Help", false);
    EXPECT_EQ(b.searchText(), "flag help");
}

TEST(PropertyClassSubclasses, MacroNamesItselfAfterTheMacro)
{
    MacroPropertyClass system("StudioDir", true, "The installation directory.");
    EXPECT_EQ(system.name(), "$(StudioDir)");
    EXPECT_EQ(system.shortText(), "$(StudioDir)");
    EXPECT_EQ(system.macroName(), "StudioDir");
    EXPECT_EQ(system.page(), "Properties");
    EXPECT_EQ(system.group(), "System Macro Values");
    EXPECT_EQ(system.type(), PropertyClass::String);
    EXPECT_EQ(system.longText(), "The installation directory.");
    EXPECT_FALSE(system.defaultValue().has_value());

    MacroPropertyClass build("OutDir", false, "");
    EXPECT_EQ(build.group(), "(Build Macro Values)");
}

TEST(PropertyClassSubclasses, Filter)
{
    FilterPropertyClass filter;
    EXPECT_EQ(filter.name(), "filter");
    EXPECT_EQ(filter.page(), "Code");
    EXPECT_EQ(filter.group(), "Folder");
    EXPECT_EQ(filter.shortText(), "Folder Filter");
    EXPECT_EQ(filter.type(), PropertyClass::String);
    filter.setLongText("Wildcards of the files a dynamic folder takes, separated by ;.");
    EXPECT_EQ(filter.longText(), "Wildcards of the files a dynamic folder takes, separated by ;.");
}

TEST(PropertyClassSubclasses, OutputFileNameFollowsTheMode)
{
    BuildOutputFileNamePropertyClass output;
    EXPECT_EQ(output.name(), "build_output_file_name");
    EXPECT_EQ(output.page(), "Code");
    EXPECT_EQ(output.shortText(), "Executable File Name");

    output.setLibraryMode();
    EXPECT_EQ(output.group(), "Library Options");
    EXPECT_EQ(output.shortText(), "Library File Name");
    EXPECT_EQ(output.longText(), "Specifies a name to override the default library file name.");
    EXPECT_EQ(output.defaultValue(), "$(OutDir)/$(ProjectName)$(LIB)");

    output.setExecutableMode();
    EXPECT_EQ(output.group(), "Build Options");
    EXPECT_EQ(output.shortText(), "Executable File Name");
    EXPECT_EQ(output.longText(), "Specifies a name to override the default executable file name.");
    EXPECT_EQ(output.defaultValue(), "$(OutDir)/$(ProjectName)$(EXE)");
}

TEST(PropertyClassSubclasses, ProjectPropertyClassMapsOptionsToValues)
{
    ProjectPropertyClass p("cpp_enable_rtti", PropertyClass::Enumeration, {"Yes", "No", "None"}, "",
                           "", "", "", "", "None", 0, 0);
    p.addOption("-frtti", "Yes");
    p.addOption("-fno-rtti", "No");
    EXPECT_EQ(p.options().size(), 2u);
    EXPECT_EQ(p.options().begin()->first, "-fno-rtti");
    EXPECT_EQ(p.optionFor("Yes"), "-frtti");
    EXPECT_EQ(p.optionFor("None"), "");
}

} // namespace
