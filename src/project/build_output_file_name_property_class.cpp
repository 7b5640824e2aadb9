#include "project/build_output_file_name_property_class.h"

BuildOutputFileNamePropertyClass::BuildOutputFileNamePropertyClass()
    : PropertyClass("build_output_file_name", FileName, "General", "", "", "", std::nullopt)
{
    setExecutableMode();
}

// The groups are stored as given: the mode texts are the listing's own.
void BuildOutputFileNamePropertyClass::setExecutableMode()
{
    group_ = "Build Options";
    setShortText("Executable File Name");
    setLongText("Specifies a name to override the default executable file name.");
    setDefaultValue("$(OutDir)/$(ProjectName)$(EXE)");
}

void BuildOutputFileNamePropertyClass::setLibraryMode()
{
    group_ = "Library Options";
    setShortText("Library File Name");
    setLongText("Specifies a name to override the default library file name.");
    setDefaultValue("$(OutDir)/$(ProjectName)$(LIB)");
}
