#include "ActionLists.h"

#include <cstddef>

#include "foundation/numbenchdata/Array.h"

namespace wavedeck::driver {

namespace {

using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayFactory;
using foundation::numbenchdata::ArrayType;
using foundation::numbenchdata::TypedArray;

void addUnlessGiven(PropertyList& list, const PropertyList& options, const std::string& name, const Array& value) {
    if (!options.find(name)) {
        list.add(name, value);
    }
}

void addText(PropertyList& list, const PropertyList& options, const std::string& name, const std::string& text) {
    addUnlessGiven(list, options, name, ArrayFactory::createChar(text));
}

/// The counts of the signals that the stage is set up with.
void addCounts(const ActionContext& context, const Stage& stage, PropertyList& list, const PropertyList& options) {
    std::vector<int> numChannels;
    std::vector<int> frameSizes;
    for (std::size_t s = 0; s < context.numChannels.size(); ++s) {
        if (!stage.dataSignalsOnly || !context.facts.signals[s].isInputPort) {
            numChannels.push_back(context.numChannels[s]);
            frameSizes.push_back(context.frameSizes[s]);
        }
    }
    const auto numSignals = static_cast<double>(numChannels.size());
    addUnlessGiven(list, options, "numSignals", ArrayFactory::createDouble({numSignals}));
    addUnlessGiven(list, options, "numChannels", ArrayFactory::createInt(numChannels));
    addUnlessGiven(list, options, "frameSize", ArrayFactory::createInt(frameSizes));
}

/// What some stages always get, so that they and the display agree.
void addDisplayOptions(const ActionContext& context, const Stage& stage, PropertyList& list,
                       const PropertyList& options) {
    const std::size_t count = context.numChannels.size();
    if (stage.name == "magnitude_phase_filter") {
        addUnlessGiven(list, options, "timeRange",
                       ArrayFactory::createDouble(std::vector<double>(count, context.displaySpan)));
        addUnlessGiven(list, options, "magPhaseData", ArrayFactory::createLogical(std::vector<bool>(count, false)));
    }
    if (context.facts.kind == ChainKind::Response &&
        (stage.name == "magnitude_phase_response_filter" || stage.name == "peak_finder_filter")) {
        addUnlessGiven(list, options, "magPhaseData", ArrayFactory::createLogical(std::vector<bool>(count, true)));
    }
    if (stage.name == "bf_spectrum_estimator_filter") {
        std::vector<double> periods;
        for (std::size_t s = 0; s < count; ++s) {
            periods.push_back(context.frameSizes[s] * context.facts.signals[s].sampleTime);
        }
        addUnlessGiven(list, options, "sampleTime", ArrayFactory::createDouble(periods));
    }
}

PropertyList beginList(const ActionContext& context, const std::string& action, const PropertyList& options) {
    PropertyList list;
    addText(list, options, "action", action);
    addText(list, options, "clientID", context.facts.name);
    return list;
}

template <typename T>
std::optional<T> scalarOption(const PropertyList& list, const std::string& name, ArrayType type) {
    const auto* event = dynamic_cast<const streamplug::kit::array::PropertyEvent*>(list.find(name));
    if (!event || event->getValue().getType() != type || event->getValue().getNumberOfElements() != 1) {
        return std::nullopt;
    }
    return TypedArray<T>(event->getValue())[0];
}

}  // namespace

PropertyList setupList(const ActionContext& context, const Stage& stage, const PropertyList& options) {
    PropertyList list = beginList(context, "setup", options);
    addCounts(context, stage, list, options);
    addDisplayOptions(context, stage, list, options);
    return list.append(options);
}

PropertyList tuneList(const ActionContext& context, const PropertyList& options) {
    return beginList(context, "tune", options).append(options);
}

PropertyList sizeList(const ActionContext& context, const Stage& stage) {
    PropertyList list = beginList(context, "onInputSizeChange", {});
    addCounts(context, stage, list, {});
    return list;
}

PropertyList rollbackList(const ActionContext& context, const PropertyList& options) {
    return beginList(context, "onRollback", options).append(options);
}

std::optional<bool> logicalOption(const PropertyList& list, const std::string& name) {
    return scalarOption<bool>(list, name, ArrayType::Logical);
}
std::optional<double> doubleOption(const PropertyList& list, const std::string& name) {
    return scalarOption<double>(list, name, ArrayType::Double);
}

}  // namespace wavedeck::driver
