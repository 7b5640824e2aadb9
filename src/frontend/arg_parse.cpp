#include "frontend/arg_parse.h"

#include "frontend/program_log.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/stat.h>

namespace QTx {

namespace {

struct FileCloser {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// Reads one line without its "\n" (or "\r\n"); false at the end of the file.
// The buffer grows to the longest line and no further.
bool readLine(std::FILE *file, std::string &line) {
    line.clear();
    int c;
    while ((c = std::getc(file)) != EOF && c != '\n')
        line.push_back(static_cast<char>(c));
    if (c == EOF && line.empty())
        return false;
    if (c == '\n' && !line.empty() && line.back() == '\r')
        line.pop_back();
    return true;
}

char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool lessIgnoringCase(const std::string &a, const std::string &b) {
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(),
        [](char x, char y) {
            return static_cast<unsigned char>(lowerAscii(x)) < static_cast<unsigned char>(lowerAscii(y));
        });
}

}  // namespace

IndirectLine tokenizeIndirectLine(std::string_view line) {
    IndirectLine result;
    size_t i = 0;
    const size_t n = line.size();
    while (true) {
        while (i < n && line[i] == ' ')
            ++i;
        if (i == n)
            break;
        if (line[i] == '"') {
            const size_t close = line.find('"', i + 1);
            if (close == std::string_view::npos) {
                result.unterminated = true;
                break;
            }
            result.tokens.emplace_back(line.substr(i + 1, close - i - 1));
            i = close + 1;
        } else {
            size_t end = line.find(' ', i);
            if (end == std::string_view::npos)
                end = n;
            result.tokens.emplace_back(line.substr(i, end - i));
            i = end;
        }
    }
    return result;
}

ArgParse::ArgParse(ProgramLog *log) : log_(log) {}

ArgParse::~ArgParse() = default;

void ArgParse::plainArgument(const std::string &) {}

void ArgParse::unrecognisedOption(const std::string &text) {
    reportError("unrecognised option " + text);
}

std::ostream &ArgParse::errorStream() { return log_->errorStream(); }

void ArgParse::reportError(const std::string &text) { log_->error(text); }

void ArgParse::addOption(const std::string &name, const ArgOption &option) {
    options_[name] = option;
}

void ArgParse::addFlagOption(const std::string &name, bool *flagTarget, const std::string &help) {
    ArgOption option;
    option.kind = ArgOption::Flag;
    option.flagTarget = flagTarget;
    option.help = help;
    addOption(name, option);
}

void ArgParse::addValueOption(const std::string &name, std::optional<std::string> *stringTarget,
                              const std::string &help, int phase) {
    ArgOption option;
    option.kind = ArgOption::Value;
    option.stringTarget = stringTarget;
    option.help = help;
    option.phase = phase;
    addOption(name, option);
}

void ArgParse::addHandlerOption(const std::string &name, ArgOption::Handler handler,
                                const std::string &help) {
    ArgOption option;
    option.kind = ArgOption::Value;
    option.hasHandler = true;
    option.handler = handler;
    option.help = help;
    addOption(name, option);
}

const ArgOption *ArgParse::findPrefixOption(const std::string &argument, std::string &name) const {
    for (const auto &[key, option] : options_) {
        if (option.kind == ArgOption::Prefix && argument.starts_with(key)) {
            name = key;
            return &option;
        }
    }
    return nullptr;
}

void ArgParse::apply(const std::string &name, const ArgOption &option,
                     const std::optional<std::string> &value) {
    if (option.hasHandler) {
        (this->*option.handler)(name, value);
        return;
    }
    if (option.flagTarget)
        *option.flagTarget = true;
    if (option.stringTarget)
        *option.stringTarget = value;
}

void ArgParse::parse(const std::vector<std::string> &list, int phase) {
    if (indirectDepth_ == 0) {
        indirectFilesOpened_ = 0;
        indirectLimitReported_ = false;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        const std::string &argument = list[i];
        if (argument.empty())
            continue;

        std::string name = argument;
        std::optional<std::string> value;
        const ArgOption *option = nullptr;
        if (const auto exact = options_.find(argument); exact != options_.end()) {
            option = &exact->second;
            if (option->kind == ArgOption::Value) {
                if (i + 1 == list.size()) {
                    reportError("expected argument for option " + argument);
                    return;
                }
                value = list[++i];
            } else if (option->kind == ArgOption::Prefix) {
                value = std::string();
            }
        } else if ((option = findPrefixOption(argument, name))) {
            value = argument.substr(name.size());
        }

        if (option) {
            if (option->phase == phase)
                apply(name, *option, value);
        } else if (argument[0] == '@') {
            parseIndirectFile(argument.substr(1), phase);
        } else if (argument[0] == '-') {
            unrecognisedOption(argument);
        } else if (phase == 1) {
            plainArgument(argument);
        }
    }
}

// Files that include each other can reach the nesting limit many times over;
// the message is given once per top-level parse.
void ArgParse::reportIndirectLimit() {
    if (indirectLimitReported_)
        return;
    indirectLimitReported_ = true;
    reportError("too many indirect files");
}

void ArgParse::parseIndirectFile(const std::string &path, int phase) {
    if (indirectDepth_ >= maxIndirectDepth || indirectFilesOpened_ >= indirectFileLimit_) {
        reportIndirectLimit();
        return;
    }
    FileHandle file(std::fopen(path.c_str(), "r"));
    int error = errno;
    struct stat info;
    if (file && fstat(fileno(file.get()), &info) == 0 && S_ISDIR(info.st_mode)) {
        file.reset();
        error = EISDIR;
    }
    if (!file) {
        reportError("can't open indirect file " + path + ": " + std::strerror(error));
        return;
    }
    ++indirectFilesOpened_;
    ++indirectDepth_;
    parseIndirectLines(file.get(), path, phase);
    --indirectDepth_;
}

void ArgParse::parseIndirectLines(std::FILE *file, const std::string &path, int phase) {
    std::string line;
    int lineNumber = 0;
    while (readLine(file, line)) {
        if (line.starts_with('#'))
            continue;
        ++lineNumber;
        const IndirectLine tokens = tokenizeIndirectLine(line);
        if (tokens.unterminated)
            reportError("unterminated string in indirect file " + path + "(" +
                        std::to_string(lineNumber) + ")");
        parse(tokens.tokens, phase);
    }
}

std::vector<ArgParse::HelpEntry> ArgParse::helpEntries() const {
    std::vector<HelpEntry> entries;
    for (const auto &[name, option] : options_) {
        std::string_view help = option.help;
        while (!help.empty()) {
            const auto end = std::min(help.find(';'), help.size());
            const std::string_view entry = help.substr(0, end);
            help.remove_prefix(std::min(end + 1, help.size()));
            const auto colon = entry.find(':');
            if (colon == std::string_view::npos)
                continue;
            entries.push_back({std::string(entry.substr(0, colon)),
                               std::string(entry.substr(colon + 1))});
        }
    }
    std::stable_sort(entries.begin(), entries.end(), [](const HelpEntry &a, const HelpEntry &b) {
        return lessIgnoringCase(a.left, b.left);
    });
    return entries;
}

}  // namespace QTx
