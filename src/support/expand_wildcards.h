#pragma once

#include <string>
#include <vector>

#include "support/file_path.h"

// Adds to `results` the paths that match `pattern`, whose parts may hold the
// wildcards "*" and "?" (matched per part, as fnmatch does). A pattern
// without wildcards gives itself if it exists. Only directories match a part
// that isn't the last; "." and ".." never match. The results stand in the
// order of the directory listings: callers that need an order sort them.
// No match adds nothing.
void expandWildcards(const std::string &pattern, std::vector<FilePath> &results);
