#include "support/simple_expression_parser.h"

#include "support/base_type.h"
#include "support/expression.h"
#include "support/exceptions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// "kind:value" of a result, or "error: message".
std::string describe(const ExpressionValue &value) {
    std::string text = value.typeName() + ":";
    switch (value.kind()) {
    case ExpressionValue::Boolean: return text + (value.truth() ? "true" : "false");
    case ExpressionValue::Signed: return text + std::to_string(value.asSigned());
    case ExpressionValue::Unsigned: return text + std::to_string(value.asUnsigned());
    case ExpressionValue::Float: {
        char buffer[40];
        std::snprintf(buffer, sizeof buffer, "%g", value.asFloat());
        return text + buffer;
    }
    case ExpressionValue::String: return text + value.text();
    default: return text;
    }
}

std::string evaluate(ExpressionParser &parser, const std::string &text) {
    try {
        return describe(parser.evaluate(text));
    } catch (const ParserException &e) {
        return "error: " + e.message();
    }
}

std::string evaluate(const std::string &text) {
    SimpleExpressionParser parser;
    return evaluate(parser, text);
}

struct Case {
    std::string text;
    std::string result;
};

void expectResults(ExpressionParser &parser, const std::vector<Case> &cases) {
    for (const Case &c : cases)
        EXPECT_EQ(evaluate(parser, c.text), c.result) << c.text;
}

void expectResults(const std::vector<Case> &cases) {
    SimpleExpressionParser parser;
    expectResults(parser, cases);
}

TEST(SimpleExpressionParserTest, Arithmetic) {
    expectResults({
        {"", "unknown:"},
        {"   ", "unknown:"},
        {"7", "long long:7"},
        {"1 2", "long long:1"},
        {"2+3*4", "long long:14"},
        {"(2+3)*4", "long long:20"},
        {"1<<2+1", "long long:8"},
        {"10-4-3", "long long:3"},
        {"5/2", "long long:2"},
        {"-7/2", "long long:-3"},
        {"5.0/2", "double:2.5"},
        {"5/2.0", "double:2.5"},
        {"3-0.5", "double:2.5"},
        {"1.5*2", "double:3"},
        {"-1.5", "double:-1.5"},
        {"5%0", "long long:5"},
        {"-7%3", "long long:-1"},
        {"7%-1", "long long:0"},
        {"+5", "long long:5"},
        {"- -5", "long long:5"},
        {"010", "long long:8"},
        {"0b101+0x10", "long long:21"},
        {"12UL+1", "long long:13"},
        {"0xFFFFFFFFFFFFFFFF", "long long:-1"},
        {"0x8000000000000000/-1", "long long:-9223372036854775808"},
        {"0x8000000000000000%-1", "long long:0"},
        {"0x7FFFFFFFFFFFFFFF+1", "long long:-9223372036854775808"},
        {"-1>>1", "long long:-1"},
        {"1<<63", "long long:-9223372036854775808"},
        {"1<<64", "long long:1"},
        {"1<<-1", "long long:-9223372036854775808"},
        {"6&3", "long long:2"},
        {"6|3", "long long:7"},
        {"6^3", "long long:5"},
        {"~0", "long long:-1"},
        {"1+2+3+4+5+6+7+8+9+10", "long long:55"},
        {"(((((1)))))", "long long:1"},
        {"\"a\"", "string:a"},
        {"\"a\\\"b\"", "string:a\\\"b"},
    });
}

TEST(SimpleExpressionParserTest, ComparisonsAndTruthValues) {
    expectResults({
        {"1==1", "boolean:true"},
        {"1!=1", "boolean:false"},
        {"1<2", "boolean:true"},
        {"2<=1", "boolean:false"},
        {"3>=3", "boolean:true"},
        {"3>4", "boolean:false"},
        {"-1<0", "boolean:true"},
        {"1==1.5", "boolean:true"}, // the right side is read as a signed integer
        {"\"a\"==\"a\"", "boolean:true"},
        {"\"a\"<\"b\"", "boolean:true"},
        {"\"b\"<\"a\"", "boolean:false"},
        {"\"a\"!=\"a\"", "boolean:false"},
        {"!0", "boolean:true"},
        {"!1", "boolean:false"},
        {"!0.0", "boolean:true"},
        {"!!5", "boolean:true"},
        {"1==1 & 2", "boolean:true"},
        {"(1==1)+(1==1)", "boolean:true"},
        {"(1==1)-(1==1)", "boolean:false"},
        {"(1==1)*0", "boolean:false"},
        {"(1==1)/2", "boolean:true"},
        {"(1==1)%2", "boolean:false"},
        {"(1==1)^(2==2)", "boolean:false"},
        {"(1==1)>(1==2)", "boolean:true"},
        {"(1==1)&&(2==3)", "boolean:false"},
        {"(1==2)||5", "boolean:true"},
        // && and || on integers give 0 or 1 of the left's type.
        {"1&&0", "long long:0"},
        {"0||2", "long long:1"},
        // Both sides are evaluated: no short cut.
        {"(1==2)&&(1/0)", "error: divide by zero"},
    });
}

TEST(SimpleExpressionParserTest, OperatorErrors) {
    expectResults({
        {"1/0", "error: divide by zero"},
        {"1.0/0.0", "error: divide by zero"},
        {"1/0.0", "error: divide by zero"},
        {"1.0/0", "error: divide by zero"},
        {"4/(1==1)", "error: unsupported binary numeric operation"},
        {"4/\"a\"", "error: unsupported binary numeric operation"},
        {"\"a\"+1", "error: unsupported binary numeric operation"},
        {"\"a\"/1", "error: unsupported binary numeric operation"},
        {"1.5%2", "error: unsupported binary numeric operation"},
        {"1.5&1", "error: unsupported binary numeric operation"},
        {"1.5&&1", "error: unsupported binary numeric operation"},
        {"\"a\"|1", "error: unsupported binary numeric operation"},
        {"1.5==1.5", "error: unsupported comparison operation"},
        {"\"a\"<1", "error: unsupported comparison operation"},
        {"1.5<<1", "error: can only shift numeric values"},
        {"(1==1)<<1", "error: can only shift numeric values"},
        {"\"a\">>1", "error: can only shift numeric values"},
        {"1<<1.0", "error: integer shift value expected"},
        {"1<<(1==1)", "error: integer shift value expected"},
        {"-\"a\"", "error: unsupported unary num operation"},
        {"~1.5", "error: unsupported unary num operation"},
        {"~(1==1)", "error: unsupported unary num operation"},
        {"!\"a\"", "error: unsupported unary num operation"},
        {"1?2:3", "error: operator not supported"},
        {"1,2", "error: operator not supported"},
        {"1>>>2", "error: operator not supported"},
        {"1>>>=2", "error: operator not supported"},
        {"1?", "error: unexpected token TOKEN_EOL"}, // the right side comes first
    });
}

TEST(SimpleExpressionParserTest, SyntaxErrors) {
    expectResults({
        {"#", "error: unrecognised token: #"},
        {"1 + \"abc", "error: unrecognised token: \"abc"},
        {"1\t+2", "error: unrecognised token: \t+2"},
        {")", "error: unexpected token TOKEN_RPAREN"},
        {"1+", "error: unexpected token TOKEN_EOL"},
        {"*", "error: unexpected token TOKEN_EOL"},
        {";", "error: unexpected token TOKEN_SEMICOLON"},
        {"(1", "error: ')' expected"},
        {"(1]", "error: ')' expected"},
        {"1+1+1+1+1+1+1+1+1+1+1", "error: Expression too complicated"},
        {"-1-1-1-1-1", "long long:-5"},
        {"-1+-1+-1+-1+-1", "long long:-5"},
        {"-1+-1+-1+-1+-1+-1", "error: Expression too complicated"},
        {"a::", "error: identifier expected"},
        {"::1", "error: identifier expected"},
        {"1.", "error: identifier expected"},
        {"1->2", "error: identifier expected"},
        {"(1)::2", "error: identifier expected"},
        {"1[0", "error: expected ']'"},
        {"1[0:2", "error: expected ']'"},
        {"1(2", "error: ')' expected"},
        {"1(2+3)", "error: ')' expected"},
    });
}

TEST(SimpleExpressionParserTest, NamesAndHooks) {
    expectResults({
        {"a", "error: a symbol not found"},
        {"1+a", "error: a symbol not found"},
        {"int", "error: int symbol not found"},
        {"a::b::c", "error: a::b::c symbol not found"},
        {"::x", "error: ::x symbol not found"},
        {"@r0", "error: r0unknown register"},
        {"@", "error: unknown register"},
        {"a=1", "error: a symbol not found"},
        {"1=2", "error: bad expression type"},
        {"1+=2", "error: bad expression type"},
        {"++1", "error: bad expression type"},
        {"1--", "error: bad expression type"},
        {"*1", "error: cannot dereference"},
        {"1[0]", "error: cannot dereference"},
        {"1[0.5]", "error: bad index type"},
        {"1[0:2]", "error: cannot array slice"},
        {"1[0.5:2]", "error: start should be an integer"},
        {"1[0:\"x\"]", "error: stop should be an integer"},
        {"1 .x", "error: cannot dereference"},
        {"1->x", "error: cannot dereference"},
        {"(1)::x", "error: cannot dereference"},
        {"1.*2", "error: cannot dereference"},
        {"1->*2", "error: cannot dereference"},
        {"1(2)", "error: function calling not implemented"},
        {"1()", "error: function calling not implemented"},
        {"1(2,3)", "error: function calling not implemented"},
        {"&1", "error: cannot take address of a constant"},
        {"&(1+1)", "error: addressof not implemented"},
        {"&a", "error: a symbol not found"},
        {"sizeof 1", "error: cannot determine sizeof of a constant"},
        {"sizeof (1)", "error: cannot determine sizeof of a constant"},
        {"sizeof(1+1)", "error: sizeof expression not implemented"},
        {"sizeof x", "error: sizeof expression not implemented"},
        {"sizeof(int)", "error: sizeof(typename) not implemented"},
        {"sizeof(1", "error: ')' expected"},
        {"sizeof(int", "error: ')' expected"},
        {"addressof(\"main.c\", 12)", "error: addressof not implemented"},
        {"addressof", "error: '(' expected"},
        {"addressof(1", "error: string expected"},
        {"addressof(\"f\" 1", "error: ',' expected"},
        {"addressof(\"f\", x", "error: int expected"},
        {"addressof(\"f\", 1", "error: ')' expected"},
        {"symbolat(1)", "error: symbolat not implemented"},
        {"symbolat 1", "error: '(' expected"},
        {"symbolat(1", "error: ')' expected"},
        // A compound assignment copies its target; a cast or sizeof can't be
        // copied.
        {"(int)1+=2", "error: cannot duplicate expression"},
        {"sizeof x-=2", "error: cannot duplicate expression"},
        {"++(int)1", "error: cannot duplicate expression"},
    });
}

TEST(SimpleExpressionParserTest, TypeNames) {
    expectResults({
        {"(int)1", "error: cannot cast"},
        {"(unsigned long long*)0", "error: cannot cast"},
        {"(const volatile char**[2][3])0", "error: cannot cast"},
        {"(struct { int a; char b : 3; })1", "error: cannot cast"},
        {"(register 4 en 0 1 mode 1 2;)1", "error: cannot cast"},
        {"(int*)", "error: unexpected token TOKEN_EOL"},
        {"(int", "error: ')' expected"},
        {"(int[2)1", "error: ']' expected"},
        {"(int[x])1", "error: ']' expected"},
        {"(struct s)1", "error: struct type not found"},
        {"(struct 1)1", "error: '{' expected"},
        {"(struct { int a })1", "error: ';' expected"},
        {"(struct { int a : x; })1", "error: integer must follow ':'"},
        {"(struct { int a;", "error: struct parse error"},
        {"(struct { int ; })1", "error: identifier expected"},
        {"(struct { 1 a; })1", "error: UserType expected"},
        {"(struct { s a; })1", "error: UserType expected"},
        {"(register x)1", "error: size expected"},
        {"(register 4 1)1", "error: fieldname expected"},
        {"(register 4", "error: fieldname expected"},
        {"(register 4 f x)1", "error: bitoffset expected"},
        {"(register 4 f 0;)1", "error: bitsize expected"},
    });

    // The tree shows the type that was read.
    const struct {
        std::string text;
        std::string tree;
    } casts[] = {
        {"(unsigned)1", "CastExpression(unsigned int, 0x1)"},
        {"(long long int)1", "CastExpression(long long, 0x1)"},
        {"(unsigned short int*)1", "CastExpression(unsigned short*, 0x1)"},
        {"(long double)1", "CastExpression(double, 0x1)"},
        {"(const char**[2][3])1", "CastExpression(char**[2][3], 0x1)"},
        {"(int[])1", "CastExpression(int[], 0x1)"},
        {"(struct { int a; unsigned char b : 3; })1",
         "CastExpression(struct { int a; unsigned char b : 3; }, 0x1)"},
        {"(struct { struct { float x; } inner; })1",
         "CastExpression(struct { struct { float x; } inner; }, 0x1)"},
        {"(register 4 en 0 1 mode 1 2;)1", "CastExpression(register 4 en 0 1 mode 1 2;, 0x1)"},
    };
    SimpleExpressionParser parser;
    for (const auto &c : casts)
        EXPECT_EQ(parser.parse(c.text)->toString(), c.tree) << c.text;
}

TEST(SimpleExpressionParserTest, TypedEvaluators) {
    SimpleExpressionParser parser;
    bool ok = true;
    EXPECT_EQ(parser.evaluateUnsigned("", ok), 0u);
    EXPECT_FALSE(ok);
    EXPECT_EQ(parser.evaluateUnsigned("0xFFFFFFFFFFFFFFFF", ok), UINT64_MAX);
    EXPECT_TRUE(ok);
    EXPECT_EQ(parser.evaluateSigned("0xFFFFFFFFFFFFFFFF", ok), -1);
    EXPECT_TRUE(ok);
    EXPECT_EQ(parser.evaluateUnsigned("-1", ok), UINT64_MAX);
    EXPECT_TRUE(ok);
    EXPECT_EQ(parser.evaluateUnsigned("0x1000 + 4*4", ok), 0x1010u);
    EXPECT_TRUE(ok);
    // A float gives its bits as unsigned and is truncated as signed.
    EXPECT_EQ(parser.evaluateUnsigned("2.5", ok), 0x4004000000000000u);
    EXPECT_TRUE(ok);
    EXPECT_EQ(parser.evaluateSigned("-2.5", ok), -2);
    EXPECT_TRUE(ok);
    // Booleans and strings aren't numbers; errors are dropped.
    for (const char *text : {"1==1", "\"7\"", "1/0", "a", "#"}) {
        ok = true;
        EXPECT_EQ(parser.evaluateUnsigned(text, ok), 0u) << text;
        EXPECT_FALSE(ok) << text;
        ok = true;
        EXPECT_EQ(parser.evaluateSigned(text, ok), 0) << text;
        EXPECT_FALSE(ok) << text;
    }

    const struct {
        std::string text;
        bool value;
        bool ok;
    } booleans[] = {
        {"1==1", true, true}, {"1==2", false, true}, {"!0", true, true},
        {"!1", false, true},  {"1", false, false},   {"", false, false},
        {"a==1", false, false}, {"\"a\"==\"a\"", true, true},
    };
    for (const auto &c : booleans) {
        ok = !c.ok;
        EXPECT_EQ(parser.evaluateBoolean(c.text, ok), c.value) << c.text;
        EXPECT_EQ(ok, c.ok) << c.text;
    }
}

TEST(SimpleExpressionParserTest, EndPositionIsBehindTheLastTokenRead) {
    SimpleExpressionParser parser;
    int end = -1;
    EXPECT_EQ(parser.evaluate("1 2 3", &end).asSigned(), 1);
    EXPECT_EQ(end, 3);
    parser.evaluate("  7  ", &end);
    EXPECT_EQ(end, 5);
    EXPECT_EQ(parser.parse("", &end), nullptr);
    EXPECT_EQ(end, 0);
}

TEST(SimpleExpressionParserTest, DeepInputFailsCleanly) {
    const std::string many(100000, '(');
    const std::vector<std::string> texts = {
        many + "1",
        many,
        std::string(100000, '-') + "1",
        std::string(100000, '!') + "1",
        "(int" + std::string(100000, '*') + ")1",
        "sizeof(int" + std::string(100000, '*') + ")",
    };
    std::string structs = "(";
    for (int i = 0; i < 50000; ++i)
        structs += "struct { ";
    std::string members = "1";
    for (int i = 0; i < 50000; ++i)
        members += ".a";
    std::string increments = "1";
    for (int i = 0; i < 50000; ++i)
        increments += "++";
    std::string bounds = "(int";
    for (int i = 0; i < 50000; ++i)
        bounds += "[1]";
    std::string calls = "1";
    for (int i = 0; i < 50000; ++i)
        calls += "()";
    for (const std::string &text : texts)
        EXPECT_EQ(evaluate(text), "error: Expression too complicated") << text.substr(0, 20);
    for (const std::string &text : {structs + "int a; }", bounds + ")1", members, increments, calls})
        EXPECT_EQ(evaluate(text), "error: Expression too complicated") << text.substr(0, 20);

    // Long flat inputs are fine.
    std::string scoped = "a";
    for (int i = 0; i < 50000; ++i)
        scoped += "::a";
    EXPECT_EQ(evaluate(scoped).substr(0, 13), "error: a::a::");
    std::string qualifiers = "(";
    for (int i = 0; i < 50000; ++i)
        qualifiers += "const ";
    EXPECT_EQ(evaluate(qualifiers + "int)1"), "error: cannot cast");
    EXPECT_EQ(evaluate("\"" + std::string(100000, 'x') + "\"").size(), 100007u);
}

TEST(SimpleExpressionParserTest, TreeText) {
    SimpleExpressionParser parser;
    const struct {
        std::string text;
        std::string tree;
    } cases[] = {
        {"-(1+x)*2", "(NegateExpression((0x1+Identifier(x)))*0x2)"},
        {"!~a::b", "LogicalNotExpression(BitNotExpression(Identifier(a::b)))"},
        {"x += 1", "(Identifier(x)=(Identifier(x)+0x1))"},
        {"x++", "(Identifier(x)=(Identifier(x)+0x1))"},
        {"*p", "(Identifier(p)[]0x0)"},
        {"p->q.r", "((Identifier(p)->Identifier(q)).Identifier(r))"},
        {"f(1, \"s\")[0:2]", "Identifier(f)(0x1, \"s\")[0x0:0x2]"},
        {"1.5 - @sp", "(1.5-@sp)"},
        {"a = b = c", "((Identifier(a)=Identifier(b))=Identifier(c))"},
    };
    for (const auto &c : cases) {
        const std::unique_ptr<Expression> tree = parser.parse(c.text);
        ASSERT_NE(tree, nullptr) << c.text;
        EXPECT_EQ(tree->toString(), c.tree) << c.text;
        EXPECT_EQ(tree->clone()->toString(), c.tree) << c.text;
    }
}

TEST(SimpleExpressionParserTest, ResolvedNamesEvaluateToTheirAddress) {
    SimpleExpressionParser parser;
    const std::unique_ptr<Expression> tree = parser.parse("a*2+a");
    int names = 0;
    tree->visit(
        [](Expression &node, void *argument) {
            if (auto *identifier = dynamic_cast<IdentifierExpression *>(&node)) {
                identifier->setAddress(0x100);
                ++*static_cast<int *>(argument);
            }
        },
        &names);
    EXPECT_EQ(names, 2);
    // The address has the parser's address size; copies keep it.
    EXPECT_EQ(describe(tree->evaluate()), "unsigned int:768");
    EXPECT_EQ(describe(tree->clone()->evaluate()), "unsigned int:768");
}

// ---- A parser with variables, for the paths that need markers ----

class Variable : public MarkerType {
public:
    std::string name;
    ExpressionValue value;
    std::vector<Variable> elements; // an array if not empty
    std::vector<Variable> members;
};

class VariableParser : public ExpressionParser {
public:
    VariableParser() : ExpressionParser(4) {}

    std::vector<Variable> variables;
    std::string lastSlice;

    static Variable &of(const ExpressionValue &marker) {
        return *static_cast<Variable *>(marker.markerObject());
    }
    static ExpressionValue markerOf(Variable &variable) {
        return ExpressionValue::marker(&variable, 8);
    }

    ExpressionValue lookupIdentifier(const std::string &name) override {
        for (Variable &variable : variables)
            if (variable.name == name)
                return markerOf(variable);
        throw ParserException(name + " symbol not found");
    }
    ExpressionValue readMarker(const ExpressionValue &marker) override {
        return of(marker).value;
    }
    void writeMarker(const ExpressionValue &marker, const ExpressionValue &value) override {
        of(marker).value = value;
    }
    bool isArray(const ExpressionValue &marker) override { return !of(marker).elements.empty(); }
    bool isPointer(const ExpressionValue &) override { return false; }
    ExpressionValue element(const ExpressionValue &marker, const ExpressionValue &index) override {
        std::vector<Variable> &elements = of(marker).elements;
        if (index.asUnsigned() >= elements.size())
            throw ParserException("index out of range");
        return markerOf(elements[index.asUnsigned()]);
    }
    ExpressionValue member(const ExpressionValue &marker, const std::string &name) override {
        for (Variable &variable : of(marker).members)
            if (variable.name == name)
                return markerOf(variable);
        throw ParserException("no member " + name);
    }
    ExpressionValue slice(const ExpressionValue &value, const ExpressionValue &start,
                          const ExpressionValue &stop) override {
        lastSlice = of(value).name + " " + std::to_string(start.asSigned()) + " " +
                    std::to_string(stop.asSigned());
        return ExpressionValue::signedInteger(stop.asSigned() - start.asSigned());
    }
    ExpressionValue addressOfValue(const ExpressionValue &value) override {
        return ExpressionValue::unsignedInteger(0x2000 + of(value).name.size(), 4);
    }
    ExpressionValue call(const ExpressionValue &target,
                         const std::vector<ExpressionValue> &arguments) override {
        std::int64_t sum = 0;
        for (const ExpressionValue &argument : arguments)
            sum += argument.asSigned();
        return ExpressionValue::signedInteger(sum * readMarker(target).asSigned());
    }
    ExpressionValue sizeOf(const BaseType &type) override {
        return ExpressionValue::unsignedInteger(type.name().size(), 4);
    }

    // Hooks these tests don't reach.
    ExpressionValue lookupScoped(const std::vector<std::string> &) override { return {}; }
    ExpressionValue lookupRegister(const std::string &) override { return {}; }
    bool isStructType(const std::string &) override { return false; }
    bool isUserType(const std::string &name) override { return name == "u32"; }
    ExpressionValue cast(const BaseType &type, const ExpressionValue &value) override {
        const ExpressionValue read = value.kind() == ExpressionValue::Marker ? readMarker(value) : value;
        return ExpressionValue::string(type.name() + " " + std::to_string(read.asSigned()));
    }
    ExpressionValue dereference(const ExpressionValue &marker) override { return marker; }
    ExpressionValue pointerToMember(const ExpressionValue &, const ExpressionValue &) override {
        return {};
    }
    ExpressionValue addressOf(const Expression &) override { return {}; }
    ExpressionValue sizeOf(const Expression &) override { return {}; }
    ExpressionValue addressOfLine(const std::string &, std::int64_t) override { return {}; }
    ExpressionValue symbolAt(const ExpressionValue &value) override {
        return ExpressionValue::string("at " + std::to_string(value.asSigned()));
    }
};

void addVariables(VariableParser &parser) {
    Variable x;
    x.name = "x";
    x.value = ExpressionValue::signedInteger(5, 4);
    Variable array;
    array.name = "arr";
    for (int i = 0; i < 3; ++i) {
        Variable element;
        element.value = ExpressionValue::unsignedInteger(10 + i, 1);
        array.elements.push_back(element);
    }
    Variable s;
    s.name = "s";
    Variable a;
    a.name = "a";
    a.value = ExpressionValue::signedInteger(1);
    s.members.push_back(a);
    parser.variables = {x, array, s};
}

TEST(ExpressionParserTest, MarkersAreReadAndWritten) {
    VariableParser parser;
    addVariables(parser);
    expectResults(parser, {
        {"x*2", "int:10"},          // the result keeps the left's type
        {"x = 7", "long long:7"},
        {"x", "marker:"},
        {"x+0", "long long:7"},     // the stored value now has the literal's type
        {"x += 2", "long long:9"},
        {"x++", "long long:10"},
        {"--x", "long long:9"},
        {"x <<= 1", "long long:18"},
        {"arr[2]+0", "unsigned char:12"},
        {"arr[1] = 300", "long long:300"},
        {"arr[1]+0", "long long:300"},
        {"*arr+0", "unsigned char:10"},
        {"arr[3]", "error: index out of range"},
        {"x[0]", "error: cannot dereference"},
        {"arr[1.5]", "error: bad index type"},
        {"arr[x]", "error: index out of range"}, // the index is read: 18
        {"s.a + 1", "long long:2"},
        {"s.a = x", "long long:18"},
        {"s.b", "error: no member b"},
        {"s->a", "error: cannot dereference"},
        {"arr[0:2]", "long long:2"},
        {"&x", "unsigned int:8193"},
        {"x(1, 2)", "long long:54"},
        {"sizeof(u32*)", "unsigned int:4"},
        {"(u32[4])x", "string:u32[4] 18"},
        {"symbolat(x)", "string:at 18"},
        {"y", "error: y symbol not found"},
    });
    EXPECT_EQ(parser.lastSlice, "arr 0 2");
}

} // namespace
