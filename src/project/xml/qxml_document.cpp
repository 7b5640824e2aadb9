#include "project/xml/qxml_document.h"

#include <cstdio>
#include <cstring>
#include <string_view>

std::string QXMLDocument::elementText(const XMLElement *element) {
    std::string text;
    if (!element)
        return text;
    for (const XMLNode *child = element->firstChild; child; child = child->nextSibling) {
        if (child->kind() == XMLNode::Kind::Data)
            text += static_cast<const XMLData *>(child)->text();
    }
    return text;
}

namespace {

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDoctypeNameChar(char c) {
    return c && !isSpace(c) && c != '>' && c != '<' && c != '[';
}

// The start of a file, read in pieces as far as the scan needs it.
class FileStart {
public:
    explicit FileStart(const std::string &fileName) : file_(std::fopen(fileName.c_str(), "rb")) {}
    FileStart(const FileStart &) = delete;
    FileStart &operator=(const FileStart &) = delete;
    ~FileStart() {
        if (file_)
            std::fclose(file_);
    }

    bool isOpen() const { return file_ != nullptr; }
    // The byte at the scan position plus offset, or NUL past the end.
    char peek(size_t offset = 0) {
        while (position_ + offset >= buffer_.size()) {
            if (!readMore())
                return '\0';
        }
        return buffer_[position_ + offset];
    }
    bool startsWith(std::string_view text) {
        for (size_t i = 0; i < text.size(); ++i) {
            if (peek(i) != text[i])
                return false;
        }
        return true;
    }
    void advance(size_t count = 1) { position_ += count; }
    // Moves past the next occurrence of text; false if the file ends first.
    bool skipPast(std::string_view text) {
        while (peek()) {
            if (startsWith(text)) {
                advance(text.size());
                return true;
            }
            advance();
        }
        return false;
    }
    void skipSpace() {
        while (isSpace(peek()))
            advance();
    }

private:
    bool readMore() {
        if (!file_ || atEnd_)
            return false;
        if (position_ > 65536) {
            buffer_.erase(0, position_);
            position_ = 0;
        }
        char chunk[4096];
        const size_t count = std::fread(chunk, 1, sizeof chunk, file_);
        if (count == 0) {
            atEnd_ = true;
            return false;
        }
        buffer_.append(chunk, count);
        return true;
    }

    std::FILE *file_;
    std::string buffer_;
    size_t position_ = 0;
    bool atEnd_ = false;
};

} // namespace

std::string QXMLDocument::readDoctypeOfFile(const std::string &fileName) {
    FileStart file(fileName);
    if (!file.isOpen())
        return {};
    if (file.startsWith("\xEF\xBB\xBF"))
        file.advance(3);
    for (;;) {
        file.skipSpace();
        if (file.startsWith("<?")) {
            if (!file.skipPast("?>"))
                return {};
        } else if (file.startsWith("<!--")) {
            file.advance(4);
            if (!file.skipPast("-->"))
                return {};
        } else {
            break;
        }
    }
    if (!file.startsWith("<!DOCTYPE") || !isSpace(file.peek(9)))
        return {};
    file.advance(9);
    file.skipSpace();
    std::string name;
    while (isDoctypeNameChar(file.peek())) {
        name += file.peek();
        file.advance();
    }
    file.skipSpace();
    return file.peek() == '>' ? name : std::string();
}
