#include "Chain.h"

#include <algorithm>
#include <span>
#include <utility>

#include "DriverError.h"

namespace wavedeck::driver {

namespace {

std::span<const double> currentOf(const SignalFrame& signal) {
    return signal.current ? std::span<const double>(*signal.current) : signal.raw;
}

}  // namespace

Chain::Chain(std::size_t numSignals, std::size_t numDataSignals, std::function<std::size_t()> lineLength)
    : numSignals_(numSignals), numDataSignals_(numDataSignals), lineLength_(std::move(lineLength)) {}

void Chain::add(const std::string& name, std::shared_ptr<WaveDeckTransformImpl> object, PropertyList options) {
    for (const Stage& stage : stages_) {
        if (stage.name == name) {
            throw DriverError("the chain has two stages \"" + name + "\"");
        }
    }
    Stage stage;
    stage.name = name;
    stage.object = std::move(object);
    stage.options = std::move(options);
    stage.view = viewOf(name);
    stage.dataSignalsOnly = takesDataSignalsOnly(name);
    stage.outputs.resize(numSignals_);
    stages_.push_back(std::move(stage));
}

Stage& Chain::find(const std::string& name) {
    return const_cast<Stage&>(std::as_const(*this).find(name));
}

const Stage& Chain::find(const std::string& name) const {
    for (const Stage& stage : stages_) {
        if (stage.name == name) {
            return stage;
        }
    }
    throw DriverError("the chain has no stage \"" + name + "\"");
}

void Chain::run(std::vector<SignalFrame>& signals, const std::vector<int>& channels) {
    for (Stage& stage : stages_) {
        stage.object->preProcessImpl();
    }
    for (Stage& stage : stages_) {
        for (std::vector<double>& output : stage.outputs) {
            output.clear();
        }
        if (stage.object->isActive()) {
            runStage(stage, signals, channels);
        }
    }
}

void Chain::runStage(Stage& stage, std::vector<SignalFrame>& signals, const std::vector<int>& channels) {
    static const double none = 0.0;
    const bool replaces = !stage.object->isReadOnly();
    const std::size_t count = stage.dataSignalsOnly ? numDataSignals_ : signals.size();
    for (std::size_t s = 0; s < count; ++s) {
        SignalFrame& signal = signals[s];
        if (!signal.hasNews) {
            continue;
        }
        std::span<const double> data = stage.view == StageView::Raw ? signal.raw : currentOf(signal);
        if (stage.view == StageView::NewestLine && signal.current) {
            makeNewestLine(signal, static_cast<std::size_t>(channels[s]));
            data = signal.newestLineMade ? std::span<const double>(signal.newestLine) : data;
        }
        std::vector<double>& output = stage.outputs[s];
        stage.object->setInputLength(data.size());
        stage.object->filterImpl(data.empty() ? &none : data.data(), output, static_cast<int>(s));
        if (!replaces) {
            output.clear();
        } else if (output.empty()) {
            signal.hasNews = false;
        } else {
            signal.current = &output;
            signal.newestLineMade = false;
        }
    }
}

void Chain::makeNewestLine(SignalFrame& signal, std::size_t channels) {
    const std::size_t length = signal.newestLineMade ? 0 : lineLength_();
    const std::size_t block = signal.current->size() / (channels + 1);
    if (length == 0 || block <= length) {
        return;
    }
    signal.newestLine.resize((channels + 1) * length);
    const double* source = signal.current->data();
    double* target = std::copy(source, source + length, signal.newestLine.data());
    for (std::size_t channel = 1; channel <= channels; ++channel) {
        const double* end = source + (channel + 1) * block;
        target = std::copy(end - length, end, target);
    }
    signal.newestLineMade = true;
}

}  // namespace wavedeck::driver
