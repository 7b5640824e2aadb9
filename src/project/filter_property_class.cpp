#include "project/filter_property_class.h"

FilterPropertyClass::FilterPropertyClass()
    : PropertyClass("filter", String, "General", "Folder Options", "Folder Filter",
                    "A filter used when adding new files to the project.", std::nullopt)
{
    // A folder's filter stands on the folder itself, not per configuration.
    setPerConfiguration(false);
}
