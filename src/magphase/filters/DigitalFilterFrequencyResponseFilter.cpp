#include "DigitalFilterFrequencyResponseFilter.h"

#include <algorithm>

#include "BaseOptions.h"
#include "Board.h"
#include "ChannelSizeFactors.h"
#include "OptionTable.h"

namespace dspwavedecks {

DigitalFilterFrequencyResponseFilter::DigitalFilterFrequencyResponseFilter()
    : response(std::make_unique<DigitalFilterFrequencyResponse>()) {
    registerUsualActions();
}

DigitalFilterFrequencyResponseFilter::~DigitalFilterFrequencyResponseFilter() = default;

void DigitalFilterFrequencyResponseFilter::setPropertiesOnSetup(const PropertyList& list) {
    namespace options = catalogue::base;
    readOptions(list,                                       //
                required<options::clientID>(clientID),      //
                required<options::numSignals>(numSignals),  //
                required<options::numChannels>(numChannels));
    isComplex = findClient(clientID)->isComplex();
    storeChannelSizeFactors(clientID, std::vector<double>(isComplex.size(), 1.0));
    setPropertiesImpl(list);
}

void DigitalFilterFrequencyResponseFilter::filterImpl(const double* data, std::vector<double>& out, int signal) {
    const auto channels = static_cast<unsigned long>(std::max(getChannelCount(signal), 0));
    if (data == nullptr || signal != 0 || numSignals != 1 || inputLength == 0 || inputLength < channels) {
        return;
    }
    // Without a channel count the first value is the one coefficient: meant so.
    const unsigned long coefficients = channels == 0 ? 1 : inputLength / channels;
    numerators[0].assign(data, data + coefficients);
    response->freqz(numerators, denominators, out);
}

}  // namespace dspwavedecks
