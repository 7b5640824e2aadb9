#include "project/property_table_maker.h"

void PropertyTableMaker::section(PropertyText page, PropertyText group)
{
    page_ = std::move(page);
    group_ = std::move(group);
}

PropertyClass *PropertyTableMaker::boolean(std::string name, PropertyText shortText,
                                           PropertyText longText, bool defaultValue)
{
    return keep(std::make_unique<PropertyClass>(std::move(name), page_, group_,
                                                std::move(shortText), std::move(longText),
                                                defaultValue));
}

PropertyClass *PropertyTableMaker::number(std::string name, PropertyClass::Type type,
                                          std::int32_t minimum, std::int32_t maximum,
                                          PropertyText shortText, PropertyText longText,
                                          std::int32_t defaultValue)
{
    return keep(std::make_unique<PropertyClass>(std::move(name), type, minimum, maximum, page_,
                                                group_, std::move(shortText),
                                                std::move(longText), defaultValue,
                                                std::string(), 0));
}

MacroPropertyClass *PropertyTableMaker::buildMacro(std::string macroName, PropertyText description)
{
    return keep(std::make_unique<MacroPropertyClass>(std::move(macroName), false,
                                                     std::move(description)));
}

void PropertyTableMaker::appendBuildMacros(std::vector<MacroPropertyClass *> &list,
                                           std::initializer_list<MacroRow> rows)
{
    for (const MacroRow &row : rows)
        list.push_back(buildMacro(row.name, row.description));
}

void PropertyTableMaker::tools(PropertyClass *property, std::initializer_list<int> steps)
{
    for (int step : steps)
        map_.addToolProperty(property, step);
}
