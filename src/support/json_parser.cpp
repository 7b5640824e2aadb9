// The JSON reader. It is lenient where the model is (unknown escapes are
// dropped, a number is whatever its characters convert to) and strict about
// structure. Each error names the place where the reader stood: the column
// in characters from the start of the line, and the line from 0.

#include "support/json_value.h"

#include "support/exceptions.h"

#include <charconv>

namespace JSON {

namespace {

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    void value(Value &result, int depth) {
        skipSpace();
        const char c = text_[pos_];
        if (c == '{')
            object(result, depth + 1);
        else if (c == '[')
            array(result, depth + 1);
        else if (c == '"')
            result = Value(string());
        else if (c == '-' || (c >= '0' && c <= '9'))
            result = Value(number());
        else if (c == 't')
            result = Value(keyword("true", "'true' expected"));
        else if (c == 'f')
            result = Value(keyword("false", "'false' expected"));
        else if (c == 'n') {
            keyword("null", "'null' expected");
            result = Value();
        } else
            fail("syntax error");
    }

private:
    [[noreturn]] void fail(const char *message) const {
        // Columns count UTF-16 units, so a character outside the basic plane
        // counts twice; continuation bytes don't count.
        int column = 0;
        for (std::size_t i = lineStart_; i < pos_; ++i) {
            const auto byte = static_cast<unsigned char>(text_[i]);
            column += (byte & 0xC0) != 0x80;
            column += byte >= 0xF0;
        }
        throw HException(std::string(message) + " (column: " + std::to_string(column) +
                         " line: " + std::to_string(line_) + ")");
    }

    // The length of the whitespace character at the read position, 0 if
    // there is none there.
    std::size_t spaceLength() const {
        const auto at = [&](std::size_t i) {
            return pos_ + i < text_.size() ? static_cast<unsigned char>(text_[pos_ + i]) : 0u;
        };
        const unsigned c = at(0);
        if (c == ' ' || (c >= '\t' && c <= '\r'))
            return 1;
        if (c == 0xC2 && (at(1) == 0x85 || at(1) == 0xA0))
            return 2;
        if (c == 0xE1 && at(1) == 0x9A && at(2) == 0x80)
            return 3;  // U+1680
        if (c == 0xE3 && at(1) == 0x80 && at(2) == 0x80)
            return 3;  // U+3000
        if (c == 0xE2 && at(1) == 0x80 && (at(2) <= 0x8A || at(2) == 0xA8 || at(2) == 0xA9 || at(2) == 0xAF))
            return at(2) >= 0x80 ? 3 : 0;  // U+2000 to U+200A, U+2028, U+2029, U+202F
        if (c == 0xE2 && at(1) == 0x81 && at(2) == 0x9F)
            return 3;  // U+205F
        return 0;
    }

    // Skips whitespace; the input may not end here.
    void skipSpace() {
        for (;;) {
            if (pos_ >= text_.size())
                fail("unexpected end of file");
            const std::size_t length = spaceLength();
            if (!length)
                return;
            if (text_[pos_] == '\n') {
                ++line_;
                lineStart_ = pos_ + 1;
            }
            pos_ += length;
        }
    }

    void object(Value &result, int depth) {
        if (depth > maximumDepth)
            fail("nesting too deep");
        result.setType(Object);
        ++pos_;
        skipSpace();
        if (text_[pos_] == '}') {
            ++pos_;
            return;
        }
        for (;;) {
            skipSpace();
            if (text_[pos_] != '"')
                fail("string expected");
            std::string key = string();
            skipSpace();
            if (text_[pos_] != ':')
                fail("':' character expected");
            ++pos_;
            Value member;
            value(member, depth);
            result.setMember(std::move(key), std::move(member));
            skipSpace();
            const char c = text_[pos_];
            if (c == '}') {
                ++pos_;
                return;
            }
            if (c != ',')
                fail("',' character expected");
            ++pos_;
        }
    }

    void array(Value &result, int depth) {
        if (depth > maximumDepth)
            fail("nesting too deep");
        result.setType(Array);
        ++pos_;
        skipSpace();
        if (text_[pos_] == ']') {
            ++pos_;
            return;
        }
        for (;;) {
            Value element;
            value(element, depth);
            result.append(std::move(element));
            skipSpace();
            const char c = text_[pos_];
            if (c == ']') {
                ++pos_;
                return;
            }
            if (c != ',')
                fail("',' character expected");
            ++pos_;
        }
    }

    // From the opening quote to behind the closing one. Plain runs are
    // appended whole.
    std::string string() {
        std::string result;
        ++pos_;
        for (;;) {
            const std::size_t stop = text_.find_first_of("\"\\", pos_);
            if (stop == std::string_view::npos) {
                pos_ = text_.size();
                fail("unexpected end of file");
            }
            result.append(text_, pos_, stop - pos_);
            pos_ = stop + 1;
            if (text_[stop] == '"')
                return result;
            if (pos_ >= text_.size())
                fail("unexpected end of file");
            switch (text_[pos_]) {
            case '"': result += '"'; break;
            case '\\': result += '\\'; break;
            case 'b': result += '\b'; break;
            case 'f': result += '\f'; break;
            case 'n': result += '\n'; break;
            case 'r': result += '\r'; break;
            case 't': result += '\t'; break;
            default:
                // An unknown escape drops the backslash and the character,
                // all of its bytes.
                while (pos_ + 1 < text_.size() && (static_cast<unsigned char>(text_[pos_ + 1]) & 0xC0) == 0x80)
                    ++pos_;
                break;
            }
            ++pos_;
        }
    }

    double number() {
        const std::size_t start = pos_++;
        while (pos_ < text_.size()) {
            const char c = text_[pos_];
            if (!((c >= '0' && c <= '9') || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-'))
                break;
            ++pos_;
        }
        double result = 0.0;
        const char *first = text_.data() + start;
        const char *last = text_.data() + pos_;
        const auto [end, error] = std::from_chars(first, last, result);
        if (error != std::errc() || end != last)
            fail("invalid number");
        return result;
    }

    bool keyword(std::string_view word, const char *message) {
        if (text_.substr(pos_, word.size()) != word)
            fail(message);
        pos_ += word.size();
        return word == "true";
    }

    std::string_view text_;
    std::size_t pos_ = 0;
    std::size_t lineStart_ = 0;
    int line_ = 0;
};

}  // namespace

void parse(std::string_view text, Value &value) { Parser(text).value(value, 0); }

}  // namespace JSON
