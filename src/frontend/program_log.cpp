#include "frontend/program_log.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>

ProgramLog::ProgramLog(std::string programName, std::ostream &stream)
    : programName_(std::move(programName)), stream_(stream) {}

std::ostream &ProgramLog::errorStream() {
    ++errorCount_;
    stream_ << programName_ << ": error: ";
    return stream_;
}

void ProgramLog::error(std::string_view text) {
    errorStream() << text << '\n' << std::flush;
}

void endProgram(int status) {
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
    std::exit(status);
}
