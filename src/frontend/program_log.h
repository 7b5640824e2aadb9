#pragma once

#include <ostream>
#include <string>
#include <string_view>

// The one error reporter of the process. Every error is one line:
// "<program>: error: <text>\n", flushed at once.
class ProgramLog {
public:
    ProgramLog(std::string programName, std::ostream &stream);
    ProgramLog(const ProgramLog &) = delete;
    ProgramLog &operator=(const ProgramLog &) = delete;

    // Counts one error and writes the prefix; the caller writes the text and
    // ends the line with a newline and a flush.
    std::ostream &errorStream();
    // A whole error line.
    void error(std::string_view text);

    int errorCount() const { return errorCount_; }
    const std::string &programName() const { return programName_; }

    // The process-wide log that main creates first thing.
    static ProgramLog *instance() { return instance_; }
    static void setInstance(ProgramLog *log) { instance_ = log; }

private:
    std::string programName_;
    std::ostream &stream_;
    int errorCount_ = 0;

    static inline ProgramLog *instance_ = nullptr;
};

// Ends the process with `status` once everything written so far is out.
[[noreturn]] void endProgram(int status);
