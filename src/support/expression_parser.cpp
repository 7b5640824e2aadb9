#include "support/expression_parser.h"

#include "support/base_type.h"
#include "support/c_style_lexer.h"
#include "support/expression.h"
#include "support/exceptions.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

[[noreturn]] void fail(std::string message) {
    throw ParserException(std::move(message));
}

// Binary operator levels, loosest first: "," -4 up to "* / %" 9.
constexpr int lowestLevel = -4;
constexpr int highestLevel = 9;

// Operands, prefix and postfix operators of one expression. The limit also
// bounds the depth of the tree and of the parser's recursion.
constexpr int maximumPrimaries = 10;

// Pointer and array steps and struct bodies of the types in one expression,
// which bounds the depth of a type.
constexpr int maximumTypeParts = 32;

constexpr std::array<std::string_view, 10> simpleTypeWords = {
    "unsigned", "signed", "const", "volatile", "char",
    "short",    "int",    "long",  "float",    "double",
};

bool isSimpleTypeWord(std::string_view word) {
    return std::find(simpleTypeWords.begin(), simpleTypeWords.end(), word) !=
           simpleTypeWords.end();
}

bool isIntegerToken(std::uint32_t id) {
    return id == TOKEN_INTEGER || id == TOKEN_HEXINTEGER || id == TOKEN_BININTEGER;
}

} // namespace

// The recursive-descent grammar of one parse.
class ExpressionParser::Grammar {
public:
    Grammar(ExpressionParser &parser, Lexer &lexer) : parser_(parser), lexer_(lexer) {}

    std::unique_ptr<Expression> expression() { return binary(lowestLevel); }

private:
    std::unique_ptr<Expression> binary(int level);
    std::unique_ptr<Expression> combine(std::uint32_t token, std::unique_ptr<Expression> left,
                                        std::unique_ptr<Expression> right);
    std::unique_ptr<Expression> unary();
    std::unique_ptr<Expression> primary();
    std::unique_ptr<Expression> postfix(std::unique_ptr<Expression> node);
    std::unique_ptr<Expression> name(bool fromTopLevel);
    std::unique_ptr<Expression> sizeofExpression();
    std::unique_ptr<Expression> addressofLine();
    std::unique_ptr<Expression> symbolAt();
    std::unique_ptr<Expression> increment(std::unique_ptr<Expression> operand, bool up);

    bool startsType();
    std::unique_ptr<BaseType> typeName();
    std::unique_ptr<BaseType> simpleType();
    std::unique_ptr<BaseType> structType();
    std::unique_ptr<BaseType> registerType();

    void countPrimary();
    void countTypePart();
    // Throws message unless the current token is id.
    void expect(std::uint32_t id, const char *message);
    std::int64_t integerToken(const char *message);
    std::string stringToken();

    template <class Node, class... Arguments>
    std::unique_ptr<Expression> make(Arguments &&...arguments) {
        return std::make_unique<Node>(&parser_, std::forward<Arguments>(arguments)...);
    }

    // a op= b: a = a op b, with a copy of a as the target.
    template <class Node>
    std::unique_ptr<Expression> compound(std::unique_ptr<Expression> left,
                                         std::unique_ptr<Expression> right) {
        std::unique_ptr<Expression> target = left->clone();
        return make<AssignExpression>(std::move(target),
                                      make<Node>(std::move(left), std::move(right)));
    }

    ExpressionParser &parser_;
    Lexer &lexer_;
    int primaries_ = 0;
    int typeParts_ = 0;
};

void ExpressionParser::Grammar::countPrimary() {
    if (++primaries_ > maximumPrimaries)
        fail("Expression too complicated");
}

void ExpressionParser::Grammar::countTypePart() {
    if (++typeParts_ > maximumTypeParts)
        fail("Expression too complicated");
}

void ExpressionParser::Grammar::expect(std::uint32_t id, const char *message) {
    if (lexer_.tokenId() != id)
        fail(message);
}

std::int64_t ExpressionParser::Grammar::integerToken(const char *message) {
    const std::uint32_t id = lexer_.tokenId();
    if (!isIntegerToken(id))
        fail(message);
    const std::int64_t value = id == TOKEN_INTEGER
                                   ? lexer_.integerValue()
                                   : static_cast<std::int64_t>(lexer_.unsignedValue());
    lexer_.advance();
    return value;
}

// The text of a string token without its quotes; a backslash stays.
std::string ExpressionParser::Grammar::stringToken() {
    const std::string &text = lexer_.tokenText();
    return text.substr(1, text.size() - 2);
}

std::unique_ptr<Expression> ExpressionParser::Grammar::binary(int level) {
    if (level > highestLevel)
        return unary();
    std::unique_ptr<Expression> left = binary(level + 1);
    while (lexer_.precedence() == level) {
        const std::uint32_t token = lexer_.tokenId();
        lexer_.advance();
        std::unique_ptr<Expression> right = binary(level + 1);
        left = combine(token, std::move(left), std::move(right));
    }
    return left;
}

std::unique_ptr<Expression> ExpressionParser::Grammar::combine(std::uint32_t token,
                                                               std::unique_ptr<Expression> left,
                                                               std::unique_ptr<Expression> right) {
    switch (token) {
    case TOKEN_STAR: return make<MultiplyExpression>(std::move(left), std::move(right));
    case TOKEN_SLASH: return make<DivideExpression>(std::move(left), std::move(right));
    case TOKEN_MOD: return make<ModExpression>(std::move(left), std::move(right));
    case TOKEN_PLUS: return make<PlusExpression>(std::move(left), std::move(right));
    case TOKEN_MINUS: return make<MinusExpression>(std::move(left), std::move(right));
    case TOKEN_LSHIFT: return make<LshiftExpression>(std::move(left), std::move(right));
    case TOKEN_RSHIFT: return make<RshiftExpression>(std::move(left), std::move(right));
    case TOKEN_LT: return make<LtExpression>(std::move(left), std::move(right));
    case TOKEN_LE: return make<LeExpression>(std::move(left), std::move(right));
    case TOKEN_GT: return make<GtExpression>(std::move(left), std::move(right));
    case TOKEN_GE: return make<GeExpression>(std::move(left), std::move(right));
    case TOKEN_EQ: return make<EqExpression>(std::move(left), std::move(right));
    case TOKEN_NE: return make<NeExpression>(std::move(left), std::move(right));
    case TOKEN_BITAND: return make<BitAndExpression>(std::move(left), std::move(right));
    case TOKEN_BITXOR: return make<BitXorExpression>(std::move(left), std::move(right));
    case TOKEN_BITOR: return make<BitOrExpression>(std::move(left), std::move(right));
    case TOKEN_LOGAND: return make<LogicalAndExpression>(std::move(left), std::move(right));
    case TOKEN_LOGOR: return make<LogicalOrExpression>(std::move(left), std::move(right));
    case TOKEN_ASSIGN: return make<AssignExpression>(std::move(left), std::move(right));
    case TOKEN_PLUS_ASSIGN: return compound<PlusExpression>(std::move(left), std::move(right));
    case TOKEN_MINUS_ASSIGN: return compound<MinusExpression>(std::move(left), std::move(right));
    case TOKEN_STAR_ASSIGN: return compound<MultiplyExpression>(std::move(left), std::move(right));
    case TOKEN_DIV_ASSIGN: return compound<DivideExpression>(std::move(left), std::move(right));
    case TOKEN_MOD_ASSIGN: return compound<ModExpression>(std::move(left), std::move(right));
    case TOKEN_LSHIFT_ASSIGN: return compound<LshiftExpression>(std::move(left), std::move(right));
    case TOKEN_RSHIFT_ASSIGN: return compound<RshiftExpression>(std::move(left), std::move(right));
    case TOKEN_BITAND_ASSIGN: return compound<BitAndExpression>(std::move(left), std::move(right));
    case TOKEN_BITXOR_ASSIGN: return compound<BitXorExpression>(std::move(left), std::move(right));
    case TOKEN_BITOR_ASSIGN: return compound<BitOrExpression>(std::move(left), std::move(right));
    default: // ? , >>> >>>= have a level but no node
        fail("operator not supported");
    }
}

std::unique_ptr<Expression> ExpressionParser::Grammar::unary() {
    countPrimary();
    switch (lexer_.tokenId()) {
    case TOKEN_INCREMENT:
    case TOKEN_DECREMENT: {
        const bool up = lexer_.tokenId() == TOKEN_INCREMENT;
        lexer_.advance();
        return increment(unary(), up);
    }
    case TOKEN_BITNOT:
        lexer_.advance();
        return make<BitNotExpression>(unary());
    case TOKEN_LOGNOT:
        lexer_.advance();
        return make<LogicalNotExpression>(unary());
    case TOKEN_STAR:
        lexer_.advance();
        return make<LeftSquareBracketExpression>(
            unary(), make<IntegerConstantExpression>(0, false, 2));
    case TOKEN_PLUS:
        lexer_.advance();
        return unary();
    case TOKEN_MINUS:
        lexer_.advance();
        return make<NegateExpression>(unary());
    case TOKEN_BITAND:
        lexer_.advance();
        return make<AddressofExpression>(unary());
    case TOKEN_LPAREN: {
        lexer_.advance();
        if (startsType()) {
            std::unique_ptr<BaseType> type = typeName();
            expect(TOKEN_RPAREN, "')' expected");
            lexer_.advance();
            return std::make_unique<CastExpression>(&parser_, std::move(type), unary());
        }
        std::unique_ptr<Expression> inner = expression();
        expect(TOKEN_RPAREN, "')' expected");
        lexer_.advance();
        return postfix(std::move(inner));
    }
    case TOKEN_IDENT:
        if (lexer_.is("sizeof"))
            return sizeofExpression();
        break;
    default:
        break;
    }
    return postfix(primary());
}

std::unique_ptr<Expression> ExpressionParser::Grammar::primary() {
    std::unique_ptr<Expression> node;
    switch (lexer_.tokenId()) {
    case TOKEN_INTEGER:
        node = make<IntegerConstantExpression>(static_cast<std::uint64_t>(lexer_.integerValue()),
                                               true, 8);
        break;
    case TOKEN_HEXINTEGER:
    case TOKEN_BININTEGER:
        node = make<IntegerConstantExpression>(lexer_.unsignedValue(), true, 8);
        break;
    case TOKEN_FLOAT:
        node = make<FloatConstantExpression>(lexer_.floatValue());
        break;
    case TOKEN_STRING:
        node = make<StringConstantExpression>(stringToken());
        break;
    case TOKEN_REGISTER:
        node = make<RegisterExpression>(lexer_.tokenText().substr(1));
        break;
    case TOKEN_IDENT:
        if (lexer_.is("addressof"))
            return addressofLine();
        if (lexer_.is("symbolat"))
            return symbolAt();
        return name(false);
    case TOKEN_COLONCOLON:
        return name(true);
    default:
        fail(std::string("unexpected token ") + lexer_.tokenName());
    }
    lexer_.advance();
    return node;
}

// A name, or a scoped name a::b::c. A name from the top level, "::a",
// has an empty first part.
std::unique_ptr<Expression> ExpressionParser::Grammar::name(bool fromTopLevel) {
    std::vector<std::string> names{fromTopLevel ? std::string() : lexer_.tokenText()};
    if (!fromTopLevel)
        lexer_.advance();
    while (lexer_.tokenId() == TOKEN_COLONCOLON) {
        lexer_.advance();
        expect(TOKEN_IDENT, "identifier expected");
        names.push_back(lexer_.tokenText());
        lexer_.advance();
    }
    if (names.size() == 1)
        return make<IdentifierExpression>(names.front());
    return make<ScopedIdentifierExpression>(std::move(names));
}

std::unique_ptr<Expression> ExpressionParser::Grammar::postfix(std::unique_ptr<Expression> node) {
    for (;;) {
        switch (lexer_.tokenId()) {
        case TOKEN_LBRACK: {
            countPrimary();
            lexer_.advance();
            std::unique_ptr<Expression> index = expression();
            if (lexer_.tokenId() == TOKEN_COLON) {
                lexer_.advance();
                std::unique_ptr<Expression> stop = expression();
                expect(TOKEN_RBRACK, "expected ']'");
                node = make<ArraySliceExpression>(std::move(node), std::move(index),
                                                  std::move(stop));
            } else {
                expect(TOKEN_RBRACK, "expected ']'");
                node = make<LeftSquareBracketExpression>(std::move(node), std::move(index));
            }
            lexer_.advance();
            break;
        }
        case TOKEN_DOT:
        case TOKEN_POINTSAT: {
            countPrimary();
            const bool arrow = lexer_.tokenId() == TOKEN_POINTSAT;
            lexer_.advance();
            if (lexer_.tokenId() == TOKEN_STAR) {
                lexer_.advance();
                node = std::make_unique<PtrToMemberExpression>(&parser_, std::move(node), unary(),
                                                               arrow);
                break;
            }
            expect(TOKEN_IDENT, "identifier expected");
            node = std::make_unique<DotExpression>(
                &parser_, std::move(node), make<IdentifierExpression>(lexer_.tokenText()), arrow);
            lexer_.advance();
            break;
        }
        case TOKEN_COLONCOLON:
            countPrimary();
            lexer_.advance();
            expect(TOKEN_IDENT, "identifier expected");
            node = std::make_unique<DotExpression>(
                &parser_, std::move(node), make<IdentifierExpression>(lexer_.tokenText()), false);
            lexer_.advance();
            break;
        case TOKEN_INCREMENT:
        case TOKEN_DECREMENT: {
            countPrimary();
            const bool up = lexer_.tokenId() == TOKEN_INCREMENT;
            lexer_.advance();
            node = increment(std::move(node), up);
            break;
        }
        case TOKEN_LPAREN: {
            countPrimary();
            lexer_.advance();
            std::vector<std::unique_ptr<Expression>> arguments;
            if (lexer_.tokenId() != TOKEN_RPAREN) {
                arguments.push_back(unary());
                while (lexer_.tokenId() == TOKEN_COMMA) {
                    lexer_.advance();
                    arguments.push_back(unary());
                }
            }
            expect(TOKEN_RPAREN, "')' expected");
            lexer_.advance();
            node = make<CallExpression>(std::move(node), std::move(arguments));
            break;
        }
        default:
            return node;
        }
    }
}

// ++x, x++: x = x + 1.
std::unique_ptr<Expression> ExpressionParser::Grammar::increment(std::unique_ptr<Expression> operand,
                                                                 bool up) {
    std::unique_ptr<Expression> target = operand->clone();
    std::unique_ptr<Expression> one = make<IntegerConstantExpression>(1, true, 8);
    std::unique_ptr<Expression> value =
        up ? make<PlusExpression>(std::move(operand), std::move(one))
           : make<MinusExpression>(std::move(operand), std::move(one));
    return make<AssignExpression>(std::move(target), std::move(value));
}

std::unique_ptr<Expression> ExpressionParser::Grammar::sizeofExpression() {
    lexer_.advance();
    if (lexer_.tokenId() != TOKEN_LPAREN)
        return make<SizeofExpression>(unary());
    lexer_.advance();
    if (startsType()) {
        std::unique_ptr<BaseType> type = typeName();
        expect(TOKEN_RPAREN, "')' expected");
        lexer_.advance();
        return std::make_unique<SizeofExpression>(&parser_, std::move(type));
    }
    std::unique_ptr<Expression> operand = expression();
    expect(TOKEN_RPAREN, "')' expected");
    lexer_.advance();
    return make<SizeofExpression>(postfix(std::move(operand)));
}

// addressof("file", line)
std::unique_ptr<Expression> ExpressionParser::Grammar::addressofLine() {
    lexer_.advance();
    expect(TOKEN_LPAREN, "'(' expected");
    lexer_.advance();
    expect(TOKEN_STRING, "string expected");
    std::string file = stringToken();
    lexer_.advance();
    expect(TOKEN_COMMA, "',' expected");
    lexer_.advance();
    const std::int64_t line = integerToken("int expected");
    expect(TOKEN_RPAREN, "')' expected");
    lexer_.advance();
    return make<AddressofLineExpression>(std::move(file), line);
}

// symbolat(expression)
std::unique_ptr<Expression> ExpressionParser::Grammar::symbolAt() {
    lexer_.advance();
    expect(TOKEN_LPAREN, "'(' expected");
    lexer_.advance();
    std::unique_ptr<Expression> operand = expression();
    expect(TOKEN_RPAREN, "')' expected");
    lexer_.advance();
    return make<SymbolAtExpression>(std::move(operand));
}

// ---- Type names ----

bool ExpressionParser::Grammar::startsType() {
    if (lexer_.tokenId() != TOKEN_IDENT)
        return false;
    const std::string &word = lexer_.tokenText();
    return isSimpleTypeWord(word) || word == "struct" || word == "register" ||
           parser_.isUserType(word);
}

// A base type, then "*"s, then "[n]"s.
std::unique_ptr<BaseType> ExpressionParser::Grammar::typeName() {
    std::unique_ptr<BaseType> type;
    if (lexer_.tokenId() == TOKEN_IDENT && lexer_.is("struct")) {
        lexer_.advance();
        type = structType();
    } else if (lexer_.tokenId() == TOKEN_IDENT && lexer_.is("register")) {
        lexer_.advance();
        type = registerType();
    } else if (lexer_.tokenId() == TOKEN_IDENT && isSimpleTypeWord(lexer_.tokenText())) {
        type = simpleType();
    } else if (lexer_.tokenId() == TOKEN_IDENT && parser_.isUserType(lexer_.tokenText())) {
        type = std::make_unique<UserType>(lexer_.tokenText());
        lexer_.advance();
    } else {
        fail("UserType expected");
    }

    while (lexer_.tokenId() == TOKEN_STAR) {
        countTypePart();
        lexer_.advance();
        type = std::make_unique<PointerType>(std::move(type));
    }
    std::vector<std::int64_t> bounds;
    while (lexer_.tokenId() == TOKEN_LBRACK) {
        countTypePart();
        lexer_.advance();
        std::int64_t length = 0;
        if (isIntegerToken(lexer_.tokenId()))
            length = integerToken("']' expected");
        expect(TOKEN_RBRACK, "']' expected");
        lexer_.advance();
        bounds.push_back(length);
    }
    // int[2][3] is an array of two arrays of three ints: wrap the last first.
    for (auto bound = bounds.rbegin(); bound != bounds.rend(); ++bound)
        type = std::make_unique<ArrayType>(std::move(type), *bound);
    return type;
}

std::unique_ptr<BaseType> ExpressionParser::Grammar::simpleType() {
    bool isUnsigned = false;
    bool seen = false;
    SimpleType::Code code = SimpleType::Int;
    while (lexer_.tokenId() == TOKEN_IDENT && isSimpleTypeWord(lexer_.tokenText())) {
        const std::string &word = lexer_.tokenText();
        if (word == "unsigned") {
            isUnsigned = true;
        } else if (word == "char") {
            code = SimpleType::Char;
        } else if (word == "short") {
            code = SimpleType::Short;
        } else if (word == "int") {
            if (!seen)
                code = SimpleType::Int; // "short int", "long int" stay as they are
        } else if (word == "long") {
            code = seen && code == SimpleType::Long ? SimpleType::LongLong : SimpleType::Long;
        } else if (word == "float") {
            code = SimpleType::Float;
        } else if (word == "double") {
            code = SimpleType::Double;
        }
        if (word != "unsigned" && word != "signed" && word != "const" && word != "volatile")
            seen = true;
        lexer_.advance();
    }
    return std::make_unique<SimpleType>(code, isUnsigned);
}

// Behind "struct": a known name, or "{ type name [: bits]; ... }".
std::unique_ptr<BaseType> ExpressionParser::Grammar::structType() {
    if (lexer_.tokenId() == TOKEN_IDENT) {
        std::string tag = lexer_.tokenText();
        if (!parser_.isStructType(tag))
            fail("struct type not found");
        lexer_.advance();
        return std::make_unique<StructType>(std::move(tag));
    }
    expect(TOKEN_LCURLY, "'{' expected");
    countTypePart();
    lexer_.advance();
    std::vector<StructType::Member> members;
    while (lexer_.tokenId() != TOKEN_RCURLY) {
        if (lexer_.tokenId() == TOKEN_EOL)
            fail("struct parse error");
        StructType::Member member;
        member.type = typeName();
        expect(TOKEN_IDENT, "identifier expected");
        member.name = lexer_.tokenText();
        lexer_.advance();
        if (lexer_.tokenId() == TOKEN_COLON) {
            lexer_.advance();
            member.bitSize = integerToken("integer must follow ':'");
        }
        expect(TOKEN_SEMICOLON, "';' expected");
        lexer_.advance();
        members.push_back(std::move(member));
    }
    lexer_.advance();
    return std::make_unique<StructType>(std::move(members));
}

// Behind "register": "size name offset bits ... ;".
std::unique_ptr<BaseType> ExpressionParser::Grammar::registerType() {
    const std::int64_t size = integerToken("size expected");
    std::vector<RegisterType::Field> fields;
    while (lexer_.tokenId() != TOKEN_SEMICOLON) {
        RegisterType::Field field;
        expect(TOKEN_IDENT, "fieldname expected");
        field.name = lexer_.tokenText();
        lexer_.advance();
        field.bitOffset = integerToken("bitoffset expected");
        field.bitSize = integerToken("bitsize expected");
        fields.push_back(std::move(field));
    }
    lexer_.advance();
    return std::make_unique<RegisterType>(size, std::move(fields));
}

// ---- ExpressionParser ----

ExpressionParser::ExpressionParser(int addressSize)
    : ExpressionParser(addressSize, std::make_unique<CStyleLexer>()) {}

ExpressionParser::ExpressionParser(int addressSize, std::unique_ptr<CStyleLexer> lexer)
    : lexer_(std::move(lexer)), addressSize_(addressSize) {}

ExpressionParser::~ExpressionParser() = default;

std::unique_ptr<Expression> ExpressionParser::parse(const std::string &text, int *endPosition) {
    lexer_->setInput(text);
    std::unique_ptr<Expression> tree;
    if (lexer_->tokenId() != TOKEN_EOL)
        tree = Grammar(*this, *lexer_).expression();
    if (endPosition)
        *endPosition = static_cast<int>(lexer_->position());
    return tree;
}

ExpressionValue ExpressionParser::evaluate(const std::string &text, int *endPosition) {
    const std::unique_ptr<Expression> tree = parse(text, endPosition);
    return tree ? tree->evaluate() : ExpressionValue();
}

std::uint64_t ExpressionParser::evaluateUnsigned(const std::string &text, bool &ok) {
    ok = false;
    try {
        const ExpressionValue value = evaluate(text);
        if (value.isNumeric()) {
            ok = true;
            return value.asUnsigned();
        }
    } catch (const ParserException &) {
    }
    return 0;
}

std::int64_t ExpressionParser::evaluateSigned(const std::string &text, bool &ok) {
    ok = false;
    try {
        const ExpressionValue value = evaluate(text);
        if (value.isNumeric()) {
            ok = true;
            return value.asSigned();
        }
    } catch (const ParserException &) {
    }
    return 0;
}

bool ExpressionParser::evaluateBoolean(const std::string &text, bool &ok) {
    ok = false;
    try {
        const ExpressionValue value = evaluate(text);
        if (value.kind() == ExpressionValue::Boolean) {
            ok = true;
            return value.truth();
        }
    } catch (const ParserException &) {
    }
    return false;
}
