#include "SpectrumMeasurementsUtils.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "VectorMath.h"

namespace dspwavedecks::SpectrumMeasurementsUtils {

namespace {

constexpr double noBias = 0.0;
constexpr double noCeiling = std::numeric_limits<double>::infinity();

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

/// kernel(from, to, n) over the part of the range that lies in both vectors.
template <class Kernel>
void convertRange(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                  Kernel kernel) {
    const std::size_t stop = std::min<std::size_t>({range[1], src.size(), dst.size()});
    if (range[0] < stop) {
        kernel(src.data() + range[0], dst.data() + range[0], stop - range[0]);
    }
}

void divideBy(std::vector<double>& x, double divisor) {
    for (double& value : x) {
        value /= divisor;
    }
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
        for (double& level : x) {
            level -= rbwLevel;
        }
    }
}

void computePSDInWattsFromSpectrum(std::vector<double>& x, const double& rbw, const SpectrumType& type,
                                   const SpectrumUnits& units) {
    if (isdBSpectrumUnits(units)) {
        vectormath::fromDecibels(x.data(), x.data(), x.size(), 0.0);
    }
    if (type == SpectrumType::rms) {
        if (units == SpectrumUnits::dbuv) {
            vectormath::squareFromDecibels(x.data(), x.data(), x.size(), 120.0, 1.0);
        } else if (units == SpectrumUnits::dbv) {
            vectormath::squareFromDecibels(x.data(), x.data(), x.size(), 0.0, 1.0);
        } else {
            for (double& amplitude : x) {
                amplitude *= amplitude;
            }
        }
    }
    if (type == SpectrumType::power) {
        divideBy(x, rbw);
    }
}

bool isdBSpectrumUnits(const SpectrumUnits& units) {
    return units != SpectrumUnits::watts && units != SpectrumUnits::wattsPerHz;
}

void computeSpectrumFromPSD(std::vector<double>& x, const double& rbw, const SpectrumType& type,
                            const SpectrumUnits& units) {
    if (type != SpectrumType::power) {
        divideBy(x, rbw);
    }
    if (isdBSpectrumUnits(units)) {
        vectormath::toDecibels(x.data(), x.data(), x.size(), 0.0, noBias);
    }
    if (type == SpectrumType::rms && units == SpectrumUnits::vrms) {
        vectormath::squareRoots(x.data(), x.data(), x.size());
    } else if (type == SpectrumType::rms && units == SpectrumUnits::dbv) {
        vectormath::rootToDecibels(x.data(), x.data(), x.size(), 1.0, 0.0, noCeiling, noBias);
    }
}

void watts2dB(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
              const double& offset) {
    convertRange(src, dst, range, [offset](const double* from, double* to, std::size_t n) {
        vectormath::toDecibels(from, to, n, offset);
    });
}

void watts2dBFS(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& fullScale) {
    convertRange(src, dst, range, [fullScale](const double* from, double* to, std::size_t n) {
        vectormath::rootToDecibels(from, to, n, fullScale, 0.0, 0.0);
    });
}

void watts2Vrms(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range) {
    convertRange(src, dst, range, vectormath::squareRoots);
}

void watts2dBV(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range) {
    convertRange(src, dst, range, [](const double* from, double* to, std::size_t n) {
        vectormath::rootToDecibels(from, to, n, 1.0, 0.0);
    });
}

void watts2dBuV(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range) {
    convertRange(src, dst, range, [](const double* from, double* to, std::size_t n) {
        vectormath::rootToDecibels(from, to, n, 1.0, 120.0);
    });
}

void dB2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
              const double& offset) {
    convertRange(src, dst, range, [offset](const double* from, double* to, std::size_t n) {
        vectormath::fromDecibels(from, to, n, offset);
    });
}

void vrms2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& resistance) {
    convertRange(src, dst, range, [resistance](const double* from, double* to, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            to[i] = from[i] * from[i] / resistance;
        }
    });
}

void dBV2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
               const double& resistance) {
    convertRange(src, dst, range, [resistance](const double* from, double* to, std::size_t n) {
        vectormath::squareFromDecibels(from, to, n, 0.0, resistance);
    });
}

void dBuV2Watts(const std::vector<double>& src, std::vector<double>& dst, const std::vector<unsigned long>& range,
                const double& resistance) {
    convertRange(src, dst, range, [resistance](const double* from, double* to, std::size_t n) {
        vectormath::squareFromDecibels(from, to, n, 120.0, resistance);
    });
}

}  // namespace dspwavedecks::SpectrumMeasurementsUtils
