// The host's declarations as stages and callers use them: arrays, property lists, board, registry, nb functions.

#include <boost/any.hpp>

#include "Test.h"
#include "foundation/numbenchdata/Array.h"
#include "numbench/nbArray.h"
#include "streamplug/PropertyList.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace {

using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayFactory;
using foundation::numbenchdata::CharArray;
using foundation::numbenchdata::InvalidArrayTypeException;
using foundation::numbenchdata::OptionalString;
using foundation::numbenchdata::TypedArray;
using streamplug::interfaces::device::PropertyList;
using wavedeck::WaveDeckClientRegistry;

TEST(Array, IsReadAsItsOwnKindOnly) {
    const Array doubles = ArrayFactory::createDouble({1.5, -2.0});
    const Array strings = ArrayFactory::createString({u"a", OptionalString()});
    const Array cells = ArrayFactory::createCell({ArrayFactory::createChar(u"h\u00e9"), doubles});
    using foundation::numbenchdata::detail::getValue;
    EXPECT_EQ(CharArray(getValue<Array>(cells, 0)).toUTF16(), u"h\u00e9");
    EXPECT_EQ(TypedArray<double>(getValue<Array>(cells, 1))[1], -2.0);
    EXPECT_THROW((void)getValue<Array>(cells, 2), InvalidArrayTypeException);
    EXPECT_THROW((void)std::u16string(TypedArray<OptionalString>(strings)[1]), InvalidArrayTypeException);
    EXPECT_THROW(CharArray{doubles}, InvalidArrayTypeException);
    EXPECT_THROW(TypedArray<int>{doubles}, InvalidArrayTypeException);
    EXPECT_THROW(TypedArray<Array>{strings}, InvalidArrayTypeException);
}

TEST(PropertyList, KeepsItsPropertiesAliveAndFindsTheFirstOfAName) {
    PropertyList copy;
    {
        PropertyList list;
        list.addDouble("x", 1.0).addInt("x", 2).addChar("word", "w");
        copy = list;
        copy.append(copy);
    }
    ASSERT_EQ(std::distance(copy.begin(), copy.end()), 6);
    EXPECT_STREQ((*copy.begin())->getName(), "x");
    EXPECT_EQ(copy.find("x"), *copy.begin());
    EXPECT_EQ(copy.find("y"), nullptr);
}

TEST(Board, EntriesKeepTheirPlaceAndAreReadByType) {
    const auto client = WaveDeckClientRegistry::sInstance.addClient("board test");
    auto& board = client->getClientSettings();
    EXPECT_EQ(board.find("a"), nullptr);
    board.addCustomSetting("a", 1.0);
    boost::any* entry = board.find("a");
    for (int i = 0; i < 1000; ++i) {
        board.addCustomSetting(std::to_string(i), i);
    }
    EXPECT_EQ(board.find("a"), entry);
    *boost::any_cast<double>(entry) = 2.0;
    EXPECT_EQ(boost::any_cast<double>(board["a"]), 2.0);
    EXPECT_EQ(boost::any_cast<int>(board.find("a")), nullptr);
    EXPECT_EQ(board.keys().size(), 1001U);
    WaveDeckClientRegistry::sInstance.removeClient("board test");
}

TEST(Registry, KnowsItsClientsAndTheirAxes) {
    auto& registry = WaveDeckClientRegistry::sInstance;
    const auto client = registry.addClient("one");
    EXPECT_EQ(registry("one"), client);
    EXPECT_THROW(registry.addClient("one"), numbench::Exception);
    EXPECT_THROW(registry("two"), numbench::Exception);
    EXPECT_EQ(client->getAxesIdFromSignalId(5), 5U);
    client->getClientSettings().addCustomSetting(
        "WDSigIdToAxesId",
        std::function<unsigned long(const unsigned long&)>([](const unsigned long& signal) { return signal + 10; }));
    EXPECT_EQ(client->getAxesIdFromSignalId(5), 15U);
    EXPECT_EQ(client->getClientSettings().axesTimeTable[3].timeSpan, 0.0);
    EXPECT_EQ(client->getClientSettings().axesTimeTable.size(), 0U) << "reading adds nothing";
    EXPECT_EQ(client->getSampleTime(-1), 0.0);
    EXPECT_EQ(client->getOffset(7), 0.0);
    registry.removeClient("one");
    registry.removeClient("one");
    EXPECT_FALSE(registry.isClientValid("one"));
}

TEST(NbArray, StructuresOwnTheirFieldsAndRefuseWhatTheyAreNot) {
    const std::size_t dims[] = {1, 2};
    const char* names[] = {"a", "b"};
    nbArray* structure = nbCreateStructArray(2, dims, 2, names);
    EXPECT_EQ(nbGetNumberOfElements(structure), 2U);
    EXPECT_THROW(nbGetFieldNameByNumber(structure, 2), numbench::Exception);
    nbSetField(structure, 1, "b", nbCreateDoubleScalar(1.0));
    nbSetField(structure, 1, "b", nbCreateDoubleMatrix(2, 3));
    EXPECT_EQ(nbGetRows(nbGetField(structure, 1, "b")), 2U);
    EXPECT_EQ(nbGetField(structure, 0, "a"), nullptr);
    EXPECT_THROW(nbSetField(structure, 2, "a", nbCreateDoubleScalar(0.0)), numbench::Exception);
    EXPECT_THROW(nbSetField(structure, 0, "c", nbCreateDoubleScalar(0.0)), numbench::Exception);
    nbSetField(structure, 0, "a", nbCreateDoubleMatrix(0, 0));
    nbSetField(structure, 0, "b", nbCreateString("abc"));
    for (const nbArray* wrong : {nbGetField(structure, 0, "a"), nbGetField(structure, 0, "b")}) {
        EXPECT_THROW(nbGetScalar(wrong), numbench::Exception) << "nothing, and a text";
    }
    EXPECT_THROW(nbArrayToStdString(nullptr), numbench::Exception);
    nbDestroyArray(structure);
}

}  // namespace
