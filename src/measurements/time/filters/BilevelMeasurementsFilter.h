#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <memory>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "BilevelMeasurements.h"

namespace dspwavedecks {

/// Pulse measurements of the measured channel over the span of time that the display shows, left on the board as a
/// bilevelMeasurementsStruct. Each frame measures the whole span anew: an edge that leaves it drops out of the counts.
/// Times are differences, so that the display's offset has no part in them.
class BilevelMeasurementsFilter : public BaseFilter {
public:
    BilevelMeasurementsFilter();
    ~BilevelMeasurementsFilter() override;

    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;
    /// First index and one past the last into the cache of the time measurements.
    std::vector<unsigned long> getDataRange(const int& signal) override;
    /// Length of the span in seconds.
    double getTimeRange(const int& signal, const wavedeck::WaveDeckClientSettings& settings);

    /// The record on the board as texts for the client; "nan" for a figure that is not measured.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);

    inline static const std::string bilevelMeasurements = "bilevelMeasurements";

protected:
    /// What to do when the cache holds nothing of the span.
    enum class EmptySpan {
        PublishLast,  ///< the figures of the last span go to the board once more
        Ignore,
    };
    void measureCachedSpan(int signal, EmptySpan emptySpan);

    std::unique_ptr<BilevelMeasurements> measurements;

private:
    void publish(const bilevelMeasurementsStruct& metrics);

    // Scratch.
    std::vector<double> span;  ///< times of the cached span, then its samples
};

}  // namespace dspwavedecks
