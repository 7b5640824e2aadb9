#pragma once

#include "support/base_type.h"
#include "support/expression_value.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class Expression;
class ExpressionParser;

// Called by Expression::visit for every node of a tree, parents first.
using ExpressionVisitor = void (*)(Expression &node, void *argument);

// A node of an expression tree. A node owns its children; the parser that
// built it answers the questions about symbols, memory and types.
class Expression {
public:
    explicit Expression(ExpressionParser *parser) : parser_(parser) {}
    virtual ~Expression();
    Expression(const Expression &) = delete;
    Expression &operator=(const Expression &) = delete;

    virtual ExpressionValue evaluate() const = 0;
    // A rendering for debugging.
    virtual std::string toString() const = 0;
    // Calls visitor on this node, then visit on the children in order.
    virtual void visit(ExpressionVisitor visitor, void *argument);
    // A deep copy; throws "cannot duplicate expression" where none is made.
    virtual std::unique_ptr<Expression> clone() const;

    ExpressionParser *parser() const { return parser_; }

protected:
    // Evaluates expression; a marker is replaced by the value it refers to.
    ExpressionValue valueOf(const Expression &expression) const;

    ExpressionParser *parser_;
};

// A literal.
class ConstantExpression : public Expression {
public:
    ConstantExpression(ExpressionParser *parser, ExpressionValue value)
        : Expression(parser), value_(std::move(value)) {}
    ExpressionValue evaluate() const override { return value_; }
    std::string toString() const override;
    std::unique_ptr<Expression> clone() const override;

    const ExpressionValue &value() const { return value_; }

private:
    ExpressionValue value_;
};

class IntegerConstantExpression : public ConstantExpression {
public:
    // A signed or unsigned integer of size bytes.
    IntegerConstantExpression(ExpressionParser *parser, std::uint64_t value, bool isSigned,
                              int size);
};

class FloatConstantExpression : public ConstantExpression {
public:
    FloatConstantExpression(ExpressionParser *parser, double value)
        : ConstantExpression(parser, ExpressionValue::floating(value)) {}
};

class StringConstantExpression : public ConstantExpression {
public:
    StringConstantExpression(ExpressionParser *parser, std::string text)
        : ConstantExpression(parser, ExpressionValue::string(std::move(text))) {}
};

// A name. Once resolved to an address it evaluates to that address, an
// unsigned value of the parser's address size; until then the parser looks
// it up.
class IdentifierExpression : public Expression {
public:
    IdentifierExpression(ExpressionParser *parser, std::string name)
        : Expression(parser), name_(std::move(name)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override { return "Identifier(" + name_ + ")"; }
    std::unique_ptr<Expression> clone() const override;

    const std::string &name() const { return name_; }
    bool hasAddress() const { return hasAddress_; }
    void setAddress(std::uint64_t address);

private:
    std::string name_;
    std::uint64_t address_ = 0;
    bool hasAddress_ = false;
};

// a::b::c; "::a" has an empty first name.
class ScopedIdentifierExpression : public Expression {
public:
    ScopedIdentifierExpression(ExpressionParser *parser, std::vector<std::string> names)
        : Expression(parser), names_(std::move(names)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override;
    std::unique_ptr<Expression> clone() const override;

    const std::vector<std::string> &names() const { return names_; }

private:
    std::vector<std::string> names_;
};

// @name
class RegisterExpression : public Expression {
public:
    RegisterExpression(ExpressionParser *parser, std::string name)
        : Expression(parser), name_(std::move(name)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override { return "@" + name_; }
    std::unique_ptr<Expression> clone() const override;

private:
    std::string name_;
};

class UnaryExpression : public Expression {
public:
    UnaryExpression(ExpressionParser *parser, std::unique_ptr<Expression> operand)
        : Expression(parser), operand_(std::move(operand)) {}
    // The class name and the operand in parentheses.
    std::string toString() const override;
    void visit(ExpressionVisitor visitor, void *argument) override;

    const Expression &operand() const { return *operand_; }

protected:
    virtual const char *className() const = 0;

    std::unique_ptr<Expression> operand_;
};

class LogicalNotExpression : public UnaryExpression {
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override;
    std::unique_ptr<Expression> clone() const override;

protected:
    const char *className() const override { return "LogicalNotExpression"; }
};

class BitNotExpression : public UnaryExpression {
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override;
    std::unique_ptr<Expression> clone() const override;

protected:
    const char *className() const override { return "BitNotExpression"; }
};

class NegateExpression : public UnaryExpression {
public:
    using UnaryExpression::UnaryExpression;
    ExpressionValue evaluate() const override;
    std::unique_ptr<Expression> clone() const override;

protected:
    const char *className() const override { return "NegateExpression"; }
};

class BinaryExpression : public Expression {
public:
    BinaryExpression(ExpressionParser *parser, std::unique_ptr<Expression> left,
                     std::unique_ptr<Expression> right)
        : Expression(parser), left_(std::move(left)), right_(std::move(right)) {}
    // "(left op right)"
    std::string toString() const override;
    void visit(ExpressionVisitor visitor, void *argument) override;

    const Expression &left() const { return *left_; }
    const Expression &right() const { return *right_; }

protected:
    virtual const char *symbol() const = 0;

    template <class Node> std::unique_ptr<Expression> cloneAs() const {
        return std::make_unique<Node>(parser_, left_->clone(), right_->clone());
    }

    std::unique_ptr<Expression> left_;
    std::unique_ptr<Expression> right_;
};

// The operators that compute on two values. Each evaluates both sides, left
// first, with no short cut for && and ||.
#define QUILLMAKE_BINARY_EXPRESSION(Name, Symbol)                                      \
    class Name : public BinaryExpression {                                             \
    public:                                                                            \
        using BinaryExpression::BinaryExpression;                                      \
        ExpressionValue evaluate() const override;                                     \
        std::unique_ptr<Expression> clone() const override { return cloneAs<Name>(); } \
                                                                                       \
    protected:                                                                         \
        const char *symbol() const override { return Symbol; }                         \
    };

QUILLMAKE_BINARY_EXPRESSION(PlusExpression, "+")
QUILLMAKE_BINARY_EXPRESSION(MinusExpression, "-")
QUILLMAKE_BINARY_EXPRESSION(MultiplyExpression, "*")
QUILLMAKE_BINARY_EXPRESSION(DivideExpression, "/")
QUILLMAKE_BINARY_EXPRESSION(ModExpression, "%")
QUILLMAKE_BINARY_EXPRESSION(LshiftExpression, "<<")
QUILLMAKE_BINARY_EXPRESSION(RshiftExpression, ">>")
QUILLMAKE_BINARY_EXPRESSION(BitAndExpression, "&")
QUILLMAKE_BINARY_EXPRESSION(BitOrExpression, "|")
QUILLMAKE_BINARY_EXPRESSION(BitXorExpression, "^")
QUILLMAKE_BINARY_EXPRESSION(LogicalAndExpression, "&&")
QUILLMAKE_BINARY_EXPRESSION(LogicalOrExpression, "||")
QUILLMAKE_BINARY_EXPRESSION(EqExpression, "==")
QUILLMAKE_BINARY_EXPRESSION(NeExpression, "!=")
QUILLMAKE_BINARY_EXPRESSION(LtExpression, "<")
QUILLMAKE_BINARY_EXPRESSION(LeExpression, "<=")
QUILLMAKE_BINARY_EXPRESSION(GtExpression, ">")
QUILLMAKE_BINARY_EXPRESSION(GeExpression, ">=")
// left = right; the left side must be a marker.
QUILLMAKE_BINARY_EXPRESSION(AssignExpression, "=")
// left[right]; also *left, as left[0].
QUILLMAKE_BINARY_EXPRESSION(LeftSquareBracketExpression, "[]")

#undef QUILLMAKE_BINARY_EXPRESSION

// a.b, a->b, and a::b behind a postfix. The right side is the member's name.
class DotExpression : public BinaryExpression {
public:
    DotExpression(ExpressionParser *parser, std::unique_ptr<Expression> left,
                  std::unique_ptr<Expression> right, bool arrow)
        : BinaryExpression(parser, std::move(left), std::move(right)), arrow_(arrow) {}
    ExpressionValue evaluate() const override;
    std::unique_ptr<Expression> clone() const override;

protected:
    const char *symbol() const override { return arrow_ ? "->" : "."; }

private:
    bool arrow_;
};

// a.*b, a->*b
class PtrToMemberExpression : public BinaryExpression {
public:
    PtrToMemberExpression(ExpressionParser *parser, std::unique_ptr<Expression> left,
                          std::unique_ptr<Expression> right, bool arrow)
        : BinaryExpression(parser, std::move(left), std::move(right)), arrow_(arrow) {}
    ExpressionValue evaluate() const override;
    std::unique_ptr<Expression> clone() const override;

protected:
    const char *symbol() const override { return arrow_ ? "->*" : ".*"; }

private:
    bool arrow_;
};

// a[start:stop]
class ArraySliceExpression : public Expression {
public:
    ArraySliceExpression(ExpressionParser *parser, std::unique_ptr<Expression> array,
                         std::unique_ptr<Expression> start, std::unique_ptr<Expression> stop)
        : Expression(parser), array_(std::move(array)), start_(std::move(start)),
          stop_(std::move(stop)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override;
    void visit(ExpressionVisitor visitor, void *argument) override;
    std::unique_ptr<Expression> clone() const override;

private:
    std::unique_ptr<Expression> array_;
    std::unique_ptr<Expression> start_;
    std::unique_ptr<Expression> stop_;
};

// (type)operand. Holds a type, so it can't be duplicated.
class CastExpression : public Expression {
public:
    CastExpression(ExpressionParser *parser, std::unique_ptr<BaseType> type,
                   std::unique_ptr<Expression> operand)
        : Expression(parser), type_(std::move(type)), operand_(std::move(operand)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override;
    void visit(ExpressionVisitor visitor, void *argument) override;

    const BaseType &type() const { return *type_; }

private:
    std::unique_ptr<BaseType> type_;
    std::unique_ptr<Expression> operand_;
};

// target(arguments...)
class CallExpression : public Expression {
public:
    CallExpression(ExpressionParser *parser, std::unique_ptr<Expression> target,
                   std::vector<std::unique_ptr<Expression>> arguments)
        : Expression(parser), target_(std::move(target)), arguments_(std::move(arguments)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override;
    void visit(ExpressionVisitor visitor, void *argument) override;
    std::unique_ptr<Expression> clone() const override;

private:
    std::unique_ptr<Expression> target_;
    std::vector<std::unique_ptr<Expression>> arguments_;
};

// sizeof operand, or sizeof(type): one of the two is set. Can't be
// duplicated.
class SizeofExpression : public Expression {
public:
    SizeofExpression(ExpressionParser *parser, std::unique_ptr<Expression> operand)
        : Expression(parser), operand_(std::move(operand)) {}
    SizeofExpression(ExpressionParser *parser, std::unique_ptr<BaseType> type)
        : Expression(parser), type_(std::move(type)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override;
    void visit(ExpressionVisitor visitor, void *argument) override;

private:
    std::unique_ptr<Expression> operand_;
    std::unique_ptr<BaseType> type_;
};

// &operand
class AddressofExpression : public Expression {
public:
    AddressofExpression(ExpressionParser *parser, std::unique_ptr<Expression> operand)
        : Expression(parser), operand_(std::move(operand)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override;
    void visit(ExpressionVisitor visitor, void *argument) override;
    std::unique_ptr<Expression> clone() const override;

private:
    std::unique_ptr<Expression> operand_;
};

// addressof("file", line)
class AddressofLineExpression : public Expression {
public:
    AddressofLineExpression(ExpressionParser *parser, std::string file, std::int64_t line)
        : Expression(parser), file_(std::move(file)), line_(line) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override;
    std::unique_ptr<Expression> clone() const override;

private:
    std::string file_;
    std::int64_t line_;
};

// symbolat(operand)
class SymbolAtExpression : public Expression {
public:
    SymbolAtExpression(ExpressionParser *parser, std::unique_ptr<Expression> operand)
        : Expression(parser), operand_(std::move(operand)) {}
    ExpressionValue evaluate() const override;
    std::string toString() const override;
    void visit(ExpressionVisitor visitor, void *argument) override;
    std::unique_ptr<Expression> clone() const override;

private:
    std::unique_ptr<Expression> operand_;
};
