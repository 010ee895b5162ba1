#include "SignalStatisticsFilter.h"

#include <cmath>
#include <limits>

#include "Board.h"
#include "MagPhaseFilter.h"
#include "NumberText.h"
#include "OptionTable.h"
#include "SignalStatisticsOptions.h"

namespace dspwavedecks {

namespace {

std::string timeRangeText(const std::vector<double>& range) {
    const bool isKnown = range.size() >= 2 && std::isfinite(range[0]) && std::isfinite(range[1]);
    return isKnown ? numberText(range[0]) + ", " + numberText(range[1]) : std::string();
}

}  // namespace

SignalStatisticsFilter::SignalStatisticsFilter() : statistics(std::make_unique<SignalStatistics>()) {
    registerUsualActions();
}

SignalStatisticsFilter::~SignalStatisticsFilter() = default;

void SignalStatisticsFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr || signal != measurementSignal_) {
        return;
    }
    copyMagPhaseData(MagPhaseFilter::magPhaseData);
    const std::vector<unsigned long> range = getDataRange(signal);
    if (isRangeInFrame(range)) {
        publish(statistics->computeSignalStatistics(data, range, MinMaxLastMaximum));
    } else {
        publish(unmeasurable());
    }
    updateFilterSignalAndChannel();
}

signalStatsStruct SignalStatisticsFilter::unmeasurable() {
    signalStatsStruct stats;
    for (double* figure : {&stats.xMin, &stats.xMax, &stats.yMin, &stats.yMax, &stats.peakToPeak, &stats.mean,
                           &stats.variance, &stats.standardDeviation, &stats.median, &stats.rms, &stats.meanSquare}) {
        *figure = std::numeric_limits<double>::quiet_NaN();
    }
    return stats;
}

void SignalStatisticsFilter::publish(const signalStatsStruct& stats) {
    board::write(getBoard(), signalStats, stats);
}

void SignalStatisticsFilter::setPropertiesOnSetup(const PropertyList& list) {
    BaseFilter::setPropertiesOnSetup(list);
    setPropertiesImpl(list);
}

void SignalStatisticsFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    board::addIfAbsent<signalStatsStruct>(getBoard(), signalStats);
    namespace options = catalogue::signalStatistics;
    using Setters = SignalStatistics;
    readOptions(list,  //
                ifPresent<options::showMax>(*statistics, &Setters::setComputeMax),
                ifPresent<options::showMin>(*statistics, &Setters::setComputeMin),
                ifPresent<options::showPeakToPeak>(*statistics, &Setters::setComputePeakToPeak),
                ifPresent<options::showMean>(*statistics, &Setters::setComputeMean),
                ifPresent<options::showVariance>(*statistics, &Setters::setComputeVariance),
                ifPresent<options::showStandardDeviation>(*statistics, &Setters::setComputeStandardDeviation),
                ifPresent<options::showMedian>(*statistics, &Setters::setComputeMedian),
                ifPresent<options::showRMS>(*statistics, &Setters::setComputeRMS),
                ifPresent<options::showMeanSquare>(*statistics, &Setters::setComputeMeanSquare),
                ifPresent<options::signalStatisticsEnabled>(active),
                ifPresent<catalogue::base::magPhaseData>(magPhaseData_),
                ifPresent<catalogue::base::autoSpan>(autoSpan_), ifPresent<catalogue::base::customSpan>(customSpan_));
}

Poco::SharedPtr<Poco::JSON::Object> SignalStatisticsFilter::packageImpl(const std::string& clientID) {
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    const auto stats = board::read<signalStatsStruct>(findBoard(clientID), signalStats);
    const auto set = [&package](const char* name, double figure, bool isValid) {
        static const std::string masked = "NaN";
        package->set(name, isValid ? numberText(figure) : masked);
    };
    set("xMin", stats.xMin, stats.minMaxValid);
    set("xMax", stats.xMax, stats.minMaxValid);
    set("yMin", stats.yMin, stats.minMaxValid);
    set("yMax", stats.yMax, stats.minMaxValid);
    set("peakToPeak", stats.peakToPeak, stats.minMaxValid);
    set("mean", stats.mean, stats.meanValid);
    set("variance", stats.variance, stats.varianceValid);
    set("standardDeviation", stats.standardDeviation, stats.varianceValid);
    set("median", stats.median, stats.meanValid);
    set("rms", stats.rms, stats.meanValid);
    set("meanSquare", stats.meanSquare, stats.meanValid);
    package->set("timeRange", timeRangeText(stats.timeRange));
    return package;
}

}  // namespace dspwavedecks
