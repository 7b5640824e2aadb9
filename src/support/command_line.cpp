#include "support/command_line.h"

#include "support/text_split.h"

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
    std::vector<std::string> parts = splitAtText(text, separator);
    std::erase_if(parts, [](const std::string &part) { return part.find_first_not_of(' ') == std::string::npos; });
    return parts;
}

std::string joinArguments(const std::vector<std::string> &arguments) {
    std::string text;
    for (const std::string &argument : arguments) {
        if (&argument != &arguments.front())
            text += ' ';
        if (argument.find(' ') == std::string::npos) {
            text += argument;
            continue;
        }
        text += '"';
        for (char c : argument) {
            if (c == '"')
                text += '\\';
            text += c;
        }
        text += '"';
    }
    return text;
}
