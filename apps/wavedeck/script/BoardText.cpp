#include "BoardText.h"

#include <boost/any.hpp>
#include <boost/core/demangle.hpp>
#include <typeindex>
#include <unordered_map>
#include <utility>

#include "BoardRecords.h"
#include "JsonText.h"

namespace program {
namespace {

using Writer = std::string (*)(const boost::any&);

template <typename Held>
std::pair<const std::type_index, Writer> writerOf() {
    return {std::type_index(typeid(Held)),
            [](const boost::any& entry) { return toJson(*boost::any_cast<Held>(&entry)); }};
}

}  // namespace

std::optional<std::string> boardEntryAsJson(const wavedeck::WaveDeckClientSettings& board, const std::string& key) {
    static const std::unordered_map<std::type_index, Writer> writers{
        writerOf<bool>(),
        writerOf<int>(),
        writerOf<unsigned long>(),
        writerOf<double>(),
        writerOf<std::string>(),
        writerOf<std::vector<bool>>(),
        writerOf<std::vector<int>>(),
        writerOf<std::vector<unsigned long>>(),
        writerOf<std::vector<double>>(),
        writerOf<dspwavedecks::signalStatsStruct>(),
        writerOf<dspwavedecks::peakFinderStruct>(),
        writerOf<dspwavedecks::channelMeasurementsStruct>(),
        writerOf<dspwavedecks::distortionStruct>(),
        writerOf<dspwavedecks::phaseNoiseStruct>(),
        writerOf<dspwavedecks::spectralMaskStruct>(),
        writerOf<dspwavedecks::spectrumEstimatorMetaDataStruct>(),
        writerOf<dspwavedecks::bilevelMeasurementsStruct>(),
        writerOf<boost::circular_buffer<dspwavedecks::triggerStruct>>(),
    };
    const auto* entry = board.find(key);
    if (entry == nullptr) {
        return std::nullopt;
    }
    const auto writer = writers.find(std::type_index(entry->type()));
    if (writer == writers.end()) {
        return jsonObject({{"type", jsonText(boost::core::demangle(entry->type().name()))}});
    }
    return writer->second(*entry);
}

}  // namespace program
