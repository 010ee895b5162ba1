#include "ScriptValue.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>

#include "UsageError.h"

namespace {

std::string errorOf(const std::string& text, const std::function<void(const program::ScriptValue&)>& use) {
    try {
        use(program::parseScript(text));
    } catch (const program::UsageError& error) {
        return error.what();
    }
    return "no error";
}

TEST(ScriptValue, ErrorsNameTheLineAndWhatWasExpected) {
    using Value = program::ScriptValue;
    const auto nothing = [](const Value&) {};
    const std::string text = "{\"a\":\n  1,\n \"b\": [true,\n\"x\\n\",\n\n 1.5\n]\n}\n";
    EXPECT_EQ(errorOf(text, [](const Value& v) { v.require("a").text(); }), "line 2: expected a text, found 1");
    EXPECT_EQ(errorOf(text, [](const Value& v) { v.require("b").members(); }),
              "line 3: expected an object, found a list");
    EXPECT_EQ(errorOf(text, [](const Value& v) { v.require("b").list()[0].number("a gain"); }),
              "line 3: expected a gain, found true");
    EXPECT_EQ(errorOf(text, [](const Value& v) { v.require("b").list()[2].wholeNumber(0, 9); }),
              "line 6: expected a whole number, found 1.5");
    EXPECT_EQ(errorOf(text, [](const Value& v) { v.require("c"); }), "line 1: expected a member \"c\"");
    EXPECT_EQ(errorOf(text,
                      [](const Value& v) {
                          v.allowOnly(std::array<std::string_view, 2>{"a", "d"});
                      }),
              "line 3: expected one of the members a, d, found \"b\"");
    EXPECT_EQ(errorOf("{\"a\": 1,\n\"a\": 2}", nothing), "line 2: the member \"a\" is given twice");
    EXPECT_EQ(errorOf("{\n\n\"a\" 1}", nothing).substr(0, 29), "line 3: this is no JSON, at `");
    EXPECT_EQ(errorOf("[1,\n2", nothing).substr(0, 7), "line 2:");
    EXPECT_EQ(errorOf("", nothing).substr(0, 7), "line 1:");
}

TEST(ScriptValue, KeepsValuesInOrder) {
    const auto value = program::parseScript("{\"z\": [0.1, -3, \"nan\", \"-inf\", null, []], \"a\": {\"k\": false}}");
    EXPECT_EQ(value.members()[0].first, "z");
    const auto& list = value.members()[0].second.list();
    EXPECT_EQ(list[0].number(), 0.1);
    EXPECT_EQ(list[1].wholeNumber(-5, 5), -3);
    EXPECT_TRUE(std::isnan(list[2].number()));
    EXPECT_EQ(list[3].number(), -INFINITY);
    EXPECT_TRUE(list[4].isNull());
    EXPECT_TRUE(list[5].list().empty());
    EXPECT_FALSE(value.require("a").require("k").logical());
}

}  // namespace
