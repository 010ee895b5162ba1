#include "wavedeck/TimeDeckThinnerFilter.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "streamplug/Exceptions.h"
#include "wavedeck/WaveDeckClientRegistry.h"

namespace wavedeck {

namespace {

using foundation::numbenchdata::Array;
using foundation::numbenchdata::ArrayType;
using foundation::numbenchdata::CharArray;
using foundation::numbenchdata::OptionalString;
using foundation::numbenchdata::TypedArray;
using streamplug::kit::array::OptionInvalidValue;
using streamplug::kit::array::OptionNotExpectedType;
using streamplug::kit::array::OptionNotFound;
using streamplug::kit::array::PropertyEvent;

// Faults are told in the words of the option readers of all other stages.

const Array& requireOption(const PropertyList& list, const std::string& name) {
    const auto* property = list.find(name);
    if (!property) {
        throw OptionNotFound("Option: " + name + " was not found");
    }
    const auto* event = dynamic_cast<const PropertyEvent*>(property);
    if (!event) {
        throw OptionNotExpectedType("Option: " + name + " was not the expected PropertyEvent");
    }
    return event->getValue();
}

const Array& requireType(const Array& value, ArrayType type, const std::string& name) {
    if (value.getType() != type) {
        throw OptionNotExpectedType("Option: " + name + " was not the expected type");
    }
    return value;
}

void requireScalar(const Array& value, const std::string& name) {
    if (value.getNumberOfElements() != 1) {
        throw OptionNotExpectedType("Option: " + name + " was not a scalar");
    }
}

std::u16string wideText(const Array& value, const std::string& name) {
    if (value.getType() == ArrayType::Char) {
        return CharArray(value).toUTF16();
    }
    if (value.getType() == ArrayType::String) {
        requireScalar(value, name);
        if (const OptionalString& text = *TypedArray<OptionalString>(value).begin()) {
            return *text;
        }
    }
    throw OptionNotExpectedType("Option: " + name + " was not a char or string");
}

std::string readText(const PropertyList& list, const std::string& name) {
    const std::u16string wide = wideText(requireOption(list, name), name);
    std::string text;
    for (const char16_t unit : wide) {
        if (unit >= 128) {
            throw OptionInvalidValue("Option: " + name + " value had non-ASCII characters");
        }
        text.push_back(static_cast<char>(unit));
    }
    return text;
}

/// Adds the positions of the smallest and the largest value of row[first..last) to `kept`; of a bucket without a
/// number, its first position.
void keepExtremes(const double* row, unsigned long first, unsigned long last, std::vector<unsigned long>& kept) {
    unsigned long smallest = last;
    unsigned long largest = last;
    for (unsigned long i = first; i < last; ++i) {
        if (row[i] != row[i]) {
            continue;
        }
        if (smallest == last || row[i] < row[smallest]) {
            smallest = i;
        }
        if (largest == last || row[i] > row[largest]) {
            largest = i;
        }
    }
    kept.push_back(smallest == last ? first : smallest);
    kept.push_back(largest == last ? first : largest);
}

}  // namespace

TimeDeckThinnerFilter::~TimeDeckThinnerFilter() = default;

void TimeDeckThinnerFilter::filterImpl(const double* data, std::vector<double>& out, int signal) {
    const auto index = static_cast<std::size_t>(signal);
    out.clear();
    if (!data || signal < 0 || index >= rowsPerSignal_.size()) {
        return;
    }
    const unsigned long channels = rowsPerSignal_[index];
    const unsigned long points = inputLength / (channels + 1);
    if (numPoints_ == 0 || points <= numPoints_ || channels == 0) {
        out.assign(data, data + points * (channels + 1));
        return;
    }
    const unsigned long buckets = std::max(1UL, numPoints_ / (2 * channels));
    kept_.clear();
    for (unsigned long bucket = 0; bucket < buckets; ++bucket) {
        const unsigned long first = points * bucket / buckets;
        const unsigned long last = points * (bucket + 1) / buckets;
        const auto begin = static_cast<std::ptrdiff_t>(kept_.size());
        for (unsigned long channel = 1; channel <= channels; ++channel) {
            keepExtremes(data + channel * points, first, last, kept_);
        }
        std::sort(kept_.begin() + begin, kept_.end());
        kept_.erase(std::unique(kept_.begin() + begin, kept_.end()), kept_.end());
    }
    out.reserve(kept_.size() * (channels + 1));
    for (unsigned long row = 0; row <= channels; ++row) {
        for (const unsigned long position : kept_) {
            out.push_back(data[row * points + position]);
        }
    }
}

void TimeDeckThinnerFilter::tuneImpl(const PropertyList& list) {
    const std::string action = readText(list, "action");
    if (action == "setup") {
        setPropertiesOnSetup(list);
    } else if (action == "onInputSizeChange") {
        onInputSizeChange(list);
    } else if (action == "tune") {
        readNumPoints(list);
    }
}

void TimeDeckThinnerFilter::rollbackImpl(const PropertyList& list) {
    tuneImpl(list);
}

void TimeDeckThinnerFilter::setPropertiesOnSetup(const PropertyList& list) {
    clientID = readText(list, "clientID");
    onInputSizeChange(list);
    readNumPoints(list);
}

void TimeDeckThinnerFilter::onInputSizeChange(const PropertyList& list) {
    const TypedArray<int> counts(requireType(requireOption(list, "numChannels"), ArrayType::Int, "numChannels"));
    const std::vector<int> complexity = WaveDeckClientRegistry::sInstance(clientID)->isComplex();
    rowsPerSignal_.clear();
    for (const int count : counts) {
        const std::size_t signal = rowsPerSignal_.size();
        const bool isComplex = signal < complexity.size() && complexity[signal] != 0;
        rowsPerSignal_.push_back(static_cast<unsigned long>(std::max(isComplex ? count / 2 : count, 0)));
    }
}

void TimeDeckThinnerFilter::readNumPoints(const PropertyList& list) {
    if (!list.find("numPoints")) {
        return;
    }
    const Array& points = requireType(requireOption(list, "numPoints"), ArrayType::Double, "numPoints");
    requireScalar(points, "numPoints");
    const double value = *TypedArray<double>(points).begin();
    if (!(value >= 0.0 && value <= 1e9)) {
        throw OptionInvalidValue("Option: numPoints value was not a number of points");
    }
    numPoints_ = static_cast<unsigned long>(value);
}

}  // namespace wavedeck
