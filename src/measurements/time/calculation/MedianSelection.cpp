#include "MedianSelection.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

namespace dspwavedecks {

namespace {

// Below this length the plain selection is as fast.
constexpr std::size_t shortestBracketed = 2048;
constexpr std::size_t largestSample = 8192;

double plainMedian(const double* data, std::size_t count, std::vector<double>& scratch) {
    scratch.assign(data, data + count);
    const auto lower = scratch.begin() + static_cast<std::ptrdiff_t>((count - 1) / 2);
    const auto upper = scratch.begin() + static_cast<std::ptrdiff_t>(count / 2);
    std::nth_element(scratch.begin(), lower, scratch.end());
    std::nth_element(lower, upper, scratch.end());
    return (*lower + *upper) * 0.5;
}

struct Bracket {
    double lower;
    double upper;
};

/// Brackets the median between two members of a random sample of about count^(2/3). The rank of the median among m of
/// them has a standard deviation of sqrt(m) / 2; the bracket reaches four of them to either side, so that it misses
/// about once in 16000 stretches. Random places, not equidistant ones: a periodic signal must not fall in step.
Bracket sampleBracket(const double* data, std::size_t count, std::vector<double>& scratch) {
    const double cubeRoot = std::cbrt(static_cast<double>(count));
    const std::size_t sampleCount = std::min(largestSample, static_cast<std::size_t>(cubeRoot * cubeRoot));
    const auto halfWidth = static_cast<std::size_t>(2.0 * std::sqrt(static_cast<double>(sampleCount)));
    if (scratch.size() < sampleCount) {
        scratch.resize(sampleCount);
    }
    std::uint64_t random = 0x9e3779b97f4a7c15u;
    for (std::size_t i = 0; i < sampleCount; ++i) {
        random = random * 6364136223846793005u + 1442695040888963407u;
        scratch[i] =
            data[static_cast<std::size_t>(static_cast<double>(random >> 11) * 0x1p-53 * static_cast<double>(count))];
    }
    const auto end = scratch.begin() + static_cast<std::ptrdiff_t>(sampleCount);
    const auto lower = scratch.begin() + static_cast<std::ptrdiff_t>(sampleCount / 2 - halfWidth);
    const auto upper = scratch.begin() + static_cast<std::ptrdiff_t>(sampleCount / 2 + halfWidth);
    std::nth_element(scratch.begin(), lower, end);
    std::nth_element(lower + 1, upper, end);
    return {*lower, *upper};
}

/// How many samples lie where, seen from the bracket.
struct Counts {
    std::size_t below = 0;      // x < lower
    std::size_t upToLower = 0;  // x <= lower
    std::size_t inside = 0;     // lower < x < upper, collected
    std::size_t upToUpper = 0;  // x <= upper
    std::size_t unordered = 0;  // NaN
};

// Vector types of the compiler: a comparison yields 0 or -1 a lane, which subtracts into a count. Written as a plain
// sum of comparisons the loop took two to six times as long, by turns of branches and of narrow conversions.
constexpr std::size_t laneCount = 2;
using DoubleLanes = double __attribute__((vector_size(laneCount * sizeof(double))));
using CountLanes = std::int64_t __attribute__((vector_size(laneCount * sizeof(std::int64_t))));

std::size_t total(const CountLanes& lanes) {
    return static_cast<std::size_t>(lanes[0] + lanes[1]);
}

/// Adds a block of even length to the counts and collects what lies inside the bracket behind what is there.
void collectBlock(const double* block, std::size_t length, const Bracket& bracket, Counts& counts, double* collected) {
    const DoubleLanes lower = {bracket.lower, bracket.lower};
    const DoubleLanes upper = {bracket.upper, bracket.upper};
    CountLanes below{};
    CountLanes upToLower{};
    CountLanes upToUpper{};
    CountLanes unordered{};
    std::size_t inside = counts.inside;
    for (std::size_t i = 0; i < length; i += laneCount) {
        const DoubleLanes x = {block[i], block[i + 1]};
        const CountLanes isInside = (x > lower) & (x < upper);
        below -= x < lower;
        upToLower -= x <= lower;
        upToUpper -= x <= upper;
        unordered -= x != x;
        collected[inside] = x[0];  // kept only if the place moves on
        inside -= static_cast<std::size_t>(isInside[0]);
        collected[inside] = x[1];
        inside -= static_cast<std::size_t>(isInside[1]);
    }
    counts.below += total(below);
    counts.upToLower += total(upToLower);
    counts.upToUpper += total(upToUpper);
    counts.unordered += total(unordered);
    counts.inside = inside;
}

/// Counts what lies around the bracket and leaves what lies inside at the head of the scratch memory.
Counts collectInside(const double* data, std::size_t count, const Bracket& bracket, std::vector<double>& scratch) {
    constexpr std::size_t blockLength = 512;  // so often is the scratch memory looked after
    Counts counts;
    for (std::size_t start = 0; start < count; start += blockLength) {
        const std::size_t length = std::min(blockLength, count - start);
        if (scratch.size() < counts.inside + length) {
            scratch.resize(std::max(counts.inside + length, 2 * scratch.size()));
        }
        collectBlock(data + start, length / laneCount * laneCount, bracket, counts, scratch.data());
        if (length % laneCount != 0) {
            const double x = data[start + length - 1];
            scratch[counts.inside] = x;
            counts.inside += x > bracket.lower && x < bracket.upper ? 1 : 0;
            counts.below += x < bracket.lower ? 1 : 0;
            counts.upToLower += x <= bracket.lower ? 1 : 0;
            counts.upToUpper += x <= bracket.upper ? 1 : 0;
            counts.unordered += std::isnan(x) ? 1 : 0;
        }
    }
    return counts;
}

/// The two samples around the middle; they are one for an odd count.
struct MiddlePair {
    double lower;
    double upper;
};

/// The pair at the middle ranks, if the bracket holds both.
std::optional<MiddlePair> selectMiddle(std::size_t count, const Counts& counts, const Bracket& bracket,
                                       std::vector<double>& scratch) {
    const std::size_t lowerRank = (count - 1) / 2;
    const std::size_t upperRank = count / 2;
    if (lowerRank < counts.below || upperRank >= counts.upToUpper) {
        return std::nullopt;
    }
    const auto isInside = [&](std::size_t rank) {
        return rank >= counts.upToLower && rank < counts.upToLower + counts.inside;
    };
    const auto begin = scratch.begin();
    const auto end = begin + static_cast<std::ptrdiff_t>(counts.inside);
    MiddlePair middle{bracket.lower, upperRank < counts.upToLower ? bracket.lower : bracket.upper};
    if (isInside(lowerRank)) {
        const auto place = begin + static_cast<std::ptrdiff_t>(lowerRank - counts.upToLower);
        std::nth_element(begin, place, end);
        middle.lower = *place;
        if (upperRank == lowerRank) {
            middle.upper = *place;
        } else if (isInside(upperRank)) {
            middle.upper = *std::min_element(place + 1, end);
        }
    } else {
        if (lowerRank >= counts.upToLower) {
            middle.lower = bracket.upper;
        }
        if (isInside(upperRank)) {
            middle.upper = *std::min_element(begin, end);  // the lower one is the bracket's own lower end
        }
    }
    return middle;
}

/// Zeros of either sign are equal to a selection, which of them stands at the rank is its own affair.
bool hasZerosOfBothSigns(const double* data, std::size_t count) {
    std::int64_t positive = 0;
    std::int64_t negative = 0;
    for (std::size_t i = 0; i < count; ++i) {
        positive += (data[i] == 0.0) & !std::signbit(data[i]);
        negative += (data[i] == 0.0) & std::signbit(data[i]);
    }
    return positive != 0 && negative != 0;
}

}  // namespace

double selectMedian(const double* data, std::size_t count, std::vector<double>& scratch) {
    if (count < shortestBracketed) {
        return plainMedian(data, count, scratch);
    }
    const Bracket bracket = sampleBracket(data, count, scratch);
    if (std::isnan(bracket.lower) || std::isnan(bracket.upper)) {
        return plainMedian(data, count, scratch);
    }
    const Counts counts = collectInside(data, count, bracket, scratch);
    if (counts.unordered != 0) {
        return plainMedian(data, count, scratch);
    }
    const std::optional<MiddlePair> middle = selectMiddle(count, counts, bracket, scratch);
    if (!middle || ((middle->lower == 0.0 || middle->upper == 0.0) && hasZerosOfBothSigns(data, count))) {
        return plainMedian(data, count, scratch);
    }
    return (middle->lower + middle->upper) * 0.5;
}

}  // namespace dspwavedecks
