#include "project/property_class_map.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

PropertyClass make(const std::string &name)
{
    return PropertyClass(name, PropertyClass::String, "", "", "", "", std::nullopt);
}

struct Reports {
    std::vector<std::string> titles;
    std::vector<std::vector<std::string>> lists;
};

TEST(PropertyClassMap, SameNameRules)
{
    PropertyClassMap map;
    Reports reports;
    map.setMultipleDefinitionReport(
        [&](const std::string &title, const std::vector<std::string> &list) {
            reports.titles.push_back(title);
            reports.lists.push_back(list);
        });
    PropertyClass first = make("alpha");
    PropertyClass second = make("alpha");

    EXPECT_EQ(map.addPropertyClass(&first), nullptr);
    EXPECT_EQ(map.propertyClass("alpha"), &first);

    // The same object again: nothing happens.
    EXPECT_EQ(map.addPropertyClass(&first), nullptr);
    EXPECT_TRUE(reports.titles.empty());

    // Another object of the name replaces it, with a report.
    EXPECT_EQ(map.addPropertyClass(&second), &first);
    EXPECT_EQ(map.propertyClass("alpha"), &second);
    ASSERT_EQ(reports.titles.size(), 1u);
    EXPECT_EQ(reports.titles[0], "PropertyClass Multiple Definition");
    EXPECT_EQ(reports.lists[0], std::vector<std::string>{"alpha"});
    EXPECT_EQ(map.size(), 1u);
}

TEST(PropertyClassMap, ReplacementWithoutObserverIsSilent)
{
    PropertyClassMap map;
    PropertyClass first = make("x");
    PropertyClass second = make("x");
    map.addPropertyClass(&first);
    map.addPropertyClass(&second);
    EXPECT_EQ(map.propertyClass("x"), &second);
}

TEST(PropertyClassMap, LookUpIsExactAndIterationIsInNameOrder)
{
    PropertyClassMap map;
    PropertyClass b = make("b_name"), upper = make("Name"), a = make("a_name");
    for (PropertyClass *p : {&b, &upper, &a})
        map.addPropertyClass(p);
    EXPECT_EQ(map.propertyClass("name"), nullptr);
    EXPECT_EQ(map.propertyClass("Name"), &upper);
    EXPECT_EQ(map.propertyClass(""), nullptr);
    std::vector<std::string> order;
    for (const auto &[name, property] : map)
        order.push_back(property->name());
    EXPECT_EQ(order, (std::vector<std::string>{"Name", "a_name", "b_name"}));
}

TEST(PropertyClassMap, RemoveOnlyTakesOutTheObjectItNames)
{
    PropertyClassMap map;
    PropertyClass first = make("x"), second = make("x");
    map.addPropertyClass(&first);
    PropertyClass *replaced = map.addPropertyClass(&second);
    map.removePropertyClass(&first);
    EXPECT_EQ(map.propertyClass("x"), &second);
    map.removePropertyClass(&second, replaced);
    EXPECT_EQ(map.propertyClass("x"), &first);
    map.removePropertyClass(&first);
    EXPECT_EQ(map.propertyClass("x"), nullptr);
}

TEST(PropertyClassMap, ToolListsPerStep)
{
    PropertyClassMap map;
    PropertyClass c = make("c"), link = make("link"), both = make("both");
    map.addToolProperty(&c, 2);
    map.addToolProperty(&both, 2);
    map.addToolProperty(&both, 7);
    map.addToolProperty(&link, 7);
    EXPECT_EQ(map.toolProperties(2), (std::vector<PropertyClass *>{&c, &both}));
    EXPECT_EQ(map.toolProperties(7), (std::vector<PropertyClass *>{&both, &link}));
    EXPECT_TRUE(map.toolProperties(3).empty());
    // Tool lists don't register a class by name.
    EXPECT_EQ(map.propertyClass("c"), nullptr);

    map.removeToolProperty(&both, 2);
    map.removeToolProperty(&link, 2);
    map.removeToolProperty(&c, 9);
    EXPECT_EQ(map.toolProperties(2), (std::vector<PropertyClass *>{&c}));
    EXPECT_EQ(map.toolProperties(7).size(), 2u);
}

} // namespace
