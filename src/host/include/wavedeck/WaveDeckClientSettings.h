#pragma once

#include <boost/any.hpp>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "bf_observer/ClientSettings.h"
#include "wavedeck/AxesTimeTable.h"
#include "wavedeck/Visibility.h"

namespace wavedeck {

/// The settings board of a client: named values of any type that outlive the stages. Values are written in place by
/// their owners; the board locks its own adding and finding, nothing else. An entry, once added, keeps its address.
class WAVEDECK_API WaveDeckClientSettings : public bf_observer::ClientSettings {
public:
    WaveDeckClientSettings() = default;
    WaveDeckClientSettings(const WaveDeckClientSettings&) = delete;
    WaveDeckClientSettings& operator=(const WaveDeckClientSettings&) = delete;
    ~WaveDeckClientSettings() override;

    /// Puts a value on the board, in the place of one of the same name.
    void addCustomSetting(const std::string& key, const boost::any& value);

    /// The value under a key, or null. Stays valid as long as the board.
    boost::any* find(const std::string& key);
    const boost::any* find(const std::string& key) const;

    /// The value under a key; an absent one is added empty.
    boost::any& operator[](const std::string& key);

    /// Names of all entries, sorted.
    std::vector<std::string> keys() const;

    AxesTimeTable axesTimeTable;

private:
    mutable std::mutex mutex_;
    std::unordered_map<std::string, boost::any> values_;
};

}  // namespace wavedeck
