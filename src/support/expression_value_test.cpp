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
        {1.0, 8, 0x3FF0000000000000},
        {-2.5, 8, 0xC004000000000000},
        {1.0, 4, 0x3F800000},
        {-2.5, 4, 0xC0200000},
        {1.0, 2, 0x3C00},
        {0.1, 2, 0x2E66},
        {65504.0, 2, 0x7BFF},
        {1e6, 2, 0x7C00},                  // too large: infinity
        {-1e6, 2, 0xFC00},
        {5.960464477539063e-08, 2, 0x0001}, // the smallest subnormal
        {1e-10, 2, 0x0000},
        {std::numeric_limits<double>::infinity(), 2, 0x7C00},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Value::floating(c.value, c.size).asUnsigned(), c.bits)
            << c.value << " size " << c.size;
    // A value of a smaller size holds only what that size can.
    EXPECT_EQ(Value::floating(0.1, 4).asFloat(), static_cast<double>(0.1f));
    EXPECT_EQ(Value::floating(0.1, 2).asFloat(), 0.0999755859375);
    EXPECT_TRUE(std::isnan(Value::floating(NAN, 2).asFloat()));
}

TEST(ExpressionValueTest, FloatsTruncateTowardsZeroAndSaturate) {
    EXPECT_EQ(Value::floating(2.9).asSigned(), 2);
    EXPECT_EQ(Value::floating(-2.9).asSigned(), -2);
    EXPECT_EQ(Value::floating(1e30).asSigned(), INT64_MAX);
    EXPECT_EQ(Value::floating(-1e30).asSigned(), INT64_MIN);
    EXPECT_EQ(Value::floating(NAN).asSigned(), 0);
}

TEST(ExpressionValueTest, KindsAndNames) {
    MarkerType marker;
    const struct {
        Value value;
        std::string name;
        bool numeric;
    } cases[] = {
        {Value::boolean(true), "boolean", false},
        {Value::signedInteger(1, 1), "char", true},
        {Value::signedInteger(1, 2), "short", true},
        {Value::signedInteger(1, 4), "int", true},
        {Value::signedInteger(1, 8), "long long", true},
        {Value::unsignedInteger(1, 1), "unsigned char", true},
        {Value::unsignedInteger(1, 2), "unsigned short", true},
        {Value::unsignedInteger(1, 4), "unsigned int", true},
        {Value::unsignedInteger(1, 8), "unsigned long long", true},
        {Value::string("x"), "string", false},
        {Value::marker(&marker), "marker", false},
        {Value::floating(1, 4), "float", true},
        {Value::floating(1, 8), "double", true},
        {Value(), "unknown", false},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.value.typeName(), c.name);
        EXPECT_EQ(c.value.isNumeric(), c.numeric) << c.name;
    }
    EXPECT_EQ(Value().kind(), Value::None);
}

TEST(ExpressionValueTest, EqualityNeedsKindSizeAndPayload) {
    MarkerType one, two;
    EXPECT_EQ(Value::signedInteger(1), Value::signedInteger(1));
    EXPECT_NE(Value::signedInteger(1), Value::signedInteger(1, 4));
    EXPECT_NE(Value::signedInteger(1), Value::unsignedInteger(1));
    EXPECT_NE(Value::signedInteger(1), Value::signedInteger(2));
    EXPECT_NE(Value::signedInteger(1), Value::boolean(true));
    EXPECT_EQ(Value::boolean(true), Value::boolean(true));
    EXPECT_EQ(Value::string("a"), Value::string("a"));
    EXPECT_NE(Value::string("a"), Value::string("b"));
    EXPECT_EQ(Value(), Value());
    EXPECT_EQ(Value::floating(0.5), Value::floating(0.5));
    EXPECT_EQ(Value::marker(&one), Value::marker(&one));
    EXPECT_NE(Value::marker(&one), Value::marker(&two));
}

} // namespace
