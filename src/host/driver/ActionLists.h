#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Chain.h"
#include "ClientFacts.h"
#include "wavedeck/WaveDeckTransformImpl.h"

namespace wavedeck::driver {

/// What the lists of a client's actions are made from.
struct ActionContext {
    const ClientFacts& facts;
    const std::vector<int>& numChannels;  ///< raw, of each signal
    const std::vector<int>& frameSizes;   ///< of each signal
    double displaySpan;                   ///< seconds
};

/// The lists that the driver sends to stages. An option that the caller gives stands in the place of one that the
/// driver would send under the same name.
PropertyList setupList(const ActionContext& context, const Stage& stage, const PropertyList& options);
PropertyList tuneList(const ActionContext& context, const PropertyList& options);
PropertyList sizeList(const ActionContext& context, const Stage& stage);
PropertyList rollbackList(const ActionContext& context, const PropertyList& options);

/// The value of a logical option of one element, or nothing.
std::optional<bool> logicalOption(const PropertyList& list, const std::string& name);
/// The value of a double option of one element, or nothing.
std::optional<double> doubleOption(const PropertyList& list, const std::string& name);

}  // namespace wavedeck::driver
