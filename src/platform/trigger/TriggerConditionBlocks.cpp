// The trigger condition over a block of samples at once: what each sample does to the levels and to stretches under way
// is worked out for all of them by operations on bits, and only samples that may end in a trigger point are visited.
#include <algorithm>
#include <bit>
#include <utility>

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

int highestBit(std::uint64_t bits) {
    return 63 - std::countl_zero(bits);
}

}  // namespace

void TriggerCondition::advanceBlock(const double* times, const double* values, std::size_t n,
                                    TriggerBlockPoints& points) {
    points.count = 0;
    const Block block{times, values, n};
    const LevelComparison compare = levelComparison();
    const LevelBits atLower = compare(values, n, lower.bounds());
    const CrossingBits low = lower.advanceBlock(atLower, n);
    if (!usesTwoLevels()) {
        const double level = lower.getLevel();
        switch (settings.type) {
            case TDTC::PulseWidth:
                advanceStretches(block, {level, level, low.rising, 0, low.falling},
                                 {level, level, low.falling, 0, low.rising}, points);
                break;
            case TDTC::Timeout:
                advanceTimeout(block, low, points);
                break;
            default:
                addCrossings(block, wanted(TDTC::Positive, low.rising) | wanted(TDTC::Negative, low.falling), 0,
                             points);
        }
        return;
    }
    const LevelBits atUpper = compare(values, n, upper.bounds());
    const CrossingBits high = upper.advanceBlock(atUpper, n);
    const double lowLevel = lower.getLevel();
    const double highLevel = upper.getLevel();
    switch (settings.type) {
        case TDTC::Transition:
            advanceStretches(block, {lowLevel, highLevel, low.rising, low.falling, high.rising},
                             {highLevel, lowLevel, high.falling, high.rising, low.falling}, points);
            break;
        case TDTC::Runt:
            advanceStretches(block, {lowLevel, lowLevel, low.rising, atUpper.atLeast, low.falling},
                             {highLevel, highLevel, high.falling, atLower.atMost, high.rising}, points);
            break;
        default:
            addCrossings(block, wanted(TDTC::Positive, low.rising) | wanted(TDTC::Negative, low.falling),
                         wanted(TDTC::Positive, high.falling) | wanted(TDTC::Negative, high.rising), points);
    }
}

void TriggerCondition::addCrossings(const Block& block, std::uint64_t atLower, std::uint64_t atUpper,
                                    TriggerBlockPoints& points) const {
    forEachBit(atLower | atUpper, [&](int i) {
        const double low = block.crossing(i, lower.getLevel());
        const double high = block.crossing(i, upper.getLevel());
        const bool crossesLower = (atLower >> i & 1) != 0;
        const bool crossesUpper = (atUpper >> i & 1) != 0;
        const bool crossesLowerFirst = crossesLower && (!crossesUpper || low <= high);
        points.add(crossesLowerFirst ? low : high);
        points.addIf(crossesLower && crossesUpper, crossesLowerFirst ? high : low);
    });
}

/// A stay ends with the next crossing, whichever way it goes; between crossings no sample needs to be looked at. Most
/// stays on noise are too short even from the sample before their begin to the one behind their end: then no time is
/// interpolated.
void TriggerCondition::advanceTimeout(const Block& block, const CrossingBits& crossings, TriggerBlockPoints& points) {
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

/// Stretches upward and downward never end in the same sample: one ends in a crossing upward, the other in one
/// downward, and between levels out of order no interval has both.
void TriggerCondition::advanceStretches(const Block& block, const StretchBits& up, const StretchBits& down,
                                        TriggerBlockPoints& points) {
    const StretchBits* bits[2] = {&up, &down};
    Stretch* stretches[2] = {&upward, &downward};
    std::uint64_t completed[2];
    bool open[2];
    for (int side = 0; side < 2; ++side) {
        const StretchBits& at = *bits[side];
        const std::uint64_t keeps = ~(at.spoils | at.ends);
        const bool wasOpen = stretches[side]->open;
        const std::uint64_t states = followFlipFlop(at.begins & keeps, keeps, wasOpen);
        completed[side] = (statesBefore(states, wasOpen) | at.begins) & at.ends & ~at.spoils;
        open[side] = (states >> (block.count - 1) & 1) != 0;
    }
    const std::uint64_t downCompleted = wanted(TDTC::Negative, completed[1]);
    const double minTime = settings.minTime;
    const double maxTime = settings.maxTime;
    int lastEnd = -1;
    double lastEndTime = 0.0;
    const bool endsBegin = up.endLevel == down.beginLevel;  // one pulse ends where the next begins
    forEachBit(wanted(TDTC::Positive, completed[0]) | downCompleted, [&](int i) {
        const std::size_t side = downCompleted >> i & 1;
        const StretchBits& at = *bits[side];
        const std::uint64_t begins = at.begins & (~std::uint64_t{0} >> (63 - i));
        double start = stretches[side]->start;
        if (begins != 0) {
            const int begin = highestBit(begins);
            start = endsBegin && begin == lastEnd ? lastEndTime : block.crossing(begin, at.beginLevel);
        }
        const double end = block.crossing(i, at.endLevel);
        const double duration = end - start;
        points.addIf((duration >= minTime) & (duration <= maxTime), end);
        lastEnd = i;
        lastEndTime = end;
    });
    for (int side = 0; side < 2; ++side) {
        const StretchBits& at = *bits[side];
        if (at.begins != 0) {
            stretches[side]->start = block.crossing(highestBit(at.begins), at.beginLevel);
        }
        stretches[side]->open = open[side];
    }
}

}  // namespace deckutil
