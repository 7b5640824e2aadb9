#include "support/c_style_lexer.h"

namespace {

using Table = std::vector<std::unique_ptr<LexerToken>>;

Table makeTable() {
    Table table;
    auto character = [&table](char c, std::uint32_t id, std::int32_t precedence = 10) {
        table.push_back(std::make_unique<CharacterLexerToken>(c, id, precedence));
    };
    auto string = [&table](const char *text, std::uint32_t id, std::int32_t precedence = 10) {
        table.push_back(std::make_unique<StringLexerToken>(text, id, precedence));
    };
    auto pattern = [&table](const char *text, std::uint32_t id) {
        table.push_back(std::make_unique<RegularExpressionLexerToken>(text, id, 10));
    };

    table.push_back(std::make_unique<CategoryLexerToken>(UnicodeCategory::SpaceSeparator, 0,
                                                         TOKEN_SPACE, 10));
    table.push_back(std::make_unique<CStyleStringLiteralLexerToken>(TOKEN_STRING, 10));
    pattern("0[Xx][0-9A-Fa-f]*U?L?L?u?l?l?", TOKEN_HEXINTEGER);
    pattern("0b[0-1]*", TOKEN_BININTEGER);
    pattern("\\d+\\.\\d+", TOKEN_FLOAT);
    pattern("\\d+U?L?L?u?l?l?", TOKEN_INTEGER);
    pattern("[A-Za-z_$][A-Za-z_0-9$]*", TOKEN_IDENT);
    pattern("@[A-Za-z_0-9]*", TOKEN_REGISTER);
    character(';', TOKEN_SEMICOLON);
    string("::", TOKEN_COLONCOLON);
    character(':', TOKEN_COLON);
    character('(', TOKEN_LPAREN);
    character(')', TOKEN_RPAREN);
    character('[', TOKEN_LBRACK);
    character(']', TOKEN_RBRACK);
    character('{', TOKEN_LCURLY);
    character('}', TOKEN_RCURLY);
    character('.', TOKEN_DOT);
    string("->", TOKEN_POINTSAT);
    string("++", TOKEN_INCREMENT);
    string("--", TOKEN_DECREMENT);
    string("!=", TOKEN_NE, 5);
    character('!', TOKEN_LOGNOT);
    character('~', TOKEN_BITNOT);
    string("*=", TOKEN_STAR_ASSIGN, -3);
    character('*', TOKEN_STAR, 9);
    string("/=", TOKEN_DIV_ASSIGN, -3);
    character('/', TOKEN_SLASH, 9);
    string("%=", TOKEN_MOD_ASSIGN, -3);
    character('%', TOKEN_MOD, 9);
    string("+=", TOKEN_PLUS_ASSIGN, -3);
    character('+', TOKEN_PLUS, 8);
    string("-=", TOKEN_MINUS_ASSIGN, -3);
    character('-', TOKEN_MINUS, 8);
    string("<<=", TOKEN_LSHIFT_ASSIGN, -3);
    string("<<", TOKEN_LSHIFT, 7);
    string(">>>=", TOKEN_ARSHIFT_ASSIGN, -3);
    string(">>>", TOKEN_ARSHIFT, 7);
    string(">>=", TOKEN_RSHIFT_ASSIGN, -3);
    string(">>", TOKEN_RSHIFT, 7);
    string("<=", TOKEN_LE, 6);
    character('<', TOKEN_LT, 6);
    string(">=", TOKEN_GE, 6);
    character('>', TOKEN_GT, 6);
    string("==", TOKEN_EQ, 5);
    string("^=", TOKEN_BITXOR_ASSIGN, -3);
    character('^', TOKEN_BITXOR, 3);
    string("&=", TOKEN_BITAND_ASSIGN, -3);
    string("&&", TOKEN_LOGAND, 1);
    character('&', TOKEN_BITAND, 4);
    string("|=", TOKEN_BITOR_ASSIGN, -3);
    string("||", TOKEN_LOGOR, 0);
    character('|', TOKEN_BITOR, 2);
    character('?', TOKEN_CONDITION, -1);
    character('=', TOKEN_ASSIGN, -2);
    character(',', TOKEN_COMMA, -4);
    return table;
}

} // namespace

CStyleLexer::CStyleLexer() {
    static const Table table = makeTable();
    for (const auto &matcher : table)
        addSharedToken(*matcher);
}
