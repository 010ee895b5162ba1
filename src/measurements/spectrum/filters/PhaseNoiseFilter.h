#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <memory>
#include <string>
#include <vector>

#include "MeasuredTrace.h"
#include "PhaseNoise.h"
#include "SpectrumMeasurementFilter.h"

namespace dspwavedecks {

/// Phase noise of all channels of all signals, left on the board as a phaseNoiseStruct; complete after the last signal
/// of a frame. It is always taken from the spectra in the frames, never from a hold trace.
class PhaseNoiseFilter : public SpectrumMeasurementFilter {
public:
    PhaseNoiseFilter();
    ~PhaseNoiseFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;

    /// The curves of one signal for the client: arrays of numbers for each channel, in which a value that is infinite
    /// or NaN is 0 and its index stands in "phaseNoiseNaNIdx". A channel without a curve sends empty arrays.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID, const int& signal,
                                                           const int& numChannels);
    /// True once all signals have gone through, until a query takes the result.
    static bool isDataReady(const std::string& clientID);

    inline static const std::string phaseNoise = "phaseNoise";

private:
    std::unique_ptr<PhaseNoise> phaseNoise_;
    MeasuredTrace trace;  ///< stored only
};

}  // namespace dspwavedecks
