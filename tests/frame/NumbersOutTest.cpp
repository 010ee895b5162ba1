#include <bit>
#include <boost/lexical_cast.hpp>

#include "JsonArrays.h"
#include "NumberText.h"
#include "QueryStructure.h"
#include "Test.h"

namespace {

TEST(NumberText, isTheLexicalCast) {
    EXPECT_EQ("nan", numberText(std::copysign(nan, 1.0)));
    EXPECT_EQ("-nan", numberText(std::copysign(nan, -1.0)));
    EXPECT_EQ("10", numberText(10ul));
    Values values{3.0,  0.1,  0.0,         -0.0, infinity, -infinity,
                  1e16, 1e17, 123456789.0, 1e-5, 5e-324,   0x1.fffffffffffffp1023};
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(random());
        values.push_back(std::isnan(value) ? 0.5 : value);
    }
    for (const double value : values) {
        ASSERT_EQ(boost::lexical_cast<std::string>(value), numberText(value));
    }
}

std::string text(const Poco::JSON::Array::Ptr& array) {
    std::ostringstream stream;
    array->stringify(stream);
    return stream.str();
}

TEST(JsonArrays, replaceWhatIsNotFinite) {
    const double values[] = {1, nan, 3, infinity, -infinity, -0.5};
    std::vector<int> places;
    Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
    JsonArrayWriter writer(*array);
    writer.append(std::vector<int>{7});
    writer.appendFinite(values, 6, 0, places);
    writer.appendFinite(values, 2, 0.0, places);
    writer.appendShifted(values, 1, 10);
    writer.finish();
    EXPECT_EQ("[7,1,0,3,0,0,-0.5,1,0,11]", text(array));
    EXPECT_EQ((std::vector<int>{2, 4, 5, 8}), places);
    EXPECT_TRUE(array->get(2).isInteger());
    EXPECT_TRUE(array->get(8).isNumeric() && !array->get(8).isInteger());
}

TEST(JsonArrays, areWrittenOverOnceTheMessageIsGone) {
    JsonArrayPool pool;
    const auto fill = [&](const Values& values) {
        Poco::JSON::Array::Ptr array = pool.take(values.size());
        std::vector<int> places;
        JsonArrayWriter writer(*array);
        writer.appendFinite(values.data(), values.size(), 0, places);
        writer.finish();
        return array;
    };
    const Poco::JSON::Array::Ptr held = fill({1, 2, 3});
    Poco::JSON::Array::Ptr second = fill({4, nan, 6});
    const Poco::JSON::Array* const recycled = second.get();
    second = nullptr;
    second = fill({7, 8.5});  // shorter, and a number where an integer stood
    EXPECT_EQ(recycled, second.get());
    EXPECT_EQ("[7,8.5]", text(second));
    EXPECT_EQ("[1,2,3]", text(held));
    for (const Values& values : {Values{1, 2, 3, 4, 5}, {}}) {
        second = nullptr;
        second = fill(values);
        EXPECT_EQ(arrayText(values.data(), values.size()), text(second));
    }
}

TEST(QueryStructure, takesItsOwnFieldsOnly) {
    QueryStructure structure({"A"});
    EXPECT_THROW(structure.setDouble("B", 1.0), numbench::Exception);
    structure.setLogical("A", true);
    EXPECT_TRUE(nbIsLogical(nbGetField(NbArrayPointer(structure.release()).get(), 0, "A")));
}

}  // namespace
