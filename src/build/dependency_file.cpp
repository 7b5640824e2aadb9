#include "build/dependency_file.h"

#include <cstring>

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// The end of the run of a name from `start` that holds no blank and neither
// of the two characters that may escape something. This scan reads every
// byte of every dependency file of a build, so it goes by memchr.
std::size_t plainRunEnd(std::string_view text, std::size_t start) {
    const char *const begin = text.data() + start;
    const char *stop = text.data() + text.size();
    for (const char c : {' ', '\t', '\\', '$'})
        if (const void *found = std::memchr(begin, c, std::size_t(stop - begin)))
            stop = static_cast<const char *>(found);
    return std::size_t(stop - text.data());
}

}  // namespace

void DependencyRuleReader::splitNames(std::string_view text, std::vector<std::string_view> &names) {
    // A compiler's rules mostly hold no tab and nothing escaped: their names
    // are then the runs between spaces.
    const auto holds = [text](char c) { return std::memchr(text.data(), c, text.size()) != nullptr; };
    if (!holds('\\') && !holds('$') && !holds('\t')) {
        const char *at = text.data();
        const char *const end = at + text.size();
        while (at < end) {
            if (*at == ' ') {
                ++at;
                continue;
            }
            const void *space = std::memchr(at, ' ', std::size_t(end - at));
            const char *const stop = space ? static_cast<const char *>(space) : end;
            names.emplace_back(at, std::size_t(stop - at));
            at = stop;
        }
        return;
    }
    std::size_t i = 0;
    while (i < text.size()) {
        if (isBlank(text[i])) {
            ++i;
            continue;
        }
        // Most names escape nothing and are taken as they stand.
        const std::size_t end = plainRunEnd(text, i);
        if (end == text.size() || isBlank(text[end])) {
            names.push_back(text.substr(i, end - i));
            i = end;
            continue;
        }
        std::string &name = escaped_.emplace_back(text.substr(i, end - i));
        for (i = end; i < text.size() && !isBlank(text[i]); ++i) {
            const char c = text[i];
            if (c == '\\' && i + 1 < text.size() && (isBlank(text[i + 1]) || text[i + 1] == '#')) {
                name += text[++i];
            } else if (c == '$' && i + 1 < text.size() && text[i + 1] == '$') {
                name += '$';
                ++i;
            } else {
                name += c;
            }
        }
        names.push_back(name);
    }
}

bool DependencyRuleReader::next() {
    targets_.clear();
    prerequisites_.clear();
    escaped_.clear();
    while (position_ < text_.size()) {
        // One rule: a line and the lines that continue it.
        joined_.clear();
        std::string_view rule;
        bool continued = false;
        while (position_ < text_.size()) {
            std::size_t end = text_.find('\n', position_);
            if (end == std::string_view::npos)
                end = text_.size();
            std::string_view line = text_.substr(position_, end - position_);
            position_ = end + 1;
            if (!line.empty() && line.back() == '\r')
                line.remove_suffix(1);
            const bool continues = !line.empty() && line.back() == '\\';
            if (continues)
                line.remove_suffix(1);
            if (!continued && !continues) {
                rule = line;  // a single line: no copy
                break;
            }
            if (!continued)
                joined_.reserve(text_.size());  // one allocation for any rule
            joined_ += line;
            rule = joined_;
            continued = true;
            if (!continues)
                break;
        }

        std::size_t colon = rule.find(": ");
        if (colon == std::string_view::npos) {
            const std::size_t last = rule.find_last_not_of(" \t");
            if (last != std::string_view::npos && rule[last] == ':')
                colon = last;
        }
        if (colon == std::string_view::npos) {
            splitNames(rule, prerequisites_);
        } else {
            splitNames(rule.substr(0, colon), targets_);
            splitNames(rule.substr(colon + 1), prerequisites_);
        }
        if (!targets_.empty() || !prerequisites_.empty())
            return true;
    }
    return false;
}

std::vector<DependencyRule> parseDependencyRules(std::string_view text) {
    std::vector<DependencyRule> rules;
    DependencyRuleReader reader(text);
    while (reader.next()) {
        DependencyRule &rule = rules.emplace_back();
        rule.targets.assign(reader.targets().begin(), reader.targets().end());
        rule.prerequisites.assign(reader.prerequisites().begin(), reader.prerequisites().end());
    }
    return rules;
}
