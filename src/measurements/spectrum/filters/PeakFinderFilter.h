#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <memory>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "PeakFinder.h"

namespace dspwavedecks {

/// Peaks of the measured channel, frame by frame, left on the board as a peakFinderStruct. Locations are sample indices
/// within the channel.
///
/// FrequencyPeakFinderFilter searches spectra, between limits, and tells frequencies.
class PeakFinderFilter : public BaseFilter {
public:
    PeakFinderFilter();
    ~PeakFinderFilter() override;

    /// A channel that the frame does not hold has no peaks, and the record is not new.
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;

    /// The record on the board for the client: "locations" and "peaks" as texts of arrays, "numPeaks" as a number.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);

    inline static const std::string peakFinder = "peakFinder";

protected:
    /// Puts a record on the board.
    void publish(const peakFinderStruct& peaks);

    std::unique_ptr<PeakFinder> peakFinder_;
};

}  // namespace dspwavedecks
