#include "OptionReaders.h"

#include "OptionTable.h"
#include "Test.h"
#include "streamplug/Exceptions.h"

namespace {

using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayFactory;
using streamplug::kit::array::OptionInvalidValue;
using streamplug::kit::array::OptionNotExpectedType;
using streamplug::kit::array::OptionNotFound;

const Array aDouble = ArrayFactory::createDouble({2.5});
const Array doubles = ArrayFactory::createDouble({1, 2});
const Array anInt = ArrayFactory::createInt({7});
const Array noInts = ArrayFactory::createInt({});
const Array aLogical = ArrayFactory::createLogical({true});
const Array logicals = ArrayFactory::createLogical({true, false});
const Array aText = ArrayFactory::createChar(std::string("hann"));
const Array wideText = ArrayFactory::createChar(std::u16string(u"\u0080"));
const Array aString = ArrayFactory::createString({u"rms"});
const Array wideString = ArrayFactory::createString({u"a", u"\u00e9"});
const Array missing = ArrayFactory::createString({std::nullopt});
const Array strings = ArrayFactory::createString({u"a", u"b"});
const Array cell = ArrayFactory::createCell({aText, aText});
const Array mixedCell = ArrayFactory::createCell({aText, aDouble});
const Array stringCell = ArrayFactory::createCell({aString});

struct NotAnEvent : streamplug::interfaces::IPropertyInfo {
    const char* getName() const override { return "x"; }
};

using Reader = std::function<void(const PropertyList&)>;
template <auto read>
const Reader reader = [](const PropertyList& list) { read(list, "x"); };

template <class Exception>
void expectThrow(const Reader& read, const PropertyList& list, const std::string& expected) {
    try {
        read(list);
        ADD_FAILURE() << "nothing thrown, expected " << expected;
    } catch (const Exception& exception) {
        EXPECT_EQ(expected, exception.what());
    }
}

TEST(OptionReaders, sayWhatIsWrongWithAValue) {
    // What a reader says of an array of another kind is tried with every option of the library.
    const std::string charOrString = "Option: x was not a char or string";
    const std::string list = "Option: x was not a cell array of chars or a string array";
    const struct {
        const Reader& read;
        const Array& value;
        const std::string& text;
    } rows[] = {
        {reader<readU16StringOption>, cell, charOrString}, {reader<readStringOption>, missing, charOrString},
        {reader<readStringVectorOption>, mixedCell, list}, {reader<readStringVectorOption>, stringCell, list},
        {reader<readStringVectorOption>, missing, list},
    };
    for (const auto& row : rows) {
        expectThrow<OptionNotExpectedType>(row.read, PropertyList().add("x", row.value), row.text);
    }
    for (const Reader& read :
         {reader<readU16StringOption>, reader<readStringOption>, reader<readDoubleOption>, reader<readIntOption>,
          reader<readBoolOption>, reader<readIntVectorOption>, reader<readDoubleVectorOption>,
          reader<readBoolVectorOption>, reader<readStringVectorOption>, reader<readDoubleOrIntOption>}) {
        expectThrow<OptionNotFound>(read, PropertyList().addInt("X", 1).addInt("xx", 1), "Option: x was not found");
        PropertyList other;
        other.add(std::make_shared<NotAnEvent>());
        expectThrow<OptionNotExpectedType>(read, other, "Option: x was not the expected PropertyEvent");
    }
    const std::string ascii = "Option: x value had non-ASCII characters";
    expectThrow<OptionInvalidValue>(reader<readStringOption>, PropertyList().add("x", wideText), ascii);
    expectThrow<OptionInvalidValue>(reader<readStringVectorOption>, PropertyList().add("x", wideString), ascii);
}

TEST(OptionReaders, readWhatSuitsThem) {
    const auto list = [](const Array& value) { return PropertyList().add("x", value).addDouble("x", 9); };
    EXPECT_TRUE(readBoolOption(list(aLogical), "x"));
    EXPECT_EQ(7.0, readDoubleOrIntOption(list(anInt), "x"));
    EXPECT_EQ(2.5, readDoubleOrIntOption(list(aDouble), "x"));
    EXPECT_EQ("hann", readStringOption(list(aText), "x"));
    EXPECT_EQ("rms", readStringOption(list(aString), "x"));
    EXPECT_EQ(u"\u0080", readU16StringOption(list(wideText), "x"));
    EXPECT_EQ(std::vector<int>(), readIntVectorOption(list(noInts), "x"));
    EXPECT_EQ((Values{1, 2}), readDoubleVectorOption(list(doubles), "x"));
    EXPECT_EQ((std::vector<bool>{true, false}), readBoolVectorOption(list(logicals), "x"));
    EXPECT_EQ((std::vector<std::string>{"hann", "hann"}), readStringVectorOption(list(cell), "x"));
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), readStringVectorOption(list(strings), "x"));
    EXPECT_FALSE(hasOption(list(aDouble), "xx"));
}

TEST(TruncateTo, losesTheFractionAndSaturates) {
    EXPECT_EQ(2, truncateTo<int>(2.9));
    EXPECT_EQ(-2, truncateTo<int>(-2.9));
    EXPECT_EQ(0, truncateTo<int>(nan));
    EXPECT_EQ(2147483647, truncateTo<int>(2147483647.5));
    EXPECT_EQ(2147483647, truncateTo<int>(2147483648.0));
    EXPECT_EQ(-2147483647 - 1, truncateTo<int>(-1e300));
    EXPECT_EQ(0u, truncateTo<unsigned long>(-1.0));
    EXPECT_EQ(~0ul, truncateTo<unsigned long>(18446744073709551616.0));
}

namespace rows {
constexpr catalogue::Option length = catalogue::wholeNumber("length", "", "", "");
constexpr catalogue::Option name = catalogue::text("name", "", "");
constexpr catalogue::Option marks = catalogue::logicals("marks", "", "");
}  // namespace rows

struct Taker {
    void setLength(const unsigned long& value) { length = value; }
    unsigned long length = 0;
};

TEST(OptionTable, bringsValuesToVariablesSettersAndCallables) {
    Taker taker;
    std::vector<bool> marks = {true};
    std::string name;
    const auto read = [&](const PropertyList& list) {
        readOptions(list, required<rows::length>(taker.length),  //
                    ifPresent<rows::length>(taker, &Taker::setLength), ifPresent<rows::marks>(marks),
                    ifPresent<rows::name>([&](const std::string& value) { name = "<" + value + ">"; }));
    };
    read(PropertyList().addDouble("length", 1024.75).addChar("name", "n"));
    EXPECT_EQ(1024u, taker.length);
    EXPECT_EQ("<n>", name);
    EXPECT_EQ(std::vector<bool>{true}, marks);
    EXPECT_THROW(read(PropertyList().addChar("name", "m")), OptionNotFound);
    EXPECT_THROW(read(PropertyList().addDouble("length", 3).addInt("marks", 1).addChar("name", "m")),
                 OptionNotExpectedType);
    EXPECT_EQ(3u, taker.length);  // the rows before the fault are done, those behind it not
    EXPECT_EQ("<n>", name);
}

}  // namespace
