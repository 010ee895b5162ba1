#include "SoakRound.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "RandomSamples.h"
#include "wavedeck/DataStorageFilterUtils.h"
#include "wavedeck/WaveDeckClientInfo.h"

namespace soak {

using wavedeck::driver::ChainKind;
using wavedeck::driver::ClientFacts;
using wavedeck::driver::SignalFacts;

namespace {

std::string typeName(const std::exception& thrown) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(typeid(thrown).name(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : typeid(thrown).name();
}

/// The text with N for each run of digits, so that texts of one kind are one.
std::string withoutNumbers(const std::string& text) {
    std::string result;
    for (const char character : text) {
        const bool isDigit = character >= '0' && character <= '9';
        if (!isDigit || result.empty() || result.back() != 'N') {
            result += isDigit ? 'N' : character;
        }
    }
    return result;
}

/// Words that are in no table and digits that are no number, in the library's own words.
bool isRefusedWord(std::string_view text) {
    return text.find("map::at") != std::string_view::npos || text.starts_with("sto");
}

/// What containers throw for more than any memory holds, and the estimators with them.
bool isTooLarge(std::string_view text) {
    return text.find("max_size") != std::string_view::npos || text.starts_with("vector::");
}

/// Exceptions that stand for an oversight, not for an option that was refused.
bool isFault(const std::exception& thrown) {
    return dynamic_cast<const std::bad_cast*>(&thrown) != nullptr ||
           dynamic_cast<const std::bad_function_call*>(&thrown) != nullptr ||
           (dynamic_cast<const std::out_of_range*>(&thrown) != nullptr && !isRefusedWord(thrown.what())) ||
           (dynamic_cast<const std::length_error*>(&thrown) != nullptr && !isTooLarge(thrown.what()));
}

/// Whether each channel has a value for every place on its axis, or a whole number of spectra.
bool isWhole(const Poco::JSON::Object& message) {
    const auto signals = message.getArray("signals");
    for (unsigned s = 0; signals && s < signals->size(); ++s) {
        const auto signal = signals->getObject(s);  // null where nothing of it came yet
        const auto channels = signal ? signal->getArray("channel") : Poco::JSON::Array::Ptr();
        for (unsigned k = 0; channels && k < channels->size(); ++k) {
            const auto channel = channels->getObject(k);
            const bool isSpectrum = channel->has("frequency");
            const char* const axis = isSpectrum ? "frequency" : channel->has("time") ? "time" : "sample";
            const std::size_t points = channel->getArray(axis)->size();
            const std::size_t values = channel->getArray("data")->size();
            if (isSpectrum ? values % std::max<std::size_t>(points, 1) != 0 : values != points) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace

/// The values of a simulation: random, now and then at an end.
class SoakRound::Input : public wavedeck::driver::SimulationInput {
public:
    Input(RandomNumbers& random, std::vector<SignalFacts> signals) : random_(random), signals_(std::move(signals)) {}

    bool read(std::size_t signal, std::size_t frameSize, std::vector<double>& frame) override {
        const SignalFacts& facts = signals_[signal];
        const bool isSilent = facts.isInputPort && random_.oneIn(3);
        frame.assign(isSilent ? 0 : static_cast<std::size_t>(facts.numChannels) * frameSize, 0.0);
        fillSamples(random_, frame);
        return !random_.oneIn(500);
    }
    void restart() override {}

private:
    RandomNumbers& random_;
    std::vector<SignalFacts> signals_;
};

SoakRound::SoakRound(const wavedeck::driver::StageLibrary& library, const std::vector<ChainForm>& forms,
                     const std::vector<std::string>& queries, std::uint64_t seed, Tally& tally)
    : library_(library), queries_(queries), tally_(tally), random_(seed), form_(random_.elementOf(forms)) {
    const ClientFacts facts = randomFacts();
    client_ = std::make_unique<wavedeck::driver::DeckClient>(facts);
    buildChain();
    if (wavedeck::driver::isBlockflow(form_.kind)) {
        input_ = std::make_unique<Input>(random_, facts.signals);
        simulation_ = std::make_unique<wavedeck::driver::BlockflowSimulation>(*client_, *input_, 20);
    }
}

SoakRound::~SoakRound() = default;

ClientFacts SoakRound::randomFacts() {
    ClientFacts facts;
    facts.name = "soak";
    facts.kind = form_.kind;
    const bool isSpectrum = form_.kind == ChainKind::Spectrum || form_.kind == ChainKind::BlockflowSpectrum;
    const double sampleTime = random_.oneOf({1e-4, 1e-3, 0.1});
    const int frameSize = random_.oneOf({1, 4, 16, 64, 300});
    const std::size_t count = 1 + random_.below(3);
    for (std::size_t s = 0; s < count; ++s) {
        SignalFacts signal;
        signal.id = random_.oneIn(12) ? "" : "signal" + std::to_string(s);
        signal.isComplex = random_.oneIn(3);
        signal.numChannels =
            static_cast<int>((random_.oneIn(12) ? 0 : 1 + random_.below(3)) * (signal.isComplex ? 2 : 1));
        signal.sampleTime = isSpectrum ? sampleTime : sampleTime * random_.oneOf({1.0, 1.0, 0.5, 0.0});
        signal.offset = random_.oneOf({0.0, 0.0, -1.0, 2.5});
        signal.frameSize = random_.oneIn(3) ? random_.oneOf({0, 1, 7, 100}) : frameSize;
        signal.isInputPort = form_.kind == ChainKind::BlockflowSpectrum && s > 0;
        facts.signals.push_back(signal);
        channels_.push_back(signal.numChannels);
    }
    facts.startTime = random_.oneOf({0.0, 0.0, -0.5, 10.0});
    facts.stopTime = random_.oneOf({std::numeric_limits<double>::infinity(), 1.0});
    facts.timeBased = !random_.oneIn(6);
    if (random_.oneIn(2)) {
        facts.displaySpan = sampleTime * random_.oneOf({0.0, 1.0, 100.0, 5000.5});
    }
    return facts;
}

void SoakRound::buildChain() {
    stages_ = chooseStages(form_, random_);
    for (const auto* stage : stages_) {
        const std::string name(stage->name);
        client_->addStage(name, library_.makeFilter(name), RandomOptions(random_, lengths()).forSetup(*stage));
    }
    client_->setStrategy(form_.strategy, library_.makeStrategy(form_.strategy));
}

ListLengths SoakRound::lengths() const {
    std::size_t channels = 0;
    for (const int count : channels_) {
        channels += static_cast<std::size_t>(count);
    }
    return {channels_.size(), channels};
}

void SoakRound::run(int steps) {
    ++tally_.rounds;
    attempt(&SoakRound::setUp);
    for (int i = 0; i < steps; ++i) {
        attempt(&SoakRound::step);
    }
    attempt(&SoakRound::update);
}

void SoakRound::attempt(void (SoakRound::*step)()) {
    ++tally_.steps;
    try {
        (this->*step)();
    } catch (const std::exception& thrown) {
        const std::string text = typeName(thrown) + ": " + thrown.what();
        if (isFault(thrown)) {
            tally_.faults.push_back(text);
        }
        ++tally_.refusals[withoutNumbers(text)];
    }
}

void SoakRound::step() {
    struct Share {
        std::size_t weight;
        void (SoakRound::*step)();
    };
    static constexpr Share shares[] = {
        {50, &SoakRound::feed},  {4, &SoakRound::feedOddly}, {16, &SoakRound::tune},
        {3, &SoakRound::setUp},  {4, &SoakRound::resize},    {6, &SoakRound::changeClient},
        {3, &SoakRound::replay}, {10, &SoakRound::update},   {4, &SoakRound::query},
    };
    std::size_t drawn = random_.below(100);
    const auto* share = std::begin(shares);
    while (drawn >= share->weight) {
        drawn -= share->weight;
        ++share;
    }
    (this->*share->step)();
}

void SoakRound::feed() {
    if (simulation_) {
        return simulate();
    }
    ++tally_.frames;
    client_->frame(randomFrame(random_, channels_));
}

void SoakRound::feedOddly() {
    ++tally_.frames;
    const auto buffers = randomBuffers(random_, channels_.size());
    switch (random_.below(4)) {
        case 0:
            return client_->simulationFrame(buffers);
        case 1:
            return client_->frame(buffers);
        case 2:
            client_->replayAsIs(buffers);
            return;
        default:
            return client_->frameAsIs(buffers);
    }
}

void SoakRound::simulate() {
    switch (random_.below(12)) {
        case 0:
            simulation_->stepBack();
            return;
        case 1:
            return random_.oneIn(5) ? simulation_->restart(random_.oneIn(2)) : simulation_->resume();
        case 2:
            return random_.oneIn(5) ? simulation_->pause() : simulation_->resume();
        default:
            for (std::size_t steps = 1 + random_.below(8); steps > 0; --steps) {
                simulation_->step();
            }
            simulation_->deliver(1 + random_.below(10));
            ++tally_.frames;
    }
}

void SoakRound::tune() {
    if (stages_.empty()) {
        return;
    }
    const auto& stage = *random_.elementOf(stages_);
    const PropertyList list = RandomOptions(random_, lengths()).forTuning(stage);
    random_.oneIn(15) ? client_->sendAsIs(std::string(stage.name), list) : client_->tune(std::string(stage.name), list);
}

void SoakRound::setUp() {
    if (stages_.empty() || !random_.oneIn(3)) {
        try {
            return client_->setup();
        } catch (const std::exception&) {
            for (const auto* stage : stages_) {  // so that the client has a life in spite of an option
                client_->setup(std::string(stage->name), {});
            }
            throw;
        }
    }
    const auto& stage = *random_.elementOf(stages_);
    client_->setup(std::string(stage.name), RandomOptions(random_, lengths()).forSetup(stage));
}

void SoakRound::resize() {
    std::vector<int> channels = channels_;
    std::vector<int> sizes;
    for (std::size_t s = 0; s < channels.size(); ++s) {
        const bool isComplex = client_->facts().signals[s].isComplex;
        channels[s] = simulation_ ? channels[s] : static_cast<int>(random_.below(4) * (isComplex ? 2 : 1));
        sizes.push_back(random_.oneOf({0, 1, 4, 16, 300}));
    }
    if (simulation_) {
        simulation_->setFrameSizes(sizes);
    } else if (random_.oneIn(3)) {
        client_->resizeFrames(sizes);
    } else {
        channels_ = channels;
        client_->resize(channels, sizes);
    }
}

void SoakRound::changeClient() {
    const auto seconds = [&] { return random_.oneOf({-1.0, 0.0, 0.01, 0.5, 3.0, 100.0}); };
    switch (random_.below(6)) {
        case 0: {
            PropertyList list;
            random_.oneIn(8) ? list : list.addDouble("rollbacktime", client_->streamTime() * random_.fraction());
            return client_->rollback(list);
        }
        case 1:
            return client_->rollback(PropertyList().addDouble("rollbacktime", seconds()));
        case 2:
            return stages_.empty() || random_.oneIn(2) ? client_->reset()
                                                       : client_->reset(std::string(random_.elementOf(stages_)->name));
        case 3:
            return client_->restart();
        case 4:
            return client_->setDisplaySpan(seconds());
        default:
            return client_->setStorage({{seconds(), seconds()}, random_.oneIn(2), random_.oneIn(2)});
    }
}

void SoakRound::replay() {
    switch (random_.below(3)) {
        case 0:
            client_->replay();
            return;
        case 1:
            client_->replay(randomFrame(random_, channels_));
            return;
        default:
            return client_->setReplaying(random_.oneIn(3));
    }
}

void SoakRound::update() {
    const auto made = random_.oneIn(2) ? client_->update() : client_->updateNow();
    if (made.message.isNull()) {
        return;
    }
    const std::string& text = text_.write(*made.message);
    ++tally_.messages;
    tally_.messageHash = tally_.messageHash * 31 + std::hash<std::string>{}(text);
    if (!nlohmann::json::accept(text)) {
        tally_.faults.push_back("a message that is no JSON: " + text.substr(0, 2000));
    }
    if (!isWhole(*made.message)) {
        tally_.faults.push_back("a message whose values do not fit their axis: " + text.substr(0, 2000));
    }
}

void SoakRound::query() {
    if (queries_.empty()) {
        return;
    }
    ++tally_.queries;
    const auto function = library_.query(random_.elementOf(queries_));
    client_->query(function);
}

}  // namespace soak
