#pragma once

// For tests: an environment variable set or removed for the life of the
// object.

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
