#pragma once

#include "project/property_class.h"

// The property "build_output_file_name", whose wording and default follow the
// type of the project that is shown: an executable or a library.
class BuildOutputFileNamePropertyClass : public PropertyClass {
public:
    // Starts in executable mode.
    BuildOutputFileNamePropertyClass();

    void setExecutableMode();
    void setLibraryMode();
};
