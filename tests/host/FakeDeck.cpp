// The fixture library: one tap, one stage that replaces data, one strategy, one query function, the data items.

#include <vector>

#include "numbench/nbArray.h"
#include "wavedeck/WaveDeckClientRegistry.h"
#include "wavedeck/WaveDeckDataProcStrategy.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace {

using wavedeck::PropertyList;

/// Counts the doubles that it is handed, on the board.
class CountingTap : public wavedeck::WaveDeckTransformImpl {
public:
    void tuneImpl(const PropertyList& list) override {
        if (const auto* name = dynamic_cast<const streamplug::kit::array::PropertyEvent*>(list.find("clientID"))) {
            const std::u16string text = foundation::numbenchdata::CharArray(name->getValue()).toUTF16();
            clientID.assign(text.begin(), text.end());
        }
    }
    void filterImpl(const double*, std::vector<double>&, int) override {
        auto& board = wavedeck::WaveDeckClientRegistry::sInstance(clientID)->getClientSettings();
        if (!board.find("doublesSeen")) {
            board.addCustomSetting("doublesSeen", 0.0);
        }
        boost::any_cast<double&>(board["doublesSeen"]) += static_cast<double>(inputLength);
    }
};

/// Doubles all values.
class GainStage : public wavedeck::WaveDeckTransformImpl {
public:
    void filterImpl(const double* data, std::vector<double>& out, int) override {
        out.assign(data, data + inputLength);
        for (double& value : out) {
            value *= 2.0;
        }
    }
    bool isReadOnly() override { return false; }
};

class SizeStrategy : public wavedeck::WaveDeckDataProcStrategy {
public:
    void processDataAllSignals(const std::vector<std::vector<double>>& data, int, std::vector<int>&, std::vector<int>&,
                               std::vector<std::string>&, Poco::SharedPtr<Poco::JSON::Object>& message) override {
        message->set("size", static_cast<int>(data.front().size()));
    }
};

}  // namespace

#define FAKE_EXPORT extern "C" __attribute__((visibility("default")))

FAKE_EXPORT const char* const libfakedeck_version;
const char* const libfakedeck_version = "1.2.3";

FAKE_EXPORT wavedeck::WaveDeckTransformImpl* fake_tap_filter() {
    return new CountingTap;
}
FAKE_EXPORT wavedeck::WaveDeckTransformImpl* fake_gain_filter() {
    return new GainStage;
}
FAKE_EXPORT wavedeck::WaveDeckDataProcStrategy* fake_strategy() {
    return new SizeStrategy;
}
FAKE_EXPORT void getDoublesSeenImpl(int, nbArray** plhs, int, const nbArray** prhs) {
    auto& board = wavedeck::WaveDeckClientRegistry::sInstance(nbArrayToStdString(prhs[0]))->getClientSettings();
    plhs[0] = nbCreateDoubleScalar(boost::any_cast<double>(board["doublesSeen"]));
}
