#include "RandomOptions.h"

#include <memory>

#include "BareProperty.h"
#include "foundation/numbenchdata/Array.h"

namespace fuzz {
namespace {

using dspwavedecks::catalogue::Kind;
using dspwavedecks::catalogue::Option;
using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayFactory;
using foundation::numbenchdata::OptionalString;
using streamplug::interfaces::device::PropertyList;

int whole(InputBytes& input) {
    const double value = input.number();
    return value > -2147483648.0 && value < 2147483648.0 ? static_cast<int>(value) : -1;
}

std::string text(InputBytes& input, const Option& option) {
    static const std::array<std::string, 12> texts{"",    "1",      "-Inf",      "Inf",  "nan",    "1e3",
                                                   "1,2", "0,-5,1", "-10,5,2,3", "\x80", "1,,2,x", "1e99999"};
    const std::uint8_t kind = input.byte();
    if (kind < 128 && !option.words.empty()) {
        return std::string(input.oneOf(option.words).text);
    }
    return kind < 200 ? input.oneOf(texts) : std::to_string(input.number());
}

std::vector<Array> cells(InputBytes& input, const Option& option) {
    std::vector<Array> values;
    for (std::size_t count = input.below(5); count > 0; --count) {
        values.push_back(input.flag() ? ArrayFactory::createChar(text(input, option))
                                      : ArrayFactory::createDouble({input.number()}));
    }
    return values;
}

template <typename Value, typename Make>
std::vector<Value> several(std::size_t count, Make make) {
    std::vector<Value> values;
    for (; count > 0; --count) {
        values.push_back(make());
    }
    return values;
}

Array array(InputBytes& input, Kind kind, std::size_t count, const Option& option) {
    switch (kind) {
        case Kind::Double:
        case Kind::Doubles:
        case Kind::DoubleOrInt:
            return ArrayFactory::createDouble(input.numbers(count));
        case Kind::Int:
        case Kind::Ints:
            return ArrayFactory::createInt(several<int>(count, [&] { return whole(input); }));
        case Kind::Logical:
        case Kind::Logicals:
            return ArrayFactory::createLogical(several<bool>(count, [&] { return input.flag(); }));
        case Kind::Text:
        case Kind::UnicodeText:
            return ArrayFactory::createChar(text(input, option));
        case Kind::Texts:
            break;
    }
    return ArrayFactory::createString(several<OptionalString>(count, [&]() -> OptionalString {
        const std::string value = text(input, option);
        return input.byte() == 0 ? OptionalString() : OptionalString(std::u16string(value.begin(), value.end()));
    }));
}

/// Mostly a value of the kind that the option takes.
void addOption(InputBytes& input, const Option& option, PropertyList& list) {
    const std::string name(option.name);
    const std::uint8_t kind = input.byte();
    if (kind < 200) {
        const std::size_t count = dspwavedecks::catalogue::isList(option.kind) ? input.below(6) : 1;
        list.add(name, array(input, option.kind, count, option));
    } else if (kind < 240) {
        const auto other = static_cast<Kind>(input.below(static_cast<std::size_t>(Kind::DoubleOrInt) + 1));
        list.add(name, array(input, other, input.below(4), option));
    } else if (kind < 250) {
        list.add(name, ArrayFactory::createCell(cells(input, option)));
    } else {
        list.add(std::make_shared<wavedeck::driver::BareProperty>(name));
    }
}

}  // namespace

PropertyList randomOptions(InputBytes& input, std::span<const Option* const> options) {
    PropertyList list;
    for (std::size_t count = input.below(6); count > 0 && !options.empty(); --count) {
        addOption(input, *input.oneOf(options), list);
    }
    return list;
}

}  // namespace fuzz
