#pragma once

#include <string>
#include <type_traits>
#include <utility>

#include "Option.h"
#include "OptionReaders.h"
#include "TruncateTo.h"

/// The options of a stage as a table: which option of the catalogue goes where. The catalogue gives name and type, and
/// with them the reader; the rows are read in the order in which they stand.
///
///     readOptions(list,                                                        //
///                 required<catalogue::base::clientID>(clientID),               // into a variable
///                 ifPresent<options::showMax>(statistics, &SignalStatistics::setComputeMax),
///                 ifPresent<options::window>(estimator, &SpectrumEstimator::setWindow, getWindowEnum),
///                 ifPresent<options::customSpan>([&](double seconds) { ... }));
namespace dspwavedecks {

namespace detail {

/// A value as the type that its target has: a count that arrives as a double loses its fraction.
template <class Target, class Value>
decltype(auto) convertOption(Value&& value) {
    using Plain = std::remove_cvref_t<Value>;
    if constexpr (std::is_same_v<Target, Plain>) {
        return std::forward<Value>(value);
    } else if constexpr (std::is_integral_v<Target> && std::is_floating_point_v<Plain>) {
        return truncateTo<Target>(value);
    } else {
        return static_cast<Target>(value);
    }
}

template <const catalogue::Option& option>
catalogue::ValueOf<option.kind> readValue(const PropertyList& list, const std::string& name) {
    using catalogue::Kind;
    if constexpr (option.kind == Kind::Double) {
        return readDoubleOption(list, name);
    } else if constexpr (option.kind == Kind::Int) {
        return readIntOption(list, name);
    } else if constexpr (option.kind == Kind::Logical) {
        return readBoolOption(list, name);
    } else if constexpr (option.kind == Kind::Text) {
        return readStringOption(list, name);
    } else if constexpr (option.kind == Kind::UnicodeText) {
        return readU16StringOption(list, name);
    } else if constexpr (option.kind == Kind::Doubles) {
        return readDoubleVectorOption(list, name);
    } else if constexpr (option.kind == Kind::Ints) {
        return readIntVectorOption(list, name);
    } else if constexpr (option.kind == Kind::Logicals) {
        return readBoolVectorOption(list, name);
    } else if constexpr (option.kind == Kind::Texts) {
        return readStringVectorOption(list, name);
    } else {
        static_assert(option.kind == Kind::DoubleOrInt);
        return readDoubleOrIntOption(list, name);
    }
}

/// One row: an option and what takes its value.
template <const catalogue::Option& option, bool isRequired, class Target>
struct OptionRow {
    Target target;

    void read(const PropertyList& list) {
        const std::string name(option.name);
        if (isRequired || hasOption(list, name)) {
            using Value = catalogue::ValueOf<option.kind>;
            if constexpr (std::is_invocable_v<Target&, Value>) {
                target(readValue<option>(list, name));
            } else {
                target = convertOption<std::remove_reference_t<Target>>(readValue<option>(list, name));
            }
        }
    }
};

/// Hands a value to a setter of an object.
template <class Object, class Class, class Result, class Argument>
auto setterOf(Object& object, Result (Class::*setter)(Argument)) {
    return [&object, setter](auto&& value) {
        (object.*setter)(convertOption<std::remove_cvref_t<Argument>>(std::forward<decltype(value)>(value)));
    };
}

}  // namespace detail

/// A row for an option that may be absent: what is bound here keeps its value then.
/// target  a variable, or a callable that takes the value
template <const catalogue::Option& option, class Target>
auto ifPresent(Target&& target) {
    return detail::OptionRow<option, false, Target>{std::forward<Target>(target)};
}
/// The same for a setter of an object.
template <const catalogue::Option& option, class Object, class Setter>
auto ifPresent(Object& object, Setter setter) {
    return ifPresent<option>(detail::setterOf(object, setter));
}
/// The same for a setter that takes what `conversion` makes of the value: a number for a word, say.
template <const catalogue::Option& option, class Object, class Setter, class Conversion>
auto ifPresent(Object& object, Setter setter, Conversion conversion) {
    return ifPresent<option>([&object, setter, conversion](const auto& value) { (object.*setter)(conversion(value)); });
}

/// A row for an option without which the list is refused.
template <const catalogue::Option& option, class Target>
auto required(Target&& target) {
    return detail::OptionRow<option, true, Target>{std::forward<Target>(target)};
}

/// Reads the rows, first to last. A fault of one leaves those before it done and those behind it untouched.
template <class... Rows>
void readOptions(const PropertyList& list, Rows&&... rows) {
    (rows.read(list), ...);
}

}  // namespace dspwavedecks
