#pragma once

#include <vector>

namespace dspwavedecks {

/// Frequency response of digital filters on a linear grid of frequencies, by direct evaluation of the polynomials on
/// the unit circle.
///
///   h(f) = B(f) / A(f),  B(f) = sum over m of b[m] * exp(-j * 2 * pi * m * f / sampleRate),  A likewise
///
/// Coefficient lists hold one list a signal, in ascending powers of the delay: b[0] + b[1] z^-1 + ...
/// A response is laid out as N frequencies, N real parts, N imaginary parts.
class DigitalFilterFrequencyResponse {
public:
    /// Number of frequencies N. No transform is made: the grid may have any length.
    void setFFTLength(const unsigned long& length);
    /// Hz.
    void setSampleRate(const double& rate);
    /// First and last frequency of the grid, Hz.
    void setFrequencyRange(const std::vector<double>& range);
    /// [N] Hz, as of the last computeFrequencyVector().
    [[nodiscard]] const std::vector<double>& getFrequencyVector() const { return frequencyVector; }

    /// N points evenly spaced over the range, both ends included and exact; the last end for N = 1. All points are NaN
    /// when the range has no two ends.
    void computeFrequencyVector();

    /// Grid and response of signal 0. With exactly one denominator coefficient the response is that of the numerator
    /// alone: the single coefficient is taken as 1, whatever it is.
    /// numerators, denominators  one list a signal; without a numerator coefficient of signal 0 nothing happens
    /// out                       sized to 3 * N
    void freqz(std::vector<std::vector<double>>& numerators, std::vector<std::vector<double>>& denominators,
               std::vector<double>& out);

    /// Response of a signal's numerator on the grid at hand; the denominator is taken as 1. The error is at most
    /// 1e-12 of the largest magnitude for 4096 coefficients.
    /// out  sized to 3 * N; the frequencies at its head are left alone
    void firfreqz(std::vector<std::vector<double>>& numerators, std::vector<std::vector<double>>& denominators,
                  const unsigned long& signal, std::vector<double>& out);

    /// Response of a signal's numerator over its denominator on the grid at hand. The shorter list is padded with
    /// zeros to the length of the longer. At a zero of the denominator the quotient is infinite or NaN.
    /// out  as for firfreqz
    void iirfreqz(std::vector<std::vector<double>>& numerators, std::vector<std::vector<double>>& denominators,
                  const unsigned long& signal, std::vector<double>& out);

private:
    void computeUnitCircle();

    // Options.
    unsigned long fftLength = 2048;
    double sampleRate = 44100.0;
    std::vector<double> frequencyRange{0.0, 22050.0};

    // Derived.
    std::vector<double> frequencyVector;
    std::vector<double> unitCircleReal;  ///< [N] cos(2 * pi * f / sampleRate)
    std::vector<double> unitCircleImag;  ///< [N] sin(2 * pi * f / sampleRate)
    bool isGridStale = true;             ///< an option of the grid has changed since it was computed
};

}  // namespace dspwavedecks
