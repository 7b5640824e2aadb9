#pragma once

#include "project/property_class.h"

// The folder property "filter". A listing sets its help to suit the kind of
// folder that is shown (dynamic or plain).
class FilterPropertyClass : public PropertyClass {
public:
    FilterPropertyClass();
};
