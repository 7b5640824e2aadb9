#include "build/dependency_file.h"

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// The names of one side of a rule.
std::vector<std::string> splitNames(std::string_view text) {
    std::vector<std::string> names;
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size() && (isBlank(text[i + 1]) || text[i + 1] == '#')) {
            name += text[++i];
        } else if (c == '$' && i + 1 < text.size() && text[i + 1] == '$') {
            name += '$';
            ++i;
        } else if (isBlank(c)) {
            if (!name.empty())
                names.push_back(std::move(name));
            name.clear();
        } else {
            name += c;
        }
    }
    if (!name.empty())
        names.push_back(std::move(name));
    return names;
}

void addRule(std::string_view line, std::vector<DependencyRule> &rules) {
    DependencyRule rule;
    std::size_t colon = line.find(": ");
    if (colon == std::string_view::npos) {
        const std::size_t last = line.find_last_not_of(" \t");
        if (last != std::string_view::npos && line[last] == ':')
            colon = last;
    }
    if (colon == std::string_view::npos) {
        rule.prerequisites = splitNames(line);
    } else {
        rule.targets = splitNames(line.substr(0, colon));
        rule.prerequisites = splitNames(line.substr(colon + 1));
    }
    if (!rule.targets.empty() || !rule.prerequisites.empty())
        rules.push_back(std::move(rule));
}

}  // namespace

std::vector<DependencyRule> parseDependencyRules(std::string_view text) {
    std::vector<DependencyRule> rules;
    std::string joined;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        std::string_view line = text.substr(start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (!line.empty() && line.back() == '\\') {
            line.remove_suffix(1);
            joined += line;
            continue;
        }
        joined += line;
        addRule(joined, rules);
        joined.clear();
    }
    if (!joined.empty())
        addRule(joined, rules);
    return rules;
}
