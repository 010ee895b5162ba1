#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "numbench/Exception.h"
#include "wavedeck/WaveDeckClientInfo.h"
#include "wavedeck/WaveDeckClientRegistry.h"
#include "wavedeck/WaveDeckStatics.h"

namespace bf_observer {

ClientSettings::~ClientSettings() = default;

}  // namespace bf_observer

namespace wavedeck {

AxesTime AxesTimeTable::operator[](unsigned long axesId) const {
    const auto entry = entries_.find(axesId);
    return entry == entries_.end() ? AxesTime{} : entry->second;
}

WaveDeckClientSettings::~WaveDeckClientSettings() = default;

void WaveDeckClientSettings::addCustomSetting(const std::string& key, const boost::any& value) {
    boost::any copy(value);  // made first: a copy that fails leaves no empty entry, which would count as present
    const std::lock_guard lock(mutex_);
    values_[key].swap(copy);
}

boost::any* WaveDeckClientSettings::find(const std::string& key) {
    return const_cast<boost::any*>(std::as_const(*this).find(key));
}

const boost::any* WaveDeckClientSettings::find(const std::string& key) const {
    const std::lock_guard lock(mutex_);
    const auto entry = values_.find(key);
    return entry == values_.end() ? nullptr : &entry->second;
}

boost::any& WaveDeckClientSettings::operator[](const std::string& key) {
    const std::lock_guard lock(mutex_);
    return values_[key];
}

std::vector<std::string> WaveDeckClientSettings::keys() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> names;
    names.reserve(values_.size());
    for (const auto& [name, value] : values_) {
        names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

namespace {

/// Stands for every name outside a client's chain.
class InactiveStage : public WaveDeckTransformImpl {
public:
    bool isActive() override { return false; }
};

}  // namespace

WaveDeckClientInfo::WaveDeckClientInfo() : inactiveStage_(std::make_shared<InactiveStage>()) {}
WaveDeckClientInfo::~WaveDeckClientInfo() = default;

const double& WaveDeckClientInfo::getSampleTime(int signal) const {
    static const double none = 0.0;
    const auto index = static_cast<std::size_t>(signal);
    return signal >= 0 && index < sampleTimes_.size() ? sampleTimes_[index] : none;
}

double WaveDeckClientInfo::getOffset(int signal) const {
    const auto index = static_cast<std::size_t>(signal);
    return signal >= 0 && index < offsets_.size() ? offsets_[index] : 0.0;
}

const std::shared_ptr<WaveDeckTransformImpl>& WaveDeckClientInfo::getFilterImpl(const std::string& name) const {
    const auto stage = stages_.find(name);
    return stage == stages_.end() ? inactiveStage_ : stage->second;
}

void WaveDeckClientInfo::setFilterImpl(const std::string& name, std::shared_ptr<WaveDeckTransformImpl> stage) {
    if (stage) {
        stages_[name] = std::move(stage);
    } else {
        stages_.erase(name);
    }
}

unsigned long WaveDeckClientInfo::getAxesIdFromSignalId(unsigned long signal) {
    using AxesOfSignal = std::function<unsigned long(const unsigned long&)>;
    static const std::string key = "WDSigIdToAxesId";
    const auto* axesOfSignal = boost::any_cast<AxesOfSignal>(settings_.find(key));
    return axesOfSignal && *axesOfSignal ? (*axesOfSignal)(signal) : signal;
}

WaveDeckClientRegistry& WaveDeckClientRegistry::sInstance = *new WaveDeckClientRegistry;

// The copy is the host's form of the call.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
std::shared_ptr<WaveDeckClientInfo> WaveDeckClientRegistry::operator()(std::string clientID) const {
    const std::lock_guard lock(mutex_);
    const auto client = clients_.find(clientID);
    if (client == clients_.end()) {
        throw numbench::Exception("Client: " + clientID + " was not found");
    }
    return client->second;
}

bool WaveDeckClientRegistry::isClientValid(const std::string& clientID) const {
    const std::lock_guard lock(mutex_);
    return clients_.count(clientID) != 0;
}

std::shared_ptr<WaveDeckClientInfo> WaveDeckClientRegistry::addClient(const std::string& clientID) {
    auto client = std::make_shared<WaveDeckClientInfo>();
    const std::lock_guard lock(mutex_);
    if (!clients_.try_emplace(clientID, client).second) {
        throw numbench::Exception("Client: " + clientID + " exists already");
    }
    return client;
}

void WaveDeckClientRegistry::removeClient(const std::string& clientID) {
    std::shared_ptr<WaveDeckClientInfo> last;  // destroyed outside the lock: board values may look clients up
    const std::lock_guard lock(mutex_);
    const auto client = clients_.find(clientID);
    if (client != clients_.end()) {
        last = std::move(client->second);
        clients_.erase(client);
    }
}

namespace {

std::atomic<bool> diagnosticsEnabled{false};

}  // namespace

bool WaveDeckStatics::getEnableWaveDecksDiagnostics() {
    return diagnosticsEnabled;
}
void WaveDeckStatics::setEnableWaveDecksDiagnostics(bool enable) {
    diagnosticsEnabled = enable;
}

}  // namespace wavedeck
