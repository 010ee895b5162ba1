#include "UnitCirclePoint.h"

#include <cmath>
#include <complex>

namespace dspwavedecks {

namespace {

using Extended = long double;

/// An angle on the circle: `quarters` quarter turns and at most half of one more.
struct Angle {
    int quarters;
    Extended radians;
};

/// 2 * pi * frequency / sampleRate. It is formed in turns, of which whole ones drop out exactly, so that it is as good
/// at high frequencies as at low ones; NaN for a frequency or rate that gives no angle.
Angle angleOf(double frequency, double sampleRate) {
    constexpr Extended twoPi = 6.283185307179586476925286766559006L;
    Extended turns = static_cast<Extended>(frequency) / static_cast<Extended>(sampleRate);
    turns -= std::rint(turns);
    const Extended quarters = std::rint(4 * turns);
    return {std::isnan(quarters) ? 0 : static_cast<int>(quarters), twoPi * (turns - quarters / 4)};
}

/// exp(j * angle) for a point at the angle `radians` behind the quarter turns.
template <typename Real>
std::complex<Real> turnByQuarters(std::complex<Real> point, int quarters) {
    switch (quarters) {
        case 1:
            return {-point.imag(), point.real()};
        case -1:
            return {point.imag(), -point.real()};
        case 0:
            return point;
        default:
            return -point;
    }
}

}  // namespace

std::complex<Extended> pointOnUnitCircle(double frequency, double sampleRate) {
    const Angle angle = angleOf(frequency, sampleRate);
    return turnByQuarters(std::complex<Extended>(std::cos(angle.radians), std::sin(angle.radians)), angle.quarters);
}

std::complex<double> roundedPointOnUnitCircle(double frequency, double sampleRate) {
    const Angle angle = angleOf(frequency, sampleRate);
    const auto x = static_cast<double>(angle.radians);
    const auto rest = static_cast<double>(angle.radians - static_cast<Extended>(x));
    const double y = x * x;
    // Series of sine and cosine for up to an eighth of a turn: the first term left out is below 2e-18.
    double sine = 1.0 / 355687428096000.0;
    for (const double factorial : {-1307674368000.0, 6227020800.0, -39916800.0, 362880.0, -5040.0, 120.0, -6.0}) {
        sine = sine * y + 1.0 / factorial;
    }
    double cosine = 1.0 / 20922789888000.0;
    for (const double factorial : {-87178291200.0, 479001600.0, -3628800.0, 40320.0, -720.0, 24.0}) {
        cosine = cosine * y + 1.0 / factorial;
    }
    const double head = 1.0 - 0.5 * y;
    const std::complex<double> point(head + (((1.0 - head) - 0.5 * y) + (y * y * cosine - x * rest)),
                                     x + (x * y * sine + rest * head));
    return turnByQuarters(point, angle.quarters);
}

}  // namespace dspwavedecks
