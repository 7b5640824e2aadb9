#pragma once

#include <string>

// Where the running program is installed. The installation is the parent of
// the directory that holds the executable.

// The path of the running program: /proc/self/exe, or argv0 when that link
// can't be read into 1,023 bytes.
std::string executablePath(const char *argv0);

// Stores the canonical directory of `executable` as the bin directory, and the
// directory `levelsUp` levels above it as the install directory.
void setInstallDirectories(const std::string &executable, int levelsUp);

const std::string &installDirectory();
const std::string &binDirectory();
