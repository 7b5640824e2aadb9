#include "support/simple_expression_parser.h"

#include "support/exceptions.h"

namespace {

[[noreturn]] void fail(std::string message) {
    throw ParserException(std::move(message));
}

} // namespace

SimpleExpressionParser::SimpleExpressionParser() : ExpressionParser(4) {}

ExpressionValue SimpleExpressionParser::lookupScoped(const std::vector<std::string> &names) {
    std::string joined;
    for (std::size_t i = 0; i < names.size(); ++i)
        joined += (i ? "::" : "") + names[i];
    fail(joined + " symbol not found");
}

ExpressionValue SimpleExpressionParser::lookupIdentifier(const std::string &name) {
    fail(name + " symbol not found");
}

ExpressionValue SimpleExpressionParser::lookupRegister(const std::string &name) {
    fail(name + "unknown register");
}

bool SimpleExpressionParser::isStructType(const std::string &) {
    return false;
}

bool SimpleExpressionParser::isUserType(const std::string &) {
    return false;
}

ExpressionValue SimpleExpressionParser::cast(const BaseType &, const ExpressionValue &) {
    fail("cannot cast");
}

bool SimpleExpressionParser::isPointer(const ExpressionValue &) {
    return false;
}

bool SimpleExpressionParser::isArray(const ExpressionValue &) {
    return false;
}

ExpressionValue SimpleExpressionParser::dereference(const ExpressionValue &) {
    fail("cannot dereference");
}

ExpressionValue SimpleExpressionParser::element(const ExpressionValue &, const ExpressionValue &) {
    fail("cannot dereference");
}

ExpressionValue SimpleExpressionParser::member(const ExpressionValue &, const std::string &) {
    fail("cannot dereference");
}

ExpressionValue SimpleExpressionParser::pointerToMember(const ExpressionValue &,
                                                        const ExpressionValue &) {
    fail("cannot dereference");
}

ExpressionValue SimpleExpressionParser::addressOf(const Expression &) {
    fail("addressof not implemented");
}

ExpressionValue SimpleExpressionParser::sizeOf(const Expression &) {
    fail("sizeof expression not implemented");
}

ExpressionValue SimpleExpressionParser::sizeOf(const BaseType &) {
    fail("sizeof(typename) not implemented");
}

ExpressionValue SimpleExpressionParser::addressOfLine(const std::string &, std::int64_t) {
    fail("addressof not implemented");
}

void SimpleExpressionParser::writeMarker(const ExpressionValue &, const ExpressionValue &) {
    fail("this symbol not found");
}

ExpressionValue SimpleExpressionParser::readMarker(const ExpressionValue &) {
    fail("this symbol not found");
}

ExpressionValue SimpleExpressionParser::call(const ExpressionValue &,
                                             const std::vector<ExpressionValue> &) {
    fail("function calling not implemented");
}

ExpressionValue SimpleExpressionParser::addressOfValue(const ExpressionValue &) {
    fail("addressof not implemented");
}

ExpressionValue SimpleExpressionParser::slice(const ExpressionValue &, const ExpressionValue &,
                                              const ExpressionValue &) {
    fail("cannot array slice");
}

ExpressionValue SimpleExpressionParser::symbolAt(const ExpressionValue &) {
    fail("symbolat not implemented");
}
