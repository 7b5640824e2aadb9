#include "support/expression_value.h"

#include <bit>
#include <cmath>
#include <limits>

MarkerType::~MarkerType() = default;

namespace {

// IEEE half precision bits of value, rounded to nearest even.
std::uint16_t halfBits(double value) {
    const std::uint32_t single = std::bit_cast<std::uint32_t>(static_cast<float>(value));
    const std::uint32_t sign = (single >> 16) & 0x8000u;
    const int exponent = static_cast<int>((single >> 23) & 0xFFu);
    std::uint32_t mantissa = single & 0x7FFFFFu;
    if (exponent == 0xFF) // infinity, NaN
        return static_cast<std::uint16_t>(sign | 0x7C00u | (mantissa ? 0x200u : 0u));
    const int halfExponent = exponent - 127 + 15;
    if (halfExponent >= 0x1F)
        return static_cast<std::uint16_t>(sign | 0x7C00u);
    if (halfExponent <= 0) {
        if (halfExponent < -10)
            return static_cast<std::uint16_t>(sign);
        mantissa |= 0x800000u;
        const int shift = 14 - halfExponent;
        std::uint32_t half = mantissa >> shift;
        const std::uint32_t rest = mantissa & ((1u << shift) - 1);
        const std::uint32_t halfway = 1u << (shift - 1);
        if (rest > halfway || (rest == halfway && (half & 1u)))
            ++half;
        return static_cast<std::uint16_t>(sign | half);
    }
    std::uint32_t half = (static_cast<std::uint32_t>(halfExponent) << 10) | (mantissa >> 13);
    const std::uint32_t rest = mantissa & 0x1FFFu;
    if (rest > 0x1000u || (rest == 0x1000u && (half & 1u)))
        ++half; // may carry into the exponent, up to infinity, as it should
    return static_cast<std::uint16_t>(sign | half);
}

double halfValue(std::uint16_t bits) {
    const int exponent = (bits >> 10) & 0x1F;
    const int mantissa = bits & 0x3FF;
    double magnitude;
    if (exponent == 0)
        magnitude = std::ldexp(mantissa, -24);
    else if (exponent == 0x1F)
        magnitude = mantissa ? std::numeric_limits<double>::quiet_NaN()
                             : std::numeric_limits<double>::infinity();
    else
        magnitude = std::ldexp(mantissa | 0x400, exponent - 25);
    return (bits & 0x8000) ? -magnitude : magnitude;
}

std::uint64_t maskTo(std::uint64_t value, int bits) {
    return bits >= 64 ? value : value & ((std::uint64_t{1} << bits) - 1);
}

std::int64_t signExtend(std::uint64_t value, int bits) {
    if (bits >= 64 || bits <= 0)
        return static_cast<std::int64_t>(value);
    const std::uint64_t sign = std::uint64_t{1} << (bits - 1);
    return static_cast<std::int64_t>((maskTo(value, bits) ^ sign) - sign);
}

// Sizes 1, 2 and 4 narrow; anything else stands as it is.
int sizeBits(int size) {
    return size == 1 || size == 2 || size == 4 ? size * 8 : 64;
}

} // namespace

ExpressionValue ExpressionValue::boolean(bool value) {
    ExpressionValue result;
    result.kind_ = Boolean;
    result.payload_ = value ? 1 : 0;
    result.size_ = 1;
    return result;
}

ExpressionValue ExpressionValue::signedInteger(std::int64_t value, int size, int bitWidth) {
    ExpressionValue result;
    result.kind_ = Signed;
    result.payload_ = static_cast<std::uint64_t>(value);
    result.size_ = size;
    result.bitWidth_ = bitWidth;
    return result;
}

ExpressionValue ExpressionValue::unsignedInteger(std::uint64_t value, int size, int bitWidth) {
    ExpressionValue result;
    result.kind_ = Unsigned;
    result.payload_ = value;
    result.size_ = size;
    result.bitWidth_ = bitWidth;
    return result;
}

ExpressionValue ExpressionValue::floating(double value, int size) {
    if (size == 4)
        value = static_cast<float>(value);
    else if (size == 2)
        value = halfValue(halfBits(value));
    ExpressionValue result;
    result.kind_ = Float;
    result.payload_ = std::bit_cast<std::uint64_t>(value);
    result.size_ = size;
    return result;
}

ExpressionValue ExpressionValue::string(std::string text) {
    ExpressionValue result;
    result.kind_ = String;
    result.text_ = std::move(text);
    return result;
}

ExpressionValue ExpressionValue::marker(MarkerType *marker, int size) {
    ExpressionValue result;
    result.kind_ = Marker;
    result.marker_ = marker;
    result.size_ = size;
    return result;
}

std::int64_t ExpressionValue::asSigned() const {
    switch (kind_) {
    case Boolean:
    case String:
        return static_cast<std::int64_t>(payload_);
    case Signed:
    case Unsigned:
        return signExtend(payload_, bitWidth_ > 0 ? bitWidth_ : sizeBits(size_));
    case Float: {
        // Truncated towards zero; out of range saturates and NaN gives 0.
        const double value = std::trunc(std::bit_cast<double>(payload_));
        if (std::isnan(value))
            return 0;
        if (value >= 0x1p63)
            return std::numeric_limits<std::int64_t>::max();
        if (value < -0x1p63)
            return std::numeric_limits<std::int64_t>::min();
        return static_cast<std::int64_t>(value);
    }
    case Marker:
    case None:
        break;
    }
    return 0;
}

std::uint64_t ExpressionValue::asUnsigned() const {
    switch (kind_) {
    case Boolean:
        return payload_;
    case Signed:
    case Unsigned:
        return maskTo(payload_, sizeBits(size_));
    case Float: {
        const double value = std::bit_cast<double>(payload_);
        if (size_ == 4)
            return std::bit_cast<std::uint32_t>(static_cast<float>(value));
        if (size_ == 2)
            return halfBits(value);
        return payload_;
    }
    case String:
    case Marker:
    case None:
        break;
    }
    return 0;
}

double ExpressionValue::asFloat() const {
    switch (kind_) {
    case Boolean:
        return static_cast<double>(payload_);
    case Signed:
        return static_cast<double>(asSigned());
    case Unsigned:
        return static_cast<double>(asUnsigned());
    case Float:
        return std::bit_cast<double>(payload_);
    case String:
    case Marker:
    case None:
        break;
    }
    return 0.0;
}

bool ExpressionValue::truth() const {
    switch (kind_) {
    case Boolean:
        return payload_ != 0;
    case Signed:
        return asSigned() != 0;
    case Unsigned:
        return asUnsigned() != 0;
    case Float:
        return asFloat() != 0.0;
    case String:
        return !text_.empty();
    case Marker:
    case None:
        break;
    }
    return false;
}

std::string ExpressionValue::typeName() const {
    auto integerName = [this]() -> std::string {
        switch (size_) {
        case 1: return "char";
        case 2: return "short";
        case 4: return "int";
        default: return "long long";
        }
    };
    switch (kind_) {
    case Boolean: return "boolean";
    case Signed: return integerName();
    case Unsigned: return "unsigned " + integerName();
    case String: return "string";
    case Marker: return "marker";
    case Float: return size_ == 4 ? "float" : "double";
    case None: break;
    }
    return "unknown";
}

bool ExpressionValue::operator==(const ExpressionValue &other) const {
    if (kind_ != other.kind_)
        return false;
    switch (kind_) {
    case None:
        return true;
    case String:
        return text_ == other.text_;
    case Marker:
        return size_ == other.size_ && marker_ == other.marker_;
    default:
        return size_ == other.size_ && payload_ == other.payload_;
    }
}
