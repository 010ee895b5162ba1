#include "Catalogue.h"

#include <set>
#include <type_traits>

#include "Test.h"

namespace {

using namespace dspwavedecks::catalogue;

/// What a filter's table does: an option as template argument decides the type of the value.
template <const Option& option>
using Value = ValueOf<option.kind>;

static_assert(std::is_same_v<Value<signalStatistics::showMax>, bool>);
static_assert(std::is_same_v<Value<base::frameSize>, std::vector<int>>);
static_assert(findOption(*findStage("signal_statistics_filter"), "showRMS") == &signalStatistics::showRMS);
static_assert(findOption(*findStage("phase_noise_filter"), "showRMS") == nullptr);

TEST(Catalogue, NamesAreUniqueAndTold) {
    std::set<std::string_view> names;
    std::set<std::string_view> classes;
    for (const Stage& stage : stages) {
        EXPECT_TRUE(names.insert(stage.name).second) << stage.name;
        EXPECT_TRUE(classes.insert(stage.className).second) << stage.className;
        EXPECT_NE(stage.chains, Chains::None) << stage.name;
        EXPECT_FALSE(stage.meaning.empty()) << stage.name;
        EXPECT_EQ(stage.options.empty(), stage.kind == StageKind::Strategy) << stage.name;
        std::set<std::string_view> options;
        for (const Option* option : stage.options) {
            EXPECT_TRUE(options.insert(option->name).second) << stage.name << '.' << option->name;
            EXPECT_FALSE(option->meaning.empty()) << stage.name << '.' << option->name;
            std::set<std::string_view> words;
            for (const Word& word : option->words) {
                EXPECT_TRUE(words.insert(word.text).second) << option->name << ' ' << word.text;
            }
        }
    }
    EXPECT_EQ(findStage("no_such_filter"), nullptr);
}

/// One value of an option as a person would type it.
bool isValue(const Option& option, const std::string& value) {
    switch (option.content) {
        case Content::TrueFalse:
            return value == "true" || value == "false";
        case Content::Word:
            return std::any_of(option.words.begin(), option.words.end(),
                               [&](const Word& known) { return known.text == value; });
        case Content::FreeText:
            return true;
        default: {
            std::size_t end = 0;
            const double number = std::stod(value, &end);
            const bool whole = option.content != Content::WholeNumber || number == std::floor(number);
            const bool finite = option.kind == Kind::Text || std::isfinite(number);
            return end == value.size() && whole && finite;
        }
    }
}

/// The listing of the options would mislead with a default that a person could not type back. Only lists, which may be
/// empty, and what the host gives have none.
TEST(Catalogue, DefaultsAreValuesThatTheOptionTakes) {
    for (const Stage& stage : stages) {
        for (const Option* option : stage.options) {
            SCOPED_TRACE(std::string(stage.name) + "." + std::string(option->name));
            EXPECT_EQ(option->content == Content::Word, !option->words.empty());
            EXPECT_TRUE(!option->required || option->giver == Giver::Host);
            if (option->defaultValue.empty()) {
                EXPECT_TRUE(isList(option->kind) || option->giver == Giver::Host);
                continue;
            }
            const bool many = isList(option->kind) || option->content == Content::NumbersText;
            std::istringstream values{std::string(option->defaultValue)};
            int count = 0;
            for (std::string value; std::getline(values, value, ','); ++count) {
                EXPECT_TRUE(isValue(*option, value)) << value;
            }
            EXPECT_TRUE(many || count == 1) << count;
        }
    }
}

}  // namespace
