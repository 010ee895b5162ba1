#pragma once

#include <string>
#include <vector>

#include "foundation/numbenchdata/Array.h"
#include "streamplug/PropertyList.h"

namespace dspwavedecks {

using streamplug::interfaces::device::PropertyList;

// Readers of named options. The first option of a name counts. All throw
//   OptionNotFound         "Option: NAME was not found"
//   OptionNotExpectedType  "Option: NAME was not the expected PropertyEvent", a property that carries no array
// and, where the value does not suit the reader, OptionNotExpectedType with the text told there. Nothing has changed
// when a reader throws.

/// True when the list holds an option of that name.
bool hasOption(const PropertyList& list, const std::string& name);

/// The array that the named option holds; lives as long as the list.
const foundation::numbenchdata::Array& findOptionValue(const PropertyList& list, const std::string& name);

/// A char array, or a string array of one element.
/// Throws " was not a scalar" for a string array of another size, " was not a char or string" for any other value.
std::u16string readU16StringOption(const PropertyList& list, const std::string& name);

/// As readU16StringOption, with all code units below 128.
/// Throws OptionInvalidValue, " value had non-ASCII characters", for others.
std::string readStringOption(const PropertyList& list, const std::string& name);

// One element. Each throws " was not the expected type" or " was not a scalar".

double readDoubleOption(const PropertyList& list, const std::string& name);
int readIntOption(const PropertyList& list, const std::string& name);
bool readBoolOption(const PropertyList& list, const std::string& name);

/// One double, or one 32-bit integer.
double readDoubleOrIntOption(const PropertyList& list, const std::string& name);

// Any number of elements. Each throws " was not the expected type".

std::vector<int> readIntVectorOption(const PropertyList& list, const std::string& name);
std::vector<double> readDoubleVectorOption(const PropertyList& list, const std::string& name);
std::vector<bool> readBoolVectorOption(const PropertyList& list, const std::string& name);

/// A string array, or a cell array of char arrays, all ASCII.
/// Throws " was not a cell array of chars or a string array", or OptionInvalidValue, " value had non-ASCII characters".
std::vector<std::string> readStringVectorOption(const PropertyList& list, const std::string& name);

}  // namespace dspwavedecks
