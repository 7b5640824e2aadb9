#pragma once

#include <string>

// Small helpers over the file system and the process environment.

// Makes `directory` and any missing parents, from the top down. True if the
// directory exists afterwards (or is the root); false as soon as one mkdir
// fails, for instance under a plain file.
bool makeDirectories(const std::string &directory);

// Reads a whole file into `text`: a regular file up to the size that fstat
// gives, mostly in one read, anything else to its end; false (and `text`
// empty) if it can't be opened or read.
bool readFile(const std::string &path, std::string &text);
// The same for a name relative to an open directory (or AT_FDCWD).
bool readFileAt(int directory, const char *name, std::string &text);

// Removes a file; true on success.
bool removeFile(const std::string &path);

// The first of the environment variables TMP, TEMP and TMPDIR that is set
// and not empty, else "/tmp".
std::string temporaryDirectory();

// Sets an environment variable, replacing any value it had.
void setEnvironment(const std::string &name, const std::string &value);
