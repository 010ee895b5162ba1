#include "SpectrumThinnerFilter.h"

#include <algorithm>
#include <cstddef>

#include "BaseOptions.h"
#include "Board.h"
#include "OptionTable.h"

namespace dspwavedecks {

SpectrumThinnerFilter::SpectrumThinnerFilter() = default;

SpectrumThinnerFilter::~SpectrumThinnerFilter() = default;

void SpectrumThinnerFilter::setPropertiesOnSetup(const wavedeck::PropertyList& list) {
    TimeDeckThinnerFilter::setPropertiesOnSetup(list);
    namespace options = catalogue::base;
    readOptions(list,                                       //
                required<options::numSignals>(numSignals),  //
                required<options::numChannels>(numChannels));
    const auto client = findClient(clientID);
    isComplex = client->isComplex();
    thinnedLengths.assign(static_cast<std::size_t>(std::max(numSignals, 0)), 0);
    board::addIfAbsent<std::vector<unsigned long>>(client->getClientSettings(), thinnedSpectrumLength);
}

void SpectrumThinnerFilter::filterImpl(const double* data, std::vector<double>& out, int signal) {
    TimeDeckThinnerFilter::filterImpl(data, out, signal);
    const auto index = static_cast<std::size_t>(signal);
    if (index >= thinnedLengths.size() || index >= numChannels.size()) {
        return;
    }
    const bool isPair = index < isComplex.size() && isComplex[index] != 0;
    const auto channels = static_cast<std::size_t>(std::max(isPair ? numChannels[index] / 2 : numChannels[index], 0));
    thinnedLengths[index] = out.size() / (channels + 1);
    board::write(findBoard(clientID), thinnedSpectrumLength, thinnedLengths);
}

const std::vector<unsigned long>* SpectrumThinnerFilter::getThinnedSpectrumLength(const std::string& clientID) {
    return board::find<std::vector<unsigned long>>(findBoard(clientID), thinnedSpectrumLength);
}

}  // namespace dspwavedecks
