#include "Catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace dspwavedecks::catalogue {
namespace {

/// What a filter's table does: an option as template argument decides the type of the value.
template <const Option& option>
using Value = ValueOf<option.kind>;

static_assert(std::is_same_v<Value<signalStatistics::showMax>, bool>);
static_assert(std::is_same_v<Value<base::frameSize>, std::vector<int>>);
static_assert(findOption(*findStage("signal_statistics_filter"), "showRMS") == &signalStatistics::showRMS);

TEST(Catalogue, NamesAreUniqueAndTold) {
    std::set<std::string_view> names;
    std::set<std::string_view> classes;
    for (const Stage& stage : stages) {
        EXPECT_TRUE(names.insert(stage.name).second) << stage.name;
        EXPECT_TRUE(classes.insert(stage.className).second) << stage.className;
        EXPECT_NE(stage.chains, Chains::None) << stage.name;
        EXPECT_FALSE(stage.meaning.empty()) << stage.name;
        std::set<std::string_view> options;
        for (const Option* option : stage.options) {
            EXPECT_TRUE(options.insert(option->name).second) << stage.name << '.' << option->name;
            EXPECT_FALSE(option->meaning.empty()) << stage.name << '.' << option->name;
        }
    }
    EXPECT_EQ(findStage("no_such_filter"), nullptr);
}

/// A default that a person could not type back would make the listing of the options misleading.
TEST(Catalogue, DefaultsAreValuesThatTheOptionTakes) {
    for (const Stage& stage : stages) {
        for (const Option* option : stage.options) {
            const std::string_view value = option->defaultValue;
            const auto allowed = [&](std::string_view word) {
                return std::any_of(option->words.begin(), option->words.end(),
                                   [&](const Word& known) { return known.text == word; });
            };
            switch (option->content) {
                case Content::TrueFalse:
                    EXPECT_TRUE(isList(option->kind) || value == "true" || value == "false") << option->name;
                    break;
                case Content::Word:
                    EXPECT_TRUE(allowed(value)) << option->name << " " << value;
                    break;
                default:
                    EXPECT_TRUE(option->words.empty()) << option->name;
            }
        }
    }
}

}  // namespace
}  // namespace dspwavedecks::catalogue
