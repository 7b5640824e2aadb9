#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A small JSON document model. Reading a value as the wrong type gives an
// empty answer (an empty map, vector or string, 0, false), never an error,
// so that callers can walk a document they don't trust without checks.
namespace JSON {

class Value;
using Members = std::map<std::string, Value>;
using Elements = std::vector<Value>;

enum Type : int { Null = 0, Object = 1, Array = 2, String = 3, Number = 4, Boolean = 5 };

// The content of a Value. The defaults are those of a value of another type.
class ValueData {
public:
    virtual ~ValueData() = default;
    virtual int type() const = 0;
    virtual const Members &members() const;
    virtual const Elements &elements() const;
    virtual const std::string &string() const;
    virtual double number() const { return 0.0; }
    virtual bool boolean() const { return false; }
    // Inserts a copy of value under key, replacing an older member.
    virtual void setMember(const std::string &, const Value &) {}
    virtual void sort(const std::function<bool(const Value &, const Value &)> &) {}
    // Appends the values that path reaches to results.
    virtual void find(std::string_view, std::vector<const Value *> &) const {}
    // The first value that path reaches, or null.
    virtual const Value &at(std::string_view path) const;
    virtual void write(std::string &output, bool compact, int level) const = 0;
    virtual std::unique_ptr<ValueData> clone() const = 0;
};

class Value {
public:
    Value();  // a null
    explicit Value(std::string text);
    explicit Value(const char *text) : Value(std::string(text)) {}
    explicit Value(double number);
    explicit Value(bool boolean);
    Value(const Value &other);
    Value(Value &&) noexcept = default;
    Value &operator=(const Value &other);
    Value &operator=(Value &&) noexcept = default;
    ~Value();

    int type() const { return data_->type(); }
    const Members &members() const { return data_->members(); }
    const Elements &elements() const { return data_->elements(); }
    const std::string &string() const { return data_->string(); }
    double number() const { return data_->number(); }
    bool boolean() const { return data_->boolean(); }
    void setMember(const std::string &key, const Value &value) { data_->setMember(key, value); }
    void sort(const std::function<bool(const Value &, const Value &)> &lessThan) { data_->sort(lessThan); }
    void find(std::string_view path, std::vector<const Value *> &results) const { data_->find(path, results); }
    const Value &at(std::string_view path) const { return data_->at(path); }
    // Appends the text of the value: compact, or laid out with two blanks a
    // level starting at level.
    void write(std::string &output, bool compact = false, int level = 0) const {
        data_->write(output, compact, level);
    }

    // An object's member; a key with "." or "[" in it is a path.
    const Value &member(std::string_view key) const { return at(key); }
    const std::string &stringMember(std::string_view key) const { return member(key).string(); }
    double numberMember(std::string_view key) const { return member(key).number(); }
    bool booleanMember(std::string_view key) const { return member(key).boolean(); }
    const Elements &arrayMember(std::string_view key) const { return member(key).elements(); }
    const Members &objectMember(std::string_view key) const { return member(key).members(); }

    // Replaces the content by an empty value of the type, unless it has it.
    void setType(int type);
    // Moves value in as a member of an object, or appends it to an array;
    // other types ignore it.
    void setMember(std::string key, Value &&value);
    void append(Value value);

    // The shared null of answers that find nothing.
    static const Value &null();

private:
    std::unique_ptr<ValueData> data_;
};

// Parses one value from text into value; what follows it is ignored. A
// failure throws HException with the message and the position, as in
// "syntax error (column: 5 line: 2)".
void parse(std::string_view text, Value &value);

// Documents nested deeper than this are refused, so that the recursion of
// the parser, the writer and the destructor stays bounded.
constexpr int maximumDepth = 1000;

}  // namespace JSON
