#include "MagPhaseResponseFilter.h"

#include <algorithm>
#include <cstddef>

#include "Board.h"
#include "ChannelSizeFactors.h"
#include "MagnitudePhaseOptions.h"
#include "OptionTable.h"
#include "TruncateTo.h"
#include "VectorMath.h"

namespace dspwavedecks {

namespace options = catalogue::magPhaseResponse;

MagPhaseResponseFilter::MagPhaseResponseFilter() : magPhase(std::make_unique<MagPhase>(1UL, true)) {
    registerUsualActions();
}

MagPhaseResponseFilter::~MagPhaseResponseFilter() = default;

void MagPhaseResponseFilter::setPropertiesOnSetup(const PropertyList& list) {
    readOptions(list,                                               //
                required<options::clientID>(clientID),              //
                required<catalogue::base::numSignals>(numSignals),  //
                required<catalogue::base::numChannels>(numChannels));
    isComplex.assign(static_cast<std::size_t>(std::max(numSignals, 0)), 1);
    doubleRealChannels();
    setPropertiesImpl(list);
}

void MagPhaseResponseFilter::onInputSizeChange(const PropertyList& list) {
    BaseFilter::onInputSizeChange(list);
    doubleRealChannels();
}

void MagPhaseResponseFilter::doubleRealChannels() {
    const auto client = findClient(clientID);
    const std::vector<int>& isComplexAtClient = client->isComplex();
    const std::size_t signals = std::min(numChannels.size(), isComplexAtClient.size());
    for (std::size_t signal = 0; signal < signals; ++signal) {
        if (isComplexAtClient[signal] == 0) {
            numChannels[signal] = truncateTo<int>(2.0 * numChannels[signal]);
        }
    }
}

void MagPhaseResponseFilter::setPropertiesImpl(const PropertyList& list) {
    readOptions(list, required<options::clientID>(clientID));
    auto& settings = getBoard();
    board::addIfAbsent<std::vector<bool>>(settings, magPhaseData);
    board::addIfAbsent<bool>(settings, autoSpan);
    board::addIfAbsent<double>(settings, customSpan);
    readOptions(list,  //
                ifPresent<catalogue::base::magPhaseData>(
                    [&](const std::vector<bool>& marks) { settings.addCustomSetting(magPhaseData, marks); }),
                ifPresent<catalogue::base::autoSpan>([&](bool follows) {
                    autoSpan_ = follows;
                    settings.addCustomSetting(autoSpan, follows);
                }),
                ifPresent<catalogue::base::customSpan>([&](double seconds) {
                    customSpan_ = seconds;
                    settings.addCustomSetting(customSpan, seconds);
                }),
                ifPresent<options::magnitudeDisplay>([&](const std::string& text) {
                    const catalogue::Word* const word = catalogue::findWord(options::magnitudeDisplayWords, text);
                    magnitudeDisplay =
                        word == nullptr ? MagnitudeDisplay::Magnitude : static_cast<MagnitudeDisplay>(word->value);
                }));
    storeChannelSizeFactors(clientID, std::vector<double>(isComplex.size(), 1.0));
}

void MagPhaseResponseFilter::filterImpl(const double* data, std::vector<double>& out, int signal) {
    if (data == nullptr) {
        return;
    }
    const auto channels = static_cast<unsigned long>(std::max(getChannelCount(signal), 0));
    const unsigned long points = inputLength / (channels + 1);
    magPhase->setNumChannels(channels);
    magPhase->setIsInputComplex(true);
    out.resize(points * (channels + 1));
    magPhase->computeMagPhase(data, out, points);
    scaleMagnitudes(out.data() + points, points * (channels / 2));
}

void MagPhaseResponseFilter::scaleMagnitudes(double* magnitudes, std::size_t count) const {
    switch (magnitudeDisplay) {
        case MagnitudeDisplay::Magnitude:
            break;
        case MagnitudeDisplay::Decibels:
            vectormath::toDecibels(magnitudes, magnitudes, count, 0.0);
            for (std::size_t i = 0; i < count; ++i) {
                magnitudes[i] *= 2.0;  // of an amplitude, not of a power
            }
            break;
        case MagnitudeDisplay::Squared:
            for (std::size_t i = 0; i < count; ++i) {
                magnitudes[i] *= magnitudes[i];
            }
            break;
    }
}

}  // namespace dspwavedecks
