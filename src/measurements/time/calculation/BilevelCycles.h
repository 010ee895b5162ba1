#pragma once

#include <cstddef>
#include <limits>

#include "BilevelWorkingSet.h"
#include "bilevelMeasurementsStruct.h"

namespace dspwavedecks {

/// Averages period, frequency, pulse widths and duty cycles of a pulse waveform, from the crossings of its mid level.
class BilevelCycles {
public:
    void add(const BilevelTransition& transition, bool isInSpan);

    /// All transitions must have their crossing in the span, and there must be two crossings at even positions;
    /// otherwise the figures stay as they are.
    void write(bilevelMeasurementsStruct& metrics) const;

private:
    /// The pulses that begin at the first crossing in their direction and at every other one behind it. The last one
    /// has a width but no duty cycle where the crossing behind it is missing, so that there may be a width more than
    /// there are duty cycles. Meant so.
    struct Pulses {
        bool hasBegun = false;
        bool isOpen = false;  ///< the last crossing begins a pulse
        double count = 0.0;
        double widths = 0.0;
        double cycles = 0.0;
        double dutyCycles = 0.0;

        void add(bool isInDirection, double width, double period, double widthBefore);
        double width() const { return widths / count; }
        double dutyCycle() const { return dutyCycles * 100.0 / cycles; }
    };

    // State: the last two crossings, and sums over all of them.
    std::size_t count = 0;
    bool areAllInSpan = true;
    double last = std::numeric_limits<double>::quiet_NaN();
    double lastButOne = std::numeric_limits<double>::quiet_NaN();
    double periods = 0.0;
    double periodCount = 0.0;
    Pulses negative;
    Pulses positive;
};

}  // namespace dspwavedecks
