#include "PublishedSpectrum.h"

#include <string>

namespace dspwavedecks::publishedSpectrum {

namespace {

const std::string recordKey = "spectrumEstimatorMetaData";
const std::string lengthKey = "spectrumLength";
const std::string rbwKey = "rbw";

}  // namespace

unsigned long length(const board::Settings& settings) {
    return board::read<unsigned long>(settings, lengthKey);
}

std::optional<double> rbw(const board::Settings& settings) {
    const double* const stored = board::find<double>(settings, rbwKey);
    return stored == nullptr ? std::nullopt : std::optional(*stored);
}

const spectrumEstimatorMetaDataStruct* record(const board::Settings& settings) {
    return board::find<spectrumEstimatorMetaDataStruct>(settings, recordKey);
}

}  // namespace dspwavedecks::publishedSpectrum
