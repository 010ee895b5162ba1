#include "MagPhaseFilter.h"

#include <cstddef>
#include <utility>

#include "Board.h"
#include "ChannelSizeFactors.h"
#include "MagnitudePhaseOptions.h"
#include "OptionTable.h"

namespace dspwavedecks {

MagPhaseFilter::MagPhaseFilter() : magPhase(std::make_unique<MagPhase>()) {
    registerUsualActions();
}

MagPhaseFilter::~MagPhaseFilter() = default;

void MagPhaseFilter::filterImpl(const double* data, std::vector<double>& out, int signal) {
    if (data == nullptr || getChannelCount(signal) < 0) {
        return;
    }
    const auto channels = static_cast<unsigned long>(getChannelCount(signal));
    const unsigned long points = inputLength / (channels + 1);
    if (isMarked(signal)) {
        const bool complexInput = isComplexSignal(signal);
        magPhase->setNumChannels(channels);
        magPhase->setIsInputComplex(complexInput);
        out.resize(points * (complexInput ? channels + 1 : 2 * channels + 1));
        magPhase->computeMagPhase(data, out, points);
    } else {
        out.assign(data, data + points * (channels + 1));
    }
}

bool MagPhaseFilter::isActive() {
    for (std::size_t signal = 0; signal < isComplex.size(); ++signal) {
        if (isMarked(static_cast<int>(signal))) {
            return true;
        }
    }
    return false;
}

bool MagPhaseFilter::isMarked(int signal) const {
    const auto index = static_cast<std::size_t>(signal);
    return index < magPhaseSignals.size() && magPhaseSignals[index];
}

void MagPhaseFilter::setPropertiesOnSetup(const PropertyList& list) {
    namespace options = catalogue::base;
    readOptions(list,                                   //
                required<options::clientID>(clientID),  //
                required<options::numChannels>(numChannels));
    isComplex = findClient(clientID)->isComplex();
    setPropertiesImpl(list);
}

void MagPhaseFilter::setPropertiesImpl(const PropertyList& list) {
    namespace options = catalogue::magPhase;
    auto& settings = getBoard();
    board::addIfAbsent<std::vector<bool>>(settings, magPhaseData);
    board::addIfAbsent<bool>(settings, autoSpan);
    board::addIfAbsent<double>(settings, customSpan);
    board::addIfAbsent<std::vector<double>>(settings, timeRange);
    readOptions(list, ifPresent<catalogue::base::magPhaseData>([&](const std::vector<bool>& marks) {
                    magPhaseSignals = marks;
                    board::write(settings, magPhaseData, marks);
                }),
                ifPresent<catalogue::base::autoSpan>([&](bool follows) {
                    autoSpan_ = follows;
                    board::write(settings, autoSpan, follows);
                }),
                ifPresent<catalogue::base::customSpan>([&](double seconds) {
                    customSpan_ = seconds;
                    board::write(settings, customSpan, seconds);
                }),
                ifPresent<options::timeRange>(
                    [&](const std::vector<double>& seconds) { board::write(settings, timeRange, seconds); }));
    publishChannelSizeFactors();
}

void MagPhaseFilter::publishChannelSizeFactors() {
    std::vector<double> factors;
    factors.reserve(isComplex.size());
    for (std::size_t signal = 0; signal < isComplex.size(); ++signal) {
        factors.push_back(isMarked(static_cast<int>(signal)) && isComplex[signal] == 0 ? 2.0 : 1.0);
    }
    storeChannelSizeFactors(clientID, std::move(factors));
}

}  // namespace dspwavedecks
