#pragma once

#include "Test.h"
#include "wavedeck/WaveDeckDataProcStrategy.h"
#include "wavedeck/WaveDeckTransformImpl.h"

/// The value of an option, or nothing where the list has none of that type.
template <typename T>
std::vector<T> optionValues(const wavedeck::PropertyList& list, const std::string& name) {
    const auto* event = dynamic_cast<const streamplug::kit::array::PropertyEvent*>(list.find(name));
    std::vector<T> values;
    if (event) {
        for (const T& value : foundation::numbenchdata::TypedArray<T>(event->getValue())) {
            values.push_back(value);
        }
    }
    return values;
}

inline std::string optionText(const wavedeck::PropertyList& list, const std::string& name) {
    const std::vector<char16_t> units = optionValues<char16_t>(list, name);
    return {units.begin(), units.end()};
}

/// What the stages of a chain were called with, in order.
using CallLog = std::vector<std::string>;

/// A stage that writes down every call. With `replace` set it puts out what that makes of the data.
class RecordingStage : public wavedeck::WaveDeckTransformImpl {
public:
    using Replace = std::function<void(const Values& data, Values& out, int signal)>;

    RecordingStage(std::string label, std::shared_ptr<CallLog> log, Replace replaceData = {})
        : replace(std::move(replaceData)), label_(std::move(label)), log_(std::move(log)) {}

    void preProcessImpl() override { note("pre"); }
    void filterImpl(const double* data, Values& out, int signal) override {
        note("filter " + std::to_string(signal));
        outputSizeBefore = out.size();
        seen.resize(std::max<std::size_t>(seen.size(), static_cast<std::size_t>(signal) + 1));
        seen[static_cast<std::size_t>(signal)].assign(data, data + inputLength);
        if (replace) {
            replace(seen[static_cast<std::size_t>(signal)], out, signal);
        } else {
            out.assign(3, -1.0);  // a tap's output is ignored
        }
    }
    void tuneImpl(const wavedeck::PropertyList& list) override {
        last = list;
        note(optionText(list, "action"));
        if (onAction) {
            onAction(list);
        }
    }
    void rollbackImpl(const wavedeck::PropertyList& list) override {
        last = list;
        note("rollback " + optionText(list, "action"));
    }
    bool isActive() override { return active; }
    bool isReadOnly() override { return !replace; }
    void resetImpl() override { note("reset"); }

    bool active = true;
    Replace replace;  ///< null: a tap
    std::function<void(const wavedeck::PropertyList&)> onAction;
    std::vector<Values> seen;  ///< of each signal, in the last frame
    std::size_t outputSizeBefore = 0;
    wavedeck::PropertyList last;

private:
    void note(const std::string& what) { log_->push_back(label_ + " " + what); }

    std::string label_;
    std::shared_ptr<CallLog> log_;
};

/// A strategy that keeps what it was given.
class RecordingStrategy : public wavedeck::WaveDeckDataProcStrategy {
public:
    void processDataAllSignals(const std::vector<Values>& buffers, int count, std::vector<int>& channels,
                               std::vector<int>& points, std::vector<std::string>& identifiers,
                               Poco::SharedPtr<Poco::JSON::Object>& message) override {
        data = buffers;
        numSignals = count;
        numChannels = channels;
        numPoints = points;
        ids = identifiers;
        message->set("client", clientID);
    }

    std::vector<Values> data;
    int numSignals = 0;
    std::vector<int> numChannels;
    std::vector<int> numPoints;
    std::vector<std::string> ids;
};
