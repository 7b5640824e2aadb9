#pragma once

#include "build/build_flags.h"

#include <memory>
#include <optional>
#include <ostream>
#include <string>

class QuillmakeArgParse;
namespace QTx {
class LockFile;
}

// The whole life of a quillmake process; returns its exit status.
int quillmakeMain(int argc, char **argv);

// The steps of a run that stand on their own.

// The templates file text: -templatesfile if it isn't empty, else the
// installation's and the packages' template files (the hosted ones with -host).
std::string templatesFileText(const std::optional<std::string> &templatesFileOption, bool host);

// The build flags of the command line. -show turns echo on as well.
BuildFlags fixBuildFlags(QuillmakeArgParse &args);

// The number of build slots: the -threadnum value, else QUILLMAKE_THREADNUM
// (junk counts as unset), else the processors online.
unsigned chooseThreadCount(unsigned threadnumOption, const char *environmentValue,
                           long processorsOnline);
unsigned threadCount(unsigned threadnumOption);

// Claims the lock file `path`, waiting up to `milliseconds`. On failure writes
// "Failed to claim lock file: <path>" to `err` and returns null.
std::unique_ptr<QTx::LockFile> claimLockFile(const std::string &path, int milliseconds,
                                             std::ostream &err);

// How long a build waits for the -lock file.
inline constexpr int lockFileTimeout = 300000;
