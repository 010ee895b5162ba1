#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <memory>
#include <string>
#include <vector>

#include "DistortionMeasurements.h"
#include "TraceMeasurementFilter.h"

namespace dspwavedecks {

/// Harmonic distortion or intermodulation of the measured spectrum, left on the board as a distortionStruct. A spectrum
/// that is not there reads NaN.
class DistortionMeasurementsFilter : public TraceMeasurementFilter {
public:
    DistortionMeasurementsFilter();
    ~DistortionMeasurementsFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesImpl(const PropertyList& list) override;

    /// The record on the board for the client: figures as texts, the first numHarmonics tones as texts of arrays. The
    /// number is that of the tones found while the entries stand by order, so that where a harmonic was not found its
    /// entry is sent and that of a later one is not: meant so.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);

    inline static const std::string distortion = "distortion";

private:
    std::unique_ptr<DistortionMeasurements> distortionMeasurements;
};

}  // namespace dspwavedecks
