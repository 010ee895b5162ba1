#pragma once

#include <Poco/JSON/Object.h>
#include <Poco/SharedPtr.h>

#include <memory>
#include <string>
#include <vector>

#include "BaseFilter.h"
#include "SignalStatistics.h"

namespace dspwavedecks {

/// Statistics of the measured channel, frame by frame: computed from the frame in hand, left on the board as a
/// signalStatsStruct, with the positions of the extremes as sample indices.
///
/// TimeSignalStatisticsFilter measures the displayed span of time instead.
class SignalStatisticsFilter : public BaseFilter {
public:
    SignalStatisticsFilter();
    ~SignalStatisticsFilter() override;

    /// A channel that the frame does not hold reads NaN.
    void filterImpl(const double* data, std::vector<double>& out, int signal) override;
    void setPropertiesOnSetup(const PropertyList& list) override;
    void setPropertiesImpl(const PropertyList& list) override;

    /// The record on the board as texts for the client. A group that is not valid reads "NaN"; a figure that came out
    /// as no number reads "nan". Figures that are switched off are sent too, with the last value they had.
    static Poco::SharedPtr<Poco::JSON::Object> packageImpl(const std::string& clientID);

    inline static const std::string signalStats = "signalStats";

protected:
    /// The record of a channel that is not there: all figures NaN.
    static signalStatsStruct unmeasurable();

    /// Puts a record on the board.
    void publish(const signalStatsStruct& stats);

    std::unique_ptr<SignalStatistics> statistics;
};

}  // namespace dspwavedecks
