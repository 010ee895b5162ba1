#include "MessageText.h"

#include <Poco/JSON/Object.h>
#include <bit>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "DriverTest.h"
#include "NumberText.h"

namespace {

using Poco::JSON::Array;
using Poco::JSON::Object;

std::string pocoText(const Object& object) {
    std::ostringstream stream;
    object.stringify(stream);
    return stream.str();
}

std::string textOf(double value) {
    char text[longestNumberText];
    return {text, writeNumber(value, text)};
}

TEST(NumberText, IsPocosForFiniteNumbers) {
    Values values{0.0, -0.0, 1.0, -1.0, 0.1, 1e15, 1e-15, 123456789012345.0, 999999999999999.9};
    const auto limits = std::numeric_limits<double>{};
    for (const double extreme : {limits.max(), limits.min(), limits.denorm_min(), limits.epsilon(), 0x1p53}) {
        values.push_back(extreme);
        values.push_back(-extreme);
    }
    // Around every power of ten, where digits and layout change.
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::pow(10.0, exponent);
        values.insert(values.end(), {power, std::nextafter(power, 0.0), std::nextafter(power, HUGE_VAL), 1.5 * power});
    }
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> exponent(-20.0, 20.0);
    for (int i = 0; i < 50000; ++i) {
        const auto anyBits = std::bit_cast<double>(random());
        values.push_back(std::isfinite(anyBits) ? anyBits : 0.5);
        values.push_back(std::bit_cast<double>(random() & 0x800fffffffffffffU));  // denormal
        values.push_back(std::pow(10.0, exponent(random)));
        values.push_back(static_cast<double>(static_cast<std::int64_t>(random()) >> (random() % 64)));
    }
    for (const double value : values) {
        const std::string text = textOf(value);
        ASSERT_EQ(text, Poco::Dynamic::Var(value).convert<std::string>());
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), value);
    }
}

/// A value of any kind that messages hold, nested to the given depth.
Poco::Dynamic::Var randomValue(std::mt19937_64& random, int depth) {
    static const std::vector<std::string> texts{
        "",       "plain", "a/b", "\"quoted\"\\", "tab\there\n", "\x01\x1f\x7f", "\xc3\xa4\xe2\x82\xac\xf0\x9f\x93\x88",
        "[0.5,2]"};
    const std::string& text = texts[random() % texts.size()];
    const std::uint64_t bits = random();
    const std::vector<Poco::Dynamic::Var> plain{static_cast<double>(bits) / 3.0,
                                                static_cast<int>(bits),
                                                static_cast<Poco::UInt64>(bits),
                                                bits % 2 == 0,
                                                text,
                                                Poco::Dynamic::Var(),
                                                static_cast<float>(bits % 1000) / 8.0F,
                                                static_cast<Poco::Int64>(bits)};
    const std::size_t kind = random() % (plain.size() + (depth > 0 ? 4 : 0));
    if (kind < plain.size()) {
        return plain[kind];
    }
    if (kind > plain.size() + 1) {  // an array that stands in many places, and changes between messages
        static Array::Ptr shared = new Array;
        shared->set(static_cast<unsigned>(random() % 3), static_cast<double>(bits));
        return shared;
    }
    Object::Ptr object = new Object(bits % 2 == 0 ? 0 : Poco::JSON_PRESERVE_KEY_ORDER);
    Array::Ptr array = new Array;
    for (std::size_t i = random() % 5; i > 0; --i) {
        object->set(text + std::to_string(random() % 100), randomValue(random, depth - 1));
        array->add(randomValue(random, depth - 1));
    }
    return kind == plain.size() ? Poco::Dynamic::Var(object) : Poco::Dynamic::Var(array);
}

TEST(MessageText, IsPocosForWholeMessages) {
    std::mt19937_64 random(2);
    MessageText writer;
    for (int i = 0; i < 3000; ++i) {
        Object message;
        for (int member = 0; member < 4; ++member) {
            message.set(std::to_string(random() % 50), randomValue(random, 3));
        }
        const std::string& text = writer.write(message);
        ASSERT_EQ(text, pocoText(message));
        ASSERT_TRUE(nlohmann::json::accept(text));
    }
}

TEST(MessageText, WritesNullForNonFiniteNumbers) {
    Array::Ptr values = new Array;
    for (const auto& value : std::vector<Poco::Dynamic::Var>{infinity, -infinity, nan, -nan, std::nanf(""), 1}) {
        values->add(value);
    }
    Object message;
    message.set("values", values);
    message.set("x", nan);
    EXPECT_EQ(MessageText().write(message), R"({"values":[null,null,null,null,null,1],"x":null})");
}

}  // namespace
