#include "support/c_style_lexer.h"

#include "support/exceptions.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>
#include <vector>

namespace {

using Tokens = std::vector<std::pair<std::uint32_t, std::string>>;

// All tokens of text, up to TOKEN_EOL.
Tokens tokensOf(Lexer &lexer, const std::string &text) {
    Tokens tokens;
    lexer.setInput(text);
    for (int guard = 0; lexer.tokenId() != TOKEN_EOL && guard < 1000; ++guard) {
        tokens.emplace_back(lexer.tokenId(), lexer.tokenText());
        lexer.advance();
    }
    EXPECT_EQ(lexer.tokenText(), "");
    return tokens;
}

Tokens tokensOf(const std::string &text) {
    CStyleLexer lexer;
    return tokensOf(lexer, text);
}

std::string errorOf(const std::string &text) {
    CStyleLexer lexer;
    try {
        tokensOf(lexer, text);
    } catch (const ParserException &e) {
        return e.message();
    }
    return "no error";
}

TEST(CStyleLexerTest, SplitsTextIntoTokens) {
    const struct {
        std::string text;
        Tokens tokens;
    } cases[] = {
        {"", {}},
        {"   ", {}},
        {"0x", {{TOKEN_HEXINTEGER, "0x"}}},
        {"0XfFu", {{TOKEN_HEXINTEGER, "0XfFu"}}},
        {"0x1FULL", {{TOKEN_HEXINTEGER, "0x1FULL"}}},
        {"0b", {{TOKEN_BININTEGER, "0b"}}},
        {"0b102", {{TOKEN_BININTEGER, "0b10"}, {TOKEN_INTEGER, "2"}}},
        {"1.5", {{TOKEN_FLOAT, "1.5"}}},
        {"1.", {{TOKEN_INTEGER, "1"}, {TOKEN_DOT, "."}}},
        {".5", {{TOKEN_DOT, "."}, {TOKEN_INTEGER, "5"}}},
        {"12UL 12ul", {{TOKEN_INTEGER, "12UL"}, {TOKEN_INTEGER, "12ul"}}},
        {"12lu", {{TOKEN_INTEGER, "12l"}, {TOKEN_IDENT, "u"}}},
        {"12LU", {{TOKEN_INTEGER, "12L"}, {TOKEN_IDENT, "U"}}},
        {"a$b _x9", {{TOKEN_IDENT, "a$b"}, {TOKEN_IDENT, "_x9"}}},
        {"9a", {{TOKEN_INTEGER, "9"}, {TOKEN_IDENT, "a"}}},
        {"@", {{TOKEN_REGISTER, "@"}}},
        {"@r0+1", {{TOKEN_REGISTER, "@r0"}, {TOKEN_PLUS, "+"}, {TOKEN_INTEGER, "1"}}},
        {"a>>>=b", {{TOKEN_IDENT, "a"}, {TOKEN_ARSHIFT_ASSIGN, ">>>="}, {TOKEN_IDENT, "b"}}},
        {"a>>", {{TOKEN_IDENT, "a"}, {TOKEN_RSHIFT, ">>"}}},
        {">>> >>= <<= <<", {{TOKEN_ARSHIFT, ">>>"}, {TOKEN_RSHIFT_ASSIGN, ">>="},
                            {TOKEN_LSHIFT_ASSIGN, "<<="}, {TOKEN_LSHIFT, "<<"}}},
        {"a::b:c", {{TOKEN_IDENT, "a"}, {TOKEN_COLONCOLON, "::"}, {TOKEN_IDENT, "b"},
                    {TOKEN_COLON, ":"}, {TOKEN_IDENT, "c"}}},
        {"\"a\\\"b\"", {{TOKEN_STRING, "\"a\\\"b\""}}},
        {"\"\"\"x\"", {{TOKEN_STRING, "\"\""}, {TOKEN_STRING, "\"x\""}}},
        {"x->y", {{TOKEN_IDENT, "x"}, {TOKEN_POINTSAT, "->"}, {TOKEN_IDENT, "y"}}},
        {"---", {{TOKEN_DECREMENT, "--"}, {TOKEN_MINUS, "-"}}},
        {"!!=", {{TOKEN_LOGNOT, "!"}, {TOKEN_NE, "!="}}},
        {"&&&", {{TOKEN_LOGAND, "&&"}, {TOKEN_BITAND, "&"}}},
        {"|||=", {{TOKEN_LOGOR, "||"}, {TOKEN_BITOR_ASSIGN, "|="}}},
        // Spaces of other scripts separate tokens too (UTF-8 of U+00A0,
        // U+2003, U+3000).
        {"1\xC2\xA0" "2\xE2\x80\x83" "3\xE3\x80\x80",
         {{TOKEN_INTEGER, "1"}, {TOKEN_INTEGER, "2"}, {TOKEN_INTEGER, "3"}}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tokensOf(c.text), c.tokens) << c.text;
}

TEST(CStyleLexerTest, EveryOperatorHasItsIdAndPrecedence) {
    const std::map<std::string, std::pair<std::uint32_t, int>> operators = {
        {";", {TOKEN_SEMICOLON, 10}},   {"(", {TOKEN_LPAREN, 10}},
        {")", {TOKEN_RPAREN, 10}},      {"[", {TOKEN_LBRACK, 10}},
        {"]", {TOKEN_RBRACK, 10}},      {"{", {TOKEN_LCURLY, 10}},
        {"}", {TOKEN_RCURLY, 10}},      {"++", {TOKEN_INCREMENT, 10}},
        {"~", {TOKEN_BITNOT, 10}},      {"*", {TOKEN_STAR, 9}},
        {"/", {TOKEN_SLASH, 9}},        {"%", {TOKEN_MOD, 9}},
        {"+", {TOKEN_PLUS, 8}},         {"-", {TOKEN_MINUS, 8}},
        {">>>", {TOKEN_ARSHIFT, 7}},    {"<", {TOKEN_LT, 6}},
        {"<=", {TOKEN_LE, 6}},          {">", {TOKEN_GT, 6}},
        {">=", {TOKEN_GE, 6}},          {"==", {TOKEN_EQ, 5}},
        {"!=", {TOKEN_NE, 5}},          {"&", {TOKEN_BITAND, 4}},
        {"^", {TOKEN_BITXOR, 3}},       {"|", {TOKEN_BITOR, 2}},
        {"&&", {TOKEN_LOGAND, 1}},      {"||", {TOKEN_LOGOR, 0}},
        {"?", {TOKEN_CONDITION, -1}},   {"=", {TOKEN_ASSIGN, -2}},
        {"*=", {TOKEN_STAR_ASSIGN, -3}}, {"/=", {TOKEN_DIV_ASSIGN, -3}},
        {"%=", {TOKEN_MOD_ASSIGN, -3}}, {"+=", {TOKEN_PLUS_ASSIGN, -3}},
        {"-=", {TOKEN_MINUS_ASSIGN, -3}}, {"&=", {TOKEN_BITAND_ASSIGN, -3}},
        {"^=", {TOKEN_BITXOR_ASSIGN, -3}}, {",", {TOKEN_COMMA, -4}},
    };
    CStyleLexer lexer;
    for (const auto &[text, expected] : operators) {
        lexer.setInput(text);
        EXPECT_EQ(lexer.tokenId(), expected.first) << text;
        EXPECT_EQ(lexer.precedence(), expected.second) << text;
        EXPECT_EQ(lexer.tokenText(), text);
        EXPECT_TRUE(lexer.is(text));
    }
}

TEST(CStyleLexerTest, UnrecognisedTextGivesTheRestOfTheInput) {
    EXPECT_EQ(errorOf("1 +\t2"), "unrecognised token: \t2");
    EXPECT_EQ(errorOf("a\nb"), "unrecognised token: \nb");
    EXPECT_EQ(errorOf("x # y"), "unrecognised token: # y");
    // A string without its closing quote matches nothing.
    EXPECT_EQ(errorOf("1 \"abc"), "unrecognised token: \"abc");
    EXPECT_EQ(errorOf("\"a\\\""), "unrecognised token: \"a\\\"");
    // The first bytes of a space separator alone aren't one.
    EXPECT_EQ(errorOf("\xC2\xA1"), "unrecognised token: \xC2\xA1");
}

TEST(CStyleLexerTest, NumberValues) {
    CStyleLexer lexer;
    const struct {
        std::string text;
        std::int64_t value;
    } integers[] = {{"010", 8}, {"12UL", 12}, {"12ul", 12}, {"0", 0}, {"09", 0},
                    {"99999999999999999999", INT64_MAX}};
    for (const auto &c : integers) {
        lexer.setInput(c.text);
        ASSERT_EQ(lexer.tokenId(), TOKEN_INTEGER) << c.text;
        EXPECT_EQ(lexer.integerValue(), c.value) << c.text;
    }
    const struct {
        std::string text;
        std::uint64_t value;
    } unsignedValues[] = {{"0x", 0}, {"0b", 0}, {"0x1f", 31}, {"0b101", 5},
                          {"0xFFFFFFFFFFFFFFFF", UINT64_MAX}, {"0x10UL", 16}};
    for (const auto &c : unsignedValues) {
        lexer.setInput(c.text);
        EXPECT_EQ(lexer.unsignedValue(), c.value) << c.text;
    }
    lexer.setInput("2.25");
    EXPECT_EQ(lexer.tokenId(), TOKEN_FLOAT);
    EXPECT_EQ(lexer.floatValue(), 2.25);
}

TEST(CStyleLexerTest, TokenNames) {
    CStyleLexer lexer;
    lexer.setInput("");
    EXPECT_STREQ(lexer.tokenName(), "TOKEN_EOL");
    lexer.setInput(",");
    EXPECT_STREQ(lexer.tokenName(), "TOKEN_COMMA");
    EXPECT_STREQ(Lexer::tokenName(TOKEN_EOF), "TOKEN_EOF");
    EXPECT_STREQ(Lexer::tokenName(TOKEN_ARSHIFT_ASSIGN), "TOKEN_ARSHIFT_ASSIGN");
    EXPECT_STREQ(Lexer::tokenName(58), "TOKEN_UNKNOWN");
    EXPECT_STREQ(Lexer::tokenName(0xFFFFFFFF), "TOKEN_UNKNOWN");
}

TEST(CStyleLexerTest, SetInputStartsAfresh) {
    CStyleLexer lexer;
    lexer.setInput("a b");
    lexer.setInput("7");
    EXPECT_EQ(lexer.tokenText(), "7");
    EXPECT_EQ(lexer.position(), 1u);
    lexer.advance();
    EXPECT_EQ(lexer.tokenId(), TOKEN_EOL);
    lexer.advance(); // stays at the end
    EXPECT_EQ(lexer.tokenId(), TOKEN_EOL);
}

// Identifiers become text through a table; "self" names itself.
class MacroLexer : public CStyleLexer {
public:
    std::map<std::string, std::string> macros;
    int calls = 0;

    std::string substitute(const std::string &identifier) override {
        ++calls;
        const auto found = macros.find(identifier);
        return found == macros.end() ? std::string() : found->second;
    }
};

TEST(LexerTest, SubstitutedTextIsReadInPlaceOfTheIdentifier) {
    MacroLexer lexer;
    lexer.macros = {{"TWO", "1 + 1"}, {"ONE", "1"}, {"NEST", "(TWO)"}, {"SELF", "SELF"},
                    {"BLANK", "  "}, {"EMPTY", ""}};
    EXPECT_EQ(tokensOf(lexer, "TWO*3"),
              (Tokens{{TOKEN_INTEGER, "1"}, {TOKEN_PLUS, "+"}, {TOKEN_INTEGER, "1"},
                      {TOKEN_STAR, "*"}, {TOKEN_INTEGER, "3"}}));
    EXPECT_EQ(tokensOf(lexer, "NEST ONE"),
              (Tokens{{TOKEN_LPAREN, "("}, {TOKEN_INTEGER, "1"}, {TOKEN_PLUS, "+"},
                      {TOKEN_INTEGER, "1"}, {TOKEN_RPAREN, ")"}, {TOKEN_INTEGER, "1"}}));
    EXPECT_EQ(tokensOf(lexer, "SELF EMPTY"),
              (Tokens{{TOKEN_IDENT, "SELF"}, {TOKEN_IDENT, "EMPTY"}}));
    EXPECT_EQ(tokensOf(lexer, "BLANK 2"), (Tokens{{TOKEN_INTEGER, "2"}}));
    // The position is that of the caller's text, not of a substitution.
    lexer.setInput("TWO 5");
    EXPECT_EQ(lexer.position(), 3u);
}

TEST(LexerTest, SubstitutionsNestAtMostAHundredDeep) {
    // Each name expands to the next one: a hundred substitutions nest, and
    // the identifier that would start the 101st is the token.
    MacroLexer lexer;
    for (int i = 0; i < 150; ++i)
        lexer.macros["m" + std::to_string(i)] = "m" + std::to_string(i + 1);
    EXPECT_EQ(tokensOf(lexer, "m0"), (Tokens{{TOKEN_IDENT, "m100"}}));
    // A cycle ends at the bound too.
    lexer.macros = {{"a", "b"}, {"b", "a"}};
    EXPECT_EQ(tokensOf(lexer, "a 1"), (Tokens{{TOKEN_IDENT, "a"}, {TOKEN_INTEGER, "1"}}));
}

TEST(LexerTokenTest, MatchersMatchOnlyAtThePosition) {
    const RegularExpressionLexerToken hex("0[Xx][0-9A-Fa-f]*U?L?L?u?l?l?", TOKEN_HEXINTEGER, 10);
    EXPECT_EQ(hex.match("a 0x1fLz", 2), 5u);
    EXPECT_EQ(hex.match("a 0x1fLz", 1), 0u);
    EXPECT_EQ(hex.match("0", 0), 0u);
    const RegularExpressionLexerToken decimal("\\d+\\.\\d+", TOKEN_FLOAT, 10);
    EXPECT_EQ(decimal.match("12.50", 0), 5u);
    EXPECT_EQ(decimal.match("12.", 0), 0u);
    EXPECT_EQ(decimal.match("x12.5", 1), 4u);

    const CategoryLexerToken space(UnicodeCategory::SpaceSeparator, 2, TOKEN_SPACE, 10);
    EXPECT_EQ(space.match("    x", 0), 2u); // at most two characters
    EXPECT_EQ(space.match("\xE2\x80\xAF\xE2\x81\x9F\xE1\x9A\x80", 0), 6u);
    EXPECT_EQ(space.match("x ", 0), 0u);
    const CategoryLexerToken spaces(UnicodeCategory::SpaceSeparator, 0, TOKEN_SPACE, 10);
    EXPECT_EQ(spaces.match("a\xE1\x9A\x80\xE2\x80\x8A \t", 1), 7u);

    const StringLexerToken arrow("->", TOKEN_POINTSAT, 10);
    EXPECT_EQ(arrow.match("a->", 1), 2u);
    EXPECT_EQ(arrow.match("a-", 1), 0u);
    EXPECT_EQ(arrow.match("a-", 3), 0u); // beyond the end
    const CharacterLexerToken comma(',', TOKEN_COMMA, -4);
    EXPECT_EQ(comma.match(",", 0), 1u);
    EXPECT_EQ(comma.match(",", 1), 0u);
    EXPECT_EQ(comma.id(), TOKEN_COMMA);
    EXPECT_EQ(comma.precedence(), -4);
}

TEST(LexerTokenTest, UnsupportedPatternSyntaxIsRefused) {
    for (const char *pattern : {"a|b", "(a)", "[a-", "x\\", "[^a]", "\\w", "a{2}", "[]"})
        EXPECT_THROW(RegularExpressionLexerToken(pattern, TOKEN_IDENT, 10), std::invalid_argument)
            << pattern;
}

TEST(CStyleLexerTest, LongInputsAreReadInLinearPasses) {
    // A long run of spaces is one token and a long literal one match.
    CStyleLexer lexer;
    lexer.setInput(std::string(200000, ' ') + "\"" + std::string(200000, 'x') + "\"");
    EXPECT_EQ(lexer.tokenId(), TOKEN_STRING);
    EXPECT_EQ(lexer.tokenText().size(), 200002u);
}

} // namespace
