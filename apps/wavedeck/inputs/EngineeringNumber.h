#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace program {

/// A number as an engineer types it: decimal or exponent form, then at most one of the suffixes k M G m u n (1e3, 1e6,
/// 1e9, 1e-3, 1e-6, 1e-9). "inf", "-inf" and "nan" stand for themselves in any case. Nothing may follow: no unit.
/// Returns nothing when the text is no such number.
std::optional<double> parseNumber(std::string_view text);

/// A whole number, suffixes k M G allowed ("64k"); nothing when the text is no whole number of at most 2^53.
std::optional<long long> parseWholeNumber(std::string_view text);

/// As parseNumber, for a value that has a name: throws UsageError "NAME: `TEXT` is not a number ...".
double readNumber(std::string_view name, std::string_view text);

/// As readNumber, for a value that must be above 0 and finite.
double readPositiveNumber(std::string_view name, std::string_view text);

/// As parseWholeNumber, with the smallest value allowed; throws UsageError.
long long readWholeNumber(std::string_view name, std::string_view text, long long smallest);

/// A value with its unit as an instrument shows it: 48000, "Hz" gives "48 kHz". Prefixes n u m k M G T for the units
/// that take one; dB, %, and counts stay as they are. digits: significant digits, trailing zeros dropped.
std::string formatQuantity(double value, std::string_view unit, int digits = 6);

}  // namespace program
