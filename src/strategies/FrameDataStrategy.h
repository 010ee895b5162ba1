#pragma once

#include <string>
#include <vector>

#include "DataStrategy.h"
#include "wavedeck/WaveDeckClientInfo.h"

namespace dspwavedecks {

/// Client messages of data that is shown frame by frame against a sample axis: the whole frame goes out, without a
/// window and without a limit of points.
class FrameDataStrategy : public DataStrategy {
public:
    FrameDataStrategy();
    ~FrameDataStrategy() override;

    void processDataAllSignals(const Buffers& data, int numSignals, std::vector<int>& numChannels,
                               std::vector<int>& numPoints, std::vector<std::string>& ids,
                               ObjectPointer& message) override;

protected:
    /// How the channels of one signal are laid out and measured.
    struct FrameLayout {
        int channels;   ///< blocks of data behind block 0
        bool magPhase;  ///< the second half of the channels are phases
        int half;       ///< channels in that half, as the limits take them
    };

    /// The layout of a signal's buffer, by the channels that the host counts.
    virtual FrameLayout findLayout(wavedeck::WaveDeckClientInfo& client, int signal, int channels) const;
    virtual void attachMeasurements(ObjectPointer& measurements) const;
    void attachPeaks(ObjectPointer& measurements) const;

private:
    /// The object of one signal, all its points.
    ObjectPointer packageSignal(const std::vector<double>& buffer, const FrameLayout& layout, double offset,
                                const std::string& id);
    static LimitPair findLimits(const std::vector<double>& buffer, std::size_t points, const FrameLayout& layout);
    ObjectPointer packageChannel(const double* values, std::size_t points, int channel, const std::string& id,
                                 const ChannelFacts& facts);

    // Scratch of one update.
    int numSignals = 0;
};

}  // namespace dspwavedecks
