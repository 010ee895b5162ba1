#include "SpectralMaskTesterFilter.h"

#include <algorithm>

#include <Poco/JSON/Array.h>

#include "BaseOptions.h"
#include "Board.h"
#include "NumberText.h"
#include "OptionTable.h"
#include "SpectrumMeasurementOptions.h"

namespace dspwavedecks {

namespace {

/// The numbers between the commas of a text; std::stod's exceptions for a piece that is none, an empty one included.
std::vector<double> splitNumbers(const std::string& text) {
    std::vector<double> numbers;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        numbers.push_back(std::stod(text.substr(start, comma - start)));
        start = comma + 1;
    }
    return numbers;
}

const char* statusText(bool isPassing) {
    return isPassing ? "passing" : "failing";
}

}  // namespace

SpectralMaskTesterFilter::SpectralMaskTesterFilter() : spectralMaskTester(std::make_unique<SpectralMaskTester>()) {}

SpectralMaskTesterFilter::~SpectralMaskTesterFilter() = default;

void SpectralMaskTesterFilter::setPropertiesOnSetup(const PropertyList& list) {
    readHostFacts(list);
    readOptions(list, required<catalogue::base::numSignals>(numSignals));
    setPropertiesImpl(list);
}

unsigned long SpectralMaskTesterFilter::getNumPointsPerChannel(const int& signal) {
    return getLayout(signal).getBlockLength();
}

void SpectralMaskTesterFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    if (data == nullptr) {
        return;
    }
    const bool isNewTest = !findClient(clientID)->isDataSourceRepository();
    const unsigned long numPoints = getNumPointsPerChannel(signal);
    if (!spectralMaskTester->isSetUpFor(numSignals, numChannels, isComplex)) {
        spectralMaskTester->setup(data, numSignals, numPoints, numChannels, isComplex);
    }
    board::write(getBoard(), spectralMask, *spectralMaskTester->performMaskTest(data, signal, numPoints, isNewTest));
}

void SpectralMaskTesterFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    board::addIfAbsent<spectralMaskStruct>(getBoard(), spectralMask);
    namespace options = catalogue::spectralMask;
    using Tester = SpectralMaskTester;
    auto& tester = *spectralMaskTester;
    readOptions(
        list, ifPresent<options::enabledMasks>([&](const std::string& word) {
            tester.setEnabledMasks(tester.getEnabledMasksEnum(word));
        }),
        ifPresent<options::upperMask>([&](const std::string& text) { tester.setUpperMask(splitNumbers(text)); }),
        ifPresent<options::lowerMask>([&](const std::string& text) { tester.setLowerMask(splitNumbers(text)); }),
        ifPresent<options::referenceLevel>(
            [&](const std::string& word) { tester.setReferenceLevel(tester.getReferenceLevelEnum(word)); }),
        ifPresent<options::customReferenceLevel>(tester, &Tester::setCustomReferenceLevel),
        ifPresent<options::spectralMaskChannel>([&](int index) {
            measurementChannel_ = index;
            tester.setSelectedChannel(static_cast<unsigned long>(index));
        }),
        // The tester does not learn of the signal and looks for the peak in signal 0: meant so.
        ifPresent<options::spectralMaskSignal>(measurementSignal_),
        ifPresent<options::maskFrequencyOffset>(tester, &Tester::setMaskFrequencyOffset),
        ifPresent<options::frequencyLimits>(tester, &Tester::setFrequencyLimits),
        ifPresent<options::frequencyOffset>(tester, &Tester::setFrequencyOffset),
        ifPresent<options::spectralMaskEnabled>(active));
    tester.release();
}

Poco::SharedPtr<Poco::JSON::Object> SpectralMaskTesterFilter::packageImpl(const std::string& clientID) {
    const auto record = board::read<spectralMaskStruct>(findBoard(clientID), spectralMask);
    Poco::JSON::Array::Ptr failingChannels = new Poco::JSON::Array;
    for (const unsigned long channel : record.failingChannels) {
        failingChannels->add(channel);
    }
    Poco::SharedPtr<Poco::JSON::Object> package = new Poco::JSON::Object;
    package->set("isCurrentlyPassing", record.isCurrentlyPassing);
    package->set("currentStatus", record.currentStatus);
    package->set("upperMaskStatus", std::string(statusText(record.upperMaskStatus)));
    package->set("lowerMaskStatus", std::string(statusText(record.lowerMaskStatus)));
    package->set("numPassedTests", numberText(record.numPassedTests));
    package->set("numTotalTests", numberText(record.numTotalTests));
    package->set("failingMasks", record.failingMasks);
    package->set("failingChannels", failingChannels);
    package->set("successRate", numberText(record.successRate));
    package->set("spectrumPeak", numberText(record.spectrumPeak));
    return package;
}

}  // namespace dspwavedecks
