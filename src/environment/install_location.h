#pragma once

#include <string>

// Where the running program is installed. The installation is the parent of
// the directory that holds the executable. Both directories are fixed once at
// start-up and aren't touched by -studiodir: bin/config.xml and the tools of
// the installation are found through them.

// The path of the running program: /proc/self/exe, or argv0 when that link
// can't be read into 1,023 bytes.
std::string executablePath(const char *argv0);

// Stores the canonical directory of `executable` as the bin directory, and the
// canonical directory `levelsUp` levels above it as the install directory.
void setInstallDirectories(const std::string &executable, int levelsUp);

// The stored directories, normalised; empty before setInstallDirectories.
const std::string &installDirectory();
const std::string &binDirectory();

// The program to run for a command whose first argument is `name`: the
// installation's own copy for the few tools it carries, else `name` as it
// stands, for execvp to look up on the path.
std::string toolPath(const std::string &name);
