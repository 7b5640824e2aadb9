#include "project/xml/xml_parser.h"

#include "project/xml/xml_document.h"

#include <cstring>

// Character classes of the C locale, independent of the process's locale.
namespace {

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isAttributeNameStart(char c) {
    return isLetter(c) || c == ':' || c == '_' || c == '-';
}

bool isAttributeNameChar(char c) {
    return isAttributeNameStart(c) || isDigit(c);
}

// Tag names and end-tag names run to white space, "/", ">" or the end.
bool isTagNameChar(char c) {
    return c && !isSpace(c) && c != '/' && c != '>';
}

bool isDoctypeNameChar(char c) {
    return c && !isSpace(c) && c != '>' && c != '<' && c != '[';
}

bool startsWith(const char *p, std::string_view prefix) {
    return std::strncmp(p, prefix.data(), prefix.size()) == 0;
}

// A digit of a numeric character reference: lower-case letters count on from
// 10, anything else that isn't a digit counts as 0.
unsigned referenceDigit(char c) {
    if (isDigit(c))
        return unsigned(c - '0');
    if (c >= 'a' && c <= 'z')
        return unsigned(c - 'a' + 10);
    return 0;
}

} // namespace

XMLParser::XMLParser(XMLDocument &document, const char *text) : document_(document), p_(text) {}

// Elements still open aren't linked to each other, so each is deleted alone.
XMLParser::~XMLParser() {
    for (XMLElement *element : stack_)
        delete element;
    delete result_;
}

bool XMLParser::run() {
    skipSpace();
    while (*p_) {
        if (*p_ != '<') {
            scanText();
            continue;
        }
        Next next = markup();
        if (next == Next::Error)
            return false;
        if (next == Next::Text)
            scanText();
    }
    document_.root = result_;
    result_ = nullptr;
    return true;
}

XMLParser::Next XMLParser::fail(const char *message) {
    document_.errorText = message;
    document_.errorLine = line_;
    return Next::Error;
}

XMLParser::Next XMLParser::markup() {
    const int startLine = line_;
    ++p_;
    switch (*p_) {
    case '?':
        ++p_;
        processingInstruction();
        return Next::Text;
    case '!':
        ++p_;
        return declaration(startLine);
    case '/':
        ++p_;
        return endTag();
    default:
        return startTag(startLine);
    }
}

void XMLParser::processingInstruction() {
    const char *target = p_;
    while (*p_ && !isSpace(*p_) && *p_ != '?')
        ++p_;
    if (std::string_view(target, size_t(p_ - target)) != "xml") {
        skipPast("?>");
        return;
    }
    xmlDeclaration();
    if (*p_ == '?' && *++p_ == '>')
        ++p_;
}

// The name="value" pairs of <?xml ...?> up to the "?". Only quoted values
// count; version and encoding are kept.
void XMLParser::xmlDeclaration() {
    while (*p_ && *p_ != '?') {
        if (isSpace(*p_)) {
            skipSpace();
            continue;
        }
        const char *name = p_;
        while (*p_ && !isSpace(*p_) && *p_ != '=' && *p_ != '?')
            ++p_;
        const std::string_view nameText(name, size_t(p_ - name));
        skipSpace();
        if (*p_ != '=')
            continue;
        ++p_;
        skipSpace();
        const char quote = *p_;
        if (quote != '"' && quote != '\'') {
            while (*p_ && !isSpace(*p_) && *p_ != '?')
                ++p_;
            continue;
        }
        const char *value = ++p_;
        while (*p_ && *p_ != quote) {
            if (*p_ == '\n')
                ++line_;
            ++p_;
        }
        const std::string_view valueText(value, size_t(p_ - value));
        if (*p_)
            ++p_;
        if (nameText == "version")
            document_.version = valueText;
        else if (nameText == "encoding")
            document_.encoding = valueText;
    }
}

XMLParser::Next XMLParser::declaration(int startLine) {
    if (startsWith(p_, "--")) {
        p_ += 2;
        const char *text = p_;
        const char *end = skipPast("-->");
        if (document_.keepText && !stack_.empty()) {
            auto *comment = new XMLComment(std::string(text, end));
            comment->line = startLine;
            stack_.back()->appendChild(comment);
        }
        return Next::Text;
    }
    if (startsWith(p_, "[CDATA[")) {
        p_ += 7;
        const char *text = p_;
        const char *end = skipPast("]]>");
        if (!stack_.empty()) {
            auto *section = new XMLCDATASection(std::string(text, end));
            section->line = startLine;
            stack_.back()->appendChild(section);
        }
        return Next::Text;
    }
    const char *keyword = p_;
    while (isDoctypeNameChar(*p_))
        ++p_;
    if (std::string_view(keyword, size_t(p_ - keyword)) == "DOCTYPE") {
        skipSpace();
        const char *name = p_;
        while (isDoctypeNameChar(*p_))
            ++p_;
        const std::string_view nameText(name, size_t(p_ - name));
        skipSpace();
        if (*p_ == '>')
            document_.doctype = nameText;
    }
    skipToMarkup();
    return Next::Markup;
}

XMLParser::Next XMLParser::startTag(int startLine) {
    const char *name = p_;
    while (isTagNameChar(*p_))
        ++p_;
    if (p_ == name)
        return fail("bad tagName");
    XMLElement *element = document_.createElement(std::string_view(name, size_t(p_ - name)));
    element->line = startLine;
    stack_.push_back(element);
    XMLAttributes &attributes = element->attributes_;

    for (;;) {
        skipSpace();
        const char c = *p_;
        if (!c)
            return Next::Markup;
        if (c == '>') {
            ++p_;
            return Next::Text;
        }
        if (c == '/') {
            ++p_;
            if (*p_ == '>') {
                ++p_;
                popElement();
                return Next::Text;
            }
            return endTag();
        }
        if (!isAttributeNameStart(c))
            return fail("bad tagName");
        const char *attributeName = p_;
        while (isAttributeNameChar(*p_))
            ++p_;
        const char *attributeNameEnd = p_;
        skipSpace();
        if (*p_ != '=')
            continue;
        ++p_;
        skipSpace();
        const char quote = *p_;
        if (quote != '"' && quote != '\'') {
            // An unquoted value is dropped with the attribute.
            while (*p_ && !isSpace(*p_) && *p_ != '>' && !(*p_ == '/' && p_[1] == '>'))
                ++p_;
            continue;
        }
        const char *value = ++p_;
        bool hasReference = false;
        while (*p_ && *p_ != quote) {
            if (*p_ == '\n')
                ++line_;
            else if (*p_ == '&')
                hasReference = true;
            ++p_;
        }
        // Files written by the program have their attributes in order, so the
        // end is the right place to insert almost always.
        auto it = attributes.try_emplace(attributes.end(),
                                         std::string(attributeName, attributeNameEnd));
        if (hasReference)
            appendDecoded(it->second.emplace(), value, p_, false);
        else
            it->second.emplace(value, p_);
        if (*p_)
            ++p_;
    }
}

XMLParser::Next XMLParser::endTag() {
    const char *name = p_;
    while (isTagNameChar(*p_))
        ++p_;
    if (!closeElement(std::string_view(name, size_t(p_ - name))))
        return Next::Error;
    skipPast(">");
    return Next::Text;
}

// An end tag closes the top element if it names a prefix of its tag.
bool XMLParser::closeElement(std::string_view name) {
    if (stack_.empty())
        return true;
    const std::string &tag = stack_.back()->tagName;
    if (tag.size() < name.size() || tag.compare(0, name.size(), name) != 0) {
        fail("tagName mismatch");
        return false;
    }
    popElement();
    return true;
}

void XMLParser::popElement() {
    XMLElement *element = stack_.back();
    stack_.pop_back();
    if (!stack_.empty()) {
        stack_.back()->appendChild(element);
    } else {
        delete result_;
        result_ = element;
    }
}

void XMLParser::scanText() {
    const char *text = p_;
    const int startLine = line_;
    bool needsDecoding = false;
    while (*p_ && *p_ != '<') {
        if (*p_ == '\n')
            ++line_;
        else if (*p_ == '&' || *p_ == '\r')
            needsDecoding = true;
        ++p_;
    }
    if (!document_.keepText || stack_.empty())
        return;
    auto *data = new XMLData;
    if (needsDecoding) {
        std::string decoded;
        appendDecoded(decoded, text, p_, true);
        data->setText(std::move(decoded));
    } else {
        data->setText(std::string(text, p_));
    }
    data->line = startLine;
    stack_.back()->appendChild(data);
}

void XMLParser::skipSpace() {
    while (isSpace(*p_)) {
        if (*p_ == '\n')
            ++line_;
        ++p_;
    }
}

const char *XMLParser::skipPast(std::string_view terminator) {
    while (*p_) {
        if (*p_ == terminator[0] && startsWith(p_, terminator)) {
            const char *found = p_;
            p_ += terminator.size();
            return found;
        }
        if (*p_ == '\n')
            ++line_;
        ++p_;
    }
    return p_;
}

void XMLParser::skipToMarkup() {
    while (*p_ && *p_ != '<') {
        if (*p_ == '\n')
            ++line_;
        ++p_;
    }
}

void XMLParser::appendDecoded(std::string &out, const char *s, const char *end,
                              bool dropCarriageReturns) {
    // Once a search for ";" has failed, no later reference can have one:
    // remembering that keeps a text full of "&#" linear.
    const char *noSemicolonFrom = end;
    while (s < end) {
        const char *run = s;
        while (s < end && *s != '&' && !(dropCarriageReturns && *s == '\r'))
            ++s;
        out.append(run, s);
        if (s == end)
            break;
        if (*s == '\r') {
            ++s;
            continue;
        }
        const std::string_view rest(s, size_t(end - s));
        struct Named {
            std::string_view text;
            char byte;
        };
        static constexpr Named named[] = {
            {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''},
        };
        bool decoded = false;
        for (const Named &entity : named) {
            if (rest.starts_with(entity.text)) {
                out += entity.byte;
                s += entity.text.size();
                decoded = true;
                break;
            }
        }
        if (decoded)
            continue;
        if (rest.starts_with("&#")) {
            const char *digits = s + 2;
            const char *semicolon = nullptr;
            if (digits < noSemicolonFrom) {
                semicolon = static_cast<const char *>(
                    std::memchr(digits, ';', size_t(end - digits)));
                if (!semicolon)
                    noSemicolonFrom = digits;
            }
            if (semicolon) {
                unsigned base = 10;
                if (digits < semicolon && *digits == 'x') {
                    base = 16;
                    ++digits;
                }
                unsigned value = 0;
                for (; digits < semicolon; ++digits)
                    value = value * base + referenceDigit(*digits);
                out += char(value & 0xff);
                s = semicolon + 1;
                continue;
            }
        }
        out += '&';
        ++s;
    }
}
