#include "support/c_style_lexer.h"

#include "support/exceptions.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

#include <map>

namespace {

// The tokens of text up to TOKEN_EOL as "NAME text" (without "TOKEN_"),
// separated by ", ", or "error: " and the message.
std::string tokensOf(Lexer &lexer, const std::string &text) {
    std::string tokens;
    try {
        for (lexer.setInput(text); lexer.tokenId() != TOKEN_EOL; lexer.advance())
            tokens += (tokens.empty() ? "" : ", ") + std::string(lexer.tokenName() + 6) + " " + lexer.tokenText();
    } catch (const ParserException &e) {
        return "error: " + e.message();
    }
    EXPECT_EQ(lexer.tokenText(), "");
    lexer.advance();  // stays at the end
    EXPECT_EQ(lexer.tokenId(), TOKEN_EOL);
    return tokens;
}

TEST(CStyleLexerTest, SplitsTextIntoTokens) {
    const struct {
        std::string text, tokens;
    } cases[] = {
        // Spaces of other scripts separate tokens too (UTF-8 of U+00A0, U+2003,
        // U+3000, U+202F, U+205F, U+1680).
        {"1\xC2\xA0" "2\xE2\x80\x83" "3\xE3\x80\x80" "4\xE2\x80\xAF\xE2\x81\x9F\xE1\x9A\x80" "5",
         "INTEGER 1, INTEGER 2, INTEGER 3, INTEGER 4, INTEGER 5"},
        // Text that no token matches gives the rest of the input, also the
        // first bytes of a space.
        {"\xC2\xA1", "error: unrecognised token: \xC2\xA1"},
    };
    CStyleLexer lexer;
    for (const auto &c : cases)
        EXPECT_EQ(tokensOf(lexer, c.text), c.tokens) << c.text;
    // A long run of spaces is one token and a long literal one match.
    lexer.setInput(std::string(200000, ' ') + "\"" + std::string(200000, 'x') + "\"");
    EXPECT_EQ(lexer.tokenText().size(), 200002u);
    EXPECT_STREQ(Lexer::tokenName(58), "TOKEN_UNKNOWN");
}

// Identifiers become text through a table.
class MacroLexer : public CStyleLexer {
public:
    std::map<std::string, std::string> macros;

    std::string substitute(const std::string &identifier) override {
        const auto found = macros.find(identifier);
        return found == macros.end() ? std::string() : found->second;
    }
};

TEST(LexerTest, SubstitutedTextIsReadInPlaceOfTheIdentifier) {
    MacroLexer lexer;
    lexer.macros = {{"TWO", "1 + 1"}, {"SELF", "SELF"}, {"EMPTY", ""}};
    EXPECT_EQ(tokensOf(lexer, "TWO*3"), "INTEGER 1, PLUS +, INTEGER 1, STAR *, INTEGER 3");
    EXPECT_EQ(tokensOf(lexer, "SELF EMPTY"), "IDENT SELF, IDENT EMPTY");
    // Each name expands to the next one: a hundred substitutions nest, and
    // the identifier that would start the 101st is the token.
    for (int i = 0; i < 150; ++i)
        lexer.macros[concat("m", std::to_string(i))] = concat("m", std::to_string(i + 1));
    EXPECT_EQ(tokensOf(lexer, "m0"), "IDENT m100");
    // A cycle ends at the bound too.
    lexer.macros = {{"a", "b"}, {"b", "a"}};
    EXPECT_EQ(tokensOf(lexer, "a 1"), "IDENT a, INTEGER 1");
}

TEST(LexerTokenTest, MatchersMatchOnlyAtThePosition) {
    const CategoryLexerToken twoSpaces(UnicodeCategory::SpaceSeparator, 2, TOKEN_SPACE, 10);
    const StringLexerToken arrow("->", TOKEN_POINTSAT, 10);
    const CharacterLexerToken comma(',', TOKEN_COMMA, -4);
    const struct {
        const LexerToken &token;
        std::string text;
        std::size_t position, length;
    } cases[] = {
        {twoSpaces, "    x", 0, 2}, {arrow, "a-", 3, 0},  // beyond the end
        {comma, ",", 1, 0},
    };
    for (const auto &c : cases)
        EXPECT_EQ(c.token.match(c.text, c.position), c.length) << c.text << " at " << c.position;
    for (const char *pattern : {"[a-", "x\\", "[^a]", "\\w", "a{2}", "[]"})
        EXPECT_THROW(RegularExpressionLexerToken(pattern, TOKEN_IDENT, 10), std::invalid_argument) << pattern;
}

}  // namespace
