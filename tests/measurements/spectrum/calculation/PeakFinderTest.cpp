#include "PeakFinder.h"

#include "Test.h"

namespace {

using Peak = peakFinderStruct::Peak;

Values locations(const peakFinderStruct& found) {
    Values result;
    for (const Peak& peak : found.peaks) {
        result.push_back(peak.location);
    }
    return result;
}

/// The definition at full length, one step after the other: trends, candidates, a full sort, bits over all pairs.
Values slowLocations(const Values& x, const PeakFinder& settings, PeakSelectionPreference preference) {
    const std::size_t pairs = x.empty() ? 0 : x.size() - 1;
    std::vector<int> trend(pairs + 1, 0);
    for (std::size_t k = pairs; k-- > 0;) {
        const double step = x[k + 1] - x[k];
        trend[k] = step > 0 ? 1 : step < 0 ? -1 : trend[k + 1] < 0 ? -1 : 1;
    }
    std::vector<Peak> candidates;
    for (std::size_t k = 1; k < pairs; ++k) {
        const double prominence = std::min(x[k] - x[k + 1], x[k] - x[k - 1]);
        if (trend[k] - trend[k - 1] == -2 && prominence >= settings.getThreshold() && x[k] > settings.getMinHeight()) {
            candidates.push_back({x[k], static_cast<double>(k)});
        }
    }
    if (preference == PeakSelectionFirstMaximum) {
        std::reverse(candidates.begin(), candidates.end());
    }
    if (preference == PeakSelectionFirstMaximum || preference == PeakSelectionLastMaximum) {
        std::stable_sort(candidates.begin(), candidates.end(),
                         [](const Peak& a, const Peak& b) { return a.value < b.value; });
    }
    std::vector<bool> bits(candidates.size(), false);
    for (std::size_t i = candidates.size(); i-- > 0 && settings.getMinDistance() != 1.0;) {
        if (!bits[i]) {
            for (std::size_t j = 0; j < candidates.size(); ++j) {
                if (candidates[j].location >= candidates[i].location - settings.getMinDistance() &&
                    candidates[j].location <= candidates[i].location + settings.getMinDistance()) {
                    bits[j] = true;
                }
            }
            bits[i] = false;
        }
    }
    Values result;
    for (std::size_t i = candidates.size(); i-- > 0 && result.size() < settings.getNumPeaks();) {
        if (!bits[i]) {
            result.push_back(candidates[i].location);
        }
    }
    return result;
}

TEST(PeakFinder, LeavesAnEmptyOrCrossedRangeAlone) {
    const Values x{1, 3, 2};
    PeakFinder finder;
    finder.findPeaks(x.data(), {0, 3}, PeakSelectionLastMaximum);
    for (const std::vector<unsigned long>& range : {std::vector<unsigned long>{2, 2}, {2, 0}}) {
        const auto found = finder.findPeaks(x.data(), range, PeakSelectionLastMaximum);
        EXPECT_FALSE(found.isNewDataReady);
        EXPECT_TRUE(found.peaks.empty());
        EXPECT_EQ(finder.getActualNumPeaks(), 1u);
    }
}

// Short stretches of few levels, with ties and plateaus, and distances of which the last round differently to the left
// and to the right; now and then a long one, noise on slow hills, for the search of the strongest blocks alone: now
// that finds all that is wanted, now thinning or a height leaves too few there.
TEST(PeakFinder, AgreesWithTheDefinitionAtFullLength) {
    std::mt19937 random(7);
    const auto draw = [&random](unsigned below) { return static_cast<unsigned>(random() % below); };
    const Values distances{1, 3, 100, 700, 0, 2.5, infinity, -3, nan, std::nextafter(3, 0), std::nextafter(8, 0)};
    for (int round = 0; round < 2000; ++round) {
        const bool isLong = round % 25 == 0;
        Values x(isLong ? 4000 + draw(4000) : draw(300));
        const unsigned levels = 2 + draw(isLong ? 5000 : 40);
        const double hills = isLong ? draw(4) : 0;
        for (std::size_t k = 0; k < x.size(); ++k) {
            const bool isOdd = draw(isLong ? 4000 : 25) == 0;
            const double level = 2000 * std::sin(hills * static_cast<double>(k) / 500) + draw(levels);
            x[k] = !isOdd ? level : draw(2) ? nan : infinity;
        }
        PeakFinder finder(draw(2) ? -infinity : draw(levels), draw(isLong ? 30 : 200), distances[draw(isLong ? 4 : 11)],
                          draw(3));
        const auto preference = static_cast<PeakSelectionPreference>(draw(3));
        const Values padded = joined({{9, 8}, x});  // ahead of the range
        const auto found = finder.findPeaks(padded.data(), {2, padded.size()}, preference);
        ASSERT_EQ(locations(found), slowLocations(x, finder, preference)) << "round " << round;
        ASSERT_EQ(found.numPeaks, found.peaks.size());
        ASSERT_EQ(finder.getActualNumPeaks(), x.empty() ? 0 : found.peaks.size());
        ASSERT_EQ(found.isNewDataReady, !x.empty());
    }
}

/// The samples that reference/peaks.py measured, exact in double precision.
Values referenceNoise(int count) {
    Values x;
    std::minstd_rand sequence(1);
    for (int i = 0; i < count; ++i) {
        x.push_back(static_cast<double>(sequence()) / 2147483647);
    }
    return x;
}

TEST(PeakFinder, AgreesWithAnIndependentImplementation) {
    const Values x = referenceNoise(4000);
    Values steps;
    for (std::size_t i = 3; i < 900; ++i) {
        steps.push_back(std::floor(4 * (x[i - 3] + x[i - 2] + x[i - 1] + x[i])));
    }
    std::ifstream file(PEAKS_REFERENCE);
    std::string line;
    std::getline(file, line);
    std::istringstream plateaus(line);
    Values found = locations(
        PeakFinder(-infinity, x.size(), 1, 0).findPeaks(steps.data(), {0, steps.size()}, PeakSelectionLastMaximum));
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, Values(std::istream_iterator<double>(plateaus), {}));

    int rows = 0;
    for (; std::getline(file, line); ++rows) {
        std::istringstream row(line);
        double minHeight = 0, minDistance = 0, threshold = 0;
        unsigned long numPeaks = 0;
        row >> minHeight >> numPeaks >> minDistance >> threshold;
        PeakFinder finder(minHeight, numPeaks, minDistance, threshold);
        const auto peaks = finder.findPeaks(x.data(), {0, x.size()}, PeakSelectionLastMaximum);
        EXPECT_EQ(locations(peaks), Values(std::istream_iterator<double>(row), {})) << minDistance;
        for (const Peak& peak : peaks.peaks) {
            EXPECT_EQ(peak.value, x[static_cast<std::size_t>(peak.location)]);
        }
    }
    EXPECT_EQ(rows, 4) << "the whole file";
}

}  // namespace
