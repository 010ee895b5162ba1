#include "PeakFinder.h"

#include <algorithm>
#include <cmath>

#include "SpectrumKernels.h"

namespace dspwavedecks {

namespace {

constexpr std::size_t leastRankedAtOnce = 32;
/// Where those ranked first do not suffice, so many times as many follow: a few rounds, should all of them be needed.
constexpr std::size_t rankedGrowth = 8;
/// Fewer candidates than so many times those wanted are sorted as they are.
constexpr std::size_t fewGroups = 4;

/// Samples are looked at in blocks of at least this length, of which there are about so many at most, and so many for
/// each peak wanted at least.
constexpr std::size_t leastBlockLength = 16;
constexpr std::size_t mostBlocks = 2048;
constexpr std::size_t blocksAPeak = 8;

/// Whether of any two places one lies within the distance of the other exactly if the other lies within that of the
/// one. It fails only for a distance so little below a whole number that place +- distance rounds to that number on one
/// side and not on the other.
bool isDistanceSymmetric(double distance, std::size_t numSamples) {
    const double whole = std::ceil(distance);
    const double roundingMargin = std::numeric_limits<double>::epsilon() * (static_cast<double>(numSamples) + whole);
    return whole == distance || whole - distance > roundingMargin;
}

bool isRankedByValue(PeakSelectionPreference preference) {
    return preference == PeakSelectionLastMaximum || preference == PeakSelectionFirstMaximum;
}

/// The value that `rank` of the values reach, counted from 1; reorders them.
double largestOfRank(std::vector<double>& values, std::size_t rank) {
    const auto place = values.end() - static_cast<std::ptrdiff_t>(rank);
    std::nth_element(values.begin(), place, values.end());
    return *place;
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
    const double* const x = data + range[0];
    const bool mayStopEarly = isDistanceSymmetric(minDistance, numSamples);
    if (!mayStopEarly || !isRankedByValue(preference) || !findAmongStrongest(x, numSamples, preference)) {
        result.peaks.clear();
        collectCandidates(x, numSamples);
        selectPeaks(preference, mayStopEarly);
    }
    actualNumPeaks = result.peaks.size();
    result.numPeaks = actualNumPeaks;
    result.isNewDataReady = true;
    return result;
}

/// Searches the blocks that hold the strongest samples, a few percent of all. True if what was found is what a search
/// of the whole would find: as many peaks as are wanted, to which weaker candidates change nothing, or all of those
/// that are high enough.
bool PeakFinder::findAmongStrongest(const double* x, std::size_t numSamples, PeakSelectionPreference preference) {
    const std::size_t blockLength = std::max(leastBlockLength, numSamples / mostBlocks);
    const std::size_t numBlocks = numSamples / blockLength;
    if (numPeaks > numBlocks / blocksAPeak || numBlocks < blocksAPeak * leastRankedAtOnce) {
        return false;
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    blockMaxima.resize(numBlocks);
    for (std::size_t block = 0; block < numBlocks; ++block) {
        blockMaxima[block] = spectrumKernels().largestAbove(x + block * blockLength, blockLength, -infinity);
    }
    groupMaxima = blockMaxima;
    const double bound = largestOfRank(groupMaxima, std::max<std::size_t>(leastRankedAtOnce, 2 * numPeaks));
    if (bound == -infinity) {
        return false;
    }
    locations.clear();
    candidates.clear();
    for (std::size_t block = 0; block < numBlocks; ++block) {
        if (blockMaxima[block] >= bound) {
            collectStrong(x, numSamples, bound, block * blockLength, (block + 1) * blockLength);
        }
    }
    collectStrong(x, numSamples, bound, numBlocks * blockLength, numSamples);
    selectPeaks(preference, true);
    return result.peaks.size() == numPeaks || minHeight >= bound;
}

/// Appends the candidates from `first` up to `stop` that reach the bound.
void PeakFinder::collectStrong(const double* x, std::size_t numSamples, double bound, std::size_t first,
                               std::size_t stop) {
    for (std::size_t k = std::max<std::size_t>(first, 1); k < stop && k + 1 < numSamples; ++k) {
        if (x[k] >= bound && x[k] > x[k - 1] && x[k] > minHeight) {
            std::size_t next = k + 1;
            while (next < numSamples && !(x[next] > x[next - 1]) && !(x[next] < x[next - 1])) {
                ++next;
            }
            const bool falls = next < numSamples && x[next] < x[next - 1];
            if (falls && std::min(x[k] - x[k + 1], x[k] - x[k - 1]) >= threshold) {
                locations.push_back(static_cast<double>(k));
                candidates.push_back({x[k], candidates.size()});
            }
        }
    }
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
    suppressed.assign(candidates.size(), 0);
    std::size_t next = candidates.size();
    std::size_t numUnranked = isRankedByValue(preference) ? candidates.size() : 0;
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
    return largestOfRank(groupMaxima, wanted);
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
