#pragma once

#include <string>

// Relative forms of absolute paths. Relative arguments are taken against the
// current directory; names are compared case-sensitively.

// The path that leads from directory `base` to `target`, such as "../c/d"
// from "/a/b" to "/a/c/d"; empty for equal paths or a target of ".". False
// if the two have no common root (then `result` is empty).
bool relativePath(const std::string &base, const std::string &target, std::string &result);

// relativePath() to the directory of `file`, followed by "/" and the file's
// name, or the name alone when the directory is `base` itself.
bool relativeFilePath(const std::string &base, const std::string &file, std::string &result);

// relativeFilePath() where it exists, else the absolute path of `file`.
std::string relativeOrAbsolute(const std::string &base, const std::string &file);
