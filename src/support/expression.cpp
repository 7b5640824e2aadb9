#include "support/expression.h"

#include "support/expression_parser.h"
#include "support/exceptions.h"

#include <cstdio>
#include <limits>

namespace {

[[noreturn]] void fail(const char *message) {
    throw ParserException(message);
}

enum class Operation {
    Plus, Minus, Multiply, Divide, Mod,
    BitAnd, BitOr, BitXor, LogicalAnd, LogicalOr,
    Eq, Ne, Lt, Le, Gt, Ge,
    Lshift, Rshift,
};

// A float keeps its size; an integer converted to float gets size 4 only if
// it had size 4 (or 2), else 8.
int floatSize(int size) {
    return size == 2 || size == 4 ? size : 8;
}

bool isZero(const ExpressionValue &value) {
    switch (value.kind()) {
    case ExpressionValue::Signed: return value.asSigned() == 0;
    case ExpressionValue::Unsigned: return value.asUnsigned() == 0;
    case ExpressionValue::Float: return value.asFloat() == 0.0;
    default: return false;
    }
}

// + - * / on 64-bit integers, wrapping as the machine does. The divisor
// isn't 0; the one overflowing quotient, min / -1, wraps to min.
std::uint64_t unsignedArithmetic(Operation operation, std::uint64_t a, std::uint64_t b) {
    switch (operation) {
    case Operation::Plus: return a + b;
    case Operation::Minus: return a - b;
    case Operation::Multiply: return a * b;
    default: return a / b;
    }
}

std::int64_t signedArithmetic(Operation operation, std::int64_t a, std::int64_t b) {
    if (operation == Operation::Divide) {
        if (b == -1)
            return static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(a));
        return a / b;
    }
    return static_cast<std::int64_t>(unsignedArithmetic(operation, static_cast<std::uint64_t>(a),
                                                        static_cast<std::uint64_t>(b)));
}

ExpressionValue arithmetic(Operation operation, ExpressionValue left,
                           const ExpressionValue &right) {
    const bool divide = operation == Operation::Divide;
    if (divide) {
        if (!right.isNumeric())
            fail("unsupported binary numeric operation");
        if (isZero(right))
            fail("divide by zero");
    }
    if (right.kind() == ExpressionValue::Float && left.isInteger())
        left = ExpressionValue::floating(left.asFloat(), floatSize(left.size()));

    switch (left.kind()) {
    case ExpressionValue::Boolean: {
        const std::int64_t a = left.truth(), b = right.truth();
        return ExpressionValue::boolean(signedArithmetic(operation, a, b) != 0);
    }
    case ExpressionValue::Signed: {
        const std::int64_t b = right.asSigned();
        if (divide && b == 0) // a divisor that is zero only in this reading
            fail("divide by zero");
        return ExpressionValue::signedInteger(signedArithmetic(operation, left.asSigned(), b),
                                              left.size());
    }
    case ExpressionValue::Unsigned: {
        const std::uint64_t b = right.asUnsigned();
        if (divide && b == 0)
            fail("divide by zero");
        return ExpressionValue::unsignedInteger(
            unsignedArithmetic(operation, left.asUnsigned(), b), left.size());
    }
    case ExpressionValue::Float: {
        const double a = left.asFloat(), b = right.asFloat();
        double result = 0;
        switch (operation) {
        case Operation::Plus: result = a + b; break;
        case Operation::Minus: result = a - b; break;
        case Operation::Multiply: result = a * b; break;
        default:
            if (b == 0.0)
                fail("divide by zero");
            result = a / b;
            break;
        }
        return ExpressionValue::floating(result, left.size());
    }
    default:
        fail("unsupported binary numeric operation");
    }
}

ExpressionValue mod(const ExpressionValue &left, const ExpressionValue &right) {
    switch (left.kind()) {
    case ExpressionValue::Boolean:
        return ExpressionValue::boolean(false);
    case ExpressionValue::Signed: {
        const std::int64_t b = right.asSigned();
        if (b == 0)
            return left;
        // -1 divides everything; min % -1 would overflow.
        return ExpressionValue::signedInteger(b == -1 ? 0 : left.asSigned() % b, left.size());
    }
    case ExpressionValue::Unsigned: {
        const std::uint64_t b = right.asUnsigned();
        if (b == 0)
            return left;
        return ExpressionValue::unsignedInteger(left.asUnsigned() % b, left.size());
    }
    default:
        fail("unsupported binary numeric operation");
    }
}

template <class T> T bitwise(Operation operation, T a, T b) {
    switch (operation) {
    case Operation::BitAnd: return a & b;
    case Operation::BitOr: return a | b;
    default: return a ^ b;
    }
}

ExpressionValue bitwise(Operation operation, const ExpressionValue &left,
                        const ExpressionValue &right) {
    switch (left.kind()) {
    case ExpressionValue::Boolean:
        return ExpressionValue::boolean(bitwise(operation, left.truth(), right.truth()));
    case ExpressionValue::Signed:
        return ExpressionValue::signedInteger(
            bitwise(operation, left.asSigned(), right.asSigned()), left.size());
    case ExpressionValue::Unsigned:
        return ExpressionValue::unsignedInteger(
            bitwise(operation, left.asUnsigned(), right.asUnsigned()), left.size());
    default:
        fail("unsupported binary numeric operation");
    }
}

ExpressionValue logical(Operation operation, const ExpressionValue &left,
                        const ExpressionValue &right) {
    const bool result = operation == Operation::LogicalAnd ? left.truth() && right.truth()
                                                           : left.truth() || right.truth();
    switch (left.kind()) {
    case ExpressionValue::Boolean:
        return ExpressionValue::boolean(result);
    case ExpressionValue::Signed:
        return ExpressionValue::signedInteger(result ? 1 : 0, left.size());
    case ExpressionValue::Unsigned:
        return ExpressionValue::unsignedInteger(result ? 1 : 0, left.size());
    default:
        fail("unsupported binary numeric operation");
    }
}

template <class T> bool compare(Operation operation, const T &a, const T &b) {
    switch (operation) {
    case Operation::Eq: return a == b;
    case Operation::Ne: return a != b;
    case Operation::Lt: return a < b;
    case Operation::Le: return a <= b;
    case Operation::Gt: return a > b;
    default: return a >= b;
    }
}

ExpressionValue comparison(Operation operation, const ExpressionValue &left,
                           const ExpressionValue &right) {
    switch (left.kind()) {
    case ExpressionValue::Boolean:
        return ExpressionValue::boolean(
            compare<int>(operation, left.truth() ? 1 : 0, right.truth() ? 1 : 0));
    case ExpressionValue::Signed:
        return ExpressionValue::boolean(compare(operation, left.asSigned(), right.asSigned()));
    case ExpressionValue::Unsigned:
        return ExpressionValue::boolean(
            compare(operation, left.asUnsigned(), right.asUnsigned()));
    case ExpressionValue::String:
        if (right.kind() == ExpressionValue::String)
            return ExpressionValue::boolean(compare(operation, left.text(), right.text()));
        break;
    default:
        break;
    }
    fail("unsupported comparison operation");
}

ExpressionValue shift(Operation operation, const ExpressionValue &left,
                      const ExpressionValue &right) {
    if (!left.isInteger())
        fail("can only shift numeric values");
    if (right.kind() != ExpressionValue::Signed)
        fail("integer shift value expected");
    const unsigned count = static_cast<std::uint64_t>(right.asSigned()) % 64;
    if (left.kind() == ExpressionValue::Signed) {
        const std::int64_t a = left.asSigned();
        const std::int64_t result =
            operation == Operation::Lshift
                ? static_cast<std::int64_t>(static_cast<std::uint64_t>(a) << count)
                : a >> count;
        return ExpressionValue::signedInteger(result, left.size());
    }
    const std::uint64_t a = left.asUnsigned();
    return ExpressionValue::unsignedInteger(operation == Operation::Lshift ? a << count
                                                                          : a >> count,
                                            left.size());
}

ExpressionValue apply(Operation operation, const ExpressionValue &left,
                      const ExpressionValue &right) {
    switch (operation) {
    case Operation::Plus:
    case Operation::Minus:
    case Operation::Multiply:
    case Operation::Divide:
        return arithmetic(operation, left, right);
    case Operation::Mod:
        return mod(left, right);
    case Operation::BitAnd:
    case Operation::BitOr:
    case Operation::BitXor:
        return bitwise(operation, left, right);
    case Operation::LogicalAnd:
    case Operation::LogicalOr:
        return logical(operation, left, right);
    case Operation::Lshift:
    case Operation::Rshift:
        return shift(operation, left, right);
    default:
        return comparison(operation, left, right);
    }
}

std::string hexText(std::uint64_t value) {
    char buffer[24];
    std::snprintf(buffer, sizeof buffer, "0x%llx", static_cast<unsigned long long>(value));
    return buffer;
}

} // namespace

// ---- Expression ----

Expression::~Expression() = default;

void Expression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
}

std::unique_ptr<Expression> Expression::clone() const {
    fail("cannot duplicate expression");
}

ExpressionValue Expression::valueOf(const Expression &expression) const {
    ExpressionValue value = expression.evaluate();
    if (value.kind() == ExpressionValue::Marker)
        return parser_->readMarker(value);
    return value;
}

// ---- Constants and names ----

std::string ConstantExpression::toString() const {
    switch (value_.kind()) {
    case ExpressionValue::Boolean:
        return value_.truth() ? "true" : "false";
    case ExpressionValue::Float: {
        char buffer[40];
        std::snprintf(buffer, sizeof buffer, "%.17g", value_.asFloat());
        return buffer;
    }
    case ExpressionValue::String:
        return "\"" + value_.text() + "\"";
    default:
        return hexText(value_.asUnsigned());
    }
}

std::unique_ptr<Expression> ConstantExpression::clone() const {
    return std::make_unique<ConstantExpression>(parser_, value_);
}

IntegerConstantExpression::IntegerConstantExpression(ExpressionParser *parser,
                                                     std::uint64_t value, bool isSigned,
                                                     int size)
    : ConstantExpression(parser, isSigned ? ExpressionValue::signedInteger(
                                                static_cast<std::int64_t>(value), size)
                                          : ExpressionValue::unsignedInteger(value, size)) {}

void IdentifierExpression::setAddress(std::uint64_t address) {
    address_ = address;
    hasAddress_ = true;
}

ExpressionValue IdentifierExpression::evaluate() const {
    if (hasAddress_)
        return ExpressionValue::unsignedInteger(address_, parser_->addressSize());
    return parser_->lookupIdentifier(name_);
}

std::unique_ptr<Expression> IdentifierExpression::clone() const {
    auto copy = std::make_unique<IdentifierExpression>(parser_, name_);
    copy->address_ = address_;
    copy->hasAddress_ = hasAddress_;
    return copy;
}

ExpressionValue ScopedIdentifierExpression::evaluate() const {
    return parser_->lookupScoped(names_);
}

std::string ScopedIdentifierExpression::toString() const {
    std::string text;
    for (std::size_t i = 0; i < names_.size(); ++i)
        text += (i ? "::" : "") + names_[i];
    return "Identifier(" + text + ")";
}

std::unique_ptr<Expression> ScopedIdentifierExpression::clone() const {
    return std::make_unique<ScopedIdentifierExpression>(parser_, names_);
}

ExpressionValue RegisterExpression::evaluate() const {
    return parser_->lookupRegister(name_);
}

std::unique_ptr<Expression> RegisterExpression::clone() const {
    return std::make_unique<RegisterExpression>(parser_, name_);
}

// ---- Unary operators ----

std::string UnaryExpression::toString() const {
    return std::string(className()) + "(" + operand_->toString() + ")";
}

void UnaryExpression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
    operand_->visit(visitor, argument);
}

ExpressionValue LogicalNotExpression::evaluate() const {
    const ExpressionValue value = valueOf(*operand_);
    switch (value.kind()) {
    case ExpressionValue::Boolean:
    case ExpressionValue::Signed:
    case ExpressionValue::Unsigned:
    case ExpressionValue::Float:
        return ExpressionValue::boolean(!value.truth());
    default:
        fail("unsupported unary num operation");
    }
}

std::unique_ptr<Expression> LogicalNotExpression::clone() const {
    return std::make_unique<LogicalNotExpression>(parser_, operand_->clone());
}

ExpressionValue BitNotExpression::evaluate() const {
    const ExpressionValue value = valueOf(*operand_);
    switch (value.kind()) {
    case ExpressionValue::Signed:
        return ExpressionValue::signedInteger(~value.asSigned(), value.size());
    case ExpressionValue::Unsigned:
        return ExpressionValue::unsignedInteger(~value.asUnsigned(), value.size());
    default:
        fail("unsupported unary num operation");
    }
}

std::unique_ptr<Expression> BitNotExpression::clone() const {
    return std::make_unique<BitNotExpression>(parser_, operand_->clone());
}

ExpressionValue NegateExpression::evaluate() const {
    const ExpressionValue value = valueOf(*operand_);
    switch (value.kind()) {
    case ExpressionValue::Boolean:
    case ExpressionValue::Signed:
        return ExpressionValue::signedInteger(
            static_cast<std::int64_t>(0 - static_cast<std::uint64_t>(value.asSigned())),
            value.size());
    case ExpressionValue::Unsigned:
        return ExpressionValue::unsignedInteger(0 - value.asUnsigned(), value.size());
    case ExpressionValue::Float:
        return ExpressionValue::floating(-value.asFloat(), value.size());
    default:
        fail("unsupported unary num operation");
    }
}

std::unique_ptr<Expression> NegateExpression::clone() const {
    return std::make_unique<NegateExpression>(parser_, operand_->clone());
}

// ---- Binary operators ----

std::string BinaryExpression::toString() const {
    // Built by appending: "(" + a temporary makes g++ 12 warn falsely about
    // overlapping copies at -O3.
    std::string text = "(";
    text += left_->toString();
    text += symbol();
    text += right_->toString();
    text += ')';
    return text;
}

void BinaryExpression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
    left_->visit(visitor, argument);
    right_->visit(visitor, argument);
}

namespace {

ExpressionValue evaluateBoth(Operation operation, const Expression &node, const Expression &left,
                             const Expression &right) {
    ExpressionParser &parser = *node.parser();
    ExpressionValue a = left.evaluate();
    if (a.kind() == ExpressionValue::Marker)
        a = parser.readMarker(a);
    ExpressionValue b = right.evaluate();
    if (b.kind() == ExpressionValue::Marker)
        b = parser.readMarker(b);
    return apply(operation, a, b);
}

} // namespace

ExpressionValue PlusExpression::evaluate() const {
    return evaluateBoth(Operation::Plus, *this, *left_, *right_);
}
ExpressionValue MinusExpression::evaluate() const {
    return evaluateBoth(Operation::Minus, *this, *left_, *right_);
}
ExpressionValue MultiplyExpression::evaluate() const {
    return evaluateBoth(Operation::Multiply, *this, *left_, *right_);
}
ExpressionValue DivideExpression::evaluate() const {
    return evaluateBoth(Operation::Divide, *this, *left_, *right_);
}
ExpressionValue ModExpression::evaluate() const {
    return evaluateBoth(Operation::Mod, *this, *left_, *right_);
}
ExpressionValue LshiftExpression::evaluate() const {
    return evaluateBoth(Operation::Lshift, *this, *left_, *right_);
}
ExpressionValue RshiftExpression::evaluate() const {
    return evaluateBoth(Operation::Rshift, *this, *left_, *right_);
}
ExpressionValue BitAndExpression::evaluate() const {
    return evaluateBoth(Operation::BitAnd, *this, *left_, *right_);
}
ExpressionValue BitOrExpression::evaluate() const {
    return evaluateBoth(Operation::BitOr, *this, *left_, *right_);
}
ExpressionValue BitXorExpression::evaluate() const {
    return evaluateBoth(Operation::BitXor, *this, *left_, *right_);
}
ExpressionValue LogicalAndExpression::evaluate() const {
    return evaluateBoth(Operation::LogicalAnd, *this, *left_, *right_);
}
ExpressionValue LogicalOrExpression::evaluate() const {
    return evaluateBoth(Operation::LogicalOr, *this, *left_, *right_);
}
ExpressionValue EqExpression::evaluate() const {
    return evaluateBoth(Operation::Eq, *this, *left_, *right_);
}
ExpressionValue NeExpression::evaluate() const {
    return evaluateBoth(Operation::Ne, *this, *left_, *right_);
}
ExpressionValue LtExpression::evaluate() const {
    return evaluateBoth(Operation::Lt, *this, *left_, *right_);
}
ExpressionValue LeExpression::evaluate() const {
    return evaluateBoth(Operation::Le, *this, *left_, *right_);
}
ExpressionValue GtExpression::evaluate() const {
    return evaluateBoth(Operation::Gt, *this, *left_, *right_);
}
ExpressionValue GeExpression::evaluate() const {
    return evaluateBoth(Operation::Ge, *this, *left_, *right_);
}

ExpressionValue AssignExpression::evaluate() const {
    const ExpressionValue target = left_->evaluate();
    if (target.kind() != ExpressionValue::Marker)
        fail("bad expression type");
    const ExpressionValue value = valueOf(*right_);
    parser_->writeMarker(target, value);
    return value;
}

ExpressionValue LeftSquareBracketExpression::evaluate() const {
    const ExpressionValue array = left_->evaluate();
    const ExpressionValue index = valueOf(*right_);
    if (!index.isInteger())
        fail("bad index type");
    if (array.kind() != ExpressionValue::Marker ||
        !(parser_->isArray(array) || parser_->isPointer(array)))
        fail("cannot dereference");
    return parser_->element(array, index);
}

ExpressionValue DotExpression::evaluate() const {
    const auto *name = dynamic_cast<const IdentifierExpression *>(right_.get());
    if (!name)
        fail("bad expression type");
    ExpressionValue object = left_->evaluate();
    if (object.kind() != ExpressionValue::Marker)
        fail("cannot dereference");
    if (arrow_) {
        if (!parser_->isPointer(object))
            fail("cannot dereference");
        object = parser_->dereference(object);
    }
    return parser_->member(object, name->name());
}

std::unique_ptr<Expression> DotExpression::clone() const {
    return std::make_unique<DotExpression>(parser_, left_->clone(), right_->clone(), arrow_);
}

ExpressionValue PtrToMemberExpression::evaluate() const {
    ExpressionValue object = left_->evaluate();
    const ExpressionValue memberPointer = valueOf(*right_);
    if (object.kind() != ExpressionValue::Marker)
        fail("cannot dereference");
    if (arrow_) {
        if (!parser_->isPointer(object))
            fail("cannot dereference");
        object = parser_->dereference(object);
    }
    return parser_->pointerToMember(object, memberPointer);
}

std::unique_ptr<Expression> PtrToMemberExpression::clone() const {
    return std::make_unique<PtrToMemberExpression>(parser_, left_->clone(), right_->clone(),
                                                   arrow_);
}

// ---- The rest ----

ExpressionValue ArraySliceExpression::evaluate() const {
    const ExpressionValue array = array_->evaluate();
    const ExpressionValue start = valueOf(*start_);
    const ExpressionValue stop = valueOf(*stop_);
    if (!start.isInteger())
        fail("start should be an integer");
    if (!stop.isInteger())
        fail("stop should be an integer");
    return parser_->slice(array, start, stop);
}

std::string ArraySliceExpression::toString() const {
    return array_->toString() + "[" + start_->toString() + ":" + stop_->toString() + "]";
}

void ArraySliceExpression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
    array_->visit(visitor, argument);
    start_->visit(visitor, argument);
    stop_->visit(visitor, argument);
}

std::unique_ptr<Expression> ArraySliceExpression::clone() const {
    return std::make_unique<ArraySliceExpression>(parser_, array_->clone(), start_->clone(),
                                                  stop_->clone());
}

ExpressionValue CastExpression::evaluate() const {
    return parser_->cast(*type_, operand_->evaluate());
}

std::string CastExpression::toString() const {
    return "CastExpression(" + type_->name() + ", " + operand_->toString() + ")";
}

void CastExpression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
    operand_->visit(visitor, argument);
}

ExpressionValue CallExpression::evaluate() const {
    const ExpressionValue target = target_->evaluate();
    std::vector<ExpressionValue> values;
    values.reserve(arguments_.size());
    for (const auto &argument : arguments_)
        values.push_back(valueOf(*argument));
    return parser_->call(target, values);
}

std::string CallExpression::toString() const {
    std::string text = target_->toString() + "(";
    for (std::size_t i = 0; i < arguments_.size(); ++i)
        text += (i ? ", " : "") + arguments_[i]->toString();
    return text + ")";
}

void CallExpression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
    target_->visit(visitor, argument);
    for (const auto &node : arguments_)
        node->visit(visitor, argument);
}

std::unique_ptr<Expression> CallExpression::clone() const {
    std::vector<std::unique_ptr<Expression>> arguments;
    for (const auto &argument : arguments_)
        arguments.push_back(argument->clone());
    return std::make_unique<CallExpression>(parser_, target_->clone(), std::move(arguments));
}

ExpressionValue SizeofExpression::evaluate() const {
    if (type_)
        return parser_->sizeOf(*type_);
    if (dynamic_cast<const ConstantExpression *>(operand_.get()))
        fail("cannot determine sizeof of a constant");
    return parser_->sizeOf(*operand_);
}

std::string SizeofExpression::toString() const {
    return "SizeofExpression(" + (type_ ? type_->name() : operand_->toString()) + ")";
}

void SizeofExpression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
    if (operand_)
        operand_->visit(visitor, argument);
}

ExpressionValue AddressofExpression::evaluate() const {
    if (dynamic_cast<const ConstantExpression *>(operand_.get()))
        fail("cannot take address of a constant");
    const ExpressionValue value = operand_->evaluate();
    if (value.kind() == ExpressionValue::Marker)
        return parser_->addressOfValue(value);
    return parser_->addressOf(*operand_);
}

std::string AddressofExpression::toString() const {
    return "AddressofExpression(" + operand_->toString() + ")";
}

void AddressofExpression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
    operand_->visit(visitor, argument);
}

std::unique_ptr<Expression> AddressofExpression::clone() const {
    return std::make_unique<AddressofExpression>(parser_, operand_->clone());
}

ExpressionValue AddressofLineExpression::evaluate() const {
    return parser_->addressOfLine(file_, line_);
}

std::string AddressofLineExpression::toString() const {
    return "addressof(\"" + file_ + "\", " + std::to_string(line_) + ")";
}

std::unique_ptr<Expression> AddressofLineExpression::clone() const {
    return std::make_unique<AddressofLineExpression>(parser_, file_, line_);
}

ExpressionValue SymbolAtExpression::evaluate() const {
    return parser_->symbolAt(valueOf(*operand_));
}

std::string SymbolAtExpression::toString() const {
    return "symbolat(" + operand_->toString() + ")";
}

void SymbolAtExpression::visit(ExpressionVisitor visitor, void *argument) {
    visitor(*this, argument);
    operand_->visit(visitor, argument);
}

std::unique_ptr<Expression> SymbolAtExpression::clone() const {
    return std::make_unique<SymbolAtExpression>(parser_, operand_->clone());
}
