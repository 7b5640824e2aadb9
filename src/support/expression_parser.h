#pragma once

#include "support/expression_value.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class BaseType;
class CStyleLexer;
class Expression;

// Parses and evaluates C-like expressions. Everything that needs symbols,
// registers, memory or types is a hook for a derived class; every failure is
// a ParserException.
class ExpressionParser {
public:
    // addressSize is the size in bytes of an address of the target.
    explicit ExpressionParser(int addressSize);
    virtual ~ExpressionParser();
    ExpressionParser(const ExpressionParser &) = delete;
    ExpressionParser &operator=(const ExpressionParser &) = delete;

    // The hooks, called while evaluating.
    virtual ExpressionValue lookupScoped(const std::vector<std::string> &names) = 0;
    virtual ExpressionValue lookupIdentifier(const std::string &name) = 0;
    virtual ExpressionValue lookupRegister(const std::string &name) = 0;
    virtual bool isStructType(const std::string &name) = 0;
    virtual bool isUserType(const std::string &name) = 0;
    virtual ExpressionValue cast(const BaseType &type, const ExpressionValue &value) = 0;
    virtual bool isPointer(const ExpressionValue &marker) = 0;
    virtual bool isArray(const ExpressionValue &marker) = 0;
    // *p of a pointer marker.
    virtual ExpressionValue dereference(const ExpressionValue &marker) = 0;
    // a[i] of a pointer or array marker.
    virtual ExpressionValue element(const ExpressionValue &marker, const ExpressionValue &index) = 0;
    // a.name
    virtual ExpressionValue member(const ExpressionValue &marker, const std::string &name) = 0;
    // a.*m
    virtual ExpressionValue pointerToMember(const ExpressionValue &marker,
                                            const ExpressionValue &memberPointer) = 0;
    virtual ExpressionValue addressOf(const Expression &expression) = 0;
    virtual ExpressionValue sizeOf(const Expression &expression) = 0;
    virtual ExpressionValue sizeOf(const BaseType &type) = 0;
    virtual ExpressionValue addressOfLine(const std::string &file, std::int64_t line) = 0;
    virtual void writeMarker(const ExpressionValue &marker, const ExpressionValue &value) = 0;
    virtual ExpressionValue readMarker(const ExpressionValue &marker) = 0;
    virtual ExpressionValue call(const ExpressionValue &target,
                                 const std::vector<ExpressionValue> &arguments) = 0;
    virtual ExpressionValue addressOfValue(const ExpressionValue &value) = 0;
    virtual ExpressionValue slice(const ExpressionValue &value, const ExpressionValue &start,
                                  const ExpressionValue &stop) = 0;
    virtual ExpressionValue symbolAt(const ExpressionValue &value) = 0;

    // Parses one expression; text behind it is ignored. Returns null for a
    // text without tokens. endPosition receives the read position in text,
    // which lies behind the token that ended the expression.
    std::unique_ptr<Expression> parse(const std::string &text, int *endPosition = nullptr);

    // parse and evaluate; an empty text gives a value of kind none.
    ExpressionValue evaluate(const std::string &text, int *endPosition = nullptr);

    // evaluate, reporting failure through ok instead of an exception: only a
    // numeric result (a boolean for evaluateBoolean) counts; otherwise the
    // result is 0 or false.
    std::uint64_t evaluateUnsigned(const std::string &text, bool &ok);
    std::int64_t evaluateSigned(const std::string &text, bool &ok);
    bool evaluateBoolean(const std::string &text, bool &ok);

    int addressSize() const { return addressSize_; }

protected:
    // For a derived parser whose lexer substitutes identifiers.
    ExpressionParser(int addressSize, std::unique_ptr<CStyleLexer> lexer);

private:
    class Grammar;

    std::unique_ptr<CStyleLexer> lexer_;
    int addressSize_;
};
