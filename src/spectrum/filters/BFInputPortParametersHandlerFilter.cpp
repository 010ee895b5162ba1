#include "BFInputPortParametersHandlerFilter.h"

#include "Board.h"
#include "OptionTable.h"
#include "SpectrumOptions.h"

namespace dspwavedecks {

namespace {

using Handler = BFInputPortParametersHandlerFilter;

template <class Value>
void store(const std::string& clientID, const std::string& key, const Value& value) {
    auto& settings = findBoard(clientID);
    const std::lock_guard lock(Handler::mMutex);
    board::write(settings, key, value);
}

template <class Value>
Value load(const std::string& clientID, const std::string& key) {
    const auto& settings = findBoard(clientID);
    const std::lock_guard lock(Handler::mMutex);
    return board::read<Value>(settings, key);
}

}  // namespace

BFInputPortParametersHandlerFilter::BFInputPortParametersHandlerFilter() {
    registerUsualActions();
}

BFInputPortParametersHandlerFilter::~BFInputPortParametersHandlerFilter() = default;

void BFInputPortParametersHandlerFilter::setPropertiesOnSetup(const PropertyList& list) {
    readOptions(list,                                               //
                required<catalogue::base::clientID>(clientID),      //
                required<catalogue::base::numSignals>(numSignals),  //
                required<catalogue::base::frameSize>(frameSize));
    setPropertiesImpl(list);
}

void BFInputPortParametersHandlerFilter::setPropertiesImpl(const PropertyList& list) {
    BaseFilter::setPropertiesImpl(list);
    {
        auto& settings = getBoard();
        const std::lock_guard lock(mMutex);
        board::addIfAbsent<std::vector<double>>(settings, frequencyVector);
        board::addIfAbsent<bool>(settings, inputPortFrequencyVector);
        board::addIfAbsent<double>(settings, rbw);
        board::addIfAbsent<bool>(settings, inputPortRBW);
        board::addIfAbsent<double>(settings, vbw);
        board::addIfAbsent<bool>(settings, inputPortVBW);
    }
    namespace options = catalogue::inputPortParameters;
    readOptions(list,                                                                     //
                ifPresent<options::inputPortFrequencyVector>(inputPortFrequencyVector_),  //
                ifPresent<options::inputPortRBW>(inputPortRBW_),                          //
                ifPresent<options::inputPortVBW>(inputPortVBW_));
    forgetUnusedPorts();
}

/// A signal that is no port any more is one of the data, for those too that ask the board.
void BFInputPortParametersHandlerFilter::forgetUnusedPorts() {
    if (!inputPortFrequencyVector_) {
        setInputPortFrequencyVector(clientID, false);
    }
    if (!inputPortRBW_) {
        setInputPortRBW(clientID, false);
        lastRBW.reset();
    }
    if (!inputPortVBW_) {
        setInputPortVBW(clientID, false);
    }
}

void BFInputPortParametersHandlerFilter::filterImpl(const double* data, std::vector<double>&, int signal) {
    const int vbwSignal = numSignals - (inputPortVBW_ ? 1 : 0);
    const int rbwSignal = vbwSignal - (inputPortRBW_ ? 1 : 0);
    const int frequencySignal = rbwSignal - (inputPortFrequencyVector_ ? 1 : 0);
    const bool hasData = data != nullptr && inputLength > 0;
    if (inputPortFrequencyVector_ && signal == frequencySignal) {
        takeFrequencyVector(data, signal);
    }
    if (inputPortRBW_ && signal == rbwSignal) {
        if (hasData) {
            lastRBW = data[inputLength - 1];
        }
        // The estimator overwrites the entry with what it made of the value. Where the port delivers nothing its last
        // value stands again, lest the estimator take its own RBW for a new one with each frame.
        if (lastRBW) {
            setRBW(clientID, *lastRBW);
            setInputPortRBW(clientID, true);
        }
    }
    if (inputPortVBW_ && signal == vbwSignal && hasData) {
        setVBW(clientID, data[inputLength - 1]);
        setInputPortVBW(clientID, true);
    }
}

void BFInputPortParametersHandlerFilter::takeFrequencyVector(const double* data, int signal) {
    const auto index = static_cast<std::size_t>(signal);
    const std::size_t count = signal >= 0 && index < frameSize.size() && frameSize[index] > 0
                                  ? static_cast<std::size_t>(frameSize[index])
                                  : 0;
    const std::size_t first = inputLength / (count + 1);
    if (data == nullptr || count == 0 || first == 0 || count > inputLength - first) {
        return;
    }
    setFrequencyVector(clientID, data + first, count);
    setInputPortFrequencyVector(clientID, true);
}

void BFInputPortParametersHandlerFilter::setFrequencyVector(const std::string& clientID, const double* data,
                                                            const std::size_t& n) {
    auto& settings = findBoard(clientID);
    const std::lock_guard lock(mMutex);
    if (auto* const stored = board::find<std::vector<double>>(settings, frequencyVector)) {
        stored->assign(data, data + n);
    }
}

std::vector<double> BFInputPortParametersHandlerFilter::getFrequencyVector(const std::string& clientID) {
    return load<std::vector<double>>(clientID, frequencyVector);
}

void BFInputPortParametersHandlerFilter::setInputPortFrequencyVector(const std::string& clientID, bool isFromPort) {
    store(clientID, inputPortFrequencyVector, isFromPort);
}

bool BFInputPortParametersHandlerFilter::isFrequencyVectorSourceInputPort(const std::string& clientID) {
    return load<bool>(clientID, inputPortFrequencyVector);
}

void BFInputPortParametersHandlerFilter::setRBW(const std::string& clientID, double hertz) {
    store(clientID, rbw, hertz);
}

double BFInputPortParametersHandlerFilter::getRBW(const std::string& clientID) {
    return load<double>(clientID, rbw);
}

void BFInputPortParametersHandlerFilter::setInputPortRBW(const std::string& clientID, bool isFromPort) {
    store(clientID, inputPortRBW, isFromPort);
}

bool BFInputPortParametersHandlerFilter::isRBWSourceInputPort(const std::string& clientID) {
    return load<bool>(clientID, inputPortRBW);
}

void BFInputPortParametersHandlerFilter::setVBW(const std::string& clientID, double hertz) {
    store(clientID, vbw, hertz);
}

double BFInputPortParametersHandlerFilter::getVBW(const std::string& clientID) {
    return load<double>(clientID, vbw);
}

void BFInputPortParametersHandlerFilter::setInputPortVBW(const std::string& clientID, bool isFromPort) {
    store(clientID, inputPortVBW, isFromPort);
}

bool BFInputPortParametersHandlerFilter::isVBWSourceInputPort(const std::string& clientID) {
    return load<bool>(clientID, inputPortVBW);
}

}  // namespace dspwavedecks
