#pragma once

#include <memory>
#include <string>
#include <vector>

#include "OptionText.h"
#include "wavedeck/WaveDeckClientInfo.h"
#include "wavedeck/WaveDeckClientRegistry.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace testsupport {

/// A client of the stand-in host that is there for the length of one test.
class TestClient {
public:
    explicit TestClient(std::vector<int> channels = {1}, const std::string& name = "client")
        : numChannels(std::move(channels)), frameSize(numChannels.size(), 4), name_(name) {
        info = wavedeck::WaveDeckClientRegistry::sInstance.addClient(name_);
        info->setIsComplex(std::vector<int>(numChannels.size(), 0));
        info->setSampleTimes(std::vector<double>(numChannels.size(), 1.0));
        info->setOffsets(std::vector<double>(numChannels.size(), 0.0));
    }
    TestClient(const TestClient&) = delete;
    TestClient& operator=(const TestClient&) = delete;
    ~TestClient() { wavedeck::WaveDeckClientRegistry::sInstance.removeClient(name_); }

    wavedeck::WaveDeckClientInfo* operator->() const { return info.get(); }
    wavedeck::WaveDeckClientSettings& board() const { return info->getClientSettings(); }
    const std::string& name() const { return name_; }

    /// A list with an action and options as text, to be added to.
    static PropertyList list(const std::string& action, const std::string& options = "") {
        return PropertyList().addChar("action", action).append(optionList(options));
    }
    static PropertyList tune(const std::string& options = "") { return list("tune", options); }

    /// The list of a setup as the host makes it, and options.
    PropertyList setup(const std::string& options = "") const {
        PropertyList result = list("setup");
        result.addChar("clientID", name_).addDouble("numSignals", static_cast<double>(numChannels.size()));
        result.addInts("numChannels", numChannels).addInts("frameSize", frameSize);
        return result.append(optionList(options));
    }
    PropertyList sizeChange() const {
        return list("onInputSizeChange").addInts("numChannels", numChannels).addInts("frameSize", frameSize);
    }

    std::vector<int> numChannels;
    std::vector<int> frameSize;

private:
    std::string name_;
    std::shared_ptr<wavedeck::WaveDeckClientInfo> info;
};

/// Hands a stage one signal of one frame, as the host does; returns what the stage put out.
inline std::vector<double> feed(wavedeck::WaveDeckTransformImpl& stage, const std::vector<double>& frame,
                                int signal = 0) {
    std::vector<double> out;
    stage.setInputLength(frame.size());
    stage.filterImpl(frame.data(), out, signal);
    return out;
}

}  // namespace testsupport
