#include "wavedeck/TimeDeckThinnerFilter.h"

#include <algorithm>
#include <cstring>

#include "wavedeck/WaveDeckClientRegistry.h"

namespace wavedeck {

namespace {

using foundation::numbenchdata::Array;
using foundation::numbenchdata::TypedArray;

/// The value of the first option of that name, or null.
const Array* findOption(const PropertyList& list, const char* name) {
    for (const auto* property : list) {
        if (std::strcmp(property->getName(), name) == 0) {
            const auto* event = dynamic_cast<const streamplug::kit::array::PropertyEvent*>(property);
            return event ? &event->getValue() : nullptr;
        }
    }
    return nullptr;
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
    const Array* action = findOption(list, "action");
    if (!action) {
        return;
    }
    const std::u16string name = foundation::numbenchdata::CharArray(*action).toUTF16();
    if (name == u"setup") {
        setPropertiesOnSetup(list);
    } else if (name == u"onInputSizeChange") {
        onInputSizeChange(list);
    } else if (name == u"tune") {
        readNumPoints(list);
    }
}

void TimeDeckThinnerFilter::rollbackImpl(const PropertyList& list) {
    tuneImpl(list);
}

void TimeDeckThinnerFilter::setPropertiesOnSetup(const PropertyList& list) {
    if (const Array* name = findOption(list, "clientID")) {
        const std::u16string text = foundation::numbenchdata::CharArray(*name).toUTF16();
        clientID.assign(text.begin(), text.end());
    }
    onInputSizeChange(list);
    readNumPoints(list);
}

void TimeDeckThinnerFilter::onInputSizeChange(const PropertyList& list) {
    const Array* counts = findOption(list, "numChannels");
    if (!counts) {
        return;
    }
    const auto client = WaveDeckClientRegistry::sInstance(clientID);
    const std::vector<int>& complexity = client->isComplex();
    rowsPerSignal_.clear();
    for (const int count : TypedArray<int>(*counts)) {
        const std::size_t signal = rowsPerSignal_.size();
        const bool isComplex = signal < complexity.size() && complexity[signal] != 0;
        rowsPerSignal_.push_back(static_cast<unsigned long>(std::max(isComplex ? count / 2 : count, 0)));
    }
}

void TimeDeckThinnerFilter::readNumPoints(const PropertyList& list) {
    if (const Array* points = findOption(list, "numPoints"); points && points->getNumberOfElements() == 1) {
        const double value = TypedArray<double>(*points)[0];
        numPoints_ = value >= 1.0 && value < 1e9 ? static_cast<unsigned long>(value) : 0;
    }
}

}  // namespace wavedeck
