#include "PeakFinder.h"

#include <algorithm>
#include <cmath>

namespace dspwavedecks {

namespace {

constexpr std::size_t leastRankedAtOnce = 64;

/// Whether of any two places one lies within the distance of the other exactly if the other lies within that of the
/// one. It fails only for a distance so little below a whole number that place +- distance rounds to that number on one
/// side and not on the other.
bool isDistanceSymmetric(double distance, std::size_t numSamples) {
    const double whole = std::ceil(distance);
    const double roundingMargin = std::numeric_limits<double>::epsilon() * (static_cast<double>(numSamples) + whole);
    return whole == distance || whole - distance > roundingMargin;
}

}  // namespace

PeakFinder::PeakFinder(const double& minHeight, const unsigned long& numPeaks, const double& minDistance,
                       const double& threshold)
    : minHeight(minHeight), numPeaks(numPeaks), minDistance(minDistance), threshold(threshold) {}

const peakFinderStruct& PeakFinder::findPeaks(const double* data, const std::vector<unsigned long>& range,
                                              PeakSelectionPreference preference) {
    result.peaks.clear();
    result.numPeaks = 0;
    result.isNewDataReady = false;
    if (range[1] <= range[0]) {
        return result;
    }
    const std::size_t numSamples = range[1] - range[0];
    collectCandidates(data + range[0], numSamples);
    selectPeaks(preference, isDistanceSymmetric(minDistance, numSamples));
    actualNumPeaks = result.peaks.size();
    result.numPeaks = actualNumPeaks;
    result.isNewDataReady = true;
    return result;
}

void PeakFinder::collectCandidates(const double* x, std::size_t numSamples) {
    // At most every second sample is a maximum; one place more takes the store of a sample that is none.
    maxima.resize(numSamples / 2 + 1);
    std::size_t* ends = maxima.data();
    std::size_t numMaxima = 0;
    std::size_t lastRiseEnd = 0;
    bool rising = false;
    // Without branches: in noise every third sample is a maximum, which no branch predictor foresees.
    for (std::size_t k = 0; k + 1 < numSamples; ++k) {
        const bool rise = x[k + 1] > x[k];
        const bool fall = x[k + 1] < x[k];
        ends[numMaxima] = lastRiseEnd;
        numMaxima += static_cast<std::size_t>(rising & fall);
        lastRiseEnd = rise ? k + 1 : lastRiseEnd;
        rising = rise | (rising & !fall);
    }

    locations.resize(numMaxima + 1);
    candidates.resize(numMaxima + 1);
    std::size_t numCandidates = 0;
    for (std::size_t i = 0; i < numMaxima; ++i) {
        const std::size_t k = ends[i];
        const double value = x[k];
        const double prominence = std::min(value - x[k + 1], value - x[k - 1]);
        locations[numCandidates] = static_cast<double>(k);
        candidates[numCandidates] = {value, numCandidates};
        numCandidates += static_cast<std::size_t>((prominence >= threshold) & (value > minHeight));
    }
    locations.resize(numCandidates);
    candidates.resize(numCandidates);
}

/// Takes candidates from the strongest on; a strong one drops the weaker ones around it, a dropped one drops nothing.
void PeakFinder::selectPeaks(PeakSelectionPreference preference, bool mayStopEarly) {
    if (numPeaks == 0) {
        return;
    }
    const bool isThinning = minDistance != 1.0;
    const bool isInOrder = preference != PeakSelectionLastMaximum && preference != PeakSelectionFirstMaximum;
    suppressed.assign(candidates.size(), 0);
    std::size_t next = candidates.size();
    std::size_t numUnranked = isInOrder ? 0 : candidates.size();
    std::size_t numSurvivors = 0;
    while (next > 0 && !(mayStopEarly && numSurvivors == numPeaks)) {
        if (next == numUnranked) {
            numUnranked = rankNext(preference, numUnranked);
        }
        const std::size_t order = candidates[--next].order;
        if (suppressed[order] == 0) {
            ++numSurvivors;
            if (isThinning) {
                suppressAround(order);
            }
        }
    }
    // A second walk: where distances are not symmetric, a weaker candidate may have dropped a stronger one.
    for (std::size_t i = candidates.size(); i > next && result.peaks.size() < numPeaks; --i) {
        const Candidate& candidate = candidates[i - 1];
        if (suppressed[candidate.order] == 0) {
            result.peaks.push_back({candidate.value, locations[candidate.order]});
        }
    }
}

/// Puts the strongest of the first numUnranked candidates, as many as are ranked already, at their end in their final
/// order, and returns how many are left. A few peaks of many candidates so cost a linear selection and not a sort.
std::size_t PeakFinder::rankNext(PeakSelectionPreference preference, std::size_t numUnranked) {
    const bool laterWins = preference == PeakSelectionLastMaximum;
    const auto isWeaker = [laterWins](const Candidate& a, const Candidate& b) {
        return a.value < b.value || (a.value == b.value && (laterWins ? a.order < b.order : a.order > b.order));
    };
    const std::size_t numRanked = candidates.size() - numUnranked;
    const std::size_t count = std::min(numUnranked, std::max(leastRankedAtOnce, numRanked));
    const auto begin = candidates.begin();
    const auto first = begin + static_cast<std::ptrdiff_t>(numUnranked - count);
    const auto last = begin + static_cast<std::ptrdiff_t>(numUnranked);
    if (first != begin) {
        std::nth_element(begin, first, last, isWeaker);
    }
    std::sort(first, last, isWeaker);
    return numUnranked - count;
}

/// Drops all candidates from location - minDistance to location + minDistance, both included, but the one itself.
void PeakFinder::suppressAround(std::size_t order) {
    const double lowest = locations[order] - minDistance;
    const double highest = locations[order] + minDistance;
    for (std::size_t i = order; i > 0 && locations[i - 1] >= lowest; --i) {
        suppressed[i - 1] = 1;
    }
    for (std::size_t i = order + 1; i < locations.size() && locations[i] <= highest; ++i) {
        suppressed[i] = 1;
    }
}

}  // namespace dspwavedecks
