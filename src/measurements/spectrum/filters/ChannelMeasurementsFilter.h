#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <memory>
#include <string>
#include <vector>

#include "ChannelMeasurements.h"
#include "TraceMeasurementFilter.h"

namespace dspwavedecks {

/// Channel power with occupied bandwidth or adjacent channel power ratios of the measured spectrum, left on the board
/// as a channelMeasurementsStruct. A spectrum that is not there reads NaN.
class ChannelMeasurementsFilter : public TraceMeasurementFilter {
public:
    ChannelMeasurementsFilter();
    ~ChannelMeasurementsFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesImpl(const PropertyList& list) override;

    /// The record on the board for the client, every figure as text and the ratios as texts of arrays. The figures of
    /// both types are sent, whichever was measured.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);

    inline static const std::string channel = "channel";

private:
    std::unique_ptr<ChannelMeasurements> channelMeasurements;
};

}  // namespace dspwavedecks
