#include "project/property_table_maker.h"

void PropertyTableMaker::section(std::string page, std::string group)
{
    page_ = std::move(page);
    group_ = std::move(group);
}

PropertyClass *PropertyTableMaker::boolean(std::string name, std::string shortText,
                                           std::string longText, bool defaultValue)
{
    return keep(std::make_unique<PropertyClass>(std::move(name), page_, group_,
                                                std::move(shortText), std::move(longText),
                                                defaultValue));
}

PropertyClass *PropertyTableMaker::number(std::string name, PropertyClass::Type type,
                                          std::int32_t minimum, std::int32_t maximum,
                                          std::string shortText, std::string longText,
                                          std::int32_t defaultValue)
{
    return keep(std::make_unique<PropertyClass>(std::move(name), type, minimum, maximum, page_,
                                                group_, std::move(shortText),
                                                std::move(longText), defaultValue,
                                                std::string(), 0));
}

MacroPropertyClass *PropertyTableMaker::buildMacro(std::string macroName, std::string description)
{
    return keep(std::make_unique<MacroPropertyClass>(std::move(macroName), false,
                                                     std::move(description)));
}

void PropertyTableMaker::tools(PropertyClass *property, std::initializer_list<int> steps)
{
    for (int step : steps)
        map_.addToolProperty(property, step);
}
