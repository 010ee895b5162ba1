#pragma once

#include "ScriptValue.h"
#include "streamplug/PropertyList.h"

namespace program {

/// Reads `{"NAME": {"KIND": VALUE}, ...}` into a property list, in the order written. KIND is double, int, logical,
/// char, string or cell, whatever the stage expects, so that wrong kinds can be sent too; "property": true sends a
/// property that carries no array. VALUE is one element or a list of them. Throws UsageError with the line.
streamplug::interfaces::device::PropertyList readScriptOptions(const ScriptValue& options);

/// Appends what readScriptOptions would read.
void appendScriptOptions(const ScriptValue& options, streamplug::interfaces::device::PropertyList& list);

}  // namespace program
