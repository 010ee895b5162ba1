#include "RandomOptions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "BareProperty.h"

namespace soak {

namespace {

using dspwavedecks::catalogue::Content;
using dspwavedecks::catalogue::Giver;
using dspwavedecks::catalogue::Kind;
using dspwavedecks::catalogue::Option;
using dspwavedecks::catalogue::Stage;
using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayFactory;
using foundation::numbenchdata::OptionalString;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double defaultOf(const Option& option) {
    double value = 1.0;
    std::from_chars(option.defaultValue.begin(), option.defaultValue.end(), value);
    return value;
}

}  // namespace

double RandomOptions::number(const Option& option, bool isSensible) {
    const bool isWhole = option.content == Content::WholeNumber;
    if (isSensible) {
        const double factor = isWhole ? random_.oneOf({1.0, 1.0, 2.0}) : random_.oneOf({0.25, 0.5, 1.0, 1.0, 2.0, 5.0});
        return random_.oneIn(4) ? random_.oneOf({0.0, 1.0, 2.0, 3.0}) : defaultOf(option) * factor;
    }
    if (isWhole) {
        return random_.oneOf({-1.0, 0.0, 7.0, 1000.0, notANumber});
    }
    // Lengths that are huge, and frequencies and times that are fine or far, ask for resolutions that no memory holds,
    // and get them.
    const double scale = std::max(1.0, std::fabs(defaultOf(option)));
    return random_.oneIn(2) ? scale * random_.oneOf({-1.0, -0.1, 0.1, 7.0})
                            : random_.oneOf({0.0, -1e300, notANumber, infinity, -infinity});
}

std::string RandomOptions::text(const Option& option, bool isSensible) {
    if (option.name == "clientID" || option.name == "action") {
        return isSensible ? std::string(option.name == "action" ? "tune" : "soak") : "nobody";
    }
    if (isSensible && !option.words.empty()) {
        return std::string(random_.elementOf(option.words).text);
    }
    if (isSensible && !option.defaultValue.empty() && random_.oneIn(2)) {
        return std::string(option.defaultValue);
    }
    if (isSensible && option.content == Content::NumberText) {
        return random_.oneOf<const char*>({"0", "1", "2.5", "-Inf", "Inf", "-10"});
    }
    return random_.oneOf<const char*>({"", "0", "1", "2.5", "-Inf", "Inf", "nan", "1e3", "-100,0,100", "-10,-20,-30",
                                       "1,,2", "x", "9999999999999999999999"});
}

std::size_t RandomOptions::listLength(bool isSensible) {
    return isSensible ? random_.oneOf({lengths_.signals, lengths_.channels, std::size_t{2}}) : random_.below(6);
}

Array RandomOptions::valueOf(const Option& option, bool isSensible) {
    const auto filled = [&]<class Value>(Value, auto make) {
        std::vector<Value> values(listLength(isSensible));
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = make();
        }
        return values;
    };
    const auto integer = [&] {
        const double value = number(option, isSensible);
        return std::fabs(value) < 1e9 ? static_cast<int>(value) : std::numeric_limits<int>::max();
    };
    const auto logical = [&] { return isSensible ? !random_.oneIn(4) : random_.oneIn(2); };
    const auto wide = [&] {
        const std::string narrow = text(option, isSensible);
        return OptionalString(std::u16string(narrow.begin(), narrow.end()));
    };
    switch (option.kind) {
        case Kind::Double:
            return ArrayFactory::createDouble({number(option, isSensible)});
        case Kind::Int:
            return ArrayFactory::createInt({integer()});
        case Kind::DoubleOrInt:
            return random_.oneIn(2) ? ArrayFactory::createDouble({number(option, isSensible)})
                                    : ArrayFactory::createInt({integer()});
        case Kind::Logical:
            return ArrayFactory::createLogical({logical()});
        case Kind::Text:
        case Kind::UnicodeText:
            return ArrayFactory::createChar(text(option, isSensible));
        case Kind::Doubles:
            return ArrayFactory::createDouble(filled(0.0, [&] { return number(option, isSensible); }));
        case Kind::Ints:
            return ArrayFactory::createInt(filled(0, integer));
        case Kind::Logicals:
            return ArrayFactory::createLogical(filled(false, logical));
        case Kind::Texts:
            return ArrayFactory::createString(filled(OptionalString(), wide));
    }
    return {};
}

Array RandomOptions::wrongValue() {
    switch (random_.below(7)) {
        case 0:
            return ArrayFactory::createDouble({});
        case 1:
            return ArrayFactory::createDouble({1.0, notANumber});
        case 2:
            return ArrayFactory::createInt({std::numeric_limits<int>::min()});
        case 3:
            return ArrayFactory::createLogical({true, false, true});
        case 4:
            return ArrayFactory::createChar(std::u16string(u"\u03b1\u2126"));
        case 5:
            return ArrayFactory::createString({std::nullopt});
        default:
            return ArrayFactory::createCell({ArrayFactory::createDouble({1.0})});
    }
}

PropertyList RandomOptions::forSetup(const Stage& stage) {
    PropertyList list;
    for (const Option* option : stage.options) {
        if (option->giver == Giver::Person && !random_.oneIn(4)) {
            list.add(std::string(option->name), valueOf(*option, !random_.oneIn(400)));
        }
    }
    return list;
}

PropertyList RandomOptions::forTuning(const Stage& stage) {
    PropertyList list;
    for (std::size_t count = stage.options.empty() ? 0 : 1 + random_.below(5); count > 0; --count) {
        const Option& option = *random_.elementOf(stage.options);
        const std::string name(option.name);
        if (option.giver == Giver::Host && !random_.oneIn(4)) {
            continue;
        }
        if (random_.oneIn(12)) {
            random_.oneIn(8) ? list.add(std::make_shared<wavedeck::driver::BareProperty>(name))
                             : void(list.add(name, wrongValue()));
        } else {
            list.add(name, valueOf(option, !random_.oneIn(4)));
        }
    }
    return list;
}

}  // namespace soak
