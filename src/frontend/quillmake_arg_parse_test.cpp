#include "frontend/quillmake_arg_parse.h"

#include "environment/system_macros.h"
#include "frontend/program_log.h"
#include "support/test_directory.h"

#include <gtest/gtest.h>

#include <sstream>

using Strings = std::vector<std::string>;

TEST(QuillmakeArgs, ValuesListsAndMacros) {
    std::ostringstream errors;
    ProgramLog log("qm", errors);
    SystemMacros macros;
    QuillmakeArgParse args(&log, macros);
    TestDirectory dir;
    const std::string file = dir.write("args", "-config \"Debug Version\" \"my solution.tbp\"\n");
    for (int phase : {0, 1})
        args.parse({"-D", "b=1", "-D", "a=x=y", "-D", "bare", "-D", "b=2", "-D", "e=", "-file", "b.c", "-property",
                    "p=1", "-file", "a.c", "-sproperty", "s", "-property", "q", "-config", "D", "a.tbp", "@" + file},
                   phase);
    // A macro is split at the first "=", and the last one of a name wins.
    EXPECT_EQ(args.globalMacros, (std::map<std::string, std::optional<std::string>>{
                                     {"a", "x=y"}, {"b", "2"}, {"bare", std::nullopt}, {"e", ""}}));
    EXPECT_EQ(args.files, (Strings{"b.c", "a.c"}));
    EXPECT_EQ(args.projectProperties, (Strings{"p=1", "q"}));
    EXPECT_EQ(args.solutionProperties, Strings{"s"});
    EXPECT_EQ(args.configuration, "Debug Version");
    // The last plain argument is the solution file.
    EXPECT_EQ(args.solutionFile, "my solution.tbp");
    EXPECT_EQ(errors.str(), "");
    // Every help entry names an option.
    for (const auto &entry : args.helpEntries())
        EXPECT_TRUE(args.options().count(entry.left.substr(0, entry.left.find(' ')))) << entry.left;
}

TEST(QuillmakeArgs, ThreadNumberIsDecimalOrZero) {
    const std::pair<const char *, unsigned> cases[] = {
        {"12", 12u}, {" 7 ", 7u}, {"+3", 3u}, {"4294967295", 4294967295u}, {"4294967296", 0u}, {"4x", 0u},
        {"99999999999999999999999", 0u}, {"-1", 0u}, {"abc", 0u}, {"1 2", 0u}, {"0x10", 0u}, {"+", 0u}, {"", 0u},
    };
    for (const auto &[text, value] : cases)
        EXPECT_EQ(toUnsigned(text), value) << text;
}
