#include "support/base_type.h"

BaseType::~BaseType() = default;

std::string SimpleType::name() const {
    static const char *const names[] = {"char", "short", "int", "long",
                                        "long long", "float", "double"};
    return (unsigned_ ? "unsigned " : "") + std::string(names[code_]);
}

std::string StructType::name() const {
    if (!tag_.empty())
        return "struct " + tag_;
    std::string text = "struct {";
    for (const Member &member : members_) {
        // Appended piece by piece: a literal before a temporary string makes
        // g++ 12 warn falsely about overlapping copies at -O3.
        text += ' ';
        text += member.type->name();
        text += ' ';
        text += member.name;
        if (member.bitSize > 0)
            text += " : " + std::to_string(member.bitSize);
        text += ";";
    }
    return text + " }";
}

std::string RegisterType::name() const {
    std::string text = "register " + std::to_string(size_);
    for (const Field &field : fields_)
        text += " " + field.name + " " + std::to_string(field.bitOffset) + " " +
                std::to_string(field.bitSize);
    return text + ";";
}

std::string ArrayType::name() const {
    // The bounds read outermost first, as they were written: int[2][3] is
    // an array of two arrays of three ints.
    std::string bounds;
    const BaseType *type = this;
    while (const auto *array = dynamic_cast<const ArrayType *>(type)) {
        bounds += '[';
        if (array->length_ > 0)
            bounds += std::to_string(array->length_);
        bounds += ']';
        type = array->element_.get();
    }
    return type->name() + bounds;
}
