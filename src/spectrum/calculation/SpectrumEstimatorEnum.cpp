#include "SpectrumEstimatorEnum.h"

#include <unordered_map>

namespace dspwavedecks {

namespace {

template <class Enum>
using Words = std::unordered_map<std::string, Enum>;

template <class Enum>
Enum valueOf(const Words<Enum>& words, const std::string& word) {
    const auto found = words.find(word);
    return found == words.end() ? Enum{} : found->second;
}

using E = SpectrumEstimatorEnum;

}  // namespace

E::InputDomain E::getInputDomainEnum(const std::string& word) {
    static const Words<InputDomain> words{{"time", InputDomain::time}, {"frequency", InputDomain::frequency}};
    return valueOf(words, word);
}

E::SpectrumType E::getSpectrumTypeEnum(const std::string& word) {
    static const Words<SpectrumType> words{
        {"power", SpectrumType::power}, {"power-density", SpectrumType::powerDensity}, {"rms", SpectrumType::rms}};
    return valueOf(words, word);
}

E::Method E::getMethodEnum(const std::string& word) {
    static const Words<Method> words{{"welch", Method::welch}, {"filter-bank", Method::filterBank}};
    return valueOf(words, word);
}

E::FrequencyRange E::getFrequencyRangeEnum(const std::string& word) {
    static const Words<FrequencyRange> words{{"centered", FrequencyRange::centered},
                                             {"one-sided", FrequencyRange::oneSided},
                                             {"two-sided", FrequencyRange::twoSided}};
    return valueOf(words, word);
}

E::FrequencyResolutionMethod E::getFrequencyResolutionMethodEnum(const std::string& word) {
    static const Words<FrequencyResolutionMethod> words{
        {"rbw", FrequencyResolutionMethod::rbw},
        {"window-length", FrequencyResolutionMethod::windowLength},
        {"num-frequency-bands", FrequencyResolutionMethod::numFrequencyBands}};
    return valueOf(words, word);
}

E::FrequencySpan E::getFrequencySpanEnum(const std::string& word) {
    static const Words<FrequencySpan> words{{"full", FrequencySpan::full},
                                            {"span-and-center-frequency", FrequencySpan::spanAndCenterFrequency},
                                            {"start-and-stop-frequencies", FrequencySpan::startAndStopFrequencies}};
    return valueOf(words, word);
}

E::Window E::getWindowEnum(const std::string& word) {
    static const Words<Window> words{{"blackman-harris", Window::blackmanHarris},
                                     {"chebyshev", Window::chebyshev},
                                     {"flat-top", Window::flatTop},
                                     {"hamming", Window::hamming},
                                     {"hann", Window::hann},
                                     {"kaiser", Window::kaiser},
                                     {"rectangular", Window::rectangular},
                                     {"custom", Window::custom}};
    return valueOf(words, word);
}

E::SpectrumUnits E::getSpectrumUnitsEnum(const std::string& word) {
    static const Words<SpectrumUnits> words{
        {"watts", SpectrumUnits::watts},       {"dbw", SpectrumUnits::dbw},
        {"dbm", SpectrumUnits::dbm},           {"dbfs", SpectrumUnits::dbfs},
        {"vrms", SpectrumUnits::vrms},         {"dbv", SpectrumUnits::dbv},
        {"dbuv", SpectrumUnits::dbuv},         {"watts/hz", SpectrumUnits::wattsPerHz},
        {"dbw/hz", SpectrumUnits::dbwPerHz},   {"dbm/hz", SpectrumUnits::dbmPerHz},
        {"dbfs/hz", SpectrumUnits::dbfsPerHz}, {"auto", SpectrumUnits::automatic},
        {"none", SpectrumUnits::none}};
    return valueOf(words, word);
}

E::AveragingMethod E::getAveragingMethodEnum(const std::string& word) {
    static const Words<AveragingMethod> words{{"exponential", AveragingMethod::exponential},
                                              {"vbw", AveragingMethod::vbw},
                                              {"running", AveragingMethod::running}};
    return valueOf(words, word);
}

}  // namespace dspwavedecks
