#pragma once

#include <string>
#include <string_view>

// Normalises a path with "/" as the separator, without consulting the file
// system (symbolic links aren't resolved):
//   - ".." removes the directory before it; one that can't be resolved stays
//     ("../../a" and "/../a" are kept as they are);
//   - "." parts, doubled separators and a trailing separator go;
//   - a leading separator stays, so "/" and "///" give "/";
//   - "a/.." gives the empty string.
// The text is rewritten only if something was dropped or removed. Returns
// true if it changed.
bool normalisePath(std::string &text);

// A quick look that allocates nothing: true if the text has no empty, "." or
// ".." part, so that normalisePath would leave it as it is. False can still
// be a normalised path, such as "a/.b".
bool isPlainPath(std::string_view text);
