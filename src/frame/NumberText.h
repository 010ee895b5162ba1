#pragma once

#include <string>

namespace dspwavedecks {

/// A number as the text that clients get where a number must be able to be infinite or NaN: 17 significant digits in
/// the form "%.17g", "inf" and "nan", each with a leading "-" when the sign bit is set. Whole numbers have no point.
std::string numberText(double value);

/// The same for a count or an index.
std::string numberText(unsigned long value);

}  // namespace dspwavedecks
