#include "build/dependency_file.h"

#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;
using Rules = std::vector<std::pair<Names, Names>>;  // targets, prerequisites

Rules parse(const std::string &text) {
    Rules rules;
    for (const DependencyRule &rule : parseDependencyRules(text))
        rules.emplace_back(rule.targets, rule.prerequisites);
    return rules;
}

TEST(DependencyFile, RulesOfAText) {
    const struct {
        const char *text;
        Rules rules;
    } cases[] = {
        // Continuation lines join into one rule; a colon that ends a line
        // closes the targets too.
        {"obj/a.o: a.c \\\n  inc/a.h \\\r\n inc/b.h\n\nb.h:\n",
         {{{"obj/a.o"}, {"a.c", "inc/a.h", "inc/b.h"}}, {{"b.h"}, {}}}},
        // Escaped blanks and "#" stay in the name, "$$" is one "$", other
        // backslashes stay as they are.
        {"my\\ obj.o: my\\ file.c dir\\ x/a\\#b.h cost$$.h c:\\src\\d.h\n",
         {{{"my obj.o"}, {"my file.c", "dir x/a#b.h", "cost$.h", "c:\\src\\d.h"}}}},
        {"t.o: \\ lead.h trail\\ \tx$y.h $$$ a\\b.h", {{{"t.o"}, {" lead.h", "trail ", "x$y.h", "$$", "a\\b.h"}}}},
        // A line without a target is all prerequisites.
        {"a.c\tb.h   c.h", {{{}, {"a.c", "b.h", "c.h"}}}},
        // Only ": " cuts: "C:/x" is a name. A continuation at the end of the
        // text ends the rule.
        {"a.o a.d: C:/x/a.c\nlast.o: \\", {{{"a.o", "a.d"}, {"C:/x/a.c"}}, {{"last.o"}, {}}}},
        {"", {}},
        {"\n \n\\\n", {}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(parse(c.text), c.rules) << c.text;
}

// Names are scanned in runs: an escape or a blank is found wherever it falls
// in a name, and a name may end anywhere.
TEST(DependencyFile, EscapesAndBlanksAtEveryPlaceInALongName) {
    const std::string stem = "/usr/include/x86_64-linux-gnu/bits";
    for (std::size_t at = 0; at <= stem.size(); ++at) {
        const std::string before = stem.substr(0, at), after = stem.substr(at);
        for (const auto &[written, read] :
             {std::pair<std::string, std::string>{"\\ ", " "}, {"$$", "$"}, {"\\#", "#"}, {"\\x", "\\x"}}) {
            // The last name ends with the text, at every length.
            const auto rules = parseDependencyRules("t.o: " + before + written + after + "\tz.h " + before);
            std::vector<std::string> expected{before + read + after, "z.h"};
            if (!before.empty())
                expected.push_back(before);
            ASSERT_EQ(rules.size(), 1u);
            EXPECT_EQ(rules[0].prerequisites, expected) << written << " at " << at;
        }
    }
}

}  // namespace
