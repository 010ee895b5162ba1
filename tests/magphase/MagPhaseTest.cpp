#include "MagPhase.h"

#include "Test.h"

namespace {

TEST(MagPhase, realSamples) {
    // Squares of 1e200 and 1e-200 would leave the range of doubles: the magnitude is exact all the same.
    const Values in = {10, 11, 12,   13,    14,  // times
                       -2, 0,  -0.0, 1e200, -1e-200, infinity, -infinity, nan, 5e-324, 3};
    MagPhase magPhase(2, false);
    Values out(25, 99.0);
    magPhase.computeMagPhase(in.data(), out, 5);
    const Values expected = {10,  11, 12, 13,    14,                                          // times
                             2,   0,  0,  1e200, 1e-200, infinity, infinity, nan, 5e-324, 3,  // magnitudes
                             180, 0,  0,  0,     180,    0,        180,      nan, 0,      0};
    expectValues(out, expected);
}

TEST(MagPhase, complexSamples) {
    // Two channels of three points: real parts of both, then imaginary parts of both.
    const Values in = {0, 1, 2, /* re */ 0, 3, -1, -5, 0, -2, /* im */ 1, 4, 0, -0.0, 0, 2};
    MagPhase magPhase;
    magPhase.setNumChannels(4);
    magPhase.setIsInputComplex(true);
    Values out(15);
    magPhase.computeMagPhase(in.data(), out, 3);
    const double degrees = std::atan(4.0 / 3.0) * 57.295779513082320877;
    const Values expected = {0, 1, 2, 1, 5, 1, 5, 0, std::sqrt(8.0), 90, degrees, 180, -180, 0, 135};
    expectValues(out, expected, 1e-13);
}

}  // namespace
