#include "support/simple_expression_parser.h"

#include "support/base_type.h"
#include "support/expression.h"
#include "support/exceptions.h"
#include "support/text_split.h"

#include <gtest/gtest.h>

namespace {

// "type:value" of a result.
std::string describe(const ExpressionValue &value) {
    char number[40] = "";
    if (value.kind() == ExpressionValue::Float)
        std::snprintf(number, sizeof number, "%g", value.asFloat());
    switch (value.kind()) {
    case ExpressionValue::Boolean: return value.typeName() + (value.truth() ? ":true" : ":false");
    case ExpressionValue::Signed: return value.typeName() + ":" + std::to_string(value.asSigned());
    case ExpressionValue::Unsigned: return value.typeName() + ":" + std::to_string(value.asUnsigned());
    case ExpressionValue::String: return value.typeName() + ":" + value.text();
    default: return value.typeName() + ":" + number;
    }
}

// Texts that evaluate to the same result: "type:value", or "error: " and the
// message.
struct Same {
    std::string result;
    std::vector<std::string> texts;
};

void expectResults(ExpressionParser &parser, const std::vector<Same> &cases) {
    for (const Same &c : cases) {
        for (const std::string &text : c.texts) {
            std::string result;
            try {
                result = describe(parser.evaluate(text));
            } catch (const ParserException &e) {
                result = "error: " + e.message();
            }
            EXPECT_EQ(result, c.result) << text.substr(0, 60);
        }
    }
}

TEST(SimpleExpressionParserTest, ResultsAndErrors) {
    SimpleExpressionParser parser;
    expectResults(parser, {
        {"unknown:", {"   "}}, {"long long:7", {"6|3"}},
        {"long long:1", {"0||2", "1<<64"}},  // shift counts are taken modulo 64
        {"long long:5", {"+5", "5%0"}}, {"long long:-1", {"-7%3", "-1>>1", "~0"}}, {"long long:21", {"0b101+0x10"}},
        {"long long:9223372036854775807", {"99999999999999999999"}},  // decimal literals saturate
        // -1 divides everything; 64 bits wrap.
        {"long long:0", {"0x8000000000000000%-1", "1&&0"}},
        {"long long:-9223372036854775808", {"0x8000000000000000/-1", "0x7FFFFFFFFFFFFFFF+1"}},
        // A float on either side makes a float.
        {"double:2.5", {"5/2.0", "3-0.5"}}, {"double:3", {"1.5*2"}}, {"string:a\\\"b", {"\"a\\\"b\""}},
        // Booleans compute as 0 and 1 and stay booleans.
        {"boolean:true", {"3>=3", "-1<0", "1==1 & 2", "(1==1)/2", "(1==1)>(1==2)", "(1==2)||5"}},
        {"boolean:false", {"2<=1", "\"a\"!=\"a\"", "(1==1)%2", "(1==1)^(2==2)"}},
        // Both sides of && are evaluated: no short cut.
        {"error: divide by zero", {"(1==2)&&(1/0)"}}, {"error: unrecognised token: \"abc", {"1 + \"abc"}},
        {"error: unsupported binary numeric operation", {"4/(1==1)", "\"a\"+1", "1.5%2", "1.5&1", "1.5&&1"}},
        {"error: unsupported comparison operation", {"1.5==1.5", "\"a\"<1"}},
        {"error: can only shift numeric values", {"(1==1)<<1"}}, {"error: integer shift value expected", {"1<<(1==1)"}},
        {"error: unsupported unary num operation", {"-\"a\"", "~(1==1)", "!\"a\""}},
        {"error: operator not supported", {"1>>>=2"}}, {"error: ')' expected", {"(1"}},
        {"error: unexpected token TOKEN_EOL", {"(int*)"}},  // the right side comes first
        // At most ten operands and operators.
        {"error: Expression too complicated", {"1+1+1+1+1+1+1+1+1+1+1"}}, {"long long:-5", {"-1+-1+-1+-1+-1"}},
        {"error: identifier expected", {"a::"}}, {"error: expected ']'", {"1[0"}},
        {"error: ::x symbol not found", {"::x"}}, {"error: r0unknown register", {"@r0"}},
        {"error: bad expression type", {"1+=2"}}, {"error: cannot dereference", {"1[0]", "(1)::x", "1.*2"}},
        {"error: cannot array slice", {"1[0:2]"}}, {"error: start should be an integer", {"1[0.5:2]"}},
        {"error: stop should be an integer", {"1[0:\"x\"]"}}, {"error: function calling not implemented", {"1()"}},
        {"error: addressof not implemented", {"&(1+1)", "addressof(\"main.c\", 12)"}},
        {"error: cannot determine sizeof of a constant", {"sizeof (1)"}}, {"error: '(' expected", {"addressof"}},
        {"error: sizeof expression not implemented", {"sizeof(1+1)"}}, {"error: string expected", {"addressof(1"}},
        {"error: sizeof(typename) not implemented", {"sizeof(int)"}}, {"error: ',' expected", {"addressof(\"f\" 1"}},
        {"error: int expected", {"addressof(\"f\", x"}}, {"error: symbolat not implemented", {"symbolat(1)"}},
        // A compound assignment copies its target; a sizeof can't be copied.
        {"error: cannot duplicate expression", {"sizeof x-=2"}}, {"error: cannot take address of a constant", {"&1"}},
        // Type names.
        {"error: ']' expected", {"(int[x])1"}}, {"error: struct type not found", {"(struct s)1"}},
        {"error: '{' expected", {"(struct 1)1"}}, {"error: ';' expected", {"(struct { int a })1"}},
        {"error: integer must follow ':'", {"(struct { int a : x; })1"}},
        {"error: struct parse error", {"(struct { int a;"}},
        {"error: UserType expected", {"(struct { 1 a; })1", "(struct { s a; })1"}},
        {"error: size expected", {"(register x)1"}}, {"error: fieldname expected", {"(register 4"}},
        {"error: bitoffset expected", {"(register 4 f x)1"}}, {"error: bitsize expected", {"(register 4 f 0;)1"}},
    });
}

TEST(SimpleExpressionParserTest, DeepInputFailsCleanly) {
    SimpleExpressionParser parser;
    expectResults(parser, {
        {"error: Expression too complicated",
         {repeat("(", 100000) + "1", repeat("(", 100000), repeat("-", 100000) + "1", repeat("!", 100000) + "1",
          "(int" + repeat("*", 100000) + ")1", "sizeof(int" + repeat("*", 100000) + ")",
          "(" + repeat("struct { ", 50000) + "int a; }", "(int" + repeat("[1]", 50000) + ")1",
          "1" + repeat(".a", 50000), "1" + repeat("++", 50000), "1" + repeat("()", 50000)}},
        // Long flat inputs are fine.
        {"error: cannot cast", {"(" + repeat("const ", 50000) + "int)1"}},
        {"error: a" + repeat("::a", 50000) + " symbol not found", {"a" + repeat("::a", 50000)}},
    });
}

TEST(SimpleExpressionParserTest, Trees) {
    SimpleExpressionParser parser;
    const struct {
        std::string text, tree;
    } cases[] = {
        {"-(1+x)*2", "(NegateExpression((0x1+Identifier(x)))*0x2)"},
        {"!~a::b", "LogicalNotExpression(BitNotExpression(Identifier(a::b)))"},
        {"x++", "(Identifier(x)=(Identifier(x)+0x1))"},
        {"*p", "(Identifier(p)[]0x0)"},
        {"p->q.r", "((Identifier(p)->Identifier(q)).Identifier(r))"},
        {"f(1, \"s\")[0:2]", "Identifier(f)(0x1, \"s\")[0x0:0x2]"},
        {"1.5 - @sp", "(1.5-@sp)"},
        // A cast shows the type that was read; it can't be copied.
        {"(long long int)1", "CastExpression(long long, 0x1)"},
        {"(unsigned short int*)1", "CastExpression(unsigned short*, 0x1)"},
        {"(long double)1", "CastExpression(double, 0x1)"},
        {"(const volatile char**[2][3])1", "CastExpression(char**[2][3], 0x1)"},
        {"(int[])1", "CastExpression(int[], 0x1)"},
        {"(struct { int a; unsigned char b : 3; })1", "CastExpression(struct { int a; unsigned char b : 3; }, 0x1)"},
        {"(struct { struct { float x; } inner; })1", "CastExpression(struct { struct { float x; } inner; }, 0x1)"},
        {"(register 4 en 0 1 mode 1 2;)1", "CastExpression(register 4 en 0 1 mode 1 2;, 0x1)"},
    };
    for (const auto &c : cases) {
        const std::unique_ptr<Expression> tree = parser.parse(c.text);
        ASSERT_NE(tree, nullptr) << c.text;
        EXPECT_EQ(tree->toString(), c.tree) << c.text;
        if (!c.tree.starts_with("Cast")) {
            EXPECT_EQ(tree->clone()->toString(), c.tree) << c.text;
        }
    }

    // Names given an address evaluate to it, in the parser's address size.
    const std::unique_ptr<Expression> tree = parser.parse("a*2+a");
    tree->visit(
        [](Expression &node, void *) {
            if (auto *identifier = dynamic_cast<IdentifierExpression *>(&node))
                identifier->setAddress(0x100);
        },
        nullptr);
    EXPECT_EQ(describe(tree->evaluate()), "unsigned int:768");
}

TEST(SimpleExpressionParserTest, TypedEvaluatorsAndEndPosition) {
    SimpleExpressionParser parser;
    // Only numbers are numbers, and errors are dropped; a float gives its bits
    // as unsigned and is truncated as signed. Only booleans are booleans.
    const struct {
        std::string text;
        bool numeric;
        std::uint64_t asUnsigned;
        std::int64_t asSigned;
        bool boolean, truth;
    } cases[] = {
        {"-2.5", true, 0xC004000000000000, -2, false, false},
        {"!1", false, 0, 0, true, false},
        {"a==1", false, 0, 0, false, false},
    };
    for (const auto &c : cases) {
        bool ok = !c.numeric;
        EXPECT_EQ(parser.evaluateUnsigned(c.text, ok), c.asUnsigned) << c.text;
        EXPECT_EQ(ok, c.numeric) << c.text;
        ok = !c.numeric;
        EXPECT_EQ(parser.evaluateSigned(c.text, ok), c.asSigned) << c.text;
        EXPECT_EQ(ok, c.numeric) << c.text;
        ok = !c.boolean;
        EXPECT_EQ(parser.evaluateBoolean(c.text, ok), c.truth) << c.text;
        EXPECT_EQ(ok, c.boolean) << c.text;
    }
    int end = -1;  // behind the last token read
    EXPECT_EQ(parser.evaluate("1 2 3", &end).asSigned(), 1);
    EXPECT_EQ(end, 3);
}

// ---- A parser with variables, for the paths that need markers ----

using Value = ExpressionValue;

struct Variable : MarkerType {
    Variable(std::string n, Value v, std::vector<Variable> e = {}, std::vector<Variable> m = {})
        : name(std::move(n)), value(std::move(v)), elements(std::move(e)), members(std::move(m)) {}
    std::string name;
    Value value;
    std::vector<Variable> elements;  // an array if not empty
    std::vector<Variable> members;
};

class VariableParser : public SimpleExpressionParser {
public:
    using SimpleExpressionParser::sizeOf;
    std::vector<Variable> variables;

    static Variable &of(const Value &marker) { return *static_cast<Variable *>(marker.markerObject()); }
    static Value find(std::vector<Variable> &list, const std::string &name, const std::string &error) {
        for (Variable &variable : list)
            if (variable.name == name)
                return Value::marker(&variable, 8);
        throw ParserException(error);
    }

    Value lookupIdentifier(const std::string &name) override {
        return find(variables, name, name + " symbol not found");
    }
    Value member(const Value &marker, const std::string &name) override {
        return find(of(marker).members, name, "no member " + name);
    }
    Value readMarker(const Value &marker) override { return of(marker).value; }
    void writeMarker(const Value &marker, const Value &value) override { of(marker).value = value; }
    bool isArray(const Value &marker) override { return !of(marker).elements.empty(); }
    Value element(const Value &marker, const Value &index) override {
        return find(of(marker).elements, std::to_string(index.asUnsigned()), "index out of range");
    }
    Value slice(const Value &array, const Value &start, const Value &stop) override {
        return Value::string(of(array).name + " " + std::to_string(start.asSigned()) + " " +
                             std::to_string(stop.asSigned()));
    }
    Value addressOfValue(const Value &value) override {
        return Value::unsignedInteger(0x2000 + of(value).name.size(), 4);
    }
    Value call(const Value &target, const std::vector<Value> &arguments) override {
        std::int64_t sum = 0;
        for (const Value &argument : arguments)
            sum += argument.asSigned();
        return Value::signedInteger(sum * readMarker(target).asSigned());
    }
    Value sizeOf(const BaseType &type) override { return Value::unsignedInteger(type.name().size(), 4); }
    bool isUserType(const std::string &name) override { return name == "u32"; }
    Value cast(const BaseType &type, const Value &value) override {
        const Value read = value.kind() == Value::Marker ? readMarker(value) : value;
        return Value::string(type.name() + " " + std::to_string(read.asSigned()));
    }
    Value symbolAt(const Value &value) override { return Value::string("at " + std::to_string(value.asSigned())); }
};

TEST(ExpressionParserTest, MarkersAreReadAndWritten) {
    VariableParser parser;
    // The elements of an array are named by their index.
    const Value ten = Value::unsignedInteger(10, 1), twelve = Value::unsignedInteger(12, 1);
    parser.variables = {{"x", Value::signedInteger(5, 4)},
                        {"arr", {}, {{"0", ten}, {"1", {}}, {"2", twelve}}},
                        {"s", {}, {}, {{"a", Value::signedInteger(1)}}}};
    // In order: each row sees what the rows before wrote.
    expectResults(parser, {
        {"int:10", {"x*2"}},  // the result keeps the left's type
        {"long long:7", {"x = 7", "x+0"}},  // the stored value now has the literal's type
        {"marker:", {"x"}}, {"long long:9", {"x += 2"}}, {"long long:10", {"x++"}}, {"long long:9", {"--x"}},
        {"long long:18", {"x <<= 1"}}, {"unsigned char:12", {"arr[2]+0"}},
        {"long long:300", {"arr[1] = 300", "arr[1]+0"}}, {"unsigned char:10", {"*arr+0"}},
        {"error: index out of range", {"arr[3]", "arr[x]"}},  // the index is read: 18
        {"error: cannot dereference", {"x[0]", "s->a"}}, {"error: bad index type", {"arr[1.5]"}},
        {"long long:2", {"s.a + 1"}}, {"long long:18", {"s.a = x"}}, {"error: no member b", {"s.b"}},
        {"string:arr 0 2", {"arr[0:2]"}}, {"unsigned int:8193", {"&x"}}, {"long long:54", {"x(1, 2)"}},
        {"unsigned int:4", {"sizeof(u32*)"}}, {"string:u32[4] 18", {"(u32[4])x"}}, {"string:at 18", {"symbolat(x)"}},
        {"error: y symbol not found", {"y"}},
    });
}

TEST(HException, CountsLiveObjectsAndFormatsPosition) {
    const int before = HException::liveCount();
    {
        HException plain("cannot create x");
        HException placed("bad token", 3, 7);
        HException copy = placed;
        EXPECT_EQ(HException::liveCount(), before + 3);
        EXPECT_EQ(plain.message(), "cannot create x");
        EXPECT_EQ(copy.message(), "bad token line: 3 column: 7");
    }
    EXPECT_EQ(HException::liveCount(), before);
}

}  // namespace
