// Fuzzes the reading of "@file" indirect files: the tokens of a line, checked
// against a plain character-by-character reading, and the whole file read
// through the parse loop. Files named inside the input can only be in the
// scratch directory, which holds the input itself, so nesting and
// self-inclusion are exercised without touching anything else.
#include "frontend/arg_parse.h"
#include "frontend/program_log.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

// The rules of a line, one character at a time.
QTx::IndirectLine referenceTokens(std::string_view line) {
    QTx::IndirectLine result;
    enum { Between, Bare, Quoted } state = Between;
    std::string token;
    for (const char c : line) {
        switch (state) {
        case Between:
            if (c == '"')
                state = Quoted;
            else if (c != ' ') {
                token = c;
                state = Bare;
            }
            break;
        case Bare:
        case Quoted:
            // A bare token ends at a blank, a quoted one at the closing quote.
            if (c == (state == Bare ? ' ' : '"')) {
                result.tokens.push_back(token);
                token.clear();
                state = Between;
            } else {
                token += c;
            }
            break;
        }
    }
    if (state == Bare)
        result.tokens.push_back(token);
    result.unterminated = state == Quoted;
    return result;
}

class FuzzParse : public QTx::ArgParse {
public:
    explicit FuzzParse(ProgramLog *log) : ArgParse(log) {
        addFlagOption("-f", &flag, "-f: flag");
        addValueOption("-v", &value, "-v 'x': value");
        addValueOption("-z", &early, "", 0);
        QTx::ArgOption prefix;
        prefix.kind = QTx::ArgOption::Prefix;
        prefix.stringTarget = &joined;
        addOption("-I", prefix);
        addHandlerOption("-h", static_cast<QTx::ArgOption::Handler>(&FuzzParse::record), "");
    }
    void plainArgument(const std::string &text) override { plain.push_back(text); }
    void record(const std::string &, const std::optional<std::string> &v) { calls += v ? v->size() : 0; }

    bool flag = false;
    std::optional<std::string> value, early, joined;
    std::vector<std::string> plain;
    size_t calls = 0;
};

void checkTokens(std::string_view line) {
    const QTx::IndirectLine tokens = QTx::tokenizeIndirectLine(line);
    const QTx::IndirectLine expected = referenceTokens(line);
    if (tokens.tokens != expected.tokens || tokens.unterminated != expected.unterminated)
        std::abort();
    size_t total = 0;
    for (const auto &token : tokens.tokens)
        total += token.size();
    if (total > line.size())
        std::abort();
}

// Made at the first input and removed at exit; a plain array, so that it is
// still there when the exit handler runs.
char scratch[] = "/tmp/indirect-fuzz.XXXXXX";

void removeScratchDirectory() {
    unlink((std::string(scratch) + "/in").c_str());
    rmdir(scratch);
}

const char *scratchDirectory() {
    static const bool made = [] {
        if (!mkdtemp(scratch))
            std::abort();
        std::atexit(removeScratchDirectory);
        return true;
    }();
    (void)made;
    return scratch;
}

void parseAsFile(std::string content) {
    // No "/": every file the input names lies in the scratch directory.
    for (char &c : content)
        if (c == '/')
            c = '_';
    // Relative names are looked up in the scratch directory while the input
    // is parsed; the fuzzer's own paths are relative to where it started.
    char *startDirectory = getcwd(nullptr, 0);
    if (!startDirectory || chdir(scratchDirectory()) != 0)
        std::abort();
    std::FILE *file = std::fopen("in", "wb");
    if (!file)
        std::abort();
    std::fwrite(content.data(), 1, content.size(), file);
    std::fclose(file);

    std::ostream discard(nullptr);
    ProgramLog log("fuzz", discard);
    for (int phase = 0; phase < 2; ++phase) {
        FuzzParse parser(&log);
        // Inputs that include themselves several times would otherwise each
        // open thousands of files.
        parser.setIndirectFileLimit(200);
        parser.parse({"@in"}, phase);
    }
    if (chdir(startDirectory) != 0)
        std::abort();
    std::free(startDirectory);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, size_t size) {
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    // Each line of the input on its own, then the whole input as a file.
    size_t start = 0;
    while (start <= input.size()) {
        const size_t end = std::min(input.find('\n', start), input.size());
        checkTokens(input.substr(start, end - start));
        start = end + 1;
    }
    parseAsFile(std::string(input));
    return 0;
}
