#pragma once

#include "support/expression_parser.h"

// The expression parser of the build: no symbols, registers, memory or types,
// so an expression computes with constants and strings. Cheap to construct.
class SimpleExpressionParser : public ExpressionParser {
public:
    SimpleExpressionParser();

    ExpressionValue lookupScoped(const std::vector<std::string> &names) override;
    ExpressionValue lookupIdentifier(const std::string &name) override;
    ExpressionValue lookupRegister(const std::string &name) override;
    bool isStructType(const std::string &name) override;
    bool isUserType(const std::string &name) override;
    ExpressionValue cast(const BaseType &type, const ExpressionValue &value) override;
    bool isPointer(const ExpressionValue &marker) override;
    bool isArray(const ExpressionValue &marker) override;
    ExpressionValue dereference(const ExpressionValue &marker) override;
    ExpressionValue element(const ExpressionValue &marker, const ExpressionValue &index) override;
    ExpressionValue member(const ExpressionValue &marker, const std::string &name) override;
    ExpressionValue pointerToMember(const ExpressionValue &marker,
                                    const ExpressionValue &memberPointer) override;
    ExpressionValue addressOf(const Expression &expression) override;
    ExpressionValue sizeOf(const Expression &expression) override;
    ExpressionValue sizeOf(const BaseType &type) override;
    ExpressionValue addressOfLine(const std::string &file, std::int64_t line) override;
    void writeMarker(const ExpressionValue &marker, const ExpressionValue &value) override;
    ExpressionValue readMarker(const ExpressionValue &marker) override;
    ExpressionValue call(const ExpressionValue &target,
                         const std::vector<ExpressionValue> &arguments) override;
    ExpressionValue addressOfValue(const ExpressionValue &value) override;
    ExpressionValue slice(const ExpressionValue &value, const ExpressionValue &start,
                          const ExpressionValue &stop) override;
    ExpressionValue symbolAt(const ExpressionValue &value) override;
};
