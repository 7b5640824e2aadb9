#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Token ids of the C-style token table. TOKEN_EOF is in no table.
enum TokenId : std::uint32_t {
    TOKEN_EOL = 0,
    TOKEN_EOF = 1,
    TOKEN_SPACE = 2,
    TOKEN_INTEGER = 3,
    TOKEN_HEXINTEGER = 4,
    TOKEN_BININTEGER = 5,
    TOKEN_FLOAT = 6,
    TOKEN_STRING = 7,
    TOKEN_IDENT = 8,
    TOKEN_REGISTER = 9,
    TOKEN_SEMICOLON = 10,
    TOKEN_COLON = 11,
    TOKEN_COLONCOLON = 12,
    TOKEN_LPAREN = 13,
    TOKEN_RPAREN = 14,
    TOKEN_LBRACK = 15,
    TOKEN_RBRACK = 16,
    TOKEN_LCURLY = 17,
    TOKEN_RCURLY = 18,
    TOKEN_DOT = 19,
    TOKEN_POINTSAT = 20,
    TOKEN_INCREMENT = 21,
    TOKEN_DECREMENT = 22,
    TOKEN_BITNOT = 23,
    TOKEN_LOGNOT = 24,
    TOKEN_STAR = 25,
    TOKEN_SLASH = 26,
    TOKEN_MOD = 27,
    TOKEN_PLUS = 28,
    TOKEN_MINUS = 29,
    TOKEN_LSHIFT = 30,
    TOKEN_RSHIFT = 31,
    TOKEN_ARSHIFT = 32,
    TOKEN_LT = 33,
    TOKEN_LE = 34,
    TOKEN_GT = 35,
    TOKEN_GE = 36,
    TOKEN_EQ = 37,
    TOKEN_NE = 38,
    TOKEN_BITAND = 39,
    TOKEN_BITXOR = 40,
    TOKEN_BITOR = 41,
    TOKEN_LOGAND = 42,
    TOKEN_LOGOR = 43,
    TOKEN_CONDITION = 44,
    TOKEN_ASSIGN = 45,
    TOKEN_PLUS_ASSIGN = 46,
    TOKEN_MINUS_ASSIGN = 47,
    TOKEN_STAR_ASSIGN = 48,
    TOKEN_DIV_ASSIGN = 49,
    TOKEN_MOD_ASSIGN = 50,
    TOKEN_RSHIFT_ASSIGN = 51,
    TOKEN_LSHIFT_ASSIGN = 52,
    TOKEN_ARSHIFT_ASSIGN = 53,
    TOKEN_BITAND_ASSIGN = 54,
    TOKEN_BITXOR_ASSIGN = 55,
    TOKEN_BITOR_ASSIGN = 56,
    TOKEN_COMMA = 57,
};

// One matcher of a lexer's table. It carries the id and the binary operator
// precedence of what it matches (10: not a binary operator).
class LexerToken {
public:
    LexerToken(std::uint32_t id, std::int32_t precedence) : id_(id), precedence_(precedence) {}
    virtual ~LexerToken();

    // The length of the token that begins at position in text, or 0 for no
    // match (an empty token would make no progress, so none is empty).
    virtual std::size_t match(std::string_view text, std::size_t position) const = 0;

    std::uint32_t id() const { return id_; }
    std::int32_t precedence() const { return precedence_; }

private:
    std::uint32_t id_;
    std::int32_t precedence_;
};

// A regular expression in a small syntax: literal characters, "\d", "\"
// before a punctuation character, classes "[a-z_$]", each followed by an
// optional "?", "*" or "+". The pattern is compiled once, in the constructor,
// into a list of character sets, and matched at the position without
// searching or allocating. A quantified atom takes all it can and doesn't
// give back, which is exact when neighbouring atoms can't match the same
// character, as in every pattern of the C-style table. Other syntax is a
// programming error (std::invalid_argument).
class RegularExpressionLexerToken : public LexerToken {
public:
    RegularExpressionLexerToken(std::string_view pattern, std::uint32_t id,
                                std::int32_t precedence);
    ~RegularExpressionLexerToken() override;

    std::size_t match(std::string_view text, std::size_t position) const override;

private:
    struct Atom;
    std::vector<Atom> atoms_;
};

// One ASCII character.
class CharacterLexerToken : public LexerToken {
public:
    CharacterLexerToken(char character, std::uint32_t id, std::int32_t precedence)
        : LexerToken(id, precedence), character_(character) {}

    std::size_t match(std::string_view text, std::size_t position) const override;

private:
    char character_;
};

// The character categories that CategoryLexerToken knows.
enum class UnicodeCategory {
    // ' ' and the other space separators of Unicode (not tab, not newline).
    SpaceSeparator,
};

// The longest run of characters of a category, up to maximumLength
// characters (0: no limit). Input is UTF-8.
class CategoryLexerToken : public LexerToken {
public:
    CategoryLexerToken(UnicodeCategory category, int maximumLength, std::uint32_t id,
                       std::int32_t precedence)
        : LexerToken(id, precedence), category_(category), maximumLength_(maximumLength) {}

    std::size_t match(std::string_view text, std::size_t position) const override;

    // The length in bytes of the character of category at position, or 0.
    static std::size_t characterLength(UnicodeCategory category, std::string_view text,
                                       std::size_t position);

private:
    UnicodeCategory category_;
    int maximumLength_;
};

// A fixed string, compared exactly.
class StringLexerToken : public LexerToken {
public:
    StringLexerToken(std::string text, std::uint32_t id, std::int32_t precedence)
        : LexerToken(id, precedence), text_(std::move(text)) {}

    std::size_t match(std::string_view text, std::size_t position) const override;

private:
    std::string text_;
};

// A double-quoted string, quotes included. A quote right behind a backslash
// doesn't end it; without a closing quote there is no match.
class CStyleStringLiteralLexerToken : public LexerToken {
public:
    CStyleStringLiteralLexerToken(std::uint32_t id, std::int32_t precedence)
        : LexerToken(id, precedence) {}

    std::size_t match(std::string_view text, std::size_t position) const override;
};

// A table-driven token source over a stack of inputs. The matchers are tried
// in the order they were added and the first match wins. An identifier can be
// replaced by text of its own (substitute), which is then read as an input
// pushed on the stack.
class Lexer {
public:
    // Substitutions nest at most this deep.
    static constexpr int maximumSubstitutionDepth = 100;

    Lexer();
    virtual ~Lexer();
    Lexer(const Lexer &) = delete;
    Lexer &operator=(const Lexer &) = delete;

    // Replacement text for an identifier; empty for none.
    virtual std::string substitute(const std::string &identifier);

    void addToken(std::unique_ptr<LexerToken> matcher);

    // Makes text the only input and reads its first token.
    void setInput(std::string text);

    // Reads the next token, skipping TOKEN_SPACE. At the end of the input the
    // token is TOKEN_EOL with an empty text. Throws ParserException for text
    // that no matcher takes.
    void advance();

    std::uint32_t tokenId() const { return tokenId_; }
    std::int32_t precedence() const { return precedence_; }
    const std::string &tokenText() const { return tokenText_; }
    bool is(std::string_view text) const { return tokenText_ == text; }

    // TOKEN_INTEGER: C rules, so a leading 0 means octal; suffixes are ignored.
    std::int64_t integerValue() const;
    // TOKEN_HEXINTEGER and TOKEN_BININTEGER.
    std::uint64_t unsignedValue() const;
    // TOKEN_FLOAT.
    double floatValue() const;

    // "TOKEN_..." of the current token; "TOKEN_UNKNOWN" for an id outside
    // the table.
    const char *tokenName() const { return tokenName(tokenId_); }
    static const char *tokenName(std::uint32_t id);

    // Read position in the outermost input, the text given to setInput.
    std::size_t position() const;

protected:
    // Appends a matcher that outlives the lexer and isn't owned by it, such
    // as one of a table that all lexers of a kind share.
    void addSharedToken(const LexerToken &matcher) { matchers_.push_back(&matcher); }

private:
    struct Input {
        std::string text;
        std::size_t position = 0;
    };

    std::uint32_t tokenId_ = TOKEN_EOL;
    std::int32_t precedence_ = 10;
    std::vector<Input> inputs_; // innermost last
    std::string tokenText_;
    std::vector<const LexerToken *> matchers_; // in the order of trying
    std::vector<std::unique_ptr<LexerToken>> ownedMatchers_;
};
