#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

// Runs the quillmake binary under test and a scratch directory to run it in.
namespace e2e {

struct RunResult {
    std::string out;   // standard output
    std::string err;   // standard error
    int status = -1;   // exit status, or 128 + signal number
};

// A fresh directory under the temporary directory, removed with its contents
// at the end of the test. HOME points here for every run, so that nothing a
// test does touches the real user's files.
class Sandbox {
public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox &) = delete;
    Sandbox &operator=(const Sandbox &) = delete;

    const std::string &path() const { return path_; }
    // Path of `relative` inside the sandbox.
    std::string at(const std::string &relative) const { return path_ + "/" + relative; }
    // Writes `content` to `relative`, making its directories.
    void write(const std::string &relative, const std::string &content) const;
    std::string read(const std::string &relative) const;
    bool exists(const std::string &relative) const;
    // Sets the access and modification times of `relative`.
    void setTime(const std::string &relative, std::time_t seconds) const;
    // `text` with every "<box>" replaced by the sandbox's path.
    std::string expand(std::string text) const;

private:
    std::string path_;
};

struct RunOptions {
    std::string workingDirectory;   // the sandbox if empty
    // Variables to set (a value) or to remove (nullopt) for the child.
    std::map<std::string, std::optional<std::string>> environment;
    std::string program;            // the quillmake binary being tested if empty
};

// Expects exactly this standard output, standard error and exit status.
void expectResult(const RunResult &r, const std::string &out, const std::string &err, int status);

// The path of the quillmake binary being tested.
const std::string &quillmakePath();

// Runs quillmake with `arguments` (argv[1] on) inside `sandbox`.
RunResult runQuillmake(const Sandbox &sandbox, const std::vector<std::string> &arguments,
                       const RunOptions &options = {});

// Runs any program; arguments[0] is the program.
RunResult runProgram(const std::vector<std::string> &arguments, const std::string &workingDirectory,
                     const std::map<std::string, std::optional<std::string>> &environment);

}  // namespace e2e
