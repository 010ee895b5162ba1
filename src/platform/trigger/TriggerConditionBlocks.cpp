// The trigger condition over a block of samples at once: what each sample does to the levels and to stretches under way
// is worked out for all of them by operations on bits, and only samples that may end in a trigger point are visited.
#include <algorithm>
#include <array>
#include <bit>

#include "CrossingTimes.h"
#include "TriggerCondition.h"

namespace deckutil {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

template <class Visit>
void forEachBit(std::uint64_t bits, Visit visit) {
    for (; bits != 0; bits &= bits - 1) {
        visit(std::countr_zero(bits));
    }
}

/// -1 if there is none.
int highestBit(std::uint64_t bits) {
    return 63 - std::countl_zero(bits);
}

/// What a block of samples does to a level.
struct FollowedLevel {
    LevelBits bits;
    CrossingBits crossings;
};

FollowedLevel follow(LevelComparator& comparator, const SampleBlock& block) {
    FollowedLevel level{levelComparison()(block.values, block.count, comparator.bounds()), {}};
    level.crossings = comparator.advanceBlock(level.bits, block.count);
    return level;
}

}  // namespace

/// What a block of samples does to both levels; nothing to the upper one where it is not looked at.
struct TriggerCondition::FollowedLevels {
    FollowedLevel lower, upper;
};

TriggerCondition::FollowedLevels TriggerCondition::followLevels(const SampleBlock& block) {
    const FollowedLevels at{follow(lower, block), usesTwoLevels() ? follow(upper, block) : FollowedLevel{}};
    const CrossingBits& low = at.lower.crossings;
    const CrossingBits& high = at.upper.crossings;
    constexpr std::size_t few = 8;
    crossedLast = (low.rising | low.falling | high.rising | high.falling) >> (std::max(block.count, few) - few) != 0;
    return at;
}

void TriggerCondition::advanceBlock(const SampleBlock& block, double countsFrom, TriggerBlockPoints& points) {
    points.count = 0;
    const FollowedLevels at = followLevels(block);
    const CrossingBits& low = at.lower.crossings;
    const CrossingBits& high = at.upper.crossings;
    if (settings.type == TDTC::Timeout) {
        advanceTimeout(block, low, points);
    } else if (settings.type == TDTC::PulseWidth) {
        advanceStretches(block, {lowerLevel, lowerLevel, low.rising, 0, low.falling},
                         {lowerLevel, lowerLevel, low.falling, 0, low.rising}, countsFrom, points);
    } else if (settings.type == TDTC::Transition) {
        advanceStretches(block, {lowerLevel, upperLevel, low.rising, low.falling, high.rising},
                         {upperLevel, lowerLevel, high.falling, high.rising, low.falling}, countsFrom, points);
    } else {
        advanceStretches(block, {lowerLevel, lowerLevel, low.rising, at.upper.bits.atLeast, low.falling},
                         {upperLevel, upperLevel, high.falling, at.lower.bits.atMost, high.rising}, countsFrom, points);
    }
}

BlockCrossings TriggerCondition::advanceBlock(const SampleBlock& block) {
    const FollowedLevels at = followLevels(block);
    const CrossingBits& low = at.lower.crossings;
    const CrossingBits& high = at.upper.crossings;
    return {wanted(TDTC::Positive, low.rising) | wanted(TDTC::Negative, low.falling),
            wanted(TDTC::Positive, high.falling) | wanted(TDTC::Negative, high.rising)};
}

TriggerPoints TriggerCondition::pointsAt(const SampleBlock& block, const BlockCrossings& crossings, int i) const {
    TriggerPoints points;
    if ((crossings.atLower >> i & 1) != 0) {
        points.add(block.crossing(i, lower.getLevel()));
    }
    if ((crossings.atUpper >> i & 1) != 0) {
        points.add(block.crossing(i, upper.getLevel()));
    }
    points.sort();
    return points;
}

/// A stay ends with the next crossing, whichever way it goes; between crossings no sample needs to be looked at. Most
/// stays on noise are too short even from the sample before their begin to the one behind their end: then no time is
/// interpolated.
void TriggerCondition::advanceTimeout(const SampleBlock& block, const CrossingBits& crossings,
                                      TriggerBlockPoints& points) {
    const std::uint64_t starts = wanted(TDTC::Positive, crossings.rising) | wanted(TDTC::Negative, crossings.falling);
    const double level = lower.getLevel();
    constexpr int none = -1;
    int begin = none;  // sample of the crossing that began the stay, if it lies in this block
    double deadline = timeoutDeadline;
    forEachBit(crossings.rising | crossings.falling, [&](int i) {
        const double end = block.times[i];
        if (begin != none && block.times[begin - 1] + settings.timeout <= end) {
            deadline = block.crossing(begin, level) + settings.timeout;
        }
        if (deadline <= end) {
            points.addIf(deadline <= block.crossing(i, level), deadline);
        }
        deadline = infinity;
        begin = (starts >> i & 1) != 0 ? i : none;
    });
    if (begin != none) {
        deadline = block.crossing(begin, level) + settings.timeout;
    }
    const bool isOver = deadline <= block.times[block.count - 1];
    points.addIf(isOver, deadline);
    timeoutDeadline = isOver ? infinity : deadline;
}

/// When the levels are crossed in a block. For many crossings it is quicker to work out all at once.
class TriggerCondition::BlockTimes {
public:
    BlockTimes(const SampleBlock& samples, const std::array<double, 2>& bothLevels, bool hasTwo, bool isForMany)
        : block(samples), levels(bothLevels), isTable(isForMany) {
        for (std::size_t level = 0; isTable && level < (hasTwo ? 2 : 1); ++level) {
            crossingTimes()(block.times, block.values, block.count, levels[level], table[level].data());
        }
    }
    double at(LevelIndex level, int i) const {
        return isTable ? table[level][static_cast<std::size_t>(i)] : block.crossing(i, levels[level]);
    }

private:
    // Options.
    const SampleBlock& block;
    std::array<double, 2> levels;
    bool isTable;

    // Scratch.
    std::array<std::array<double, blockSamples>, 2> table;
};

/// Which of the stretches that end at samples of a block last as long as asked for.
/// start  of the one that began before the block
std::uint64_t TriggerCondition::lastingEnds(const BlockTimes& times, const StretchBits& at, std::uint64_t ends,
                                            double start) const {
    const double minTime = settings.minTime;
    const double maxTime = settings.maxTime;
    std::uint64_t lasting = 0;
    forEachBit(ends, [&](int i) {
        const int begin = highestBit(at.begins & (~std::uint64_t{0} >> (63 - i)));
        const double duration = times.at(at.endLevel, i) - (begin < 0 ? start : times.at(at.beginLevel, begin));
        lasting |= static_cast<std::uint64_t>((duration >= minTime) & (duration <= maxTime)) << i;
    });
    return lasting;
}

/// Stretches upward and downward never end in the same sample: one ends in a crossing upward, the other in one
/// downward, and between levels out of order no interval has both.
void TriggerCondition::advanceStretches(const SampleBlock& block, const StretchBits& up, const StretchBits& down,
                                        double countsFrom, TriggerBlockPoints& points) {
    const StretchBits* bits[2] = {&up, &down};
    Stretch* stretches[2] = {&upward, &downward};
    const TDTC::PolarityEnum polarities[2] = {TDTC::Positive, TDTC::Negative};
    const std::uint64_t counting = block.notBefore(countsFrom);
    std::uint64_t ends[2];
    bool open[2];
    for (int side = 0; side < 2; ++side) {
        const StretchBits& at = *bits[side];
        const std::uint64_t keeps = ~(at.spoils | at.ends);
        const bool wasOpen = stretches[side]->open;
        const std::uint64_t states = followFlipFlop(at.begins & keeps, keeps, wasOpen);
        const std::uint64_t completed = (statesBefore(states, wasOpen) | at.begins) & at.ends & ~at.spoils;
        ends[side] = wanted(polarities[side], completed) & counting;
        open[side] = (states >> (block.count - 1) & 1) != 0;
    }
    if (const std::uint64_t all = ends[0] | ends[1]; all != 0) {
        constexpr int few = 8;
        const BlockTimes times(block, {lower.getLevel(), upper.getLevel()}, usesTwoLevels(), std::popcount(all) > few);
        for (int side = 0; side < 2; ++side) {
            ends[side] = lastingEnds(times, *bits[side], ends[side], stretches[side]->start);
        }
        forEachBit(ends[0] | ends[1], [&](int i) { points.add(times.at(bits[ends[1] >> i & 1]->endLevel, i)); });
    }
    for (int side = 0; side < 2; ++side) {
        const StretchBits& at = *bits[side];
        if (at.begins != 0) {
            const double level = at.beginLevel == upperLevel ? upper.getLevel() : lower.getLevel();
            stretches[side]->start = block.crossing(highestBit(at.begins), level);
        }
        stretches[side]->open = open[side];
    }
}

}  // namespace deckutil
