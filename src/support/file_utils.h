#pragma once

#include <string>

// Makes `directory` and any missing parents. True if it exists afterwards
// (or is the root); otherwise the result of the last mkdir.
bool makeDirectories(const std::string &directory);
