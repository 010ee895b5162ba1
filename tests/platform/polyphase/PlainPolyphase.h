#pragma once

#include <algorithm>
#include <complex>
#include <cstddef>
#include <vector>

/// The polyphase bank sample by sample: each goes into the delay line of its branch, the taps are applied, the line
/// moves on by one. What vectorised kernels are checked against and timed against.
template <class Sample>
class PlainPolyphase {
public:
    /// branches  [numBands * numTaps] the taps of branch 0, of branch 1, and so on
    PlainPolyphase(std::vector<double> branches, std::size_t numBands, std::size_t numTaps)
        : branches_(std::move(branches)),
          numBands_(numBands),
          numTaps_(numTaps),
          lines_(numBands * numTaps),
          sums_(2 * numBands) {}

    void addSegment(const Sample* samples, std::size_t n) {
        std::size_t band = 0;
        std::size_t slot = 0;
        std::size_t branch = 0;
        for (std::size_t i = 0; i < n; ++i) {
            Sample* line = lines_.data() + branch * numTaps_;
            const double* taps = branches_.data() + branch * numTaps_;
            if (numTaps_ > 0) {
                line[0] = samples[i];
            }
            Sample sum{};
            for (std::size_t t = 0; t < numTaps_; ++t) {
                sum += taps[t] * line[t];
            }
            sums_[2 * band + slot] += sum;
            if (numTaps_ > 0) {
                std::copy_backward(line, line + numTaps_ - 1, line + numTaps_);
            }
            slot = 1;
            branch = numBands_ - 1 - band;
            band = (band + 1) % numBands_;
        }
    }

    /// The transform's input, after which the sums under way are the next to be complete.
    void takeRow(std::complex<double>* row) {
        for (std::size_t band = 0; band < numBands_; ++band) {
            row[band] = sums_[2 * band];
            sums_[2 * band] = sums_[2 * band + 1];
            sums_[2 * band + 1] = 0;
        }
    }

private:
    std::vector<double> branches_;
    std::size_t numBands_;
    std::size_t numTaps_;
    std::vector<Sample> lines_;
    std::vector<Sample> sums_;
};
