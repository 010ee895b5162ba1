#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

/// The formulas of VectorMath.h one element at a time, as plain double arithmetic: what vectorised loops are checked
/// against and timed against.
namespace scalar_formulas {

inline double toDecibels(double power, double offset, double bias) {
    return offset + 10 * std::log10(power + bias);
}

inline double rootToDecibels(double power, double fullScale, double offset, double ceiling, double bias) {
    return std::min(20 * std::log10(std::sqrt(power) / fullScale + bias) + offset, ceiling);
}

inline double fromDecibels(double decibels, double offset) {
    return std::pow(10.0, (decibels - offset) / 10);
}

inline double squareFromDecibels(double decibels, double offset, double resistance) {
    const double amplitude = std::pow(10.0, (decibels - offset) / 20);
    return amplitude * amplitude / resistance;
}

inline double scaledPower(const double* spectrum, double scale, std::size_t i) {
    return scale * (spectrum[2 * i] * spectrum[2 * i] + spectrum[2 * i + 1] * spectrum[2 * i + 1]);
}

/// Returns whether `y` was infinite or NaN.
inline bool averageExponentially(double& y, double& m, double weight, bool useNonFinite) {
    const bool finite = std::isfinite(y);
    if (finite || useNonFinite) {
        m = weight * y + (1 - weight) * m;
    }
    y = m;
    return !finite;
}

inline double holdMaximum(double y, double held) {
    return y < held ? held : y;
}

inline double holdMinimum(double y, double held) {
    return held < y ? held : y;
}

}  // namespace scalar_formulas
