#pragma once

#include <cstdint>
#include <string>

// What a marker value refers to: a variable, a register or memory that only a
// derived expression parser knows. The parser owns the objects.
class MarkerType {
public:
    virtual ~MarkerType();
};

// The result of evaluating an expression: a typed number, a string, a
// reference to something the parser knows, or nothing.
class ExpressionValue {
public:
    enum Kind : std::int32_t {
        Boolean = 0,
        Signed = 1,
        Unsigned = 2,
        String = 3,
        Marker = 4,
        Float = 5,
        None = 6,
    };

    // A value of kind none.
    ExpressionValue() = default;

    static ExpressionValue boolean(bool value);
    static ExpressionValue signedInteger(std::int64_t value, int size = 8, int bitWidth = 0);
    static ExpressionValue unsignedInteger(std::uint64_t value, int size = 8, int bitWidth = 0);
    // Sizes 2 and 4 hold a value rounded to that precision.
    static ExpressionValue floating(double value, int size = 8);
    static ExpressionValue string(std::string text);
    static ExpressionValue marker(MarkerType *marker, int size = 4);

    Kind kind() const { return kind_; }
    std::uint64_t payload() const { return payload_; }
    int size() const { return size_; }
    int bitWidth() const { return bitWidth_; }
    const std::string &text() const { return text_; }
    MarkerType *markerObject() const { return marker_; }

    bool isNumeric() const { return kind_ == Signed || kind_ == Unsigned || kind_ == Float; }
    bool isInteger() const { return kind_ == Signed || kind_ == Unsigned; }

    std::int64_t asSigned() const;
    std::uint64_t asUnsigned() const;
    double asFloat() const;
    // The value taken as a condition: non-zero numbers, true, a non-empty string.
    bool truth() const;

    // The name of the value's type: "boolean", "int", "unsigned char", ...
    std::string typeName() const;

    bool operator==(const ExpressionValue &other) const;

private:
    Kind kind_ = None;
    std::uint64_t payload_ = 0;
    std::int32_t size_ = 0;
    std::int32_t bitWidth_ = 0;
    std::string text_;
    MarkerType *marker_ = nullptr;
};
