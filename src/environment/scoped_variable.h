#pragma once

// For tests: an environment variable set or removed for the life of the
// object, and a root user directory that is forgotten again.

#include "environment/user_directories.h"

#include <cstdlib>
#include <optional>
#include <string>

class ScopedVariable {
public:
    // Sets `name` to `value`, or removes it for nullopt.
    ScopedVariable(std::string name, const std::optional<std::string> &value) : name_(std::move(name)) {
        if (const char *old = std::getenv(name_.c_str()))
            old_ = old;
        set(value);
    }
    ~ScopedVariable() { set(old_); }
    ScopedVariable(const ScopedVariable &) = delete;
    ScopedVariable &operator=(const ScopedVariable &) = delete;

private:
    void set(const std::optional<std::string> &value) {
        if (value)
            setenv(name_.c_str(), value->c_str(), 1);
        else
            unsetenv(name_.c_str());
    }

    std::string name_;
    std::optional<std::string> old_;
};

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
