#pragma once

#include "project/xml/xml_element.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

// An XML document: the parser that builds the tree of XMLNode objects from
// bytes, and the writer that turns a tree back into bytes. Text is kept as
// 8-bit strings. It isn't a validating parser: it takes what the program's
// own files use and skips what it doesn't understand (see parse).
class XMLDocument {
public:
    // keepText: keep character data and comments in the tree. Documents that
    // are changed and written back are read without.
    explicit XMLDocument(bool keepCharacterData = false) : keepText(keepCharacterData) {}
    XMLDocument(const XMLDocument &) = delete;
    XMLDocument &operator=(const XMLDocument &) = delete;
    virtual ~XMLDocument();

    // Makes the element for a start tag; subclasses return their own class.
    virtual XMLElement *createElement(std::string_view tagName);

    // Parses NUL-terminated text, replacing root, doctype, version and
    // encoding. False on a bad attribute name or a mismatched end tag, with
    // errorText and errorLine set and root null. A document without a closed
    // top-level element parses fine with root null.
    bool parse(const char *text);
    bool parse(const std::string &text) { return parse(text.c_str()); }
    // Reads the rest of an open stream and parses it, skipping a UTF-8
    // byte-order mark.
    bool parseFile(std::FILE *stream);
    // False with "couldn't read <file>" if it can't be opened.
    bool load(const char *fileName);

    // Writes the declaration, the DOCTYPE line and the tree. indent is the
    // number of blanks per level (0: no line feeds either), lineWidth the
    // column past which an element's attributes go on lines of their own
    // (0: never). Both are kept in the fields of the same name.
    void write(std::string &out, int indentWidth, int width);
    bool write(std::FILE *stream, int indentWidth, int width);
    // False with "couldn't write <file>" if it can't be opened or written.
    bool save(const char *fileName, int indentWidth, int width);

    // Gives up ownership of the tree.
    XMLElement *takeRoot();

    std::int32_t indent = 2;
    std::int32_t lineWidth = 75;
    const bool keepText;
    std::optional<std::string> doctype;
    std::optional<std::string> version;
    std::optional<std::string> encoding;
    // Owned; a caller that keeps the tree sets it to null (or uses takeRoot).
    XMLElement *root = nullptr;
    std::string errorText;
    std::int32_t errorLine = 0;
};
