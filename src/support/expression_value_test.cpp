#include "support/expression_value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Value = ExpressionValue;

TEST(ExpressionValueTest, IntegersNarrowToTheirSizeOrBitWidth) {
    const struct {
        Value value;
        std::int64_t asSigned;
        std::uint64_t asUnsigned;
        double asFloat;
    } cases[] = {
        // A bit field is sign-extended from its width but masked to its size.
        {Value::unsignedInteger(0x1F, 4, 5), -1, 0x1F, 31.0},
        {Value::boolean(false), 0, 0, 0.0},
        {Value(), 0, 0, 0.0},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.value.asSigned(), c.asSigned) << c.value.typeName();
        EXPECT_EQ(c.value.asUnsigned(), c.asUnsigned) << c.value.typeName();
        EXPECT_EQ(c.value.asFloat(), c.asFloat) << c.value.typeName();
    }
}

TEST(ExpressionValueTest, FloatsGiveTheirBitsAtTheirOwnSize) {
    const struct {
        double value;
        int size;
        std::uint64_t bits;
    } cases[] = {
        {1.0, 4, 0x3F800000}, {-2.5, 2, 0xC100}, {1e6, 2, 0x7C00},  // too large: infinity
        {5.960464477539063e-08, 2, 0x0001},                         // the smallest subnormal
        {1e-10, 2, 0x0000},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Value::floating(c.value, c.size).asUnsigned(), c.bits) << c.value << " size " << c.size;
    EXPECT_TRUE(std::isnan(Value::floating(NAN, 2).asFloat()));
    // As integers, floats are truncated towards zero and saturate.
    EXPECT_EQ(Value::floating(1e30).asSigned(), INT64_MAX);
    EXPECT_EQ(Value::floating(-1e30).asSigned(), INT64_MIN);
    EXPECT_EQ(Value::floating(NAN).asSigned(), 0);
}

TEST(ExpressionValueTest, NamesAndEquality) {
    MarkerType one, two;
    const struct {
        Value value;
        std::string name;
        bool numeric;
    } names[] = {
        {Value::signedInteger(1, 2), "short", true}, {Value::unsignedInteger(1, 4), "unsigned int", true},
        {Value::floating(1, 4), "float", true},      {Value::string("x"), "string", false},
    };
    for (const auto &c : names) {
        EXPECT_EQ(c.value.typeName(), c.name);
        EXPECT_EQ(c.value.isNumeric(), c.numeric) << c.name;
    }
    // Equal values have the same kind, size and payload.
    const struct {
        Value a, b;
        bool equal;
    } pairs[] = {
        {Value::signedInteger(1), Value::signedInteger(1), true},
        {Value::signedInteger(1), Value::signedInteger(1, 4), false},
        {Value::signedInteger(1), Value::unsignedInteger(1), false},
        {Value::signedInteger(1), Value::signedInteger(2), false},
        {Value::string("a"), Value::string("b"), false},
        {Value::marker(&one), Value::marker(&one), true},
        {Value::marker(&one), Value::marker(&two), false},
        {Value(), Value(), true},
    };
    for (const auto &c : pairs)
        EXPECT_EQ(c.a == c.b, c.equal) << c.a.typeName() << " " << c.b.typeName();
}

}  // namespace
