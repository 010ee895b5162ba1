#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ClientFacts.h"
#include "DeckClient.h"
#include "ScriptValue.h"

namespace program {

/// Reads the facts that a client is made from. `kind` is that of its chain. Throws UsageError with the line.
wavedeck::driver::ClientFacts readClientFacts(const ScriptValue& client, wavedeck::driver::ChainKind kind);

/// A change of a running client.
using ClientChange = std::function<void(wavedeck::driver::DeckClient&)>;

/// Reads the facts that may change while a client runs, out of the script's "client" or out of a client step. With
/// `atStart` the members that readClientFacts takes are passed over, else they are refused.
std::vector<ClientChange> readClientChanges(const ScriptValue& client, bool atStart);

}  // namespace program
