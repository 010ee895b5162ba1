#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <memory>
#include <string>
#include <vector>

#include "SpectralMaskTester.h"
#include "SpectrumMeasurementFilter.h"

namespace dspwavedecks {

/// Mask test of the spectra of all channels of all signals, left on the board as a spectralMaskStruct. Replayed data
/// repeat the last test instead of adding one. Any option that is sent makes the next frame interpolate the masks anew;
/// the counts go on.
class SpectralMaskTesterFilter : public SpectrumMeasurementFilter {
public:
    SpectralMaskTesterFilter();
    ~SpectralMaskTesterFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;
    /// Length of a block of the frame; marks of magnitude and phase play no part.
    unsigned long getNumPointsPerChannel(const int& signal) override;

    /// The record on the board for the client: counts and levels as texts, failing channels as an array of ids from 0.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);

    inline static const std::string spectralMask = "spectralMask";

private:
    std::unique_ptr<SpectralMaskTester> spectralMaskTester;
};

}  // namespace dspwavedecks
