#pragma once

#include <cstddef>
#include <string>

#include "RandomNumbers.h"
#include "Stage.h"
#include "streamplug/PropertyList.h"

namespace soak {

using streamplug::interfaces::device::PropertyList;

/// How many values a list option may sensibly carry.
struct ListLengths {
    std::size_t signals, channels;
};

/// Random options of one stage out of its catalogue: right values, values of the right kind that make no sense, and
/// values of the wrong kind.
class RandomOptions {
public:
    RandomOptions(RandomNumbers& random, ListLengths lengths) : random_(random), lengths_(lengths) {}

    /// For a setup: most of what a person gives, switches on more often than off, seldom anything wrong.
    PropertyList forSetup(const dspwavedecks::catalogue::Stage& stage);
    /// For a tuning: a few options, also such as only the host gives.
    PropertyList forTuning(const dspwavedecks::catalogue::Stage& stage);

private:
    using Array = foundation::numbenchdata::Array;

    Array valueOf(const dspwavedecks::catalogue::Option& option, bool isSensible);
    Array wrongValue();
    double number(const dspwavedecks::catalogue::Option& option, bool isSensible);
    std::string text(const dspwavedecks::catalogue::Option& option, bool isSensible);
    std::size_t listLength(bool isSensible);

    RandomNumbers& random_;
    ListLengths lengths_;
};

}  // namespace soak
