#pragma once

#include <vector>

#include "wavedeck/WaveDeckTransformImpl.h"

namespace wavedeck {

/// Reduces traces to the minimum and maximum of each bucket of neighbouring points, at the positions where they stand.
/// A frame is one row of positions, then one row a channel; `out` has the same rows, shorter. Where channels have
/// their extremes at different positions, the output holds all of these positions with every channel's own value, so
/// that each channel keeps its extremes and the rows stay parallel.
///
/// Options: "numPoints" (double, setup and tune): greatest number of points a row, though a minimum and a maximum of
/// each channel always stay; 0, the default, lets all through. Faults are thrown in the words of the other stages'
/// option readers.
class WAVEDECK_API TimeDeckThinnerFilter : public WaveDeckTransformImpl {
public:
    ~TimeDeckThinnerFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void tuneImpl(const PropertyList& list) override;
    void rollbackImpl(const PropertyList& list) override;
    bool isActive() override { return true; }
    bool isReadOnly() override { return false; }
    bool changesChannelSize() override { return true; }
    void resetImpl() override {}

    /// Reads "clientID" and "numChannels", which must be there, and "numPoints".
    virtual void setPropertiesOnSetup(const PropertyList& list);
    /// Reads "numChannels" again.
    virtual void onInputSizeChange(const PropertyList& list);

private:
    void readNumPoints(const PropertyList& list);

    // options
    unsigned long numPoints_ = 0;

    // derived
    std::vector<unsigned long>
        rowsPerSignal_;  ///< channels of each signal's traces: a complex signal has half its count

    // scratch
    std::vector<unsigned long> kept_;
};

}  // namespace wavedeck
