#include "SignalReader.h"

#include <algorithm>

namespace program {

void SignalReader::separate(const double* interleaved, std::size_t n, const SignalFacts& facts,
                            std::vector<double>& frame) {
    const auto columns = static_cast<std::size_t>(facts.rows());
    const auto channels = static_cast<std::size_t>(facts.channels);
    frame.resize(columns * n);
    for (std::size_t row = 0; row < columns; ++row) {
        const std::size_t column = facts.isComplex ? 2 * (row % channels) + row / channels : row;
        double* out = frame.data() + row * n;
        for (std::size_t i = 0; i < n; ++i) {
            out[i] = interleaved[i * columns + column];
        }
    }
}

void SignalReader::note(const std::string& text) {
    if (std::find(notes_.begin(), notes_.end(), text) == notes_.end()) {
        notes_.push_back(text);
    }
}

}  // namespace program
