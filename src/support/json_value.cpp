// The value classes of the JSON model, their writer and their path query.

#include "support/json_value.h"

#include "support/json_string.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace JSON {

namespace {

const Members emptyMembers;
const Elements emptyElements;
const std::string emptyString;

void indent(std::string &output, int level) { output.append(std::size_t(level) * 2, ' '); }

// Writes a container: `open`, each item through writeItem (comma-separated,
// a line each unless compact), `close`; an empty one on one line.
template <class Items, class WriteItem>
void writeContainer(std::string &output, bool compact, int level, char open, char close, const Items &items,
                    WriteItem writeItem) {
    output += open;
    bool first = true;
    for (const auto &item : items) {
        if (!first)
            output += ',';
        first = false;
        if (!compact) {
            output += '\n';
            indent(output, level + 1);
        }
        writeItem(item);
    }
    if (!compact && !first) {
        output += '\n';
        indent(output, level);
    }
    output += close;
}

// The first value along `rest` below one of `values` that isn't null.
template <class Values, class ValueOf>
const Value &firstFound(const Values &values, std::string_view rest, bool hasRest, ValueOf valueOf) {
    for (const auto &item : values) {
        const Value &value = valueOf(item);
        const Value &result = hasRest ? value.at(rest) : value;
        if (result.type() != Null)
            return result;
    }
    return Value::null();
}

// Splits an array step "[n]..." into its index text and the rest behind
// the "]"; false if the path has no such step.
bool splitIndex(std::string_view path, std::string_view &index, std::string_view &rest) {
    if (path.empty() || path.front() != '[')
        return false;
    const std::size_t close = path.find(']');
    if (close == std::string_view::npos)
        return false;
    index = path.substr(1, close - 1);
    rest = path.substr(close + 1);
    return true;
}

// A decimal index below size; false for anything else.
bool readIndex(std::string_view text, std::size_t size, std::size_t &index) {
    if (text.empty())
        return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    return error == std::errc() && end == text.data() + text.size() && index < size;
}

// Splits an object step into its key and the rest: the rest starts at a
// "[", or behind a ".". hasRest is false for a last step.
void splitKey(std::string_view path, std::string_view &key, std::string_view &rest, bool &hasRest) {
    // The "." behind an array index leads the object's step.
    if (!path.empty() && path.front() == '.')
        path.remove_prefix(1);
    const std::size_t split = path.find_first_of("[.");
    hasRest = split != std::string_view::npos;
    key = path.substr(0, split);
    rest = !hasRest ? std::string_view() : path[split] == '[' ? path.substr(split) : path.substr(split + 1);
}

class NullValueData : public ValueData {
public:
    int type() const override { return Null; }
    void write(std::string &output, bool, int) const override { output += "null"; }
    std::unique_ptr<ValueData> clone() const override { return std::make_unique<NullValueData>(); }
};

class StringValueData : public ValueData {
public:
    explicit StringValueData(std::string text) : text_(std::move(text)) {}
    int type() const override { return String; }
    const std::string &string() const override { return text_; }
    void write(std::string &output, bool, int) const override { output += jsonString(text_); }
    std::unique_ptr<ValueData> clone() const override { return std::make_unique<StringValueData>(text_); }

private:
    std::string text_;
};

class NumberValueData : public ValueData {
public:
    explicit NumberValueData(double number) : number_(number) {}
    int type() const override { return Number; }
    double number() const override { return number_; }
    void write(std::string &output, bool, int) const override {
        char text[32];
        std::snprintf(text, sizeof text, "%.6g", number_);
        output += text;
    }
    std::unique_ptr<ValueData> clone() const override { return std::make_unique<NumberValueData>(number_); }

private:
    double number_;
};

class BooleanValueData : public ValueData {
public:
    explicit BooleanValueData(bool boolean) : boolean_(boolean) {}
    int type() const override { return Boolean; }
    bool boolean() const override { return boolean_; }
    void write(std::string &output, bool, int) const override { output += boolean_ ? "true" : "false"; }
    std::unique_ptr<ValueData> clone() const override { return std::make_unique<BooleanValueData>(boolean_); }

private:
    bool boolean_;
};

}  // namespace

class ObjectValueData : public ValueData {
public:
    int type() const override { return Object; }
    const Members &members() const override { return members_; }
    void setMember(const std::string &key, const Value &value) override { members_[key] = value; }
    void insert(std::string key, Value value) { members_[std::move(key)] = std::move(value); }

    void find(std::string_view path, std::vector<const Value *> &results) const override {
        std::string_view key, rest;
        bool hasRest = false;
        splitKey(path, key, rest, hasRest);
        for (const auto &[name, value] : members_) {
            if (key != "*" && key != name)
                continue;
            if (hasRest)
                value.find(rest, results);
            else
                results.push_back(&value);
        }
    }

    const Value &at(std::string_view path) const override {
        std::string_view key, rest;
        bool hasRest = false;
        splitKey(path, key, rest, hasRest);
        if (key != "*") {
            const auto found = members_.find(std::string(key));
            if (found == members_.end())
                return Value::null();
            return hasRest ? found->second.at(rest) : found->second;
        }
        return firstFound(members_, rest, hasRest, [](const auto &member) -> const Value & { return member.second; });
    }

    void write(std::string &output, bool compact, int level) const override {
        writeContainer(output, compact, level, '{', '}', members_, [&](const auto &member) {
            // Keys go out as they stand, unlike string values.
            output += '"';
            output += member.first;
            output += compact ? "\":" : "\": ";
            member.second.write(output, compact, level + 1);
        });
    }

    std::unique_ptr<ValueData> clone() const override { return std::make_unique<ObjectValueData>(*this); }

private:
    Members members_;
};

class ArrayValueData : public ValueData {
public:
    int type() const override { return Array; }
    const Elements &elements() const override { return elements_; }
    void sort(const std::function<bool(const Value &, const Value &)> &lessThan) override {
        std::stable_sort(elements_.begin(), elements_.end(), lessThan);
    }
    void append(Value value) { elements_.push_back(std::move(value)); }

    void find(std::string_view path, std::vector<const Value *> &results) const override {
        std::string_view index, rest;
        if (!splitIndex(path, index, rest))
            return;
        auto take = [&](const Value &value) {
            if (rest.empty())
                results.push_back(&value);
            else
                value.find(rest, results);
        };
        std::size_t n = 0;
        if (index == "*")
            for (const Value &value : elements_)
                take(value);
        else if (readIndex(index, elements_.size(), n))
            take(elements_[n]);
    }

    const Value &at(std::string_view path) const override {
        std::string_view index, rest;
        if (!splitIndex(path, index, rest))
            return Value::null();
        std::size_t n = 0;
        if (index != "*")
            return !readIndex(index, elements_.size(), n) ? Value::null()
                   : rest.empty()                          ? elements_[n]
                                                           : elements_[n].at(rest);
        return firstFound(elements_, rest, !rest.empty(), [](const Value &value) -> const Value & { return value; });
    }

    void write(std::string &output, bool compact, int level) const override {
        writeContainer(output, compact, level, '[', ']', elements_,
                       [&](const Value &value) { value.write(output, compact, level + 1); });
    }

    std::unique_ptr<ValueData> clone() const override { return std::make_unique<ArrayValueData>(*this); }

private:
    Elements elements_;
};

const Members &ValueData::members() const { return emptyMembers; }
const Elements &ValueData::elements() const { return emptyElements; }
const std::string &ValueData::string() const { return emptyString; }
const Value &ValueData::at(std::string_view) const { return Value::null(); }

Value::Value() : data_(std::make_unique<NullValueData>()) {}
Value::Value(std::string text) : data_(std::make_unique<StringValueData>(std::move(text))) {}
Value::Value(double number) : data_(std::make_unique<NumberValueData>(number)) {}
Value::Value(bool boolean) : data_(std::make_unique<BooleanValueData>(boolean)) {}
Value::Value(const Value &other) : data_(other.data_->clone()) {}
Value::~Value() = default;

Value &Value::operator=(const Value &other) {
    if (this != &other)
        data_ = other.data_->clone();
    return *this;
}

void Value::setType(int type) {
    if (data_->type() == type)
        return;
    switch (type) {
    case Object: data_ = std::make_unique<ObjectValueData>(); break;
    case Array: data_ = std::make_unique<ArrayValueData>(); break;
    case String: data_ = std::make_unique<StringValueData>(std::string()); break;
    case Number: data_ = std::make_unique<NumberValueData>(0.0); break;
    case Boolean: data_ = std::make_unique<BooleanValueData>(false); break;
    default: data_ = std::make_unique<NullValueData>(); break;
    }
}

void Value::setMember(std::string key, Value &&value) {
    if (auto *object = dynamic_cast<ObjectValueData *>(data_.get()))
        object->insert(std::move(key), std::move(value));
}

void Value::append(Value value) {
    if (auto *array = dynamic_cast<ArrayValueData *>(data_.get()))
        array->append(std::move(value));
}

const Value &Value::null() {
    static const Value value;
    return value;
}

}  // namespace JSON
