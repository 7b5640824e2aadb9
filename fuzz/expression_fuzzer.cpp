// Evaluates arbitrary text as an expression, as the XML pre-processor and the
// memory map reader do with attribute values. Any failure must be a
// ParserException; the typed evaluators must agree with evaluate.
#include "support/expression.h"
#include "support/simple_expression_parser.h"
#include "support/exceptions.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    SimpleExpressionParser parser;

    bool failed = false;
    ExpressionValue value;
    try {
        value = parser.evaluate(text);
    } catch (const ParserException &) {
        failed = true;
    }

    bool ok = false;
    const std::uint64_t unsignedValue = parser.evaluateUnsigned(text, ok);
    if (ok != (!failed && value.isNumeric()) || (ok && unsignedValue != value.asUnsigned())) {
        std::fprintf(stderr, "evaluateUnsigned disagrees with evaluate\n");
        std::abort();
    }
    const bool truth = parser.evaluateBoolean(text, ok);
    if (ok != (!failed && value.kind() == ExpressionValue::Boolean) ||
        (ok && truth != value.truth())) {
        std::fprintf(stderr, "evaluateBoolean disagrees with evaluate\n");
        std::abort();
    }

    // Trees that parse render and copy without trouble.
    try {
        if (const std::unique_ptr<Expression> tree = parser.parse(text)) {
            const std::string rendered = tree->toString();
            try {
                if (tree->clone()->toString() != rendered) {
                    std::fprintf(stderr, "a copy renders differently\n");
                    std::abort();
                }
            } catch (const ParserException &) {
            }
        }
    } catch (const ParserException &) {
    }
    return 0;
}
