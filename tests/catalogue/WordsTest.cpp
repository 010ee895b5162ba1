// The words and numbers of the catalogue against the look-ups of the classes that take them.

#include <span>

#include "Catalogue.h"
#include "ChannelMeasurements.h"
#include "DistortionMeasurements.h"
#include "SpectralMaskTester.h"
#include "SpectrumEstimatorEnum.h"
#include "Test.h"

namespace {

using namespace dspwavedecks::catalogue;

/// Every word gives its number. A look-up that does not know a word gives 0 or throws.
template <typename LookUp>
void expectWords(std::span<const Word> words, const LookUp& lookUp) {
    for (const Word& word : words) {
        EXPECT_EQ(static_cast<int>(lookUp(std::string(word.text))), word.value) << word.text;
    }
}

TEST(Words, AreThoseOfTheSpectrumEstimator) {
    using Enum = SpectrumEstimatorEnum;
    expectWords(spectrum::inputDomainWords, Enum::getInputDomainEnum);
    expectWords(spectrum::spectrumTypeWords, Enum::getSpectrumTypeEnum);
    expectWords(spectrum::methodWords, Enum::getMethodEnum);
    expectWords(spectrum::frequencyRangeWords, Enum::getFrequencyRangeEnum);
    expectWords(spectrum::frequencyResolutionMethodWords, Enum::getFrequencyResolutionMethodEnum);
    expectWords(spectrum::frequencySpanWords, Enum::getFrequencySpanEnum);
    expectWords(spectrum::windowWords, Enum::getWindowEnum);
    expectWords(spectrum::spectrumUnitsWords, Enum::getSpectrumUnitsEnum);
    expectWords(spectrum::averagingMethodWords, Enum::getAveragingMethodEnum);
}

TEST(Words, AreThoseOfTheMeasurements) {
    const ChannelMeasurements channel;
    const auto with = [](const auto& object, auto lookUp) {
        return [&object, lookUp](const std::string& word) { return (object.*lookUp)(word); };
    };
    expectWords(channelMeasurements::typeWords, with(channel, &ChannelMeasurements::getTypeEnum));
    expectWords(channelMeasurements::filterShapeWords, with(channel, &ChannelMeasurements::getFilterShapeEnum));
    expectWords(spectrum::spectrumTypeWords, with(channel, &ChannelMeasurements::getSpectrumTypeEnum));
    expectWords(spectrum::measurementUnitsWords, with(channel, &ChannelMeasurements::getSpectrumUnitsEnum));
    const DistortionMeasurements distortion;
    expectWords(distortionMeasurements::typeWords, with(distortion, &DistortionMeasurements::getTypeEnum));
    const SpectralMaskTester mask;
    expectWords(spectralMask::enabledMasksWords, with(mask, &SpectralMaskTester::getEnabledMasksEnum));
    expectWords(spectralMask::referenceLevelWords, with(mask, &SpectralMaskTester::getReferenceLevelEnum));
}

}  // namespace
