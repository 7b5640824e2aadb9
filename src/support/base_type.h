#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// A type named in an expression, in a cast or in sizeof.
class BaseType {
public:
    virtual ~BaseType();
    virtual std::string name() const = 0;
};

// char, short, int, long, long long, float, double; signed or unsigned.
class SimpleType : public BaseType {
public:
    enum Code { Char = 0, Short = 1, Int = 2, Long = 3, LongLong = 4, Float = 5, Double = 6 };

    SimpleType(Code code, bool isUnsigned) : code_(code), unsigned_(isUnsigned) {}
    std::string name() const override;

    Code code() const { return code_; }
    bool isUnsigned() const { return unsigned_; }

private:
    Code code_;
    bool unsigned_;
};

// A type the parser knows by name (isUserType).
class UserType : public BaseType {
public:
    explicit UserType(std::string name) : name_(std::move(name)) {}
    std::string name() const override { return name_; }

private:
    std::string name_;
};

// "struct tag" or "struct { type name : bits; ... }".
class StructType : public BaseType {
public:
    struct Member {
        std::unique_ptr<BaseType> type;
        std::string name;
        std::int64_t bitSize = 0; // 0: not a bit field
    };

    explicit StructType(std::string tag) : tag_(std::move(tag)) {}
    explicit StructType(std::vector<Member> members) : members_(std::move(members)) {}
    std::string name() const override;

    const std::string &tag() const { return tag_; }
    const std::vector<Member> &members() const { return members_; }

private:
    std::string tag_;
    std::vector<Member> members_;
};

// "register size name offset bits ... ;": a register of size bytes with
// named bit fields.
class RegisterType : public BaseType {
public:
    struct Field {
        std::string name;
        std::int64_t bitOffset = 0;
        std::int64_t bitSize = 0;
    };

    RegisterType(std::int64_t size, std::vector<Field> fields)
        : size_(size), fields_(std::move(fields)) {}
    std::string name() const override;

    std::int64_t size() const { return size_; }
    const std::vector<Field> &fields() const { return fields_; }

private:
    std::int64_t size_;
    std::vector<Field> fields_;
};

// element[length]; a length of 0 is an array of unknown size.
class ArrayType : public BaseType {
public:
    ArrayType(std::unique_ptr<BaseType> element, std::int64_t length)
        : element_(std::move(element)), length_(length) {}
    std::string name() const override;

    const BaseType &element() const { return *element_; }
    std::int64_t length() const { return length_; }

private:
    std::unique_ptr<BaseType> element_;
    std::int64_t length_;
};

class PointerType : public BaseType {
public:
    explicit PointerType(std::unique_ptr<BaseType> target) : target_(std::move(target)) {}
    std::string name() const override { return target_->name() + "*"; }

    const BaseType &target() const { return *target_; }

private:
    std::unique_ptr<BaseType> target_;
};
