#include "project/xml/xml_document.h"

#include "project/xml/xml_parser.h"
#include "project/xml/xml_writer.h"

#include <sys/stat.h>

XMLDocument::~XMLDocument() {
    delete root;
}

XMLElement *XMLDocument::createElement(std::string_view tagName) {
    return new XMLElement(tagName);
}

XMLElement *XMLDocument::takeRoot() {
    XMLElement *tree = root;
    root = nullptr;
    return tree;
}

bool XMLDocument::parse(const char *text) {
    delete root;
    root = nullptr;
    doctype.reset();
    version.reset();
    encoding.reset();
    errorText.clear();
    errorLine = 0;
    XMLParser parser(*this, text);
    return parser.run();
}

namespace {

// Reads the rest of a stream; false on a read error, such as a directory.
bool readAll(std::FILE *stream, std::string &buffer) {
    struct stat info;
    if (fstat(fileno(stream), &info) == 0) {
        if (S_ISDIR(info.st_mode))
            return false;
        if (S_ISREG(info.st_mode) && info.st_size > 0)
            buffer.reserve(size_t(info.st_size) + 1);
    }
    char chunk[65536];
    size_t count;
    while ((count = std::fread(chunk, 1, sizeof chunk, stream)) > 0)
        buffer.append(chunk, count);
    return !std::ferror(stream);
}

// A UTF-8 byte-order mark counts only with all three bytes.
const char *skipByteOrderMark(const std::string &buffer) {
    return buffer.c_str() + (buffer.starts_with("\xEF\xBB\xBF") ? 3 : 0);
}

} // namespace

bool XMLDocument::parseFile(std::FILE *stream) {
    std::string buffer;
    if (!readAll(stream, buffer)) {
        errorText = "couldn't read stream";
        errorLine = 0;
        return false;
    }
    return parse(skipByteOrderMark(buffer));
}

bool XMLDocument::load(const char *fileName) {
    std::FILE *stream = std::fopen(fileName, "rb");
    std::string buffer;
    const bool read = stream && readAll(stream, buffer);
    if (stream)
        std::fclose(stream);
    if (!read) {
        errorText = std::string("couldn't read ") + fileName;
        errorLine = 0;
        return false;
    }
    return parse(skipByteOrderMark(buffer));
}

void XMLDocument::write(std::string &out, int indentWidth, int width) {
    indent = indentWidth;
    lineWidth = width;
    XMLWriter(out, indent, lineWidth).writeDocument(*this);
}

bool XMLDocument::write(std::FILE *stream, int indentWidth, int width) {
    indent = indentWidth;
    lineWidth = width;
    std::string buffer;
    return XMLWriter(buffer, indent, lineWidth, stream).writeDocument(*this);
}

bool XMLDocument::save(const char *fileName, int indentWidth, int width) {
    std::FILE *stream = std::fopen(fileName, "wb");
    bool written = stream != nullptr;
    if (stream) {
        written = write(stream, indentWidth, width);
        written = std::fclose(stream) == 0 && written;
    }
    if (!written)
        errorText = std::string("couldn't write ") + fileName;
    return written;
}
