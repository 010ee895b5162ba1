#pragma once

#include "FrameDataStrategy.h"

namespace dspwavedecks {

/// Client messages of frequency responses: those of frames, where every signal holds a magnitude and a phase for each
/// channel. "sample" is the frequency.
class MagPhaseResponseDataStrategy : public FrameDataStrategy {
public:
    MagPhaseResponseDataStrategy();
    ~MagPhaseResponseDataStrategy() override;

protected:
    /// A real signal's buffer has twice the channels that the host counts.
    FrameLayout findLayout(wavedeck::WaveDeckClientInfo& client, int signal, int channels) const override;
    void attachMeasurements(ObjectPointer& measurements) const override;
};

}  // namespace dspwavedecks
