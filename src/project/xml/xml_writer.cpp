#include "project/xml/xml_writer.h"

#include "project/xml/xml_document.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace {

// Bytes that go out as they are: printable ASCII apart from the four that
// have entities.
constexpr std::array<bool, 256> plainBytes = [] {
    std::array<bool, 256> plain{};
    for (int c = 0x20; c < 0x7f; ++c)
        plain[size_t(c)] = c != '&' && c != '<' && c != '>' && c != '"';
    return plain;
}();

constexpr size_t flushSize = 256 * 1024;

// The longest replacement of one byte: "&quot;" or "&#xff;".
constexpr size_t maxEscapedSize = 6;

char *escapeInto(char *out, std::string_view text) {
    static const char hexDigits[] = "0123456789abcdef";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (plainBytes[byte]) {
            *out++ = c;
            continue;
        }
        const auto entity = [&out](std::string_view replacement) {
            std::memcpy(out, replacement.data(), replacement.size());
            out += replacement.size();
        };
        switch (c) {
        case '&':
            entity("&amp;");
            break;
        case '<':
            entity("&lt;");
            break;
        case '>':
            entity("&gt;");
            break;
        case '"':
            entity("&quot;");
            break;
        default:
            entity("&#x");
            if (byte >= 0x10)
                *out++ = hexDigits[byte >> 4];
            *out++ = hexDigits[byte & 0xf];
            *out++ = ';';
        }
    }
    return out;
}

const std::string &textOf(const XMLNode *node) {
    return static_cast<const XMLTextNode *>(node)->text();
}

// The declaration's values aren't escaped; the quote is chosen so that the
// parser reads them back whole.
char quoteFor(const std::string &value) {
    return value.find('"') == std::string::npos ? '"' : '\'';
}

} // namespace

XMLWriter::XMLWriter(std::string &out, int indent, int lineWidth, std::FILE *stream)
    : out_(out), used_(out.size()), indent_(indent < 0 ? 0 : indent), lineWidth_(lineWidth),
      stream_(stream) {}

void XMLWriter::appendEscaped(std::string &out, std::string_view text) {
    const size_t start = out.size();
    out.resize(start + text.size() * maxEscapedSize);
    char *end = escapeInto(out.data() + start, text);
    out.resize(size_t(end - out.data()));
}

void XMLWriter::grow(size_t size) {
    out_.resize(std::max(out_.size() * 2, used_ + size + 4096));
}

void XMLWriter::put(std::string_view text) {
    std::memcpy(space(text.size()), text.data(), text.size());
    used_ += text.size();
}

void XMLWriter::putEscaped(std::string_view text) {
    char *start = space(text.size() * maxEscapedSize);
    used_ += size_t(escapeInto(start, text) - start);
}

bool XMLWriter::writeDocument(const XMLDocument &document) {
    if (document.version || document.encoding) {
        put("<?xml ");
        if (document.version)
            putDeclarationValue("version", *document.version);
        if (document.encoding)
            putDeclarationValue("encoding", *document.encoding);
        put(" ?>\n");
    }
    if (document.doctype) {
        put("<!DOCTYPE ");
        put(*document.doctype);
        put(">\n");
    }
    if (document.root)
        writeNode(document.root, 0);
    if (stream_) {
        flush();
        out_.clear();
    } else {
        out_.resize(used_);
    }
    return !failed_;
}

void XMLWriter::writeNode(const XMLNode *node, int depth) {
    // Elements whose children are being written, with the next child to go.
    struct Open {
        const XMLElement *element;
        const XMLNode *next;
        int depth;
    };
    std::vector<Open> open;
    if (writeStart(node, depth))
        open.push_back({node->toElement(), node->firstChild, depth});
    while (!open.empty()) {
        if (stream_ && used_ >= flushSize)
            flush();
        Open &top = open.back();
        if (!top.next) {
            writeEndTag(top.element->tagName, top.depth);
            open.pop_back();
            continue;
        }
        const XMLNode *child = top.next;
        top.next = child->nextSibling;
        const int childDepth = top.depth + 1;
        if (writeStart(child, childDepth))
            open.push_back({child->toElement(), child->firstChild, childDepth});
    }
}

bool XMLWriter::writeStart(const XMLNode *node, int depth) {
    writeIndent(depth);
    switch (node->kind()) {
    case XMLNode::Kind::Data:
        putEscaped(textOf(node));
        return false;
    case XMLNode::Kind::Comment:
        put("<!--");
        put(textOf(node));
        put("-->");
        return false;
    case XMLNode::Kind::CDATASection:
        put("<![CDATA[");
        put(textOf(node));
        put("]]>");
        return false;
    case XMLNode::Kind::Element:
        break;
    }

    const XMLElement *element = node->toElement();
    const XMLAttributes &attributes = element->attributes();
    put('<');
    put(element->tagName);

    bool wrap = false;
    if (lineWidth_ != 0 && attributes.size() >= 2) {
        long long width = (long long)element->tagName.size() + (long long)depth * indent_ + 1;
        for (const auto &[name, value] : attributes) {
            width += (long long)name.size() + 4 + (value ? (long long)value->size() : 0);
            if (width > lineWidth_) {
                wrap = true;
                break;
            }
        }
    }
    for (const auto &[name, value] : attributes) {
        if (!value) {
            // Even in a wrapped element a valueless attribute stays in line.
            put(' ');
            put(name);
            put("=\"\"");
            continue;
        }
        if (wrap) {
            put('\n');
            writeIndent(depth + 1);
        } else {
            put(' ');
        }
        put(name);
        put("=\"");
        putEscaped(*value);
        put('"');
    }

    const XMLNode *first = element->firstChild;
    if (!first) {
        put(attributes.empty() ? "/>" : " />");
        lineFeed();
        return false;
    }
    put('>');
    if (first->kind() == XMLNode::Kind::Data) {
        // Text content stands alone: the other children aren't written.
        putEscaped(textOf(first));
        put("</");
        put(element->tagName);
        put('>');
        lineFeed();
        return false;
    }
    lineFeed();
    return true;
}

void XMLWriter::writeEndTag(const std::string &tagName, int depth) {
    writeIndent(depth);
    put("</");
    put(tagName);
    put('>');
    lineFeed();
}

void XMLWriter::writeIndent(int depth) {
    const size_t blanks = size_t(depth) * size_t(indent_);
    std::memset(space(blanks), ' ', blanks);
    used_ += blanks;
}

void XMLWriter::lineFeed() {
    if (indent_ != 0)
        put('\n');
}

void XMLWriter::putDeclarationValue(std::string_view name, const std::string &value) {
    const char quote = quoteFor(value);
    put(' ');
    put(name);
    put('=');
    put(quote);
    put(value);
    put(quote);
}

void XMLWriter::flush() {
    if (used_ && std::fwrite(out_.data(), 1, used_, stream_) != used_)
        failed_ = true;
    used_ = 0;
}
