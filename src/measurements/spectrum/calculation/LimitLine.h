#pragma once

#include <vector>

namespace dspwavedecks {

/// A limit line: straight pieces between breakpoints in frequency and level, undefined (NaN) outside of them.
class LimitLine {
public:
    /// mask             2 n numbers: n frequencies in Hz, then n levels; of an odd count the last is ignored.
    ///                  One number alone is a level that holds between the limits; none at all is no line.
    /// frequencyLimits  the two ends of a line of one level, Hz
    /// frequencyOffset  added to the frequencies of the breakpoints, Hz
    /// Two breakpoints of one frequency are a vertical step.
    LimitLine(const std::vector<double>& mask, const std::vector<double>& frequencyLimits, double frequencyOffset);

    /// Level of the line at a frequency; NaN outside. On a step it is that of the piece below.
    double levelAt(double frequency) const;

private:
    std::vector<double> x;  // Hz
    std::vector<double> y;  // levels
    bool isAscending = true;
};

}  // namespace dspwavedecks
