#pragma once

// For tests: HOME and the root user directory as a test wants them.

#include "environment/user_directories.h"
#include "support/scoped_variable.h"

// HOME and VELDANE_ROOT_USER_DIR as a test wants them, with no root user
// directory stored before or after.
class UserEnvironment {
public:
    UserEnvironment(const std::optional<std::string> &home, const std::optional<std::string> &rootUserDir)
        : home_("HOME", home), root_("VELDANE_ROOT_USER_DIR", rootUserDir) {
        setRootUserDirectory("");
    }
    ~UserEnvironment() { setRootUserDirectory(""); }
    UserEnvironment(const UserEnvironment &) = delete;
    UserEnvironment &operator=(const UserEnvironment &) = delete;

private:
    ScopedVariable home_;
    ScopedVariable root_;
};
