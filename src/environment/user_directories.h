#pragma once

#include <string>

// Where the user's data lives. HOME unset counts as empty: every directory
// derived from it then starts with "/" or the rest of its name.

// $HOME.
std::string userHomeDirectory();
// $HOME/.local/share.
std::string userDataDirectory();

// The root of all per-user data of the product family. The stored text if it
// isn't empty; else VELDANE_ROOT_USER_DIR if it is set (even to the empty
// string, which is then asked for again next time); else
// $HOME/.ostrand_instruments_limited. The computed value is stored.
std::string rootUserDirectory();
// Stores `path` as it is, also when it is empty.
void setRootUserDirectory(const std::string &path);

// <root user directory>/Veldane for ARM/v5: the data of this major version.
std::string studioUserDirectory();
// <studio user directory>/dumps.
std::string crashDumpDirectory();

// The packages directory of a user who has chosen none.
inline constexpr const char *defaultPackagesDirectory = "$(StudioUserDir)/packages";
