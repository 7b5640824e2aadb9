#pragma once

#include <cstdio>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

class ProgramLog;

namespace QTx {

class ArgParse;

// One option of the table, held by value in the parser's map.
struct ArgOption {
    enum Kind { Flag = 0, Value = 1, Prefix = 2 };
    // Called as handler(option name, value). A flag's value is null.
    using Handler = void (ArgParse::*)(const std::string &name,
                                       const std::optional<std::string> &value);

    int kind = Flag;                                    // Flag, Value (next argument) or Prefix (joined)
    bool hasHandler = false;                            // call handler instead of storing
    Handler handler = nullptr;
    std::optional<std::string> *stringTarget = nullptr; // receives the value
    bool *flagTarget = nullptr;                         // set to true
    std::string help;                                   // "left: right" entries split by ";"
    int phase = 1;                                      // the pass in which the option acts
};

// The tokens of one line of an indirect file. Only the blank separates
// tokens; a token that starts with a double quote runs to the next double
// quote, with no escapes. `unterminated` is set when a quote isn't closed; the
// tokens before it are kept.
struct IndirectLine {
    std::vector<std::string> tokens;
    bool unterminated = false;
};
IndirectLine tokenizeIndirectLine(std::string_view line);

// A small command-line parser: a map of options, a parse loop over a list of
// arguments, and "@file" indirect files read as further arguments. The same
// list is parsed once per phase; a pass acts on the options of its own phase
// and steps over the others with their values.
class ArgParse {
public:
    struct HelpEntry {
        std::string left;
        std::string right;
    };

    // The deepest nesting of indirect files.
    static constexpr int maxIndirectDepth = 100;
    // Indirect files opened in one top-level parse, so that files that include
    // each other several times can't run for ever.
    static constexpr int defaultIndirectFileLimit = 10000;

    explicit ArgParse(ProgramLog *log);
    ArgParse(const ArgParse &) = delete;
    ArgParse &operator=(const ArgParse &) = delete;
    virtual ~ArgParse();

    // An argument that is no option. Ignored here.
    virtual void plainArgument(const std::string &text);
    // Reports "unrecognised option <text>".
    virtual void unrecognisedOption(const std::string &text);
    // The log's stream, after the prefix of one error has been written.
    virtual std::ostream &errorStream();

    void parse(const std::vector<std::string> &list, int phase);
    void parseIndirectFile(const std::string &path, int phase);

    void addOption(const std::string &name, const ArgOption &option);
    void addFlagOption(const std::string &name, bool *flagTarget, const std::string &help);
    void addValueOption(const std::string &name, std::optional<std::string> *stringTarget,
                        const std::string &help, int phase = 1);
    void addHandlerOption(const std::string &name, ArgOption::Handler handler,
                          const std::string &help);

    void setIndirectFileLimit(int limit) { indirectFileLimit_ = limit; }

    const std::map<std::string, ArgOption> &options() const { return options_; }
    // The help entries of all options, sorted by their left part ignoring case.
    std::vector<HelpEntry> helpEntries() const;

protected:
    // Writes one error line through errorStream().
    void reportError(const std::string &text);
    ProgramLog *programLog() const { return log_; }

private:
    const ArgOption *findPrefixOption(const std::string &argument, std::string &name) const;
    void apply(const std::string &name, const ArgOption &option,
               const std::optional<std::string> &value);
    void parseIndirectLines(std::FILE *file, const std::string &path, int phase);
    void reportIndirectLimit();

    std::map<std::string, ArgOption> options_;
    int indirectDepth_ = 0;
    ProgramLog *log_;
    int indirectFileLimit_ = defaultIndirectFileLimit;
    int indirectFilesOpened_ = 0;
    bool indirectLimitReported_ = false;
};

}  // namespace QTx
