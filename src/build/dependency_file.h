#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

// A make rule of a compiler-written dependency file: "targets: prerequisites".
struct DependencyRule {
    std::vector<std::string> targets;  // empty for a line without ": "
    std::vector<std::string> prerequisites;
};

// Reads the rules of a dependency file's text one at a time. A line that
// ends in a backslash continues on the next. A line is cut at the first ": "
// (or a ":" that ends it) into targets and prerequisites; without one the
// whole line is prerequisites. Names are separated by blanks; a blank or "#"
// behind a backslash belongs to the name, and "$$" stands for "$". Empty
// lines give no rule.
//
// The names are views into the text, or into the reader for a name that
// had to be unescaped or joined from continued lines; they stay valid until
// the next call of next(). A build reads thousands of these files, so names
// are copied only where they must be.
class DependencyRuleReader {
public:
    explicit DependencyRuleReader(std::string_view text) : text_(text) {
        prerequisites_.reserve(64);  // most rules of a compiler have fewer
    }

    // Moves to the next rule; false when there is none.
    bool next();
    const std::vector<std::string_view> &targets() const { return targets_; }
    const std::vector<std::string_view> &prerequisites() const { return prerequisites_; }

private:
    void splitNames(std::string_view text, std::vector<std::string_view> &names);

    std::string_view text_;
    std::size_t position_ = 0;
    std::string joined_;               // a rule of continued lines
    std::deque<std::string> escaped_;  // unescaped names: a deque keeps them in place
    std::vector<std::string_view> targets_;
    std::vector<std::string_view> prerequisites_;
};

// All rules of a dependency file's text, as DependencyRuleReader reads them.
std::vector<DependencyRule> parseDependencyRules(std::string_view text);
