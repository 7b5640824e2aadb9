#include "support/lexer.h"

#include "support/exceptions.h"

#include <bitset>
#include <cctype>
#include <cstdlib>
#include <iterator>
#include <stdexcept>

LexerToken::~LexerToken() = default;

// One character set with how often it may repeat.
struct RegularExpressionLexerToken::Atom {
    std::bitset<256> characters;
    int minimum = 1;
    bool repeats = false;
};

RegularExpressionLexerToken::RegularExpressionLexerToken(std::string_view pattern,
                                                         std::uint32_t id,
                                                         std::int32_t precedence)
    : LexerToken(id, precedence) {
    auto bad = [&pattern]() {
        return std::invalid_argument("unsupported regular expression: " + std::string(pattern));
    };
    std::size_t i = 0;
    while (i < pattern.size()) {
        Atom atom;
        const char c = pattern[i++];
        if (c == '\\') {
            if (i == pattern.size())
                throw bad();
            const char escaped = pattern[i++];
            if (escaped == 'd') {
                for (char digit = '0'; digit <= '9'; ++digit)
                    atom.characters.set(static_cast<unsigned char>(digit));
            } else if (std::ispunct(static_cast<unsigned char>(escaped))) {
                atom.characters.set(static_cast<unsigned char>(escaped));
            } else {
                throw bad();
            }
        } else if (c == '[') {
            const std::size_t close = pattern.find(']', i);
            if (close == std::string_view::npos || close == i || pattern[i] == '^')
                throw bad();
            for (; i < close; ++i) {
                const auto first = static_cast<unsigned char>(pattern[i]);
                if (i + 2 < close && pattern[i + 1] == '-') {
                    const auto last = static_cast<unsigned char>(pattern[i + 2]);
                    if (last < first)
                        throw bad();
                    for (unsigned x = first; x <= last; ++x)
                        atom.characters.set(x);
                    i += 2;
                } else {
                    atom.characters.set(first);
                }
            }
            i = close + 1;
        } else if (std::string_view("]?*+().|^${}").find(c) != std::string_view::npos) {
            throw bad();
        } else {
            atom.characters.set(static_cast<unsigned char>(c));
        }
        if (i < pattern.size() && std::string_view("?*+").find(pattern[i]) != std::string_view::npos) {
            atom.minimum = pattern[i] == '+' ? 1 : 0;
            atom.repeats = pattern[i] != '?';
            ++i;
        }
        atoms_.push_back(atom);
    }
}

RegularExpressionLexerToken::~RegularExpressionLexerToken() = default;

std::size_t RegularExpressionLexerToken::match(std::string_view text, std::size_t position) const {
    std::size_t end = position;
    for (const Atom &atom : atoms_) {
        int count = 0;
        while (end < text.size() && atom.characters.test(static_cast<unsigned char>(text[end]))) {
            ++end;
            ++count;
            if (!atom.repeats)
                break;
        }
        if (count < atom.minimum)
            return 0;
    }
    return end - position;
}

std::size_t CharacterLexerToken::match(std::string_view text, std::size_t position) const {
    return position < text.size() && text[position] == character_ ? 1 : 0;
}

std::size_t CategoryLexerToken::characterLength(UnicodeCategory category, std::string_view text,
                                                std::size_t position) {
    switch (category) {
    case UnicodeCategory::SpaceSeparator: {
        auto byte = [&](std::size_t offset) -> unsigned {
            return position + offset < text.size()
                       ? static_cast<unsigned char>(text[position + offset])
                       : 0u;
        };
        const unsigned first = byte(0);
        if (first == 0x20)
            return 1;
        if (first == 0xC2)                                       // U+00A0
            return byte(1) == 0xA0 ? 2 : 0;
        if (first == 0xE1)                                       // U+1680
            return byte(1) == 0x9A && byte(2) == 0x80 ? 3 : 0;
        if (first == 0xE2 && byte(1) == 0x80)                    // U+2000..U+200A, U+202F
            return (byte(2) >= 0x80 && byte(2) <= 0x8A) || byte(2) == 0xAF ? 3 : 0;
        if (first == 0xE2 && byte(1) == 0x81)                    // U+205F
            return byte(2) == 0x9F ? 3 : 0;
        if (first == 0xE3)                                       // U+3000
            return byte(1) == 0x80 && byte(2) == 0x80 ? 3 : 0;
        return 0;
    }
    }
    return 0;
}

std::size_t CategoryLexerToken::match(std::string_view text, std::size_t position) const {
    std::size_t end = position;
    for (int count = 0; maximumLength_ == 0 || count < maximumLength_; ++count) {
        const std::size_t length = characterLength(category_, text, end);
        if (length == 0)
            break;
        end += length;
    }
    return end - position;
}

std::size_t StringLexerToken::match(std::string_view text, std::size_t position) const {
    return position <= text.size() && text.substr(position).starts_with(text_) ? text_.size() : 0;
}

std::size_t CStyleStringLiteralLexerToken::match(std::string_view text,
                                                 std::size_t position) const {
    if (position >= text.size() || text[position] != '"')
        return 0;
    for (std::size_t i = position + 1; i < text.size(); ++i) {
        if (text[i] == '"' && text[i - 1] != '\\')
            return i + 1 - position;
    }
    return 0;
}

Lexer::Lexer() = default;
Lexer::~Lexer() = default;

std::string Lexer::substitute(const std::string &) {
    return {};
}

void Lexer::addToken(std::unique_ptr<LexerToken> matcher) {
    matchers_.push_back(matcher.get());
    ownedMatchers_.push_back(std::move(matcher));
}

void Lexer::setInput(std::string text) {
    inputs_.clear();
    inputs_.push_back({std::move(text), 0});
    advance();
}

void Lexer::advance() {
    for (;;) {
        while (inputs_.size() > 1 && inputs_.back().position >= inputs_.back().text.size())
            inputs_.pop_back();
        if (inputs_.empty() || inputs_.back().position >= inputs_.back().text.size()) {
            tokenId_ = TOKEN_EOL;
            precedence_ = 10;
            tokenText_.clear();
            return;
        }

        Input &input = inputs_.back();
        const LexerToken *winner = nullptr;
        std::size_t length = 0;
        for (const LexerToken *matcher : matchers_) {
            length = matcher->match(input.text, input.position);
            if (length > 0) {
                winner = matcher;
                break;
            }
        }
        if (!winner)
            throw ParserException("unrecognised token: " + input.text.substr(input.position));

        tokenId_ = winner->id();
        precedence_ = winner->precedence();
        tokenText_.assign(input.text, input.position, length);
        input.position += length;

        if (tokenId_ == TOKEN_IDENT) {
            // The count of inputs is one more than the nesting of substitutions.
            if (static_cast<int>(inputs_.size()) <= maximumSubstitutionDepth) {
                std::string replacement = substitute(tokenText_);
                if (!replacement.empty() && replacement != tokenText_) {
                    inputs_.push_back({std::move(replacement), 0});
                    continue;
                }
            }
            return;
        }
        if (tokenId_ != TOKEN_SPACE)
            return;
    }
}

std::int64_t Lexer::integerValue() const {
    return std::strtoll(tokenText_.c_str(), nullptr, 0);
}

std::uint64_t Lexer::unsignedValue() const {
    if (tokenText_.starts_with("0b"))
        return std::strtoull(tokenText_.c_str() + 2, nullptr, 2);
    return std::strtoull(tokenText_.c_str(), nullptr, 0);
}

double Lexer::floatValue() const {
    return std::strtod(tokenText_.c_str(), nullptr);
}

std::size_t Lexer::position() const {
    return inputs_.empty() ? 0 : inputs_.front().position;
}

const char *Lexer::tokenName(std::uint32_t id) {
    static const char *const names[] = {
        "TOKEN_EOL",           "TOKEN_EOF",           "TOKEN_SPACE",
        "TOKEN_INTEGER",       "TOKEN_HEXINTEGER",    "TOKEN_BININTEGER",
        "TOKEN_FLOAT",         "TOKEN_STRING",        "TOKEN_IDENT",
        "TOKEN_REGISTER",      "TOKEN_SEMICOLON",     "TOKEN_COLON",
        "TOKEN_COLONCOLON",    "TOKEN_LPAREN",        "TOKEN_RPAREN",
        "TOKEN_LBRACK",        "TOKEN_RBRACK",        "TOKEN_LCURLY",
        "TOKEN_RCURLY",        "TOKEN_DOT",           "TOKEN_POINTSAT",
        "TOKEN_INCREMENT",     "TOKEN_DECREMENT",     "TOKEN_BITNOT",
        "TOKEN_LOGNOT",        "TOKEN_STAR",          "TOKEN_SLASH",
        "TOKEN_MOD",           "TOKEN_PLUS",          "TOKEN_MINUS",
        "TOKEN_LSHIFT",        "TOKEN_RSHIFT",        "TOKEN_ARSHIFT",
        "TOKEN_LT",            "TOKEN_LE",            "TOKEN_GT",
        "TOKEN_GE",            "TOKEN_EQ",            "TOKEN_NE",
        "TOKEN_BITAND",        "TOKEN_BITXOR",        "TOKEN_BITOR",
        "TOKEN_LOGAND",        "TOKEN_LOGOR",         "TOKEN_CONDITION",
        "TOKEN_ASSIGN",        "TOKEN_PLUS_ASSIGN",   "TOKEN_MINUS_ASSIGN",
        "TOKEN_STAR_ASSIGN",   "TOKEN_DIV_ASSIGN",    "TOKEN_MOD_ASSIGN",
        "TOKEN_RSHIFT_ASSIGN", "TOKEN_LSHIFT_ASSIGN", "TOKEN_ARSHIFT_ASSIGN",
        "TOKEN_BITAND_ASSIGN", "TOKEN_BITXOR_ASSIGN", "TOKEN_BITOR_ASSIGN",
        "TOKEN_COMMA",
    };
    static_assert(std::size(names) == TOKEN_COMMA + 1);
    return id < std::size(names) ? names[id] : "TOKEN_UNKNOWN";
}
