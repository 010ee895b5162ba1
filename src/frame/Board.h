#pragma once

#include <atomic>
#include <boost/any.hpp>
#include <memory>
#include <string>
#include <utility>

#include "wavedeck/WaveDeckClientRegistry.h"

/// Access to the clients' settings boards. A stage adds its entry once and then writes inside the stored value; a
/// read checks the type, and an entry of another type reads as an absent one.
namespace dspwavedecks {

/// The facts of a client. Throws numbench::Exception for a client that is not registered.
inline std::shared_ptr<wavedeck::WaveDeckClientInfo> findClient(const std::string& clientID) {
    return wavedeck::WaveDeckClientRegistry::sInstance(clientID);
}

/// The board of a client; lives as long as the client is registered.
inline wavedeck::WaveDeckClientSettings& findBoard(const std::string& clientID) {
    return findClient(clientID)->getClientSettings();
}

namespace board {

using Settings = wavedeck::WaveDeckClientSettings;

/// Puts a value on the board unless the key is there already, whatever it holds.
template <class Value>
void addIfAbsent(Settings& settings, const std::string& key, const Value& value = Value{}) {
    if (settings.find(key) == nullptr) {
        settings.addCustomSetting(key, value);
    }
}

/// The stored value, to read or to write in place; null if the key is absent or holds another type.
template <class Value>
Value* find(Settings& settings, const std::string& key) {
    return boost::any_cast<Value>(settings.find(key));
}
template <class Value>
const Value* find(const Settings& settings, const std::string& key) {
    return boost::any_cast<Value>(settings.find(key));
}

/// A copy of the stored value, or `otherwise` if there is none of this type.
template <class Value>
Value read(const Settings& settings, const std::string& key, Value otherwise = Value{}) {
    const Value* const stored = find<Value>(settings, key);
    return stored != nullptr ? *stored : std::move(otherwise);
}

/// The stored number, for readers on threads that nothing keeps apart from its writer; `otherwise` if there is none.
template <class Word>
Word readShared(Settings& settings, const std::string& key, Word otherwise = Word{}) {
    Word* const stored = find<Word>(settings, key);
    return stored != nullptr ? std::atomic_ref<Word>(*stored).load(std::memory_order_relaxed) : otherwise;
}

/// Assigns inside the stored value; does nothing if there is none of this type.
template <class Value>
void write(Settings& settings, const std::string& key, const Value& value) {
    if (Value* const stored = find<Value>(settings, key)) {
        *stored = value;
    }
}

}  // namespace board
}  // namespace dspwavedecks
