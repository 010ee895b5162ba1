#include "PeakFinder.h"

#include <algorithm>
#include <cmath>

namespace dspwavedecks {

namespace {

constexpr std::size_t leastRankedAtOnce = 32;
/// Where those ranked first do not suffice, so many times as many follow: a few rounds, should all of them be needed.
constexpr std::size_t rankedGrowth = 8;
/// Fewer candidates than so many times those wanted are sorted as they are.
constexpr std::size_t fewGroups = 4;

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

/// A value that at least `wanted` of the first numUnranked candidates reach, and not many more: of twice as many groups
/// of neighbours, the strongest of each, it is the one in the middle. That costs one foreseeable pass, where a
/// selection among all candidates mispredicts at every second one.
double PeakFinder::boundOfStrongest(std::size_t numUnranked, std::size_t wanted) {
    const std::size_t groupSize = numUnranked / (2 * wanted);
    groupMaxima.clear();
    for (std::size_t first = 0; first + groupSize <= numUnranked; first += groupSize) {
        double largest = candidates[first].value;
        for (std::size_t i = first + 1; i < first + groupSize; ++i) {
            largest = std::max(largest, candidates[i].value);
        }
        groupMaxima.push_back(largest);
    }
    const auto place = groupMaxima.end() - static_cast<std::ptrdiff_t>(wanted);
    std::nth_element(groupMaxima.begin(), place, groupMaxima.end());
    return *place;
}

/// Puts the strongest of the first numUnranked candidates, a number that grows from call to call, behind the others in
/// their final order, and returns how many are left. A few peaks of many candidates so cost no sort.
std::size_t PeakFinder::rankNext(PeakSelectionPreference preference, std::size_t numUnranked) {
    const bool laterWins = preference == PeakSelectionLastMaximum;
    const std::size_t wanted = std::max(leastRankedAtOnce, rankedGrowth * (candidates.size() - numUnranked));
    const auto last = candidates.begin() + static_cast<std::ptrdiff_t>(numUnranked);
    auto first = candidates.begin();
    if (numUnranked > fewGroups * wanted) {
        const double bound = boundOfStrongest(numUnranked, wanted);
        first = std::partition(first, last, [bound](const Candidate& candidate) { return candidate.value < bound; });
    }
    std::sort(first, last, [laterWins](const Candidate& a, const Candidate& b) {
        return a.value < b.value || (a.value == b.value && (laterWins ? a.order < b.order : a.order > b.order));
    });
    return static_cast<std::size_t>(first - candidates.begin());
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
