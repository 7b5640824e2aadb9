#include "support/short_name_set.h"

#include <gtest/gtest.h>

TEST(ShortNameSet, AnswersByTheWholeNameWhateverItsLength) {
    ShortNameSet set;
    for (std::string_view name : {"AR", "AS", "GCCVersion", "DeviceName", "CC1PLUS", "AR", "ArchitectureName",
                                  "ArchitectureNames", ""})
        set.insert(name);
    for (std::string_view name : {"AR", "AS", "GCCVersion", "DeviceName", "CC1PLUS", "ArchitectureName",
                                  "ArchitectureNames"})
        EXPECT_TRUE(set.contains(name)) << name;
    // Same length, same first letter, a prefix, a longer name in the shared
    // last slot, another case, a first letter that shares the bit of 'A',
    // and nothing.
    for (std::string_view name : {"AX", "A", "GCCVersioN", "CC1", "ArchitectureNamesX", "ArchitectureNameZ",
                                  "ar", "\x01R", "\xc1R", ""})
        EXPECT_FALSE(set.contains(name)) << name;
}
