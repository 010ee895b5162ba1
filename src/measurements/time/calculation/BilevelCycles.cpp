#include "BilevelCycles.h"

namespace dspwavedecks {

namespace {

constexpr double unmeasured = bilevelMeasurementsStruct::unmeasured;

}  // namespace

void BilevelCycles::Pulses::add(bool isInDirection, double width, double period, double widthBefore) {
    if (!hasBegun) {
        hasBegun = isOpen = isInDirection;
    } else if (isOpen) {
        widths += width;
        count += 1.0;
        isOpen = false;
    } else {
        dutyCycles += period == 0.0 ? unmeasured : widthBefore / period;
        cycles += 1.0;
        isOpen = true;
    }
}

void BilevelCycles::add(const BilevelTransition& transition, bool isInSpan) {
    const double crossing = transition.midCrossTime;
    const double width = crossing - last;
    const double period = crossing - lastButOne;
    const double widthBefore = last - lastButOne;
    areAllInSpan = areAllInSpan && isInSpan;
    // Every other crossing, whatever its direction: transitions alternate.
    if (count != 0 && count % 2 == 0) {
        periods += period;
        periodCount += 1.0;
    }
    positive.add(transition.rising, width, period, widthBefore);
    negative.add(!transition.rising, width, period, widthBefore);
    lastButOne = last;
    last = crossing;
    ++count;
}

void BilevelCycles::write(bilevelMeasurementsStruct& metrics) const {
    if (!areAllInSpan || periodCount == 0.0) {
        return;
    }
    metrics.period = periods / periodCount;
    metrics.frequency = metrics.period == 0.0 ? unmeasured : 1.0 / metrics.period;
    if (positive.count != 0.0) {
        metrics.posPulses = positive.count;
        metrics.posWidth = positive.width();
        metrics.posDutyCycle = positive.dutyCycle();
    }
    if (negative.count != 0.0) {
        metrics.negPulses = negative.count;
        metrics.negWidth = negative.width();
        metrics.negDutyCycle = negative.dutyCycle();
    }
}

}  // namespace dspwavedecks
