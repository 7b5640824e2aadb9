#pragma once

#include <string>

// The exceptions of the core. They share no base class on purpose: each is
// caught in its own place (HException and SolutionLoadError in main, the
// ParserException by the expression evaluators).

// Everything that stops a load or a build step with a message.
class HException {
public:
    explicit HException(std::string message);
    // Appends " line: <line> column: <column>" to the message.
    HException(std::string message, int line, int column);
    HException(const HException &other);
    HException &operator=(const HException &other) = default;
    virtual ~HException();

    const std::string &message() const { return message_; }

    // Number of HException objects alive in the process.
    static int liveCount();

private:
    std::string message_;
};

// A failure of the lexer or the expression parser.
class ParserException {
public:
    explicit ParserException(std::string message) : message_(std::move(message)) {}
    const std::string &message() const { return message_; }

private:
    std::string message_;
};

// A solution file couldn't be loaded. badXml marks a file that isn't
// well-formed XML; detail names the file.
class SolutionLoadError {
public:
    SolutionLoadError(std::string message, bool badXml, std::string detail, int line = -1)
        : message_(std::move(message)), badXml_(badXml), detail_(std::move(detail)), line_(line) {}
    const std::string &message() const { return message_; }
    bool isBadXml() const { return badXml_; }
    // The file that failed, or what stands in its place in the message.
    const std::string &detail() const { return detail_; }
    // The line of an XML error; -1 for other failures.
    int line() const { return line_; }

private:
    std::string message_;
    bool badXml_;
    std::string detail_;
    int line_;
};
