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
        {Value::signedInteger(0xFF, 1), -1, 0xFF, -1.0},
        {Value::unsignedInteger(0xFF, 1), -1, 0xFF, 255.0},
        {Value::signedInteger(0x12345, 2), 0x2345, 0x2345, 0x2345},
        {Value::signedInteger(-1, 4), -1, 0xFFFFFFFF, -1.0},
        {Value::unsignedInteger(0x80000000, 4), INT32_MIN, 0x80000000, 2147483648.0},
        {Value::signedInteger(-1, 8), -1, UINT64_MAX, -1.0},
        // A bit field is sign-extended from its width but masked to its size.
        {Value::unsignedInteger(0x1F, 4, 5), -1, 0x1F, 31.0},
        {Value::signedInteger(0x0F, 4, 5), 15, 0x0F, 15.0},
        {Value::boolean(true), 1, 1, 1.0},
        {Value::boolean(false), 0, 0, 0.0},
        {Value::string("12"), 0, 0, 0.0},
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
        {-2.5, 8, 0xC004000000000000}, {1.0, 4, 0x3F800000}, {-2.5, 2, 0xC100}, {0.1, 2, 0x2E66},
        {65504.0, 2, 0x7BFF}, {1e6, 2, 0x7C00},  // too large: infinity
        {5.960464477539063e-08, 2, 0x0001},      // the smallest subnormal
        {1e-10, 2, 0x0000}, {std::numeric_limits<double>::infinity(), 2, 0x7C00},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Value::floating(c.value, c.size).asUnsigned(), c.bits) << c.value << " size " << c.size;
    // A value of a smaller size holds only what that size can.
    EXPECT_EQ(Value::floating(0.1, 4).asFloat(), static_cast<double>(0.1f));
    EXPECT_EQ(Value::floating(0.1, 2).asFloat(), 0.0999755859375);
    EXPECT_TRUE(std::isnan(Value::floating(NAN, 2).asFloat()));
    // As integers, floats are truncated towards zero and saturate.
    const struct {
        double value;
        std::int64_t truncated;
    } integers[] = {{2.9, 2}, {-2.9, -2}, {1e30, INT64_MAX}, {-1e30, INT64_MIN}, {NAN, 0}};
    for (const auto &c : integers)
        EXPECT_EQ(Value::floating(c.value).asSigned(), c.truncated) << c.value;
}

TEST(ExpressionValueTest, NamesAndEquality) {
    MarkerType one, two;
    const struct {
        Value value;
        std::string name;
        bool numeric;
    } names[] = {
        {Value::boolean(true), "boolean", false},       {Value::signedInteger(1, 1), "char", true},
        {Value::signedInteger(1, 2), "short", true},    {Value::signedInteger(1, 4), "int", true},
        {Value::signedInteger(1, 8), "long long", true}, {Value::unsignedInteger(1, 4), "unsigned int", true},
        {Value::string("x"), "string", false},          {Value::marker(&one), "marker", false},
        {Value::floating(1, 4), "float", true},         {Value::floating(1, 8), "double", true},
        {Value(), "unknown", false},
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
        {Value::string("a"), Value::string("a"), true},   {Value::string("a"), Value::string("b"), false},
        {Value::marker(&one), Value::marker(&one), true}, {Value::marker(&one), Value::marker(&two), false},
        {Value(), Value(), true},
    };
    for (const auto &c : pairs)
        EXPECT_EQ(c.a == c.b, c.equal) << c.a.typeName() << " " << c.b.typeName();
}

}  // namespace
