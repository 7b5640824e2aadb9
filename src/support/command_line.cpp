#include "support/command_line.h"

std::vector<std::string> splitCommandLine(std::string_view text) {
    std::vector<std::string> arguments;
    std::string argument;
    bool haveArgument = false;  // "" is an argument, nothing at all isn't
    bool quoted = false;        // inside "..."
    bool escapeQuoted = false;  // inside \"...\"
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size() && text[i + 1] == '"') {
            argument += '"';
            haveArgument = true;
            escapeQuoted = !escapeQuoted;
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
            haveArgument = true;
        } else if (quoted || escapeQuoted) {
            argument += c;
        } else if (c == ' ') {
            if (haveArgument) {
                arguments.push_back(std::move(argument));
                argument.clear();
                haveArgument = false;
            }
        } else {
            argument += c;
            haveArgument = true;
        }
    }
    if (haveArgument)
        arguments.push_back(std::move(argument));
    return arguments;
}

std::vector<std::string> splitCommandChain(std::string_view text, std::string_view separator) {
    std::vector<std::string> parts;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = separator.empty() ? std::string_view::npos : text.find(separator, start);
        if (end == std::string_view::npos)
            end = text.size();
        const std::string_view part = text.substr(start, end - start);
        if (part.find_first_not_of(' ') != std::string_view::npos)
            parts.emplace_back(part);
        if (end == text.size())
            break;
        start = end + separator.size();
    }
    return parts;
}
