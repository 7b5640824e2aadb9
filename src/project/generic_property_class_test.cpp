#include "project/generic_property_class.h"
#include "project/xml/xml_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Options = GenericPropertyClass::OptionList;
using Strings = std::vector<std::string>;

GenericPropertyClass generic(const std::string &text)
{
    XMLDocument document;
    EXPECT_TRUE(document.parse(text)) << document.errorText;
    return GenericPropertyClass(*document.root);
}

TEST(GenericPropertyClass, EnumerationTakesOptionsFromBrackets)
{
    GenericPropertyClass p = generic(
        R"(<property name="opt" type="Enumeration" short="Optimization"
             enumeration="None;Speed (O2);Size (Os);Odd (unclosed"/>)");
    EXPECT_EQ(p.options(), (Options{{"None", ""}, {"Speed (O2)", "-O2"}, {"Size (Os)", "-Os"},
                                    {"Odd (unclosed", ""}}));
    EXPECT_EQ(p.choices(), (Strings{"None", "Speed (O2)", "Size (Os)", "Odd (unclosed"}));
}

TEST(GenericPropertyClass, EnumerationWithDisplayTextsUsesTheStoredValues)
{
    GenericPropertyClass p = generic(
        R"(<property name="w" type="Enumeration" enumeration="Yes (Wall)~~On;No~~Off"/>)");
    EXPECT_EQ(p.options(), (Options{{"Yes (Wall)", "-Wall"}, {"No", ""}}));
}

TEST(GenericPropertyClass, ValuesWithOptionPrefix)
{
    GenericPropertyClass p = generic(
        R"(<property name="std" type="Enumeration" option="-std" values="  c99 ; gnu  11;;c17"/>)");
    EXPECT_EQ(p.options(), (Options{{"c99", "-std;c99"}, {"gnu 11", "-std;gnu 11"},
                                    {"c17", "-std;c17"}}));
}

TEST(GenericPropertyClass, ValuesWithOnlyOption2StartWithNone)
{
    GenericPropertyClass p = generic(
        R"(<property name="arch" type="Enumeration" option2="-march=" values="armv7;armv8"/>)");
    EXPECT_EQ(p.options(), (Options{{"None", ""}, {"armv7", "-march=armv7"},
                                    {"armv8", "-march=armv8"}}));
    EXPECT_EQ(p.choices(), (Strings{"None", "armv7", "armv8"}));
}

TEST(GenericPropertyClass, ChildElementsAddOptionPairs)
{
    GenericPropertyClass p = generic(R"(<property name="fpu" type="Enumeration">
          <entry value="Soft" option="-mfloat-abi=soft"/>
          <entry value="Hard" value2="hard" option="-mfloat-abi=hard"/>
          <entry value="Missing option"/>
          <entry option="-missing-value"/>
        </property>)");
    EXPECT_EQ(p.options(), (Options{{"Soft", "-mfloat-abi=soft"}, {"Hard", "-mfloat-abi=hard"}}));
    EXPECT_EQ(p.options2(), (Options{{"hard", "-mfloat-abi=hard"}}));
}

TEST(GenericPropertyClass, VariantOrderAndAppend)
{
    GenericPropertyClass p = generic(
        R"(<property name="t" short="Title" variant="arm" order="0x10" append="-x" group="Warning Options"/>)");
    EXPECT_EQ(p.shortText(), "Title [arm]");
    EXPECT_EQ(p.variant(), "arm");
    // Decimal here, unlike a plain definition.
    EXPECT_EQ(p.order(), 0);
    EXPECT_EQ(p.appendText(), "-x");
    EXPECT_EQ(p.group(), "Warning");
    EXPECT_EQ(p.optionName(), "");

    GenericPropertyClass named = generic(R"(<property name="t" type="StringList" option="Wno-"/>)");
    EXPECT_EQ(named.optionName(), "Wno-");
    EXPECT_TRUE(named.options().empty());

    GenericPropertyClass ordered = generic(R"(<property name="t" order="12"/>)");
    EXPECT_EQ(ordered.order(), 12);
    EXPECT_EQ(ordered.shortText(), "");
    EXPECT_TRUE(ordered.choices().empty());
}

} // namespace
