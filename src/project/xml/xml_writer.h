#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

class XMLDocument;
class XMLNode;

// Turns a document into bytes, appended to a string. With a stream given,
// the bytes are handed on in large pieces so that memory stays bounded.
class XMLWriter {
public:
    XMLWriter(std::string &out, int indent, int lineWidth, std::FILE *stream = nullptr);
    XMLWriter(const XMLWriter &) = delete;
    XMLWriter &operator=(const XMLWriter &) = delete;

    // The declaration, the DOCTYPE line and the root. False if the stream
    // failed.
    bool writeDocument(const XMLDocument &document);

    // "&", "<", ">" and the double quote as entities, bytes that aren't
    // printable ASCII as "&#x<hex>;".
    static void appendEscaped(std::string &out, std::string_view text);

private:
    // A node and its subtree at a depth; elements nest without recursion.
    void writeNode(const XMLNode *node, int depth);
    // Writes the start of a node; true if it is an element whose children
    // must follow one by one.
    bool writeStart(const XMLNode *node, int depth);
    void writeEndTag(const std::string &tagName, int depth);
    void writeIndent(int depth);
    void lineFeed();
    void putDeclarationValue(std::string_view name, const std::string &value);
    // Hands what has been written to the stream.
    void flush();

    // The output string is kept longer than what has been written (used_)
    // so that pieces go in with a plain copy; it is cut to size at the end.
    char *space(std::size_t size) {
        if (out_.size() - used_ < size)
            grow(size);
        return out_.data() + used_;
    }
    void grow(std::size_t size);
    void put(std::string_view text);
    void put(char c) {
        *space(1) = c;
        ++used_;
    }
    void putEscaped(std::string_view text);

    std::string &out_;
    std::size_t used_;
    int indent_;
    int lineWidth_;
    std::FILE *stream_;
    bool failed_ = false;
};
