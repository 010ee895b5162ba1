#include "DistortionMeasurements.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "FirstLargest.h"
#include "PositiveMedian.h"
#include "SpectrumMeasurementsUtils.h"

namespace dspwavedecks {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Beyond this share of wiped bins nothing is left to judge the noise by.
constexpr double mostCleared = 0.7;

double toLevel(double power) {
    return 10.0 * std::log10(power);
}

}  // namespace

const distortionStruct& DistortionMeasurements::computeDistortion(const double* freq, const double* spectrum,
                                                                  const std::vector<unsigned long>& range) {
    SpectrumMeasurementsUtils::computeOneSidedFrequencyAndSpectrumInRange(freq, spectrum, range, frequencies, psd,
                                                                          frequencyOffset);
    SpectrumMeasurementsUtils::computePSDInWattsFromSpectrum(psd, rbw, spectrumType, spectrumUnits);
    hills.reset();
    if (type == Type::harmonic) {
        computeHarmonicDistortion();
    } else {
        computeImodDistortion();
    }
    results.type = type;
    results.isNewDataReady = true;
    return results;
}

// An order that this spectrum has no bin for keeps the entry of an earlier spectrum, and that entry goes through all
// steps with the others: it stands among the components that the spurious-free range is measured against, and is
// converted to the displayed unit once more. Both are meant; clients read only the first numHarmonics entries.
void DistortionMeasurements::computeHarmonicDistortion() {
    // No grid holds more harmonics than bins: a wrong count must not ask for the memory of as many.
    const std::size_t mostHarmonics = std::min<std::size_t>(numHarmonics, std::max<std::size_t>(psd.size(), 1000));
    results.harmonicFrequency.resize(mostHarmonics, nan);
    results.harmonicPower.resize(mostHarmonics, nan);
    results.numHarmonics = 0;
    if (!isMeasurable()) {
        markUnmeasurable();
        return;
    }
    numCleared = 0;
    if (const auto zeroFrequency = findBin(0.0)) {
        clearZeroFrequency(*zeroFrequency);
    }
    const auto strongest = static_cast<std::size_t>(computeMaxFrequency());
    const double fundamental = takeTone(strongest, 0);
    unsigned long numFound = 1;
    double harmonics = 0.0;
    for (unsigned long order = 2; order <= mostHarmonics; ++order) {
        if (const auto index = findBin(fundamentalFrequency * static_cast<double>(order))) {
            harmonics += takeTone(strongestAbout(*index), order - 1);
            ++numFound;
        }
    }

    const double remaining = std::reduce(psd.begin(), psd.end(), 0.0);
    double strongestSpur = psd[firstLargest(psd.data(), psd.size())] * rbw;
    for (std::size_t entry = 1; entry < results.harmonicPower.size(); ++entry) {
        if (results.harmonicPower[entry] > strongestSpur) {
            strongestSpur = results.harmonicPower[entry];
        }
    }
    const auto cleared = static_cast<double>(numCleared);
    double noise = binWidth() * remaining + binWidth() * cleared * medianOfPositive(psd.data(), psd.size(), selection);
    if (mostCleared * static_cast<double>(psd.size()) < cleared) {
        noise = nan;
    }

    results.thd = toLevel(harmonics / fundamental);
    results.thdPercent = std::pow(10.0, results.thd / 20.0) * 100.0;
    results.snr = toLevel(fundamental / noise);
    results.sinad = toLevel(fundamental / (harmonics + noise));
    results.sfdr = toLevel(fundamental / strongestSpur);
    SpectrumMeasurementsUtils::computeSpectrumFromPSD(results.harmonicPower, rbw, spectrumType, spectrumUnits);
    results.numHarmonics = std::min<std::size_t>(numFound, mostHarmonics);
}

void DistortionMeasurements::computeImodDistortion() {
    results.harmonicPower.resize(4, nan);
    results.harmonicFrequency.resize(4, nan);
    results.numHarmonics = 4;
    if (!isMeasurable()) {
        markUnmeasurable();
        return;
    }
    clearZeroFrequency(findBin(0.0).value_or(0));
    takeTone(static_cast<std::size_t>(computeMaxFrequency()), 0);
    const double first = fundamentalFrequency;
    takeTone(static_cast<std::size_t>(computeMaxFrequency()), 1);
    const double second = fundamentalFrequency;
    const auto lower = findBin(2.0 * first - second);
    if (lower) {
        takeTone(strongestAbout(*lower), 2);
    }
    // An upper product outside the grid is looked for about the lower one, where only leftovers are: meant so.
    const auto upper = findBin(2.0 * second - first);
    if (upper || lower) {
        takeTone(strongestAbout(upper ? *upper : *lower), 3);
    }
    SpectrumMeasurementsUtils::computeSpectrumFromPSD(results.harmonicPower, rbw, spectrumType, spectrumUnits);
    const std::vector<double>& level = results.harmonicPower;
    results.toi = ((level[0] + (level[1] - level[2]) / 2.0) + (level[1] + (level[0] - level[3]) / 2.0)) / 2.0;
}

/// Powers in a bandwidth that is no number tell nothing.
bool DistortionMeasurements::isMeasurable() const {
    return psd.size() >= 2 && std::isfinite(rbw);
}

/// NaN for every figure of the current type.
void DistortionMeasurements::markUnmeasurable() {
    std::fill(results.harmonicPower.begin(), results.harmonicPower.end(), nan);
    std::fill(results.harmonicFrequency.begin(), results.harmonicFrequency.end(), nan);
    if (type == Type::harmonic) {
        results.thd = results.thdPercent = results.snr = results.sinad = results.sfdr = nan;
    } else {
        results.toi = nan;
    }
}

int DistortionMeasurements::clearLocalPeak(const int& index) {
    if (index < 0 || static_cast<std::size_t>(index) >= psd.size()) {
        return 0;
    }
    return static_cast<int>(hills.clear(psd, static_cast<std::size_t>(index)));
}

int DistortionMeasurements::computeMaxFrequency() {
    const std::size_t n = psd.size();
    const std::size_t strongest = firstLargest(psd.data(), n);
    const double binsPerRBW = n < 2 ? nan : std::ceil(rbw / binWidth());
    fundamentalFrequency = nan;
    if (std::isfinite(binsPerRBW)) {
        const auto halfWidth = static_cast<std::size_t>(std::clamp(binsPerRBW, 1.0, static_cast<double>(n)));
        const std::size_t first = strongest < halfWidth + 2 ? 1 : strongest - halfWidth;
        const std::size_t last = std::min(strongest + halfWidth, n - 1);
        double weighted = 0.0;
        double sum = 0.0;
        for (std::size_t k = first; k <= last; ++k) {
            weighted += frequencies[k] * psd[k];
            sum += psd[k];
        }
        fundamentalFrequency = weighted / sum;
    }
    return static_cast<int>(strongest);
}

/// The bin whose frequency lies less than half a bin from the one told.
std::optional<std::size_t> DistortionMeasurements::findBin(double frequency) const {
    const double halfBin = binWidth() / 2.0;
    const auto found = std::partition_point(frequencies.begin(), frequencies.end(),
                                            [=](double f) { return f - frequency <= -halfBin; });
    if (found == frequencies.end() || !(std::abs(*found - frequency) < halfBin)) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - frequencies.begin());
}

/// The strongest of a bin and its neighbours, bin 0 left out.
std::size_t DistortionMeasurements::strongestAbout(std::size_t index) const {
    const std::size_t first = std::max<std::size_t>(index, 2) - 1;
    const std::size_t last = std::min(psd.size() - 1, index + 1);
    return first + firstLargest(psd.data() + first, last - first + 1);
}

void DistortionMeasurements::clearZeroFrequency(std::size_t index) {
    if (!twoSidedSpectrum) {
        psd[index] *= 2.0;
    }
    numCleared += hills.clear(psd, index);
}

/// Stores the tone at a bin as an entry of the result, if that has one, and wipes it. Returns its power.
double DistortionMeasurements::takeTone(std::size_t index, std::size_t entry) {
    const double power = psd[index] * rbw;
    if (entry < results.harmonicPower.size()) {
        results.harmonicPower[entry] = power;
        results.harmonicFrequency[entry] = frequencies[index];
    }
    numCleared += hills.clear(psd, index);
    return power;
}

}  // namespace dspwavedecks
