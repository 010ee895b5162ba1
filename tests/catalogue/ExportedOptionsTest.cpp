// Sends every option of the catalogue through the exported factories: every kind of value at every action. A stage
// takes the kind that the catalogue tells, refuses each other one in the reader's own words, needs what the catalogue
// calls required and nothing else, and looks at an option only at the actions that the catalogue names.

#include <map>
#include <set>

#include "Catalogue.h"
#include "DriverTest.h"
#include "TestClient.h"
#include "foundation/numbenchdata/Array.h"
#include "streamplug/Exceptions.h"

namespace {

using namespace dspwavedecks::catalogue;
using dspwavedecks::catalogue::Stage;  // not the driver's
using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayFactory;
using foundation::numbenchdata::ArrayType;

struct Action {
    When when;
    const char* name;
};
constexpr Action actions[] = {{When::Setup, "setup"},
                              {When::Tune, "tune"},
                              {When::SizeChange, "onInputSizeChange"},
                              {When::Rollback, "onRollback"}};

struct Value {
    const char* name;
    Array array;
};

const char* const cellOfTexts = "cell of chars";

/// One value of every kind; texts are what the option takes as text.
std::vector<Value> valuesFor(const std::string& text) {
    const std::u16string wide(text.begin(), text.end());
    const Array characters = ArrayFactory::createChar(text);
    return {
        {"double", ArrayFactory::createDouble({1.0})},
        {"two doubles", ArrayFactory::createDouble({1.0, 2.0})},
        {"no double", ArrayFactory::createDouble({})},
        {"int", ArrayFactory::createInt({1})},
        {"two ints", ArrayFactory::createInt({1, 2})},
        {"logical", ArrayFactory::createLogical({true})},
        {"two logicals", ArrayFactory::createLogical({true, false})},
        {"char", characters},
        {"string", ArrayFactory::createString({wide})},
        {"two strings", ArrayFactory::createString({wide, wide})},
        {cellOfTexts, ArrayFactory::createCell({characters, characters})},
        {"cell of doubles", ArrayFactory::createCell({ArrayFactory::createDouble({1.0})})},
    };
}

/// What follows the option's name in the fault, or an empty text for a value that is taken.
std::string faultOf(Kind kind, const Value& value) {
    using enum ArrayType;
    static const std::map<Kind, std::set<ArrayType>> taken = {{Kind::Double, {Double}},
                                                              {Kind::Int, {Int}},
                                                              {Kind::Logical, {Logical}},
                                                              {Kind::Doubles, {Double}},
                                                              {Kind::Ints, {Int}},
                                                              {Kind::Logicals, {Logical}},
                                                              {Kind::Text, {Char, String}},
                                                              {Kind::UnicodeText, {Char, String}},
                                                              {Kind::DoubleOrInt, {Double, Int}},
                                                              {Kind::Texts, {String}}};
    const ArrayType type = value.array.getType();
    const bool isText = kind == Kind::Text || kind == Kind::UnicodeText;
    if (!taken.at(kind).contains(type) && (kind != Kind::Texts || value.name != std::string_view(cellOfTexts))) {
        return isText                ? " was not a char or string"
               : kind == Kind::Texts ? " was not a cell array of chars or a string array"
                                     : " was not the expected type";
    }
    const bool mayBeMany = isList(kind) || (isText && type == Char);
    return mayBeMany || value.array.getNumberOfElements() == 1 ? "" : " was not a scalar";
}

class ExportedOptions : public testing::TestWithParam<Stage> {
protected:
    void SetUp() override { ASSERT_TRUE(stageLibrary().offers(std::string(stage().name))); }

    const Stage& stage() const { return GetParam(); }

    /// A stage that is set up unless the action to come is its setup.
    std::shared_ptr<wavedeck::WaveDeckTransformImpl> makeStage(const Action& action) {
        auto made = stageLibrary().makeFilter(std::string(stage().name));
        if (action.when != When::Setup) {
            made->tuneImpl(required(actions[0], ""));
        }
        return made;
    }

    /// What the catalogue says that the action needs, without one name.
    PropertyList required(const Action& action, std::string_view without) {
        PropertyList list;
        for (const Option* option : stage().options) {
            if (option->required && intersects(option->when, action.when) && option->name != without) {
                const std::string name(option->name);
                list.add(name, name == "action" ? ArrayFactory::createChar(std::string(action.name)) : fact(name));
            }
        }
        return list;
    }

    Array fact(const std::string& name) const {
        const PropertyList setup = client.setup();
        const auto* event = dynamic_cast<const streamplug::kit::array::PropertyEvent*>(setup.find(name));
        EXPECT_NE(event, nullptr) << "the host does not know " << name;
        return event ? event->getValue() : Array();
    }

    /// The text that a reader of the option's text can go on with.
    std::string textFor(const Option& option, const Action& action) const {
        if (option.name == "action") {
            return action.name;
        }
        if (option.name == "clientID") {
            return client.name();
        }
        return option.words.empty() ? "1" : std::string(option.words.front().text);
    }

    /// Sends the list and gives back the text of the fault.
    static std::string send(wavedeck::WaveDeckTransformImpl& filter, const PropertyList& list, When when) {
        try {
            when == When::Rollback ? filter.rollbackImpl(list) : filter.tuneImpl(list);
        } catch (const std::exception& fault) {
            return fault.what();
        }
        return "";
    }

    TestClient client;
};

/// Options that are looked at only together with another one.
PropertyList withCompanion(PropertyList list, std::string_view option) {
    static const std::map<std::string_view, const char*> companions = {{"rearm", "mode=once"},
                                                                       {"minDuration", "type=runt"},
                                                                       {"maxDuration", "type=runt"},
                                                                       {"minPulseWidth", "type=edge"},
                                                                       {"maxPulseWidth", "type=edge"}};
    const auto found = companions.find(option);
    return found == companions.end() ? list : list.append(optionList(found->second));
}

TEST_P(ExportedOptions, AreReadAsTheCatalogueTells) {
    if (stage().kind == StageKind::Strategy) {
        EXPECT_NE(stageLibrary().makeStrategy(std::string(stage().name)), nullptr);
        return;
    }
    for (const Action& action : actions) {
        for (const Option* option : stage().options) {
            const std::string name(option->name);
            const bool isRead = intersects(option->when, action.when);
            for (const Value& value : valuesFor(textFor(*option, action))) {
                SCOPED_TRACE(std::string(action.name) + " with " + name + " as " + value.name);
                PropertyList list;
                list.add(name, value.array);  // the first of a name counts
                list.append(withCompanion(required(action, name), name));
                const std::string fault = isRead ? faultOf(option->kind, value) : "";
                EXPECT_EQ(send(*makeStage(action), list, action.when), fault.empty() ? "" : "Option: " + name + fault);
            }
        }
    }
}

TEST_P(ExportedOptions, AreRequiredAsTheCatalogueTells) {
    if (stage().kind == StageKind::Strategy) {
        return;
    }
    for (const Action& action : actions) {
        EXPECT_EQ(send(*makeStage(action), required(action, ""), action.when), "") << action.name;
        for (const Option* option : stage().options) {
            if (option->required && intersects(option->when, action.when)) {
                EXPECT_EQ(send(*makeStage(action), required(action, option->name), action.when),
                          "Option: " + std::string(option->name) + " was not found");
            }
        }
    }
}

TEST(ExportedFactories, AreTheStagesOfTheCatalogue) {
    std::ifstream names(EXPORTED_NAMES);
    std::size_t factories = 0;
    int queries = 0;
    for (std::string name; std::getline(names, name);) {
        const bool isFilter = name.ends_with("_filter");
        if (isFilter || name.ends_with("_strategy")) {
            const Stage* const stage = findStage(name);
            ASSERT_NE(stage, nullptr) << name;
            EXPECT_EQ(stage->kind == StageKind::Filter, isFilter) << name;
            ++factories;
        }
        queries += name.ends_with("Impl") ? 1 : 0;
    }
    EXPECT_EQ(factories, stages.size());
    EXPECT_EQ(queries, 18);
}

INSTANTIATE_TEST_SUITE_P(Stages, ExportedOptions, testing::ValuesIn(stages.begin(), stages.end()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
