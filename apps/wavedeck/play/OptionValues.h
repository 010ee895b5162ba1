#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Option.h"
#include "streamplug/PropertyList.h"

/// Values of options as the display client writes and reads them: numbers, true and false, texts and lists.
namespace program {

/// The value that a text of an option stands for: a number, a logical, a text, or a list of these; null for an empty
/// text of anything but a list or a text. Infinite numbers stay texts.
nlohmann::json valueFromText(const dspwavedecks::catalogue::Option& option, const std::string& text);

/// The text that a person would type for the value, or nothing if the value is of a kind that the option cannot take.
std::optional<std::string> textFromValue(const dspwavedecks::catalogue::Option& option, const nlohmann::json& value);

/// The option in the kind that the value itself has, whatever the option takes: what the stage makes of it is the
/// stage's to say. Throws UsageError for values that no option has (objects, nulls, mixed lists).
void addAsItStands(const std::string& name, const nlohmann::json& value,
                   streamplug::interfaces::device::PropertyList& list);

}  // namespace program
