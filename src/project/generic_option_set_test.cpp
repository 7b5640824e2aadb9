#include "project/generic_option_set.h"
#include "project/property_class_map.h"
#include "project/xml/xml_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

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

std::vector<std::string> names(const std::vector<GenericPropertyClass *> &list)
{
    std::vector<std::string> result;
    for (const PropertyClass *property : list)
        result.push_back(property->name());
    return result;
}

std::vector<std::string> names(const std::vector<PropertyClass *> &list)
{
    std::vector<std::string> result;
    for (const PropertyClass *property : list)
        result.push_back(property->name());
    return result;
}

using Strings = std::vector<std::string>;

TEST(GenericOptionSet, SortsPropertiesByTool)
{
    Sample sample;
    const GenericOptionSet &set = *sample.set;
    ASSERT_EQ(set.properties().size(), 5u);
    EXPECT_EQ(names(set.toolProperties(GenericOptionSet::Compiler)), Strings{"gen_warn_all"});
    EXPECT_EQ(names(set.toolProperties(GenericOptionSet::CCompiler)), Strings{"gen_shadow"});
    EXPECT_EQ(names(set.toolProperties(GenericOptionSet::CppCompiler)), Strings{"gen_shadow"});
    EXPECT_EQ(names(set.toolProperties(GenericOptionSet::Assembler)), Strings{"gen_asm_listing"});
    EXPECT_EQ(names(set.toolProperties(GenericOptionSet::Linker)), Strings{"gen_link_gc"});

    // Pages follow the tool words, then normalise.
    EXPECT_EQ(set.properties()[0]->page(), "Code");
    EXPECT_EQ(set.properties()[2]->page(), "Assembler");
    EXPECT_EQ(set.properties()[3]->page(), "Code");
    EXPECT_EQ(set.properties()[4]->page(), "");
    EXPECT_EQ(set.properties()[1]->shortText(), "Shadow [gcc]");
    EXPECT_EQ(set.properties()[1]->options(),
              (GenericPropertyClass::OptionList{{"shadow", "-W;shadow"},
                                                {"shadow=local", "-W;shadow=local"}}));
}

TEST(GenericOptionSet, KeepsOverridesAndMovesGroupsOutOfTheDocument)
{
    Sample sample;
    const GenericOptionSet &set = *sample.set;
    ASSERT_EQ(set.defaultOverrides().size(), 3u);
    EXPECT_EQ(set.defaultOverrides()[0].name, "build_quietly");
    EXPECT_EQ(set.defaultOverrides()[0].value, "No");
    EXPECT_EQ(set.defaultOverrides()[1].name, "no_such_property");
    EXPECT_EQ(set.defaultOverrides()[2].name, "gen_group");
    EXPECT_EQ(set.defaultOverrides()[2].value, "Second");

    ASSERT_EQ(set.groupElements().size(), 2u);
    EXPECT_EQ(*set.groupElements()[0]->attribute("name"), "gen_group");
    EXPECT_EQ(set.groupElements()[0]->parent, nullptr);
    ASSERT_NE(set.groupElements()[0]->firstChild, nullptr);

    std::vector<std::string> left;
    for (XMLNode *child = sample.document.root->firstChild; child; child = child->nextSibling)
        left.push_back(child->toElement()->tagName);
    EXPECT_EQ(left, (Strings{"property", "property", "property", "property", "property",
                             "property", "property", "comment-like"}));
    EXPECT_EQ(sample.document.root->lastChild->toElement()->tagName, "comment-like");
}

TEST(GenericOptionSet, ActivationRegistersAndDeactivationRestores)
{
    Sample sample;
    GenericOptionSet &set = *sample.set;
    PropertyClassMap map;
    PropertyClass quietly("build_quietly", "General", "Build Options", "Quietly", "", true);
    PropertyClass standardGc("gen_link_gc", "Linker", "", "", "", false);
    map.addPropertyClass(&quietly);
    map.addPropertyClass(&standardGc);
    map.addToolProperty(&quietly, 2);

    set.activate(map);
    EXPECT_TRUE(set.isActive());
    EXPECT_EQ(map.propertyClass("gen_warn_all"), set.properties()[0].get());
    EXPECT_EQ(map.propertyClass("gen_orphan"), set.properties()[4].get());
    EXPECT_EQ(map.propertyClass("gen_link_gc"), set.properties()[3].get());
    EXPECT_EQ(names(map.toolProperties(2)), (Strings{"build_quietly", "gen_warn_all", "gen_shadow"}));
    EXPECT_EQ(names(map.toolProperties(3)), (Strings{"gen_warn_all", "gen_shadow"}));
    EXPECT_EQ(names(map.toolProperties(4)), Strings{"gen_asm_listing"});
    EXPECT_EQ(names(map.toolProperties(7)), Strings{"gen_link_gc"});
    EXPECT_EQ(quietly.defaultValue(), "No");

    // A second activation changes nothing.
    set.activate(map);
    EXPECT_EQ(map.toolProperties(3).size(), 2u);

    set.deactivate(map);
    EXPECT_FALSE(set.isActive());
    EXPECT_EQ(quietly.defaultValue(), "Yes");
    EXPECT_EQ(map.propertyClass("gen_warn_all"), nullptr);
    EXPECT_EQ(map.propertyClass("gen_link_gc"), &standardGc);
    EXPECT_EQ(names(map.toolProperties(2)), Strings{"build_quietly"});
    EXPECT_TRUE(map.toolProperties(7).empty());
    EXPECT_EQ(map.size(), 2u);
}

TEST(GenericOptionSet, GroupsBecomePropertyGroupsWhileActive)
{
    Sample sample;
    PropertyClassMap map;
    PropertyClass earlier("gen_group", PropertyClass::String, "", "", "", "", "earlier");
    map.addPropertyClass(&earlier);
    const auto &groups = sample.set->groupClasses();
    ASSERT_EQ(groups.size(), 2u);
    EXPECT_EQ(groups[0]->groupElement(), sample.set->groupElements()[0].get());
    EXPECT_FALSE(groups[0]->fromLibrary());
    EXPECT_EQ(groups[0]->values(), Strings{"First"});

    // The group takes the name, and its own default override holds.
    sample.set->activate(map);
    EXPECT_EQ(map.propertyClass("gen_group"), groups[0].get());
    EXPECT_EQ(map.propertyClass("gen_group_without_default"), groups[1].get());
    EXPECT_EQ(groups[0]->defaultValue(), "Second");
    sample.set->deactivate(map);
    EXPECT_EQ(map.propertyClass("gen_group"), &earlier);
    EXPECT_EQ(map.propertyClass("gen_group_without_default"), nullptr);
    EXPECT_EQ(earlier.defaultValue(), "earlier");
    EXPECT_EQ(groups[0]->defaultValue(), "Second");
}

TEST(GenericOptionSet, EmptyRoot)
{
    XMLDocument document;
    ASSERT_TRUE(document.parse("<options/>"));
    GenericOptionSet set(*document.root);
    PropertyClassMap map;
    set.activate(map);
    EXPECT_EQ(map.size(), 0u);
    EXPECT_TRUE(set.properties().empty());
}

} // namespace
