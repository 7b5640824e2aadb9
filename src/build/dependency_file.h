#pragma once

#include <string>
#include <string_view>
#include <vector>

// A make rule of a compiler-written dependency file: "targets: prerequisites".
struct DependencyRule {
    std::vector<std::string> targets;  // empty for a line without ": "
    std::vector<std::string> prerequisites;
};

// The rules of a dependency file's text. A line that ends in a backslash
// continues on the next. A line is cut at the first ": " (or a ":" that ends
// it) into targets and prerequisites; without one the whole line is
// prerequisites. Names are separated by blanks; a blank or "#" behind a
// backslash belongs to the name, and "$$" stands for "$". Empty lines give
// no rule.
std::vector<DependencyRule> parseDependencyRules(std::string_view text);
