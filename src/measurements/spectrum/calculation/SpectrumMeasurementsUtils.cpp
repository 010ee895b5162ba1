#include "SpectrumMeasurementsUtils.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace dspwavedecks::SpectrumMeasurementsUtils {

namespace {

constexpr double smallestPower = std::numeric_limits<double>::denorm_min();

double squared(double x) {
    return x * x;
}

double powerOfTen(double exponent) {
    return std::pow(10.0, exponent);
}

/// The first bin whose frequency is not negative after the offset: 0 for a grid that begins there, n if there is none.
std::size_t firstNonNegativeBin(const double* freq, std::size_t n, double frequencyOffset) {
    if (n == 0 || !(freq[0] + frequencyOffset < 0.0)) {
        return 0;
    }
    const auto found = std::find_if(freq, freq + n, [frequencyOffset](double f) { return f + frequencyOffset >= 0.0; });
    return static_cast<std::size_t>(found - freq);
}

void copyGrid(const double* begin, const double* end, std::vector<double>& out, double frequencyOffset) {
    out.assign(begin, end);
    if (frequencyOffset != 0.0) {
        for (double& f : out) {
            f += frequencyOffset;
        }
    }
}

/// dst[i] = convert(src[i]) over the part of the range that lies in both vectors.
template <class Convert>
void convertRange(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                  Convert convert) {
    const std::size_t stop = std::min<std::size_t>({range[1], src.size(), dst.size()});
    const double* from = src.data();
    double* to = dst.data();
    for (std::size_t i = range[0]; i < stop; ++i) {
        to[i] = convert(from[i]);
    }
}

template <class Convert>
void convertAll(std::vector<double>& x, Convert convert) {
    convertRange(x, x, {0, x.size()}, convert);
}

}  // namespace

void computeOneSidedFrequencyAndSpectrumInRange(const double* freq, const double* spectrum,
                                                const std::vector<unsigned long>& range, std::vector<double>& outFreq,
                                                std::vector<double>& outSpectrum, const double& frequencyOffset) {
    const std::size_t n = range[1] > range[0] ? range[1] - range[0] : 0;
    const std::size_t s = firstNonNegativeBin(freq, n, frequencyOffset);
    copyGrid(freq + s, freq + n, outFreq, frequencyOffset);
    outSpectrum.assign(spectrum + range[0] + s, spectrum + range[0] + n);
}

void computeOneSidedFrequencyAndSpectrum(const double* freq, const double* spectrum,
                                         const unsigned long& numFrequencies, const unsigned long& numChannels,
                                         std::vector<double>& outFreq, std::vector<double>& outSpectrum,
                                         const double& frequencyOffset) {
    const std::size_t n = numFrequencies;
    const std::size_t s = firstNonNegativeBin(freq, n, frequencyOffset);
    copyGrid(freq + s, freq + n, outFreq, frequencyOffset);
    outSpectrum.resize((n - s) * numChannels);
    double* next = outSpectrum.data();
    for (std::size_t block = 1; block <= numChannels; ++block) {
        next = std::copy(spectrum + n * block + s, spectrum + n * (block + 1), next);
    }
}

void computePSDFromSpectrum(std::vector<double>& x, const double& rbw, const SpectrumType& type,
                            const SpectrumUnits& /*units*/) {
    if (type == SpectrumType::power) {
        const double rbwLevel = 10.0 * std::log10(rbw);
        convertAll(x, [rbwLevel](double level) { return level - rbwLevel; });
    }
}

void computePSDInWattsFromSpectrum(std::vector<double>& x, const double& rbw, const SpectrumType& type,
                                   const SpectrumUnits& units) {
    if (isdBSpectrumUnits(units)) {
        convertAll(x, [](double level) { return powerOfTen(level / 10.0); });
    }
    if (type == SpectrumType::rms) {
        if (units == SpectrumUnits::dbuv) {
            convertAll(x, [](double level) { return squared(powerOfTen((level - 120.0) / 20.0)); });
        } else if (units == SpectrumUnits::dbv) {
            convertAll(x, [](double level) { return squared(powerOfTen(level / 20.0)); });
        } else {
            convertAll(x, squared);
        }
    }
    if (type == SpectrumType::power) {
        convertAll(x, [rbw](double power) { return power / rbw; });
    }
}

bool isdBSpectrumUnits(const SpectrumUnits& units) {
    return units != SpectrumUnits::watts && units != SpectrumUnits::wattsPerHz;
}

void computeSpectrumFromPSD(std::vector<double>& x, const double& rbw, const SpectrumType& type,
                            const SpectrumUnits& units) {
    if (type != SpectrumType::power) {
        convertAll(x, [rbw](double power) { return power / rbw; });
    }
    if (isdBSpectrumUnits(units)) {
        convertAll(x, [](double power) { return 10.0 * std::log10(power); });
    }
    if (type == SpectrumType::rms && units == SpectrumUnits::vrms) {
        convertAll(x, [](double power) { return std::sqrt(power); });
    } else if (type == SpectrumType::rms && units == SpectrumUnits::dbv) {
        convertAll(x, [](double power) { return 20.0 * std::log10(std::sqrt(power)); });
    }
}

void watts2dB(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
              const double& offset) {
    convertRange(src, dst, range, [offset](double power) { return offset + 10.0 * std::log10(power + smallestPower); });
}

void watts2dBFS(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& fullScale) {
    convertRange(src, dst, range, [fullScale](double power) {
        // In this order the minimum lets a NaN through.
        return std::min(20.0 * std::log10(std::sqrt(power) / fullScale + smallestPower), 0.0);
    });
}

void watts2Vrms(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range) {
    convertRange(src, dst, range, [](double power) { return std::sqrt(power); });
}

void watts2dBV(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range) {
    convertRange(src, dst, range, [](double power) { return 20.0 * std::log10(std::sqrt(power) + smallestPower); });
}

void watts2dBuV(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range) {
    convertRange(src, dst, range,
                 [](double power) { return 20.0 * std::log10(std::sqrt(power) + smallestPower) + 120.0; });
}

void dB2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
              const double& offset) {
    convertRange(src, dst, range, [offset](double level) { return powerOfTen((level - offset) / 10.0); });
}

void vrms2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& resistance) {
    convertRange(src, dst, range, [resistance](double volts) { return squared(volts) / resistance; });
}

void dBV2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
               const double& resistance) {
    convertRange(src, dst, range,
                 [resistance](double level) { return squared(powerOfTen(level / 20.0)) / resistance; });
}

void dBuV2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& resistance) {
    convertRange(src, dst, range,
                 [resistance](double level) { return squared(powerOfTen((level - 120.0) / 20.0)) / resistance; });
}

}  // namespace dspwavedecks::SpectrumMeasurementsUtils
