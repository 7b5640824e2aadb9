#pragma once

#include <string>

// Whether clang may run on this system; a step that would run clang asks
// first and reports the message when it may not.
class ClangCompatibility {
public:
    virtual ~ClangCompatibility() = default;
    virtual bool clangSupported() const { return true; }
    virtual std::string clangUnsupportedMessage() const {
        return "Clang is not supported on this OS version";
    }
};
