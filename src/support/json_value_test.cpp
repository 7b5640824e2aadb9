#include "support/json_value.h"

#include "support/exceptions.h"

#include <gtest/gtest.h>

namespace {

std::string parseError(const std::string &text) {
    JSON::Value value;
    try {
        JSON::parse(text, value);
    } catch (const HException &e) {
        return e.message();
    }
    return "parsed";
}

std::string written(const std::string &text, bool compact) {
    JSON::Value value;
    JSON::parse(text, value);
    std::string output;
    value.write(output, compact, 0);
    return output;
}

TEST(JsonValue, ErrorsNameTheirPlace) {
    const std::pair<std::string, const char *> cases[] = {
        {"", "unexpected end of file (column: 0 line: 0)"},
        {"[1,\n  2", "unexpected end of file (column: 3 line: 1)"},
        {"\"abc\\", "unexpected end of file (column: 5 line: 0)"},
        {"{\n 1:2}", "string expected (column: 1 line: 1)"},
        {"{\"a\":1,}", "string expected (column: 7 line: 0)"},
        {"{\"a\" 1}", "':' character expected (column: 5 line: 0)"},
        {"[1 2]", "',' character expected (column: 3 line: 0)"},
        {"{\"a\":1 \"b\"}", "',' character expected (column: 7 line: 0)"},
        {"[1,2,]", "syntax error (column: 5 line: 0)"},
        {"\n\n  \xc3\xa9", "syntax error (column: 2 line: 2)"},
        {"[\"\xc3\xa9\xf0\x9f\x98\x80\", tru]", "'true' expected (column: 8 line: 0)"},
        {"fals", "'false' expected (column: 0 line: 0)"},
        {"nul", "'null' expected (column: 0 line: 0)"},
        {"-", "invalid number (column: 1 line: 0)"},
        {"[1-2]", "invalid number (column: 4 line: 0)"},
        {"1e999", "invalid number (column: 5 line: 0)"},
        {std::string(1001, '['), "nesting too deep (column: 1000 line: 0)"},
    };
    for (const auto &[text, message] : cases)
        EXPECT_EQ(parseError(text), message) << text;
    EXPECT_EQ(parseError(std::string(1000, '[') + std::string(1000, ']')), "parsed");
}

TEST(JsonValue, ValuesAndWriters) {
    // text, nice form, compact form
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {"{ }", "{}", "{}"},
        {"[ ]", "[]", "[]"},
        {"12", "12", "12"},
        {"1 2", "1", "1"},
        {"true", "true", "true"},
        {"1e5", "100000", "100000"},
        {"[1234567, 0.1, -2.5e-7]", "[\n  1.23457e+06,\n  0.1,\n  -2.5e-07\n]", "[1.23457e+06,0.1,-2.5e-07]"},
        {"\"a\\u0041\\/\\q\\\"\\\\\\b\\f\\n\\r\\t\"", "\"a0041\\\"\\\\\\b\\f\\n\\r\\t\"",
         "\"a0041\\\"\\\\\\b\\f\\n\\r\\t\""},
        {"{\"b\":[null,false,{}],\"a\":{\"x\":\"y\"},\"b\":[true]}",
         "{\n  \"a\": {\n    \"x\": \"y\"\n  },\n  \"b\": [\n    true\n  ]\n}", "{\"a\":{\"x\":\"y\"},\"b\":[true]}"},
        {"{\"k\\\"\":1}", "{\n  \"k\"\": 1\n}", "{\"k\"\":1}"},
    };
    for (const auto &[text, nice, compact] : cases) {
        EXPECT_EQ(written(text, false), nice) << text;
        EXPECT_EQ(written(text, true), compact) << text;
        if (std::string(text).find("k\\\"") == std::string::npos) {
            EXPECT_EQ(written(nice, false), nice) << text;
            EXPECT_EQ(written(compact, true), compact) << text;
        }
    }
    EXPECT_EQ(parseError(written("{\"k\\\"\":1}", true)), "':' character expected (column: 4 line: 0)");
}

TEST(JsonValue, PathQueries) {
    JSON::Value value;
    JSON::parse("{\"a\":[{\"b\":1},{\"b\":2},{\"c\":3}],\"d\":{\"e\":{\"f\":\"g\"}},\"n\":null}", value);
    auto found = [&](const char *path) {
        std::vector<const JSON::Value *> results;
        value.find(path, results);
        std::string text;
        for (const JSON::Value *result : results)
            result->write(text, true, 0), text += ' ';
        return text;
    };
    const std::pair<const char *, const char *> cases[] = {
        {"a[*].b", "1 2 "}, {"a[1].b", "2 "},    {"a[2].b", ""},    {"a[3].b", ""},
        {"a[x]", ""},       {"a[1", ""},         {"a.b", ""},
        {"*", "[{\"b\":1},{\"b\":2},{\"c\":3}] {\"e\":{\"f\":\"g\"}} null "},
        {"d.e.f", "\"g\" "}, {"*.e", "{\"f\":\"g\"} "}, {"a[*]", "{\"b\":1} {\"b\":2} {\"c\":3} "},
    };
    for (const auto &[path, text] : cases)
        EXPECT_EQ(found(path), text) << path;
    EXPECT_EQ(value.member("a[*].c").number(), 3);
    EXPECT_EQ(value.member("a[*].b").number(), 1);
    EXPECT_EQ(value.stringMember("d.e.f"), "g");
    EXPECT_EQ(value.member("*").type(), JSON::Array);
    EXPECT_EQ(value.member("a[5]").type(), JSON::Null);
    EXPECT_EQ(value.arrayMember("d").size(), 0u);
    EXPECT_EQ(value.objectMember("d").size(), 1u);
    EXPECT_EQ(value.numberMember("a"), 0);
}

TEST(JsonValue, EditingKeepsCopiesApart) {
    JSON::Value array;
    JSON::parse("[3,1,2]", array);
    array.sort([](const JSON::Value &a, const JSON::Value &b) { return a.number() < b.number(); });
    JSON::Value object;
    object.setType(JSON::Object);
    object.setMember(std::string("k"), array);
    array.setType(JSON::String);
    object.setType(JSON::Object);
    std::string text;
    object.write(text, true, 0);
    EXPECT_EQ(text, "{\"k\":[1,2,3]}");
}

}  // namespace
