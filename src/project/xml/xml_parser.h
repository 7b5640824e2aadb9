#pragma once

#include <string>
#include <string_view>
#include <vector>

class XMLDocument;
class XMLElement;

// One pass of XMLDocument::parse over a NUL-terminated text. It reads the
// text in place with a stack of open elements and a zero-based line counter,
// and allocates only the strings that the tree keeps.
class XMLParser {
public:
    XMLParser(XMLDocument &document, const char *text);
    XMLParser(const XMLParser &) = delete;
    XMLParser &operator=(const XMLParser &) = delete;
    ~XMLParser();

    // Fills the document's root, doctype, version and encoding, or its
    // errorText and errorLine.
    bool run();

    // Appends [begin, end) to out with entity and character references
    // decoded; carriage returns are dropped if dropCarriageReturns is set.
    static void appendDecoded(std::string &out, const char *begin, const char *end,
                              bool dropCarriageReturns);

private:
    enum class Next { Text, Markup, Error };

    Next markup();
    void processingInstruction();
    void xmlDeclaration();
    Next declaration(int startLine);
    Next startTag(int startLine);
    Next endTag();
    bool closeElement(std::string_view name);
    void popElement();
    void scanText();
    void skipSpace();
    // Moves past the next occurrence of terminator, or to the end; returns
    // where the terminator began (the end if it was missing).
    const char *skipPast(std::string_view terminator);
    void skipToMarkup();
    Next fail(const char *message);

    XMLDocument &document_;
    const char *p_;
    int line_ = 0;
    std::vector<XMLElement *> stack_;
    XMLElement *result_ = nullptr;
};
